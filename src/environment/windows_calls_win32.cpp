#include "environment/windows_calls_win32.h"

#include <windows.h>

#include <cstring>

#include "environment/code_page.h"
#include "strings/reason.h"

namespace txs {
namespace {

// mingw-w64 has no name for it.
constexpr DWORD kDiskQuotaExceeded = 1295;

}  // namespace

std::wstring ToWide(std::string_view utf8) {
  static_assert(sizeof(wchar_t) == 2);
  const std::string bytes = Utf8ToUtf16(utf8);
  std::wstring wide(bytes.size() / sizeof(wchar_t), L'\0');
  std::memcpy(wide.data(), bytes.data(), bytes.size());
  return wide;
}

std::string ToUtf8(std::wstring_view wide) {
  return Utf16ToUtf8({reinterpret_cast<const char*>(wide.data()), wide.size() * sizeof(wchar_t)});
}

ErrorNumber NumberOfWindowsError(unsigned long error) {
  switch (error) {
    case ERROR_FILE_NOT_FOUND:
      return ErrorNumber::kFileNotFound;
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_DRIVE:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_NET_NAME:
    case ERROR_BAD_DEV_TYPE:  // what is shared under that name holds no files
    case ERROR_DIRECTORY:
      return ErrorNumber::kPathNotFound;
    case ERROR_ACCESS_DENIED:
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
    case ERROR_WRITE_PROTECT:
    case ERROR_NETWORK_ACCESS_DENIED:
    case ERROR_USER_MAPPED_FILE:
    case ERROR_DELETE_PENDING:
    case ERROR_PRIVILEGE_NOT_HELD:
      return ErrorNumber::kPermissionDenied;
    case ERROR_FILE_EXISTS:
    case ERROR_ALREADY_EXISTS:
      return ErrorNumber::kAlreadyExists;
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
    case kDiskQuotaExceeded:
    case ERROR_FILE_TOO_LARGE:
      return ErrorNumber::kDiskFull;
    case ERROR_CRC:
    case ERROR_SEEK:
    case ERROR_SECTOR_NOT_FOUND:
    case ERROR_READ_FAULT:
    case ERROR_WRITE_FAULT:
    case ERROR_GEN_FAILURE:
    case ERROR_IO_DEVICE:
    case ERROR_NETNAME_DELETED:
    case ERROR_UNEXP_NET_ERR:
    case ERROR_FILE_CORRUPT:
    case ERROR_DISK_CORRUPT:
      return ErrorNumber::kDeviceIo;
    case ERROR_TOO_MANY_OPEN_FILES:
      return ErrorNumber::kTooManyFiles;
    case ERROR_INVALID_NAME:
    case ERROR_BAD_PATHNAME:
    case ERROR_FILENAME_EXCED_RANGE:
    case ERROR_LABEL_TOO_LONG:
    case ERROR_CANT_RESOLVE_FILENAME:
      return ErrorNumber::kBadFileName;
    case ERROR_BAD_UNIT:
    case ERROR_DEV_NOT_EXIST:
      return ErrorNumber::kDeviceUnavailable;
    case ERROR_NOT_READY:
    case ERROR_UNRECOGNIZED_VOLUME:
      return ErrorNumber::kDiskNotReady;
    case ERROR_NOT_ENOUGH_MEMORY:
    case ERROR_OUTOFMEMORY:
    case ERROR_NO_SYSTEM_RESOURCES:
    case ERROR_COMMITMENT_LIMIT:
      return ErrorNumber::kOutOfMemory;
    case ERROR_HANDLE_EOF:
      return ErrorNumber::kInputPastEnd;
    default:
      return ErrorNumber::kPathFileAccess;  // what has no number of its own
  }
}

std::string WordsOfWindowsError(unsigned long error) {
  std::wstring words(512, L'\0');
  words.resize(FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                              error, 0, words.data(), static_cast<DWORD>(words.size()), nullptr));
  while (!words.empty() && (words.back() <= L' ' || words.back() == L'.')) words.pop_back();
  return words.empty() ? Words(Reason::kWindowsError, {std::to_string(error)}) : ToUtf8(words);
}

void ThrowAbout(ErrorNumber number, std::string_view what, std::string_view words) {
  throw RuntimeError(number, std::string(what) + ": " + std::string(words));
}

void ThrowWindowsError(unsigned long error, std::string_view what) {
  ThrowAbout(NumberOfWindowsError(error), what, WordsOfWindowsError(error));
}

KernelHandle::~KernelHandle() {
  if (IsOpen()) CloseHandle(handle_);
}

KernelHandle& KernelHandle::operator=(KernelHandle&& other) noexcept {
  if (IsOpen()) CloseHandle(handle_);
  handle_ = std::exchange(other.handle_, nullptr);
  return *this;
}

bool KernelHandle::IsOpen() const { return handle_ != nullptr && handle_ != INVALID_HANDLE_VALUE; }

unsigned long KernelHandle::Close() {
  return CloseHandle(std::exchange(handle_, nullptr)) ? ERROR_SUCCESS : GetLastError();
}

bool MayPassSoon(unsigned long error) {
  return error == ERROR_SHARING_VIOLATION || error == ERROR_LOCK_VIOLATION ||
         error == ERROR_ACCESS_DENIED || error == ERROR_USER_MAPPED_FILE ||
         error == ERROR_DELETE_PENDING;
}

bool WaitToRetry(RetryPauses& pauses, unsigned long error, Denied denied) {
  const bool is_short = error == ERROR_ACCESS_DENIED && denied == Denied::kMostlyForGood;
  const auto pause = is_short ? pauses.Next(kPatienceWithDenied) : pauses.Next();
  if (!pause) return false;
  Sleep(static_cast<DWORD>(pause->count()));
  return true;
}

}  // namespace txs
