// The error that every failing platform operation throws.
//
// The numbers are the classic Basic run-time error numbers that the users of this product know from
// its messages; the description names the file, key or line and carries the operating system's
// words. A work routine is the border: it catches, shows its own message with text 99 appended, and
// returns false. Nothing crosses work routines.
#pragma once

#include <stdexcept>
#include <string>

namespace txs {

enum class ErrorNumber : int {
  kInvalidCall = 5,
  kOverflow = 6,
  kOutOfMemory = 7,
  kTypeMismatch = 13,
  kInternal = 51,
  kBadFileName = 52,
  kFileNotFound = 53,
  kAlreadyOpen = 55,
  kDeviceIo = 57,
  kAlreadyExists = 58,
  kDiskFull = 61,
  kInputPastEnd = 62,
  kTooManyFiles = 67,
  kDeviceUnavailable = 68,
  kPermissionDenied = 70,
  kDiskNotReady = 71,
  kPathFileAccess = 75,
  kPathNotFound = 76,
};

class RuntimeError : public std::runtime_error {
 public:
  // `description` is UTF-8 and complete: "C:\Demo\x.dll: No space left on device".
  RuntimeError(ErrorNumber number, const std::string& description)
      : std::runtime_error(description), number_(number) {}

  [[nodiscard]] ErrorNumber Number() const { return number_; }
  [[nodiscard]] std::string Description() const { return what(); }

 private:
  ErrorNumber number_;
};

}  // namespace txs
