#include "environment/file_system_win32.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <cwchar>
#include <optional>
#include <tuple>
#include <utility>

#include "environment/code_page.h"
#include "environment/runtime_error.h"
#include "environment/windows_calls_win32.h"
#include "environment/windows_path.h"
#include "strings/reason.h"

namespace txs {
namespace {

// 1601-01-01, where the time of Windows begins, in ticks since 1970.
constexpr std::int64_t kFirstTick = -116'444'736'000'000'000;
// A folder's path may have 247 characters, and a name must fit behind it.
constexpr std::size_t kLongPath = 240;
constexpr std::size_t kLongestName = 255;
// Network redirectors of old refuse more at once.
constexpr std::size_t kMostBytesAtOnce = std::size_t{16} << 20;
constexpr std::wstring_view kLongPrefix = L"\\\\?\\";
constexpr std::wstring_view kLongNetworkPrefix = L"\\\\?\\UNC\\";

bool IsLetter(wchar_t c) { return (c >= L'A' && c <= L'Z') || (c >= L'a' && c <= L'z'); }

bool HasDrive(std::wstring_view path) {
  return path.size() >= 2 && IsLetter(path[0]) && path[1] == L':';
}

bool StartsWithNoCase(std::wstring_view path, std::wstring_view prefix) {
  const int length = static_cast<int>(prefix.size());
  return path.size() >= prefix.size() &&
         CompareStringOrdinal(path.data(), length, prefix.data(), length, TRUE) == CSTR_EQUAL;
}

// Without the prefix of long paths. Nothing for what only that prefix can name: a volume without a
// drive, a device.
std::optional<std::wstring> Plain(std::wstring path) {
  if (!path.starts_with(kLongPrefix)) return path;
  if (StartsWithNoCase(path, kLongNetworkPrefix)) {
    return path.replace(0, kLongNetworkPrefix.size(), L"\\\\");
  }
  path.erase(0, kLongPrefix.size());
  if (!HasDrive(path)) return std::nullopt;
  return path;
}

// Where the components begin, behind "C:" or "\\server\share".
std::size_t RootLength(std::wstring_view path) {
  if (HasDrive(path)) return 2;
  if (!path.starts_with(L"\\\\")) return 0;
  const std::size_t server_end = path.find(L'\\', 2);
  if (server_end == std::wstring_view::npos) return path.size();
  return std::min(path.find(L'\\', server_end + 1), path.size());
}

bool IsRoot(std::wstring_view path) {
  const std::size_t root = RootLength(path);
  return path.size() <= root || (path.size() == root + 1 && path.back() == L'\\');
}

// A name that the system would take for something else, or that no disk can hold.
bool IsRefusedName(std::wstring_view name) {
  return name.size() > kLongestName || std::ranges::any_of(name, [](wchar_t c) {
           return c < 0x20 || std::wstring_view(L"\"<>|?*:").find(c) != std::wstring_view::npos;
         });
}

std::wstring FullPath(const std::wstring& path, std::string_view shown) {
  std::wstring full(path.size() + MAX_PATH, L'\0');
  for (;;) {
    const DWORD length =
        GetFullPathNameW(path.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
    if (length == 0) ThrowWindowsError(GetLastError(), shown);
    const bool fits = length < full.size();
    full.resize(length);
    if (fits) return full;
  }
}

// The path as the system understands it: absolute, without "." and "..", without the dots and
// blanks that Windows drops at the ends of names. No "\" at its end but behind a drive.
std::wstring Absolute(std::string_view path) {
  if (path.empty()) ThrowAbout(ErrorNumber::kBadFileName, path, Words(Reason::kNoFileName));
  if (!IsUtf8(path))
    ThrowAbout(ErrorNumber::kBadFileName, path, Words(Reason::kNotAcceptedByWindows));
  std::wstring text = ToWide(path);
  std::ranges::replace(text, L'/', L'\\');
  if (std::optional<std::wstring> plain = Plain(std::move(text))) {
    text = std::move(*plain);
  } else {
    ThrowAbout(ErrorNumber::kBadFileName, path, Words(Reason::kOnNoDriveOrShare));
  }
  for (std::size_t start = HasDrive(text) ? 2 : 0; start < text.size();) {
    const std::size_t end = std::min(text.find(L'\\', start), text.size());
    if (IsRefusedName(std::wstring_view(text).substr(start, end - start))) {
      ThrowAbout(ErrorNumber::kBadFileName, path, Words(Reason::kNotAcceptedByWindows));
    }
    start = end + 1;
  }
  // "C:" alone would be the current directory of that drive.
  if (HasDrive(text) && (text.size() == 2 || text[2] != L'\\')) text.insert(2, 1, L'\\');
  text = FullPath(text, path);
  if (text.starts_with(L"\\\\.\\")) {
    ThrowAbout(ErrorNumber::kPathFileAccess, path, Words(Reason::kNoOrdinaryFile));
  }
  while (text.ends_with(L'\\') && !IsRoot(text)) text.pop_back();
  return text;
}

// As the functions of the system take it without changing a character: however long, and with names
// that mean something else to them otherwise ("aux", "a.").
std::wstring Verbatim(const std::wstring& absolute) {
  if (absolute.starts_with(L"\\\\")) return std::wstring(kLongNetworkPrefix).append(absolute, 2);
  return std::wstring(kLongPrefix).append(absolute);
}

// As the functions of the system take it, however long.
std::wstring Native(const std::wstring& absolute) {
  return absolute.size() < kLongPath ? absolute : Verbatim(absolute);
}

std::wstring ParentOf(const std::wstring& absolute) {
  if (IsRoot(absolute)) return absolute;
  const std::size_t separator = absolute.rfind(L'\\');
  const std::size_t root = RootLength(absolute);
  return absolute.substr(0, separator <= root ? root + 1 : separator);
}

std::wstring Below(const std::wstring& folder, std::wstring_view name) {
  std::wstring path = folder;
  if (!path.ends_with(L'\\')) path += L'\\';
  path += name;
  return path;
}

std::uint64_t Joined(DWORD high, DWORD low) { return std::uint64_t{high} << 32 | low; }

FileTime TimeOf(const FILETIME& time) {
  const auto ticks = static_cast<std::int64_t>(Joined(time.dwHighDateTime, time.dwLowDateTime));
  return FileTime(FileTicks(ticks + kFirstTick));
}

bool IsFolder(DWORD attributes) { return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0; }
bool IsLink(DWORD attributes) { return (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0; }
bool IsReadOnly(DWORD attributes) { return (attributes & FILE_ATTRIBUTE_READONLY) != 0; }

struct Found {
  DWORD error = ERROR_SUCCESS;  // then the rest means nothing
  DWORD attributes = 0;
  FileStamp stamp;

  [[nodiscard]] bool IsThere() const { return error == ERROR_SUCCESS; }
  [[nodiscard]] bool IsFolderThere() const { return IsThere() && IsFolder(attributes); }
};

// The file or folder that is there; of a link to a file what it points to.
Found LookAt(const std::wstring& absolute) {
  Found found;
  WIN32_FILE_ATTRIBUTE_DATA data = {};
  if (!GetFileAttributesExW(Native(absolute).c_str(), GetFileExInfoStandard, &data)) {
    found.error = GetLastError();
    return found;
  }
  found.attributes = data.dwFileAttributes;
  found.stamp = {Joined(data.nFileSizeHigh, data.nFileSizeLow), TimeOf(data.ftLastWriteTime)};
  if (!IsLink(found.attributes) || IsFolder(found.attributes)) return found;

  const KernelHandle file(CreateFileW(Native(absolute).c_str(), FILE_READ_ATTRIBUTES,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                      nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
  BY_HANDLE_FILE_INFORMATION target = {};
  if (!file.IsOpen() || !GetFileInformationByHandle(file.Get(), &target)) {
    found.error = GetLastError();
    return found;
  }
  found.attributes = target.dwFileAttributes;
  found.stamp = {Joined(target.nFileSizeHigh, target.nFileSizeLow), TimeOf(target.ftLastWriteTime)};
  return found;
}

bool MeansMissing(DWORD error) {
  return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND ||
         error == ERROR_INVALID_DRIVE || error == ERROR_BAD_NETPATH ||
         error == ERROR_BAD_NET_NAME || error == ERROR_BAD_DEV_TYPE || error == ERROR_DIRECTORY;
}

// Not every system tells a missing file from a missing folder or drive, so the folder is asked.
[[noreturn]] void ThrowFor(DWORD error, std::string_view path, const std::wstring& absolute) {
  if (!MeansMissing(error)) ThrowWindowsError(error, path);
  const bool has_folder = LookAt(ParentOf(absolute)).IsFolderThere() && !IsRoot(absolute);
  ThrowWindowsError(has_folder ? ERROR_FILE_NOT_FOUND : ERROR_PATH_NOT_FOUND, path);
}

// As LookAt, but a name that is being deleted is waited for.
Found LookPatiently(const std::wstring& absolute, RetryPauses& pauses,
                    Denied denied = Denied::kMostlyForGood) {
  Found found;
  static_cast<void>(RetryWhileBusy(
      pauses,
      [&] {
        found = LookAt(absolute);
        return found.error;
      },
      denied));
  return found;
}

// Throws unless an ordinary file is there.
Found RequireFile(std::string_view path, const std::wstring& absolute, RetryPauses& pauses) {
  Found found = LookPatiently(absolute, pauses);
  if (!found.IsThere()) ThrowFor(found.error, path, absolute);
  if (IsFolder(found.attributes))
    ThrowAbout(ErrorNumber::kPathFileAccess, path, Words(Reason::kIsAFolder));
  return found;
}

// Throws when no file can be written there. `error` of the result tells whether there is none.
Found RequireTarget(std::string_view path, const std::wstring& absolute, RetryPauses& pauses) {
  Found found = LookPatiently(absolute, pauses);
  if (!found.IsThere()) {
    if (!MeansMissing(found.error)) ThrowWindowsError(found.error, path);
    if (!LookAt(ParentOf(absolute)).IsFolderThere() || IsRoot(absolute)) {
      ThrowWindowsError(ERROR_PATH_NOT_FOUND, path);
    }
    return found;
  }
  if (IsFolder(found.attributes))
    ThrowAbout(ErrorNumber::kPathFileAccess, path, Words(Reason::kIsAFolder));
  if (IsReadOnly(found.attributes)) {
    ThrowAbout(ErrorNumber::kPathFileAccess, path, Words(Reason::kReadOnly));
  }
  return found;
}

struct Opening {
  DWORD access = 0;
  DWORD sharing = 0;
  DWORD disposition = 0;
  DWORD flags = FILE_ATTRIBUTE_NORMAL;
};

KernelHandle Open(std::string_view path, const std::wstring& absolute, const Opening& opening,
                  RetryPauses& pauses) {
  KernelHandle file;
  const DWORD error = RetryWhileBusy(pauses, [&]() -> DWORD {
    file = KernelHandle(CreateFileW(Native(absolute).c_str(), opening.access, opening.sharing,
                                    nullptr, opening.disposition, opening.flags, nullptr));
    return file.IsOpen() ? ERROR_SUCCESS : GetLastError();
  });
  if (error != ERROR_SUCCESS) ThrowFor(error, path, absolute);
  return file;
}

constexpr Opening kToRead = {GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                             OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL | FILE_FLAG_SEQUENTIAL_SCAN};
constexpr Opening kToAsk = {FILE_READ_ATTRIBUTES,
                            FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, OPEN_EXISTING,
                            FILE_FLAG_BACKUP_SEMANTICS};

DWORD AtOnce(std::size_t bytes) { return static_cast<DWORD>(std::min(bytes, kMostBytesAtOnce)); }

void WriteBytes(HANDLE file, std::uint64_t offset, std::span<const std::byte> data,
                std::string_view path) {
  while (!data.empty()) {
    OVERLAPPED place = {};
    place.Offset = static_cast<DWORD>(offset);
    place.OffsetHigh = static_cast<DWORD>(offset >> 32);
    DWORD written = 0;
    if (!WriteFile(file, data.data(), AtOnce(data.size()), &written, &place)) {
      ThrowWindowsError(GetLastError(), path);
    }
    if (written == 0) ThrowWindowsError(ERROR_DISK_FULL, path);
    offset += written;
    data = data.subspan(written);
  }
}

class WindowsInputFile : public InputFile {
 public:
  WindowsInputFile(KernelHandle file, std::uint64_t length, std::string path)
      : file_(std::move(file)), length_(length), path_(std::move(path)) {}

  [[nodiscard]] std::size_t Read(std::span<std::byte> buffer) override {
    DWORD count = 0;
    if (!ReadFile(file_.Get(), buffer.data(), AtOnce(buffer.size()), &count, nullptr)) {
      ThrowWindowsError(GetLastError(), path_);
    }
    return count;
  }

  [[nodiscard]] std::uint64_t Length() const override { return length_; }

  void Seek(std::uint64_t offset) override {
    LARGE_INTEGER place = {};
    place.QuadPart = static_cast<LONGLONG>(offset);
    if (!SetFilePointerEx(file_.Get(), place, nullptr, FILE_BEGIN)) {
      ThrowWindowsError(GetLastError(), path_);
    }
  }

 private:
  KernelHandle file_;
  std::uint64_t length_;
  std::string path_;
};

class WindowsOutputFile : public OutputFile {
 public:
  WindowsOutputFile(KernelHandle file, std::uint64_t end, std::string path)
      : file_(std::move(file)), end_(end), path_(std::move(path)) {}

  void Write(std::span<const std::byte> data) override {
    WriteBytes(file_.Get(), end_, data, path_);
    end_ += data.size();
  }

  void WriteAt(std::uint64_t offset, std::span<const std::byte> data) override {
    if (offset + data.size() > end_) {
      ThrowAbout(ErrorNumber::kInvalidCall, path_, "WriteAt beyond what was written");
    }
    WriteBytes(file_.Get(), offset, data, path_);
  }

  void Close() override {
    if (!file_.IsOpen()) return;
    if (const DWORD error = file_.Close(); error != ERROR_SUCCESS) ThrowWindowsError(error, path_);
  }

 private:
  KernelHandle file_;
  std::uint64_t end_;  // nobody else may write meanwhile
  std::string path_;
};

class Search {
 public:
  explicit Search(const std::wstring& native_pattern)
      : handle_(FindFirstFileExW(native_pattern.c_str(), FindExInfoBasic, &data_,
                                 FindExSearchNameMatch, nullptr, 0)),
        error_(handle_ == INVALID_HANDLE_VALUE ? GetLastError() : ERROR_SUCCESS) {
    if (IsOpen() && IsDots()) Next();
  }
  ~Search() {
    if (handle_ != INVALID_HANDLE_VALUE) FindClose(handle_);
  }
  Search(const Search&) = delete;
  Search& operator=(const Search&) = delete;

  // Whether there is an entry; else Error tells why, ERROR_NO_MORE_FILES at the end.
  [[nodiscard]] bool IsOpen() const { return error_ == ERROR_SUCCESS; }
  [[nodiscard]] DWORD Error() const { return error_; }
  [[nodiscard]] const WIN32_FIND_DATAW& Entry() const { return data_; }
  // "." and ".." are passed over.
  void Next() {
    do {
      error_ = FindNextFileW(handle_, &data_) ? ERROR_SUCCESS : GetLastError();
    } while (IsOpen() && IsDots());
  }

 private:
  [[nodiscard]] bool IsDots() const {
    return std::wcscmp(data_.cFileName, L".") == 0 || std::wcscmp(data_.cFileName, L"..") == 0;
  }

  WIN32_FIND_DATAW data_ = {};
  HANDLE handle_;
  DWORD error_;
};

// What is in the folder. A folder that is being deleted is waited for.
void SearchIn(const std::wstring& native_folder, RetryPauses& pauses,
              std::optional<Search>& search) {
  static_cast<void>(
      RetryWhileBusy(pauses, [&] { return search.emplace(Below(native_folder, L"*")).Error(); }));
}

// The path with its last name as it is spelled on the disk.
std::wstring Spelled(const std::wstring& absolute) {
  if (IsRoot(absolute)) return absolute;
  const Search search(Native(absolute));
  return search.IsOpen() ? Below(ParentOf(absolute), search.Entry().cFileName) : absolute;
}

// What a link to a file points to, and any other path itself.
std::wstring EndOfLinks(std::string_view path, const std::wstring& absolute, RetryPauses& pauses) {
  const DWORD attributes = GetFileAttributesW(Native(absolute).c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES || !IsLink(attributes)) return absolute;
  const KernelHandle file = Open(path, absolute, kToAsk, pauses);
  std::wstring target(32768, L'\0');
  const DWORD length = GetFinalPathNameByHandleW(
      file.Get(), target.data(), static_cast<DWORD>(target.size()), FILE_NAME_NORMALIZED);
  if (length == 0 || length >= target.size()) return absolute;
  target.resize(length);
  return Plain(std::move(target)).value_or(absolute);
}

// An open file that goes unless it took the place of another.
class TemporaryFile {
 public:
  TemporaryFile(KernelHandle handle, std::wstring path)
      : file(std::move(handle)), path_(std::move(path)) {}
  ~TemporaryFile() {
    // Nobody can delete what is open, not even who opened it.
    file = KernelHandle();
    if (!path_.empty()) DeleteFileW(Native(path_).c_str());
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  void Keep() { path_.clear(); }

  KernelHandle file;

 private:
  std::wstring path_;
};

constexpr std::wstring_view kTemporaryPrefix = L"txs-";
constexpr std::wstring_view kTemporarySuffix = L".tmp";
constexpr std::size_t kTemporaryDigits = 12;

std::wstring TemporaryNameIn(const std::wstring& folder) {
  static std::atomic<unsigned> counter = 0;
  std::array<wchar_t, kTemporaryDigits + 1> digits = {};
  swprintf(digits.data(), digits.size(), L"%08lx%04x",
           GetCurrentProcessId() * 2654435761UL + GetTickCount(), counter++ & 0xFFFFU);
  return Below(folder,
               std::wstring(kTemporaryPrefix) + digits.data() + std::wstring(kTemporarySuffix));
}

bool IsTemporaryName(std::wstring_view name) {
  return name.size() == kTemporaryPrefix.size() + kTemporaryDigits + kTemporarySuffix.size() &&
         name.starts_with(kTemporaryPrefix) && name.ends_with(kTemporarySuffix) &&
         name.substr(kTemporaryPrefix.size(), kTemporaryDigits)
                 .find_first_not_of(L"0123456789abcdef") == std::wstring_view::npos;
}

// Whoever writes a temporary file has it open until it took its place, and what is open cannot be
// opened for oneself alone. One that can was left by a process that was killed; without this, each
// of them would leave one more.
void RemoveAbandonedTemporaries(const std::wstring& folder) {
  std::vector<std::wstring> paths;
  for (Search search(Native(Below(folder, L"txs-*.tmp"))); search.IsOpen(); search.Next()) {
    if (IsTemporaryName(search.Entry().cFileName)) {
      paths.push_back(Below(folder, search.Entry().cFileName));
    }
  }
  for (const std::wstring& path : paths) {
    const KernelHandle goes_when_closed(
        CreateFileW(Native(path).c_str(), DELETE, /*dwShareMode=*/0, nullptr, OPEN_EXISTING,
                    FILE_FLAG_DELETE_ON_CLOSE | FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
  }
}

// A target that is open is denied, not shared, however it is open.
DWORD MoveOver(const std::wstring& from, const std::wstring& to, DWORD flags, RetryPauses& pauses) {
  return RetryWhileBusy(
      pauses,
      [&]() -> DWORD {
        return MoveFileExW(Native(from).c_str(), Native(to).c_str(),
                           flags | MOVEFILE_REPLACE_EXISTING)
                   ? ERROR_SUCCESS
                   : GetLastError();
      },
      Denied::kHeld);
}

// Which file on which volume, and by which name it is reached.
struct Identity {
  DWORD volume = 0;
  std::uint64_t index = 0;  // 0 where the volume does not number its files
  DWORD links = 0;
  std::wstring name;  // empty where the system does not tell

  [[nodiscard]] bool HasNameOf(const Identity& other) const {
    return !name.empty() && EqualNoCase(ToUtf8(name), ToUtf8(other.name));
  }
  [[nodiscard]] bool IsSameFile(const Identity& other) const {
    return HasNameOf(other) || (index != 0 && volume == other.volume && index == other.index);
  }
};

std::optional<Identity> IdentityOf(const std::wstring& absolute) {
  const KernelHandle file(CreateFileW(Native(absolute).c_str(), kToAsk.access, kToAsk.sharing,
                                      nullptr, kToAsk.disposition, kToAsk.flags, nullptr));
  BY_HANDLE_FILE_INFORMATION info = {};
  if (!file.IsOpen() || !GetFileInformationByHandle(file.Get(), &info)) return std::nullopt;
  Identity identity = {info.dwVolumeSerialNumber, Joined(info.nFileIndexHigh, info.nFileIndexLow),
                       info.nNumberOfLinks, std::wstring(32768, L'\0')};
  const DWORD length = GetFinalPathNameByHandleW(file.Get(), identity.name.data(),
                                                 static_cast<DWORD>(identity.name.size()), 0);
  identity.name.resize(length < identity.name.size() ? length : 0);
  return identity;
}

DWORD RemoveFileAt(const std::wstring& native, DWORD attributes, RetryPauses& pauses) {
  return RetryWhileBusy(pauses, [&]() -> DWORD {
    if (IsReadOnly(attributes)) SetFileAttributesW(native.c_str(), FILE_ATTRIBUTE_NORMAL);
    if (DeleteFileW(native.c_str())) return ERROR_SUCCESS;
    const DWORD error = GetLastError();
    return error == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : error;
  });
}

DWORD RemoveEmptyFolder(const std::wstring& native, DWORD attributes, RetryPauses& pauses) {
  for (;;) {
    if (IsReadOnly(attributes)) SetFileAttributesW(native.c_str(), FILE_ATTRIBUTE_DIRECTORY);
    if (RemoveDirectoryW(native.c_str())) return ERROR_SUCCESS;
    const DWORD error = GetLastError();
    if (MeansMissing(error)) return ERROR_SUCCESS;
    // A file that somebody still has open stays in its folder until it is closed.
    if (!MayPassSoon(error) && error != ERROR_DIR_NOT_EMPTY) return error;
    if (!WaitToRetry(pauses, error)) return error;
  }
}

struct Inside {
  std::wstring name;
  DWORD attributes = 0;
  DWORD tag = 0;
};

// The reparse tag of a folder. Only a search tells it; 0 where that fails, which keeps a junction
// from being entered.
DWORD TagOf(const std::wstring& native, DWORD attributes) {
  if (!IsLink(attributes)) return 0;
  const Search search(native);
  return search.IsOpen() ? search.Entry().dwReserved0 : 0;
}

// Deletes what is in the folder and the folder, goes on after a failure; the first error. All of
// it shares the pauses: what another program keeps for good must not cost them once per file.
DWORD RemoveFolderAndContents(const std::wstring& native, DWORD attributes, DWORD tag,
                              RetryPauses& pauses) {
  DWORD first_error = ERROR_SUCCESS;
  const auto note = [&](DWORD error) {
    if (first_error == ERROR_SUCCESS) first_error = error;
  };
  std::vector<Inside> entries;
  if (!LeadsElsewhere(attributes, tag)) {
    std::optional<Search> search;
    for (SearchIn(native, pauses, search); search->IsOpen(); search->Next()) {
      const WIN32_FIND_DATAW& entry = search->Entry();
      entries.push_back({entry.cFileName, entry.dwFileAttributes, entry.dwReserved0});
    }
    if (search->Error() != ERROR_NO_MORE_FILES && !MeansMissing(search->Error())) {
      note(search->Error());
    }
  }
  for (const Inside& entry : entries) {
    const std::wstring path = Below(native, entry.name);
    note(IsFolder(entry.attributes)
             ? RemoveFolderAndContents(path, entry.attributes, entry.tag, pauses)
             : RemoveFileAt(path, entry.attributes, pauses));
  }
  // What could not be deleted keeps the folder; that error was the first and tells more.
  if (first_error == ERROR_SUCCESS) note(RemoveEmptyFolder(native, attributes, pauses));
  return first_error;
}

}  // namespace

std::wstring NativePath(std::string_view path) { return Native(Absolute(path)); }

bool LeadsElsewhere(unsigned long attributes, unsigned long tag) {
  return IsLink(attributes) && (tag == 0 || IsReparseTagNameSurrogate(tag));
}

std::string WindowsFileSystem::HostPath(std::string_view path) const {
  const std::wstring absolute = Absolute(path);
  std::wstring existing = absolute;
  while (!LookAt(existing).IsThere()) {
    if (IsRoot(existing)) ThrowWindowsError(ERROR_PATH_NOT_FOUND, path);
    existing = ParentOf(existing);
  }
  std::wstring spelled = existing.substr(0, RootLength(existing));
  if (HasDrive(spelled)) CharUpperBuffW(spelled.data(), 1);
  spelled += L'\\';
  for (std::size_t start = RootLength(existing) + 1; start < existing.size();) {
    const std::size_t end = std::min(existing.find(L'\\', start), existing.size());
    spelled = Spelled(Below(spelled, std::wstring_view(existing).substr(start, end - start)));
    start = end + 1;
  }
  std::wstring_view rest = std::wstring_view(absolute).substr(existing.size());
  if (rest.starts_with(L'\\')) rest.remove_prefix(1);
  return ToUtf8(rest.empty() ? spelled : Below(spelled, rest));
}

std::string WindowsFileSystem::WindowsPath(std::string_view host_path) const {
  return ToUtf8(Absolute(host_path));
}

bool WindowsFileSystem::FileExists(std::string_view path) const { return Stamp(path).has_value(); }

bool WindowsFileSystem::FolderExists(std::string_view path) const {
  try {
    return LookAt(Absolute(path)).IsFolderThere();
  } catch (const RuntimeError&) {
    return false;
  }
}

std::optional<FileStamp> WindowsFileSystem::Stamp(std::string_view path) const {
  try {
    const Found found = LookAt(Absolute(path));
    if (!found.IsThere() || IsFolder(found.attributes)) return std::nullopt;
    return found.stamp;
  } catch (const RuntimeError&) {
    return std::nullopt;
  }
}

std::string WindowsFileSystem::FinalPath(std::string_view path) const {
  try {
    const KernelHandle place(CreateFileW(Native(Absolute(path)).c_str(), /*access=*/0,
                                         FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                         nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS,
                                         nullptr));
    if (!place.IsOpen()) return std::string(path);
    std::wstring name(MAX_PATH, L'\0');
    for (;;) {
      const DWORD length = GetFinalPathNameByHandleW(
          place.Get(), name.data(), static_cast<DWORD>(name.size()), FILE_NAME_NORMALIZED);
      if (length == 0) return std::string(path);
      const bool fits = length < name.size();
      name.resize(length);
      if (fits) return ToUtf8(name);
    }
  } catch (const RuntimeError&) {
    return std::string(path);
  }
}

std::unique_ptr<InputFile> WindowsFileSystem::OpenForReading(std::string_view path) const {
  const std::wstring absolute = Absolute(path);
  RetryPauses pauses(patience_);
  static_cast<void>(RequireFile(path, absolute, pauses));
  KernelHandle file = Open(path, absolute, kToRead, pauses);
  LARGE_INTEGER length = {};
  if (!GetFileSizeEx(file.Get(), &length)) ThrowWindowsError(GetLastError(), path);
  return std::make_unique<WindowsInputFile>(
      std::move(file), static_cast<std::uint64_t>(length.QuadPart), std::string(path));
}

std::vector<FileEntry> WindowsFileSystem::List(std::string_view folder,
                                               std::string_view pattern) const {
  const std::wstring absolute = Absolute(folder);
  RetryPauses pauses(patience_);
  const Found asked = LookPatiently(absolute, pauses);
  // Who is told that there is no such folder goes on as if it were empty.
  if (!asked.IsThere() && !MeansMissing(asked.error)) ThrowWindowsError(asked.error, folder);
  if (!asked.IsFolderThere()) ThrowWindowsError(ERROR_PATH_NOT_FOUND, folder);
  std::vector<std::pair<std::string, FileEntry>> found;  // folded name, entry
  // The wildcards of the system would match short names ("FILE~1.RCT") too.
  std::optional<Search> search;
  for (SearchIn(Native(absolute), pauses, search); search->IsOpen(); search->Next()) {
    const WIN32_FIND_DATAW& entry = search->Entry();
    const std::string name = ToUtf8(entry.cFileName);
    if (!IsUtf8(name) || !MatchesWildcard(name, pattern)) continue;
    found.push_back({FoldCase(name),
                     {name, IsFolder(entry.dwFileAttributes),
                      LeadsElsewhere(entry.dwFileAttributes, entry.dwReserved0)}});
  }
  // The root of an empty drive has not even "." in it.
  if (search->Error() != ERROR_NO_MORE_FILES && search->Error() != ERROR_FILE_NOT_FOUND) {
    ThrowWindowsError(search->Error(), folder);
  }
  std::ranges::sort(found, [](const auto& left, const auto& right) {
    return std::tie(left.first, left.second.name) < std::tie(right.first, right.second.name);
  });
  std::vector<FileEntry> entries;
  entries.reserve(found.size());
  for (auto& [folded, entry] : found) entries.push_back(std::move(entry));
  return entries;
}

// Only names with half a surrogate pair: the system itself refuses all others.
std::vector<FileEntry> WindowsFileSystem::UnusableEntries(std::string_view folder) const {
  const std::wstring absolute = Absolute(folder);
  RetryPauses pauses(patience_);
  const Found asked = LookPatiently(absolute, pauses);
  if (!asked.IsThere() && !MeansMissing(asked.error)) ThrowWindowsError(asked.error, folder);
  if (!asked.IsFolderThere()) ThrowWindowsError(ERROR_PATH_NOT_FOUND, folder);
  std::vector<FileEntry> entries;
  std::optional<Search> search;
  for (SearchIn(Native(absolute), pauses, search); search->IsOpen(); search->Next()) {
    const WIN32_FIND_DATAW& entry = search->Entry();
    const std::string name = ToUtf8(entry.cFileName);
    if (IsUtf8(name)) continue;
    entries.push_back({PrintableName(name), IsFolder(entry.dwFileAttributes),
                       LeadsElsewhere(entry.dwFileAttributes, entry.dwReserved0)});
  }
  if (search->Error() != ERROR_NO_MORE_FILES && search->Error() != ERROR_FILE_NOT_FOUND) {
    ThrowWindowsError(search->Error(), folder);
  }
  std::ranges::sort(entries, {}, &FileEntry::name);
  return entries;
}

std::unique_ptr<OutputFile> WindowsFileSystem::OpenOutput(std::string_view path, Ends ends) {
  const std::wstring absolute = Absolute(path);
  RetryPauses pauses(patience_);
  static_cast<void>(RequireTarget(path, absolute, pauses));
  // Not CREATE_ALWAYS, which refuses hidden files.
  const Opening opening = {GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, OPEN_ALWAYS,
                           FILE_ATTRIBUTE_NORMAL};
  KernelHandle file = Open(path, absolute, opening, pauses);
  LARGE_INTEGER end = {};
  const bool is_ready =
      ends == Ends::kCut ? SetEndOfFile(file.Get()) != 0 : GetFileSizeEx(file.Get(), &end) != 0;
  if (!is_ready) ThrowWindowsError(GetLastError(), path);
  return std::make_unique<WindowsOutputFile>(
      std::move(file), static_cast<std::uint64_t>(end.QuadPart), std::string(path));
}

std::unique_ptr<OutputFile> WindowsFileSystem::CreateForWriting(std::string_view path) {
  return OpenOutput(path, Ends::kCut);
}

std::unique_ptr<OutputFile> WindowsFileSystem::OpenForAppending(std::string_view path) {
  return OpenOutput(path, Ends::kKept);
}

void WindowsFileSystem::ReplaceWhole(std::string_view path, std::string_view bytes) {
  const std::wstring asked = Absolute(path);
  RetryPauses pauses(patience_);
  static_cast<void>(RequireTarget(path, asked, pauses));
  // A link stays a link: what it points to is replaced.
  const std::wstring target = Spelled(EndOfLinks(path, asked, pauses));
  const DWORD old_attributes = GetFileAttributesW(Native(target).c_str());

  // ReplaceFileW would keep more of the old file, but where it fails half-way the old file may be
  // gone.
  RemoveAbandonedTemporaries(ParentOf(target));
  const std::wstring temporary_path = TemporaryNameIn(ParentOf(target));
  constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  const Opening to_write = {GENERIC_WRITE, kShareAll, CREATE_NEW, FILE_ATTRIBUTE_NORMAL};
  const Opening to_hold = {GENERIC_READ, kShareAll, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL};
  TemporaryFile temporary(Open(path, temporary_path, to_write, pauses), temporary_path);
  // Until the file has its name: between closing and renaming it would look abandoned.
  const KernelHandle held = Open(path, temporary_path, to_hold, pauses);
  WriteBytes(temporary.file.Get(), 0, std::as_bytes(std::span(bytes)), path);
  if (!FlushFileBuffers(temporary.file.Get())) ThrowWindowsError(GetLastError(), path);
  if (const DWORD error = temporary.file.Close(); error != ERROR_SUCCESS) {
    ThrowWindowsError(error, path);
  }
  constexpr DWORD kKept = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM;
  if (old_attributes != INVALID_FILE_ATTRIBUTES && (old_attributes & kKept) != 0) {
    SetFileAttributesW(Native(temporary_path).c_str(),
                       (old_attributes & kKept) | FILE_ATTRIBUTE_ARCHIVE);
  }
  const DWORD error = MoveOver(temporary_path, target, MOVEFILE_WRITE_THROUGH, pauses);
  if (error != ERROR_SUCCESS) ThrowFor(error, path, target);
  temporary.Keep();
}

void WindowsFileSystem::CopyWhole(std::string_view source, std::string_view target) {
  const std::wstring from = Absolute(source);
  const std::wstring to = Absolute(target);
  RetryPauses pauses(patience_);
  const Found found = RequireFile(source, from, pauses);
  const Found old = RequireTarget(target, to, pauses);
  if (old.IsThere()) {
    const std::optional<Identity> left = IdentityOf(from);
    const std::optional<Identity> right = IdentityOf(to);
    if (left && right && left->IsSameFile(*right)) {
      ThrowAbout(ErrorNumber::kPathFileAccess, target, Words(Reason::kOntoItself));
    }
  }
  // Which of the two a failure is about the system does not tell; it is seldom the source.
  static_cast<void>(Open(source, from, kToRead, pauses));
  // The system copies these attributes too, and not over a file that has them.
  constexpr DWORD kNotCopied =
      FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM;
  const std::wstring native_target = Native(to);
  if (old.IsThere() && (old.attributes & kNotCopied) != 0) {
    // What this cannot change fails below.
    SetFileAttributesW(native_target.c_str(), FILE_ATTRIBUTE_ARCHIVE);
  }
  const DWORD error = RetryWhileBusy(pauses, [&]() -> DWORD {
    return CopyFileExW(Native(from).c_str(), native_target.c_str(), nullptr, nullptr, nullptr,
                       COPY_FILE_ALLOW_DECRYPTED_DESTINATION)
               ? ERROR_SUCCESS
               : GetLastError();
  });
  if (error != ERROR_SUCCESS) ThrowFor(error, target, to);
  if ((found.attributes & kNotCopied) != 0 &&
      !SetFileAttributesW(native_target.c_str(), FILE_ATTRIBUTE_ARCHIVE)) {
    ThrowWindowsError(GetLastError(), target);
  }
}

void WindowsFileSystem::MoveWhole(std::string_view source, std::string_view target) {
  const std::wstring from = Absolute(source);
  const std::wstring asked = Absolute(target);
  RetryPauses pauses(patience_);
  const Found found = RequireFile(source, from, pauses);
  const Found old = RequireTarget(target, asked, pauses);
  const std::wstring to = Spelled(asked);
  if (old.IsThere()) {
    const std::optional<Identity> left = IdentityOf(from);
    const std::optional<Identity> right = IdentityOf(to);
    if (left && right && left->IsSameFile(*right)) {
      // One name reached by two paths is all that the file has; of two names the old one goes.
      if (left->HasNameOf(*right)) return;
      if (left->links > 1 && !left->name.empty() && !right->name.empty()) {
        const DWORD error = RemoveFileAt(Native(from), found.attributes, pauses);
        if (error != ERROR_SUCCESS) ThrowWindowsError(error, source);
        return;
      }
    }
  }
  const DWORD error = MoveOver(from, to, /*flags=*/0, pauses);
  if (error == ERROR_SUCCESS) return;
  if (error != ERROR_NOT_SAME_DEVICE) ThrowFor(error, source, from);
  CopyWhole(source, target);
  const DWORD remove_error = RemoveFileAt(Native(from), found.attributes, pauses);
  if (remove_error != ERROR_SUCCESS) ThrowWindowsError(remove_error, source);
}

void WindowsFileSystem::RemoveFile(std::string_view path) {
  const std::wstring absolute = Absolute(path);
  RetryPauses pauses(patience_);
  const Found found = RequireFile(path, absolute, pauses);
  if (IsReadOnly(found.attributes)) {
    ThrowAbout(ErrorNumber::kPathFileAccess, path, Words(Reason::kReadOnly));
  }
  const DWORD error = RemoveFileAt(Native(absolute), found.attributes, pauses);
  if (error != ERROR_SUCCESS) ThrowFor(error, path, absolute);
}

void WindowsFileSystem::RemoveTree(std::string_view folder) {
  const std::wstring absolute = Absolute(folder);
  if (IsRoot(absolute))
    ThrowAbout(ErrorNumber::kPathFileAccess, folder, Words(Reason::kIsAWholeDrive));
  // Programs of other systems leave names that only this form reaches.
  const std::wstring native = Verbatim(absolute);
  RetryPauses pauses(patience_);
  // The attributes of a link, not of what it points to.
  DWORD attributes = 0;
  const DWORD asked = RetryWhileBusy(pauses, [&]() -> DWORD {
    attributes = GetFileAttributesW(native.c_str());
    return attributes == INVALID_FILE_ATTRIBUTES ? GetLastError() : ERROR_SUCCESS;
  });
  if (MeansMissing(asked)) return;
  if (asked != ERROR_SUCCESS) ThrowWindowsError(asked, folder);
  if (!IsFolder(attributes))
    ThrowAbout(ErrorNumber::kPathFileAccess, folder, Words(Reason::kNotAFolder));
  const DWORD error =
      RemoveFolderAndContents(native, attributes, TagOf(native, attributes), pauses);
  if (error != ERROR_SUCCESS) ThrowWindowsError(error, folder);
}

void WindowsFileSystem::MakeFolder(std::string_view folder) {
  const std::wstring absolute = Absolute(folder);
  RetryPauses pauses(patience_);
  std::vector<std::wstring> missing;
  for (std::wstring path = absolute;; path = ParentOf(path)) {
    // A folder that was deleted keeps its name as long as anybody looks into it.
    const Found found = LookPatiently(path, pauses, Denied::kHeld);
    if (found.IsFolderThere()) break;
    if (found.IsThere()) ThrowAbout(ErrorNumber::kPathFileAccess, folder, Words(Reason::kIsAFile));
    if (!MeansMissing(found.error)) ThrowWindowsError(found.error, folder);
    if (IsRoot(path)) ThrowWindowsError(ERROR_PATH_NOT_FOUND, folder);
    missing.push_back(std::move(path));
    path = missing.back();
  }
  for (; !missing.empty(); missing.pop_back()) {
    const std::wstring native = Native(missing.back());
    const DWORD error = RetryWhileBusy(
        pauses,
        [&]() -> DWORD {
          return CreateDirectoryW(native.c_str(), nullptr) ? ERROR_SUCCESS : GetLastError();
        },
        Denied::kHeld);
    // Another process may have made it meanwhile.
    if (error == ERROR_ALREADY_EXISTS && LookAt(missing.back()).IsFolderThere()) continue;
    if (error != ERROR_SUCCESS) ThrowWindowsError(error, folder);
  }
}

std::vector<std::string> WindowsFileSystem::Drives() const {
  std::vector<std::string> drives;
  const DWORD present = GetLogicalDrives();
  for (unsigned i = 0; i < 26; ++i) {
    if ((present >> i & 1) != 0) drives.push_back({static_cast<char>('A' + i), ':'});
  }
  return drives;
}

std::uint64_t WindowsFileSystem::FreeSpaceBytes(std::string_view path) const {
  std::wstring place = Absolute(path);
  // What is not there yet will be on the volume of the nearest folder above it.
  while (!LookAt(place).IsFolderThere()) {
    if (IsRoot(place)) ThrowWindowsError(ERROR_PATH_NOT_FOUND, path);
    place = ParentOf(place);
  }
  ULARGE_INTEGER free_bytes = {};
  if (!GetDiskFreeSpaceExW(Native(Below(place, L"")).c_str(), &free_bytes, nullptr, nullptr)) {
    ThrowWindowsError(GetLastError(), path);
  }
  return free_bytes.QuadPart;
}

}  // namespace txs
