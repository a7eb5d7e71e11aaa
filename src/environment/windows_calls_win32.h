// What the back-ends on Windows share: wide texts, error numbers, handles that close themselves,
// and the patience with other programs.
#pragma once

#include <chrono>
#include <string>
#include <string_view>
#include <utility>

#include "environment/retry_pauses.h"
#include "environment/runtime_error.h"

namespace txs {

// UTF-8 and the texts of the Windows API; half a surrogate pair survives the way there and back.
[[nodiscard]] std::wstring ToWide(std::string_view utf8);
[[nodiscard]] std::string ToUtf8(std::wstring_view wide);

// The run-time error number for a code of GetLastError.
[[nodiscard]] ErrorNumber NumberOfWindowsError(unsigned long error);

// The system's words for it, in the user's language, without the line end and full stop.
[[nodiscard]] std::string WordsOfWindowsError(unsigned long error);

// Throws with "what: words" as the description; `what` is a path or a key.
[[noreturn]] void ThrowAbout(ErrorNumber number, std::string_view what, std::string_view words);
[[noreturn]] void ThrowWindowsError(unsigned long error, std::string_view what);

// A handle of the kernel; closed by its destructor, which swallows the error.
class KernelHandle {
 public:
  KernelHandle() = default;
  explicit KernelHandle(void* handle) : handle_(handle) {}
  ~KernelHandle();
  KernelHandle(KernelHandle&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  KernelHandle& operator=(KernelHandle&& other) noexcept;

  [[nodiscard]] void* Get() const { return handle_; }
  // Neither null nor INVALID_HANDLE_VALUE.
  [[nodiscard]] bool IsOpen() const;

  // 0 or the error; the handle is gone in both cases.
  [[nodiscard]] unsigned long Close();

 private:
  void* handle_ = nullptr;
};

// Whether the operation may succeed when the program that stands in its way (a virus scanner, an
// indexer) is done: sharing and locks, and "access denied", which a file that is being deleted
// gives.
[[nodiscard]] bool MayPassSoon(unsigned long error);

// What the "access denied" of an operation mostly means.
enum class Denied {
  kMostlyForGood,  // rights that the user lacks; a file that is being deleted is gone in a moment
  kHeld,           // somebody has the target open
};

// "Access denied" for good is waited for no longer than this: a scan may meet hundreds of such
// files.
inline constexpr std::chrono::milliseconds kPatienceWithDenied{150};

// Sleeps for the next of `pauses`; false when they are used up, as far as they go for this error.
[[nodiscard]] bool WaitToRetry(RetryPauses& pauses, unsigned long error,
                               Denied denied = Denied::kMostlyForGood);

// Calls `operation` (0 or the error) until it succeeds, fails for good, or `pauses` are used up.
template <typename Operation>
[[nodiscard]] unsigned long RetryWhileBusy(RetryPauses& pauses, const Operation& operation,
                                           Denied denied = Denied::kMostlyForGood) {
  for (;;) {
    const unsigned long error = operation();
    if (error == 0 || !MayPassSoon(error) || !WaitToRetry(pauses, error, denied)) return error;
  }
}

}  // namespace txs
