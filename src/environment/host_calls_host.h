// What the back-ends on Linux share: error numbers, descriptors that close themselves, and the
// replacement of a whole file.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "environment/runtime_error.h"

namespace txs {

// The run-time error number for an errno.
[[nodiscard]] ErrorNumber NumberOfErrno(int error);

// Throws with "path: words" as the description.
[[noreturn]] void ThrowAbout(ErrorNumber number, std::string_view path, std::string_view words);

// Throws with the system's words for an errno.
[[noreturn]] void ThrowErrno(int error, std::string_view path);

// An open file of the host; closed by its destructor, which swallows the error.
class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int fd) : fd_(fd) {}
  ~Descriptor();
  Descriptor(Descriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept;

  [[nodiscard]] int Get() const { return fd_; }
  [[nodiscard]] bool IsOpen() const { return fd_ >= 0; }

  // 0 or the errno; the descriptor is gone in both cases.
  [[nodiscard]] int Close();

 private:
  int fd_ = -1;
};

// open(2) with O_CLOEXEC, again when a signal interrupted it; new files may be read and written by
// all whom the user's mask leaves.
[[nodiscard]] int OpenRetrying(const std::string& path, int flags);

// Writes all bytes at the file's position or throws; `shown_path` is what the error names.
void WriteAll(int fd, std::string_view bytes, std::string_view shown_path);

// Makes the new, empty file at `temporary_path`, open as `temporary`, the whole contents of
// `target`: owner and mode of the old file, bytes, fsync, rename. Throws with `shown_path`; the old
// file is then as it was and the temporary file gone.
void ReplaceByTemporary(Descriptor temporary, const std::string& temporary_path,
                        const std::string& target, std::string_view bytes,
                        std::string_view shown_path);

// File times move in steps of up to 10 ms (kernels before 6.13), on some file systems in whole
// seconds. What was changed within the same step as it was read may have been
// changed once more without its time telling. Nanoseconds since 1970.
[[nodiscard]] bool IsTooFreshToTrust(std::int64_t time_ns, std::int64_t seen_at_ns);

// The time of day in nanoseconds since 1970.
[[nodiscard]] std::int64_t NowNs();

}  // namespace txs
