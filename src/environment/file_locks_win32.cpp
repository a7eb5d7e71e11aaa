#include "environment/file_locks_win32.h"

#include <windows.h>

#include <exception>
#include <string>
#include <utility>

#include "environment/file_system_win32.h"
#include "environment/retry_pauses.h"
#include "environment/windows_calls_win32.h"

namespace txs {
namespace {

// A virus scanner that looks at the new file is no other run. Whoever asks shall not wait long.
constexpr RetryPauses::Limits kPatience = {.first = std::chrono::milliseconds(5),
                                           .longest = std::chrono::milliseconds(40),
                                           .total = std::chrono::milliseconds(150)};

class WindowsLock : public HeldLock {
 public:
  explicit WindowsLock(KernelHandle file) : file_(std::move(file)) {}

 private:
  KernelHandle file_;
};

}  // namespace

std::unique_ptr<HeldLock> WindowsFileLocks::TryTake(std::string_view path) {
  try {
    const std::wstring native = NativePath(path);
    KernelHandle file;
    RetryPauses pauses(kPatience);
    // The system removes the file with the handle, also when the process is killed.
    const DWORD error = RetryWhileBusy(pauses, [&]() -> DWORD {
      file = KernelHandle(CreateFileW(native.c_str(), GENERIC_READ | GENERIC_WRITE | DELETE,
                                      /*dwShareMode=*/0, nullptr, OPEN_ALWAYS,
                                      FILE_ATTRIBUTE_HIDDEN | FILE_FLAG_DELETE_ON_CLOSE, nullptr));
      return file.IsOpen() ? ERROR_SUCCESS : GetLastError();
    });
    if (error == ERROR_SHARING_VIOLATION) return nullptr;
    return std::make_unique<WindowsLock>(std::move(file));
  } catch (const std::exception&) {
    // No path where a lock could be.
    return std::make_unique<HeldLock>();
  }
}

}  // namespace txs
