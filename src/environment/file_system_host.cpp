#include "environment/file_system_host.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <functional>
#include <tuple>
#include <utility>

#include "environment/code_page.h"
#include "environment/host_calls_host.h"
#include "environment/runtime_error.h"
#include "environment/windows_path.h"
#include "strings/reason.h"

namespace txs {
namespace {

constexpr std::size_t kCopyBlockBytes = std::size_t{1024} * 1024;
constexpr mode_t kNewFolderMode = 0777;
constexpr mode_t kAnyWriteBit = 0222;

FileTime TimeOf(const timespec& time) {
  return FileTime(FileTicks(std::int64_t{time.tv_sec} * 10'000'000 + time.tv_nsec / 100));
}

std::int64_t NanosecondsOf(const timespec& time) {
  return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

std::string_view AsText(std::span<const std::byte> bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

FileStamp StampOf(const struct stat& status) {
  return {static_cast<std::uint64_t>(status.st_size), TimeOf(status.st_mtim)};
}

// Linux appends whatever is written to a file opened for appending, at any offset. Setting the
// flags of an open file does not fail.
class NoAppending {
 public:
  explicit NoAppending(int fd) : fd_(fd), flags_(fcntl(fd, F_GETFL)) {
    if ((flags_ & O_APPEND) != 0) fcntl(fd_, F_SETFL, flags_ & ~O_APPEND);
  }
  ~NoAppending() {
    if ((flags_ & O_APPEND) != 0) fcntl(fd_, F_SETFL, flags_);
  }
  NoAppending(const NoAppending&) = delete;
  NoAppending& operator=(const NoAppending&) = delete;

 private:
  int fd_;
  int flags_;
};

class HostInputFile : public InputFile {
 public:
  HostInputFile(Descriptor file, std::uint64_t length, std::string path)
      : file_(std::move(file)), length_(length), path_(std::move(path)) {}

  [[nodiscard]] std::size_t Read(std::span<std::byte> buffer) override {
    for (;;) {
      const ssize_t count = read(file_.Get(), buffer.data(), buffer.size());
      if (count >= 0) return static_cast<std::size_t>(count);
      if (errno != EINTR) ThrowErrno(errno, path_);
    }
  }

  [[nodiscard]] std::uint64_t Length() const override { return length_; }

  void Seek(std::uint64_t offset) override {
    if (lseek(file_.Get(), static_cast<off_t>(offset), SEEK_SET) < 0) ThrowErrno(errno, path_);
  }

 private:
  Descriptor file_;
  std::uint64_t length_;
  std::string path_;
};

class HostOutputFile : public OutputFile {
 public:
  HostOutputFile(Descriptor file, std::string path)
      : file_(std::move(file)), path_(std::move(path)) {}

  void Write(std::span<const std::byte> data) override {
    WriteAll(file_.Get(), AsText(data), path_);
  }

  void WriteAt(std::uint64_t offset, std::span<const std::byte> data) override {
    struct stat status;
    if (fstat(file_.Get(), &status) != 0) ThrowErrno(errno, path_);
    if (offset + data.size() > static_cast<std::uint64_t>(status.st_size)) {
      ThrowAbout(ErrorNumber::kInvalidCall, path_, "WriteAt beyond what was written");
    }
    const NoAppending no_appending(file_.Get());
    std::string_view rest = AsText(data);
    while (!rest.empty()) {
      const ssize_t written =
          pwrite(file_.Get(), rest.data(), rest.size(), static_cast<off_t>(offset));
      if (written < 0) {
        if (errno == EINTR) continue;
        ThrowErrno(errno, path_);
      }
      offset += static_cast<std::uint64_t>(written);
      rest.remove_prefix(static_cast<std::size_t>(written));
    }
  }

  void Close() override {
    if (!file_.IsOpen()) return;
    if (const int error = file_.Close(); error != 0) ThrowErrno(error, path_);
  }

 private:
  Descriptor file_;
  std::string path_;
};

// Whether a name of the host can be part of a Windows path, and the other way round.
bool IsWindowsName(std::string_view name) {
  return !name.empty() && std::ranges::none_of(name, [](char c) {
    return static_cast<unsigned char>(c) < 0x20 ||
           std::string_view("\"<>|?*:\\/").find(c) != std::string_view::npos;
  });
}

std::string ParentOf(const std::string& host_path) {
  const std::size_t slash = host_path.rfind('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : host_path.substr(0, slash);
}

std::string Below(const std::string& folder, std::string_view name) {
  std::string path = folder;
  if (path.empty() || path.back() != '/') path += '/';
  path += name;
  return path;
}

// Long and odd enough that nobody gives it to a file of his own, since such files are deleted.
constexpr std::string_view kTemporaryPrefix = "~TXSetup-";
constexpr std::string_view kTemporarySuffix = ".tmp";
constexpr std::string_view kTemporaryPattern = "~TXSetup-XXXXXX.tmp";

bool IsTemporaryName(std::string_view name) {
  if (name.size() != kTemporaryPattern.size() || !name.starts_with(kTemporaryPrefix) ||
      !name.ends_with(kTemporarySuffix)) {
    return false;
  }
  name.remove_prefix(kTemporaryPrefix.size());
  name.remove_suffix(kTemporarySuffix.size());
  return std::ranges::all_of(name, [](unsigned char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
  });
}

// Whoever writes a temporary file holds its lock. One that nobody holds was left by a process that
// was killed; without this, each of them would leave one more.
void RemoveAbandonedTemporaries(const std::string& folder) {
  const std::unique_ptr<DIR, int (*)(DIR*)> opened(opendir(folder.c_str()), &closedir);
  if (opened == nullptr) return;
  while (const dirent* const entry = readdir(opened.get())) {
    const std::string_view name = entry->d_name;
    if (!IsTemporaryName(name)) continue;
    const std::string path = Below(folder, name);
    const Descriptor file(OpenRetrying(path, O_RDONLY | O_NOFOLLOW | O_NONBLOCK));
    struct stat status;
    if (!file.IsOpen() || fstat(file.Get(), &status) != 0 || !S_ISREG(status.st_mode)) continue;
    if (status.st_uid != geteuid()) continue;
    if (flock(file.Get(), LOCK_EX | LOCK_NB) == 0) unlink(path.c_str());
  }
}

struct TemporaryBeside {
  Descriptor file;  // not open: errno tells why
  Descriptor lock;  // of the same file, which may be closed earlier
  std::string path;
};

// A new, empty file in `folder`, locked where the file system has locks.
TemporaryBeside MakeTemporary(const std::string& folder) {
  for (;;) {
    TemporaryBeside made;
    made.path = Below(folder, kTemporaryPattern);
    made.file = Descriptor(
        mkostemps(made.path.data(), static_cast<int>(kTemporarySuffix.size()), O_CLOEXEC));
    if (!made.file.IsOpen()) return made;
    static_cast<void>(flock(made.file.Get(), LOCK_EX | LOCK_NB));
    made.lock = Descriptor(fcntl(made.file.Get(), F_DUPFD_CLOEXEC, 0));
    // Another process may have taken it for an abandoned one before it was locked.
    struct stat status;
    if (fstat(made.file.Get(), &status) != 0 || status.st_nlink > 0) return made;
  }
}

// The components of a host path, the first of which is absolute, as one path.
std::string Joined(const std::vector<std::string>& components) {
  std::string path = components.front();
  for (std::size_t i = 1; i < components.size(); ++i) path = Below(path, components[i]);
  return path;
}

std::string RealPath(const std::string& path) {
  std::array<char, PATH_MAX> resolved;
  return realpath(path.c_str(), resolved.data()) == nullptr ? std::string()
                                                            : std::string(resolved.data());
}

class OpenFolder {
 public:
  explicit OpenFolder(const std::string& path) : folder_(opendir(path.c_str())) {}
  ~OpenFolder() {
    if (folder_ != nullptr) closedir(folder_);
  }
  OpenFolder(const OpenFolder&) = delete;
  OpenFolder& operator=(const OpenFolder&) = delete;

  [[nodiscard]] bool IsOpen() const { return folder_ != nullptr; }

  // Null at the end; "." and ".." are passed over.
  [[nodiscard]] const dirent* Next() {
    while (const dirent* entry = readdir(folder_)) {
      const std::string_view name = entry->d_name;
      if (name != "." && name != "..") return entry;
    }
    return nullptr;
  }

 private:
  DIR* folder_;
};

bool IsFolderAt(const std::string& path) {
  struct stat status;
  return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

// The entries of the folder at `path`, which the caller calls `folder`, whose name `wanted` wants,
// in no order.
std::vector<FileEntry> EntriesOf(const std::string& path, std::string_view folder,
                                 const std::function<bool(const std::string&)>& wanted) {
  if (!IsFolderAt(path))
    ThrowAbout(ErrorNumber::kPathNotFound, folder, Words(Reason::kFolderNotFound));
  OpenFolder open_folder(path);
  if (!open_folder.IsOpen()) ThrowErrno(errno, folder);
  std::vector<FileEntry> entries;
  for (;;) {
    errno = 0;
    const dirent* const entry = open_folder.Next();
    if (entry == nullptr) {
      if (errno != 0) ThrowErrno(errno, folder);
      return entries;
    }
    const std::string name = entry->d_name;
    if (!wanted(name)) continue;
    const std::string entry_path = Below(path, name);
    struct stat status;
    const bool is_link = entry->d_type == DT_LNK ||
                         (entry->d_type == DT_UNKNOWN && lstat(entry_path.c_str(), &status) == 0 &&
                          S_ISLNK(status.st_mode));
    const bool is_folder = entry->d_type == DT_DIR ||
                           ((entry->d_type == DT_UNKNOWN || is_link) && IsFolderAt(entry_path));
    entries.push_back({name, is_folder, is_link});
  }
}

bool IsSame(const struct stat& left, const struct stat& right) {
  return left.st_dev == right.st_dev && left.st_ino == right.st_ino;
}

// Whether two paths may name the same entry of the same folder. Names that differ in case only
// count as the same: some file systems do not tell them apart.
bool IsSameEntry(const std::string& left, const std::string& right) {
  struct stat left_folder;
  struct stat right_folder;
  if (stat(ParentOf(left).c_str(), &left_folder) != 0 ||
      stat(ParentOf(right).c_str(), &right_folder) != 0) {
    return true;
  }
  return IsSame(left_folder, right_folder) &&
         EqualNoCase(left.substr(left.rfind('/') + 1), right.substr(right.rfind('/') + 1));
}

// Where a chain of symbolic links ends, whether or not something is there; empty for a circle.
std::string EndOfLinks(std::string path) {
  constexpr int kMostLinks = 40;  // as the kernel has it
  std::array<char, PATH_MAX> target;
  for (int i = 0; i < kMostLinks; ++i) {
    const ssize_t length = readlink(path.c_str(), target.data(), target.size());
    if (length < 0) return path;
    const std::string_view link(target.data(), static_cast<std::size_t>(length));
    path = link.starts_with('/') ? std::string(link) : Below(ParentOf(path), link);
  }
  return {};
}

// Deletes what is in the folder and the folder, goes on after a failure; returns the first error.
int RemoveFolderAndContents(const std::string& path) {
  int first_error = 0;
  const auto note = [&](int error) {
    if (first_error == 0) first_error = error;
  };
  std::vector<std::pair<std::string, bool>> entries;  // path, is a folder
  {
    OpenFolder folder(path);
    if (!folder.IsOpen()) return errno;
    while (const dirent* entry = folder.Next()) {
      const std::string entry_path = Below(path, entry->d_name);
      struct stat status;
      const bool is_folder = entry->d_type == DT_DIR ||
                             (entry->d_type == DT_UNKNOWN &&
                              lstat(entry_path.c_str(), &status) == 0 && S_ISDIR(status.st_mode));
      entries.emplace_back(entry_path, is_folder);
    }
  }
  for (const auto& [entry_path, is_folder] : entries) {
    if (is_folder) {
      note(RemoveFolderAndContents(entry_path));
      continue;
    }
    if (unlink(entry_path.c_str()) == 0 || errno == ENOENT) continue;
    // The read-only flag of Windows lies on files; here it may lie on the folder.
    const bool may_retry = errno == EACCES && chmod(path.c_str(), S_IRWXU) == 0;
    if (!may_retry || unlink(entry_path.c_str()) != 0) note(errno);
  }
  if (rmdir(path.c_str()) != 0) note(errno);
  return first_error;
}

}  // namespace

// The names in a folder by their folded form, so that a name of unknown spelling costs one look
// into a table. Without it, making the 5,000th file of a folder would mean listing 4,999 names to
// see whether one differs only in case.
//
// An index holds as long as the folder is the same (device, inode) and its time has not moved; what
// this program itself does to a folder is entered and the new time taken over. A folder whose time
// was too fresh when it was listed is listed again at the next question. What remains: a change
// that another process makes between our own operation and the look at the time, or in the same
// step of time, goes unseen until the folder changes again. Such a file is then not found under
// another spelling, but always under its own, since the exact name is asked of the disk first.
class HostFileSystem::FolderIndexes {
 public:
  // The name's spelling in the folder: the exact one when it is there, else the first in byte
  // order that differs only in case. Nothing when there is none or the folder cannot be read.
  // *is_folder (may be null) tells whether there was a folder to look in.
  [[nodiscard]] std::optional<std::string> Spelling(const std::string& folder,
                                                    std::string_view name,
                                                    bool* is_folder = nullptr) {
    Index* index = Current(folder);
    if (is_folder != nullptr) *is_folder = index != nullptr;
    if (index == nullptr) return std::nullopt;
    const auto found = index->names.find(FoldCase(name));
    if (found == index->names.end() || found->second.empty()) return std::nullopt;
    if (std::ranges::find(found->second, name) != found->second.end()) return std::string(name);
    return *std::ranges::min_element(found->second);
  }

  // Whether the folder's names were read before; they may have changed since.
  [[nodiscard]] bool Knows(const std::string& folder) const { return indexes_.contains(folder); }

  // What this program just did to the folder.
  void Added(const std::string& path) {
    Change(path, [](std::vector<std::string>& spellings, const std::string& name) {
      if (std::ranges::find(spellings, name) == spellings.end()) spellings.push_back(name);
    });
  }
  void Removed(const std::string& path) {
    Change(path, [](std::vector<std::string>& spellings, const std::string& name) {
      std::erase(spellings, name);
    });
  }
  void RemovedTree(const std::string& path) {
    Removed(path);
    const std::string inside = path + "/";
    std::erase_if(indexes_, [&](const auto& index) {
      return index.first == path || index.first.starts_with(inside);
    });
  }

 private:
  struct Index {
    dev_t device = 0;
    ino_t inode = 0;
    timespec time = {};
    // Not after our own operations: making thousands of files would mean a listing for each.
    bool must_be_listed_again = false;
    std::unordered_map<std::string, std::vector<std::string>> names;  // spellings by folded name

    [[nodiscard]] bool Is(const struct stat& status) const {
      return device == status.st_dev && inode == status.st_ino &&
             time.tv_sec == status.st_mtim.tv_sec && time.tv_nsec == status.st_mtim.tv_nsec;
    }
    void Take(const struct stat& status) {
      device = status.st_dev;
      inode = status.st_ino;
      time = status.st_mtim;
    }
  };

  Index* Current(const std::string& folder) {
    struct stat status;
    if (stat(folder.c_str(), &status) != 0 || !S_ISDIR(status.st_mode)) return nullptr;
    const auto [place, is_new] = indexes_.try_emplace(folder);
    Index& index = place->second;
    if (!is_new && index.Is(status) && !index.must_be_listed_again) return &index;
    index.names.clear();
    index.Take(status);
    index.must_be_listed_again = IsTooFreshToTrust(NanosecondsOf(status.st_mtim), NowNs());
    OpenFolder open_folder(folder);
    if (!open_folder.IsOpen()) {
      indexes_.erase(place);
      return nullptr;
    }
    while (const dirent* entry = open_folder.Next()) {
      index.names[FoldCase(entry->d_name)].emplace_back(entry->d_name);
    }
    return &index;
  }

  template <typename Edit>
  void Change(const std::string& path, const Edit& edit) {
    const std::string folder = ParentOf(path);
    const auto found = indexes_.find(folder);
    if (found == indexes_.end()) return;
    struct stat status;
    if (stat(folder.c_str(), &status) != 0) {
      indexes_.erase(found);
      return;
    }
    const std::string name = path.substr(path.rfind('/') + 1);
    edit(found->second.names[FoldCase(name)], name);
    found->second.Take(status);
    found->second.must_be_listed_again = false;
  }

  std::unordered_map<std::string, Index> indexes_;  // by host path of the folder
};

std::string HostFileSystem::Place::Path() const {
  return name.empty() ? folder : Below(folder, name);
}

HostFileSystem::HostFileSystem(std::string root)
    : root_(std::move(root)), indexes_(std::make_unique<FolderIndexes>()) {
  while (root_.size() > 1 && root_.back() == '/') root_.pop_back();
}

HostFileSystem::~HostFileSystem() = default;

std::string HostFileSystem::DriveFolder(char letter) const {
  const char lower =
      letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
  std::string folder = Below(root_, "drive_") + lower;
  if (lower == 'z' && !IsFolderAt(folder)) return "/";
  return folder;
}

std::vector<std::string> HostFileSystem::Split(std::string_view path) const {
  std::string text(path);
  std::ranges::replace(text, '/', '\\');
  if (text.starts_with("\\\\?\\")) text.erase(0, 4);
  if (text.empty()) ThrowAbout(ErrorNumber::kBadFileName, path, Words(Reason::kNoFileName));
  if (text.starts_with("\\\\")) {
    ThrowAbout(ErrorNumber::kPathNotFound, path, Words(Reason::kNetworkPath));
  }
  const bool has_drive = text.size() >= 2 && text[1] == ':' &&
                         ((text[0] >= 'a' && text[0] <= 'z') || (text[0] >= 'A' && text[0] <= 'Z'));
  if (!has_drive) {
    std::string current = WindowsPath(".");
    if (text.front() == '\\') current.resize(2);
    text = current + "\\" + text;
  }

  std::vector<std::string> components = {DriveFolder(text[0])};
  std::size_t start = 2;
  while (start < text.size()) {
    const std::size_t end = std::min(text.find('\\', start), text.size());
    const std::string component = text.substr(start, end - start);
    start = end + 1;
    if (component.empty() || component == ".") continue;
    if (component == "..") {
      if (components.size() > 1) components.pop_back();
      continue;
    }
    if (!IsWindowsName(component) || !IsUtf8(component)) {
      ThrowAbout(ErrorNumber::kBadFileName, path, Words(Reason::kNotAcceptedByWindows));
    }
    components.push_back(component);
  }
  return components;
}

HostFileSystem::Exact HostFileSystem::ExactPlace(std::string_view path) const {
  // File after file lies in the folder of the one before. What a folder's text means depends on the
  // text alone, but for Z:, which is the host's root only while there is no drive_z.
  const std::size_t separator = path.rfind('\\');
  if (separator != std::string_view::npos && separator > 2 && path[1] == ':' && path[0] != 'Z' &&
      path[0] != 'z') {
    const std::string_view name = path.substr(separator + 1);
    const bool is_plain = name != "." && name != ".." && IsWindowsName(name) && IsUtf8(name);
    if (is_plain) {
      if (path.substr(0, separator) != last_folder_) {
        last_folder_host_ = Joined(Split(path.substr(0, separator)));
        last_folder_ = path.substr(0, separator);
      }
      return {last_folder_host_, std::string(name)};
    }
  }
  std::vector<std::string> components = Split(path);
  if (components.size() == 1) return {components.front(), {}};
  std::string name = std::move(components.back());
  components.pop_back();
  return {Joined(components), std::move(name)};
}

HostFileSystem::Place HostFileSystem::Locate(std::string_view path) const {
  Place place;
  struct stat status;
  {
    Exact exact = ExactPlace(path);
    if (exact.name.empty()) {
      place.exists = stat(exact.folder.c_str(), &status) == 0;
      place.folder_exists = place.exists;
      place.folder = std::move(exact.folder);
      return place;
    }
    // The exact spelling first, in one call. Where the names of the folder are known, they tell as
    // well that there is no such file, under any spelling.
    const bool is_known = indexes_->Knows(exact.folder);
    if (!is_known && stat(Below(exact.folder, exact.name).c_str(), &status) == 0) {
      return {std::move(exact.folder), std::move(exact.name), /*exists=*/true,
              /*folder_exists=*/true};
    }
    bool folder_exists = false;
    const std::optional<std::string> spelling =
        indexes_->Spelling(exact.folder, exact.name, &folder_exists);
    if (folder_exists) {
      return {std::move(exact.folder), spelling.value_or(exact.name), spelling.has_value(),
              folder_exists};
    }
  }

  const std::vector<std::string> components = Split(path);
  place.folder = components.front();
  for (std::size_t i = 1; i < components.size(); ++i) {
    const bool is_last = i + 1 == components.size();
    if (!is_last) {
      // Looking up a spelling means listing the folder, which a user may not always do where he may
      // pass: a /home of mode 711.
      std::string exact_folder = Below(place.folder, components[i]);
      if (IsFolderAt(exact_folder)) {
        place.folder = std::move(exact_folder);
        continue;
      }
    }
    const std::optional<std::string> spelling = indexes_->Spelling(place.folder, components[i]);
    if (is_last) {
      place.name = spelling.value_or(components[i]);
      place.exists = spelling.has_value();
      place.folder_exists = spelling.has_value() || IsFolderAt(place.folder);
    } else if (spelling) {
      place.folder = Below(place.folder, *spelling);
    } else {
      // From here on nothing exists; the rest keeps the caller's spelling.
      for (; i + 1 < components.size(); ++i) place.folder = Below(place.folder, components[i]);
      place.name = components.back();
      place.folder_exists = false;
      return place;
    }
  }
  return place;
}

std::string HostFileSystem::ExactPath(std::string_view path) const {
  const Exact exact = ExactPlace(path);
  return exact.name.empty() ? exact.folder : Below(exact.folder, exact.name);
}

std::string HostFileSystem::LocateFile(std::string_view path) const {
  const Place place = Locate(path);
  if (!place.exists) {
    ThrowAbout(place.folder_exists ? ErrorNumber::kFileNotFound : ErrorNumber::kPathNotFound, path,
               place.folder_exists ? Words(Reason::kFileNotFound) : Words(Reason::kFolderNotFound));
  }
  return place.Path();
}

std::string HostFileSystem::LocateTarget(std::string_view path, Use use) const {
  const Place place = Locate(path);
  if (!place.folder_exists)
    ThrowAbout(ErrorNumber::kPathNotFound, path, Words(Reason::kFolderNotFound));
  std::string target = place.Path();
  struct stat status;
  if (place.exists && stat(target.c_str(), &status) == 0) {
    if (S_ISDIR(status.st_mode))
      ThrowAbout(ErrorNumber::kPathFileAccess, path, Words(Reason::kIsAFolder));
    // Root may write what has no write permission; Windows refuses it to everybody.
    if ((status.st_mode & kAnyWriteBit) == 0) {
      ThrowAbout(ErrorNumber::kPathFileAccess, path, Words(Reason::kReadOnly));
    }
    // Opening a pipe would wait for a reader. A device takes what is written to it, but as root we
    // could rename a file into its place and so take it from the whole computer.
    const bool may_write =
        S_ISREG(status.st_mode) || (use == Use::kWrite && S_ISCHR(status.st_mode));
    if (!may_write) ThrowAbout(ErrorNumber::kPathFileAccess, path, Words(Reason::kNoOrdinaryFile));
  }
  return target;
}

std::string HostFileSystem::HostPath(std::string_view path) const {
  if (!IsFolderAt(Split(path).front()))
    ThrowAbout(ErrorNumber::kPathNotFound, path, Words(Reason::kNoSuchDrive));
  return Locate(path).Path();
}

std::string HostFileSystem::WindowsPath(std::string_view host_path) const {
  std::string absolute(host_path);
  if (absolute.empty() || absolute.front() != '/') {
    std::array<char, PATH_MAX> current;
    if (getcwd(current.data(), current.size()) == nullptr) ThrowErrno(errno, host_path);
    absolute = Below(current.data(), absolute);
  }
  std::vector<std::string> components;
  for (std::size_t start = 0; start < absolute.size();) {
    const std::size_t end = std::min(absolute.find('/', start), absolute.size());
    const std::string component = absolute.substr(start, end - start);
    start = end + 1;
    if (component == "..") {
      if (!components.empty()) components.pop_back();
    } else if (!component.empty() && component != ".") {
      components.push_back(component);
    }
  }
  std::string tidy;
  for (const std::string& component : components) tidy += "/" + component;

  char best_letter = 'Z';
  std::size_t best_length = 0;
  for (char letter = 'a'; letter <= 'z'; ++letter) {
    const std::string folder = DriveFolder(letter);
    for (const std::string& prefix : {folder, RealPath(folder)}) {
      if (prefix.size() > best_length && prefix != "/" &&
          (tidy == prefix || tidy.starts_with(prefix + "/")) && IsFolderAt(folder)) {
        best_letter = static_cast<char>(letter - 'a' + 'A');
        best_length = prefix.size();
      }
    }
  }
  if (best_length == 0 && IsFolderAt(Below(root_, "drive_z"))) {
    ThrowAbout(ErrorNumber::kPathNotFound, host_path, Words(Reason::kOnNoDrive));
  }
  std::string result = {best_letter, ':'};
  result += tidy.substr(best_length);
  std::ranges::replace(result, '/', '\\');
  if (result.size() == 2) result += '\\';
  return result;
}

bool HostFileSystem::FileExists(std::string_view path) const { return Stamp(path).has_value(); }

bool HostFileSystem::FolderExists(std::string_view path) const {
  try {
    return IsFolderAt(Locate(path).Path());
  } catch (const RuntimeError&) {
    return false;
  }
}

std::optional<FileStamp> HostFileSystem::Stamp(std::string_view path) const {
  try {
    struct stat status;
    if (stat(ExactPath(path).c_str(), &status) != 0) {
      const Place place = Locate(path);
      if (!place.exists || stat(place.Path().c_str(), &status) != 0) return std::nullopt;
    }
    if (S_ISDIR(status.st_mode)) return std::nullopt;
    return StampOf(status);
  } catch (const RuntimeError&) {
    return std::nullopt;
  }
}

std::string HostFileSystem::FinalPath(std::string_view path) const {
  try {
    std::string real = RealPath(Locate(path).Path());
    std::ranges::replace(real, '/', '\\');
    return real.empty() ? std::string(path) : real;
  } catch (const RuntimeError&) {
    return std::string(path);
  }
}

std::unique_ptr<InputFile> HostFileSystem::OpenForReading(std::string_view path) const {
  // A pipe or a device must not hold the program up.
  Descriptor file(OpenRetrying(ExactPath(path), O_RDONLY | O_NONBLOCK));
  if (!file.IsOpen() && (errno == ENOENT || errno == ENOTDIR)) {
    file = Descriptor(OpenRetrying(LocateFile(path), O_RDONLY | O_NONBLOCK));
  }
  if (!file.IsOpen()) ThrowErrno(errno, path);
  struct stat status;
  if (fstat(file.Get(), &status) != 0) ThrowErrno(errno, path);
  if (S_ISDIR(status.st_mode))
    ThrowAbout(ErrorNumber::kPathFileAccess, path, Words(Reason::kIsAFolder));
  if (!S_ISREG(status.st_mode))
    ThrowAbout(ErrorNumber::kPathFileAccess, path, Words(Reason::kNoOrdinaryFile));
  return std::make_unique<HostInputFile>(
      std::move(file), static_cast<std::uint64_t>(status.st_size), std::string(path));
}

std::vector<FileEntry> HostFileSystem::List(std::string_view folder,
                                            std::string_view pattern) const {
  std::vector<std::pair<std::string, FileEntry>> found;  // folded name, entry
  for (FileEntry& entry : EntriesOf(Locate(folder).Path(), folder, [&](const std::string& name) {
         return IsUtf8(name) && IsWindowsName(name) && MatchesWildcard(name, pattern);
       })) {
    found.emplace_back(FoldCase(entry.name), std::move(entry));
  }
  std::ranges::sort(found, [](const auto& left, const auto& right) {
    return std::tie(left.first, left.second.name) < std::tie(right.first, right.second.name);
  });
  std::vector<FileEntry> entries;
  entries.reserve(found.size());
  for (auto& [folded, entry] : found) entries.push_back(std::move(entry));
  return entries;
}

std::vector<FileEntry> HostFileSystem::UnusableEntries(std::string_view folder) const {
  std::vector<FileEntry> entries =
      EntriesOf(Locate(folder).Path(), folder,
                [](const std::string& name) { return !IsUtf8(name) || !IsWindowsName(name); });
  for (FileEntry& entry : entries) entry.name = PrintableName(entry.name);
  std::ranges::sort(entries, {}, &FileEntry::name);
  return entries;
}

std::unique_ptr<OutputFile> HostFileSystem::OpenOutput(std::string_view path, int flags) {
  const std::string target = LocateTarget(path, Use::kWrite);
  Descriptor file(OpenRetrying(target, O_WRONLY | O_CREAT | O_NOCTTY | flags));
  if (!file.IsOpen()) ThrowErrno(errno, path);
  indexes_->Added(target);
  return std::make_unique<HostOutputFile>(std::move(file), std::string(path));
}

std::unique_ptr<OutputFile> HostFileSystem::CreateForWriting(std::string_view path) {
  return OpenOutput(path, O_TRUNC);
}

std::unique_ptr<OutputFile> HostFileSystem::OpenForAppending(std::string_view path) {
  return OpenOutput(path, O_APPEND);
}

void HostFileSystem::ReplaceWhole(std::string_view path, std::string_view bytes) {
  // A link stays a link: what it points to is replaced or made.
  const std::string target = EndOfLinks(LocateTarget(path, Use::kRenameOver));
  if (target.empty()) ThrowErrno(ELOOP, path);
  RemoveAbandonedTemporaries(ParentOf(target));
  TemporaryBeside temporary = MakeTemporary(ParentOf(target));
  // Only a link can lead to a folder that is missing: the path's own one was just there.
  if (!temporary.file.IsOpen() && errno == ENOENT)
    ThrowAbout(ErrorNumber::kPathNotFound, path, Words(Reason::kFolderNotFound));
  if (!temporary.file.IsOpen()) ThrowErrno(errno, path);
  ReplaceByTemporary(std::move(temporary.file), temporary.path, target, bytes, path);
  indexes_->Added(target);
}

void HostFileSystem::CopyWhole(std::string_view source, std::string_view target) {
  const std::string from = LocateFile(source);
  Descriptor input(OpenRetrying(from, O_RDONLY | O_NONBLOCK));
  if (!input.IsOpen()) ThrowErrno(errno, source);
  struct stat status;
  if (fstat(input.Get(), &status) != 0) ThrowErrno(errno, source);
  if (!S_ISREG(status.st_mode)) {
    ThrowAbout(ErrorNumber::kPathFileAccess, source, Words(Reason::kNoOrdinaryFile));
  }
  const std::string to = LocateTarget(target, Use::kWrite);
  struct stat target_status;
  if (stat(to.c_str(), &target_status) == 0 && IsSame(target_status, status)) {
    ThrowAbout(ErrorNumber::kPathFileAccess, target, Words(Reason::kOntoItself));
  }
  Descriptor output(OpenRetrying(to, O_WRONLY | O_CREAT | O_TRUNC));
  if (!output.IsOpen()) ThrowErrno(errno, target);
  indexes_->Added(to);

  bool in_kernel = true;
  bool has_copied = false;
  std::vector<char> block;
  for (;;) {
    if (in_kernel) {
      const ssize_t copied =
          copy_file_range(input.Get(), nullptr, output.Get(), nullptr, kCopyBlockBytes, 0);
      if (copied == 0 && has_copied) break;
      if (copied > 0) has_copied = true;
      if (copied > 0 || (copied < 0 && errno == EINTR)) continue;
      if (copied < 0 && NumberOfErrno(errno) == ErrorNumber::kDiskFull) ThrowErrno(errno, target);
      if (copied < 0 && errno == EIO) ThrowErrno(errno, target);
      // Files of /proc and the like tell nothing at first and have contents nevertheless; an empty
      // file costs one read more.
      in_kernel = false;  // not between these file systems; the positions are where they were
      block.resize(kCopyBlockBytes);
    }
    const ssize_t count = read(input.Get(), block.data(), block.size());
    if (count == 0) break;
    if (count < 0) {
      if (errno == EINTR) continue;
      ThrowErrno(errno, source);
    }
    WriteAll(output.Get(), std::string_view(block.data(), static_cast<std::size_t>(count)), target);
  }
  const std::array<timespec, 2> times = {status.st_atim, status.st_mtim};
  if (futimens(output.Get(), times.data()) != 0) ThrowErrno(errno, target);
  if (const int error = output.Close(); error != 0) ThrowErrno(error, target);
}

void HostFileSystem::MoveWhole(std::string_view source, std::string_view target) {
  const std::string from = LocateFile(source);
  struct stat from_status;
  if (lstat(from.c_str(), &from_status) != 0) ThrowErrno(errno, source);
  const bool is_link = S_ISLNK(from_status.st_mode);
  if (S_ISDIR(from_status.st_mode) || (is_link && IsFolderAt(from))) {
    ThrowAbout(ErrorNumber::kPathFileAccess, source, Words(Reason::kIsAFolder));
  }
  const std::string to = LocateTarget(target, Use::kRenameOver);
  if (from == to) return;
  struct stat to_status;
  if (lstat(to.c_str(), &to_status) == 0 && IsSame(from_status, to_status)) {
    // Rename does nothing with two names of one file, so the old one must go by itself. But one
    // name reached by two paths (C:\ and Z:\, a link to its folder) is all that the file has.
    if (IsSameEntry(from, to)) return;
    if (unlink(from.c_str()) != 0) ThrowErrno(errno, source);
  } else if (rename(from.c_str(), to.c_str()) == 0) {
    indexes_->Added(to);
  } else {
    if (errno != EXDEV) ThrowErrno(errno, source);
    CopyWhole(source, target);
    // Not RemoveFile, which refuses read-only files: renaming takes them away too.
    if (unlink(from.c_str()) != 0) ThrowErrno(errno, source);
  }
  indexes_->Removed(from);
}

void HostFileSystem::RemoveFile(std::string_view path) {
  const std::string target = LocateFile(path);
  struct stat status;
  if (lstat(target.c_str(), &status) != 0) ThrowErrno(errno, path);
  if (S_ISDIR(status.st_mode))
    ThrowAbout(ErrorNumber::kPathFileAccess, path, Words(Reason::kIsAFolder));
  if (!S_ISLNK(status.st_mode) && (status.st_mode & kAnyWriteBit) == 0) {
    ThrowAbout(ErrorNumber::kPathFileAccess, path, Words(Reason::kReadOnly));
  }
  if (unlink(target.c_str()) != 0) ThrowErrno(errno, path);
  indexes_->Removed(target);
}

void HostFileSystem::RemoveTree(std::string_view folder) {
  const Place place = Locate(folder);
  if (!place.exists) return;
  if (place.name.empty())
    ThrowAbout(ErrorNumber::kPathFileAccess, folder, Words(Reason::kIsAWholeDrive));
  const std::string path = place.Path();
  struct stat status;
  if (lstat(path.c_str(), &status) != 0) {
    if (errno == ENOENT) return;
    ThrowErrno(errno, folder);
  }
  int error = 0;
  if (S_ISLNK(status.st_mode)) {
    if (unlink(path.c_str()) != 0) error = errno;
  } else if (S_ISDIR(status.st_mode)) {
    error = RemoveFolderAndContents(path);
  } else {
    ThrowAbout(ErrorNumber::kPathFileAccess, folder, Words(Reason::kNotAFolder));
  }
  indexes_->RemovedTree(path);
  if (error != 0) ThrowErrno(error, folder);
}

void HostFileSystem::MakeFolder(std::string_view folder) {
  const std::vector<std::string> components = Split(folder);
  std::string path = components.front();
  if (!IsFolderAt(path))
    ThrowAbout(ErrorNumber::kPathNotFound, folder, Words(Reason::kNoSuchDrive));
  for (std::size_t i = 1; i < components.size(); ++i) {
    const std::string exact = Below(path, components[i]);
    if (IsFolderAt(exact)) {
      path = exact;
      continue;
    }
    path = Below(path, indexes_->Spelling(path, components[i]).value_or(components[i]));
    if (mkdir(path.c_str(), kNewFolderMode) == 0) {
      indexes_->Added(path);
      continue;
    }
    const int error = errno;
    if (error != EEXIST) ThrowErrno(error, folder);
    if (!IsFolderAt(path))
      ThrowAbout(ErrorNumber::kPathFileAccess, folder, Words(Reason::kIsAFile));
  }
}

std::vector<std::string> HostFileSystem::Drives() const {
  std::vector<std::string> drives;
  for (char letter = 'a'; letter <= 'z'; ++letter) {
    if (IsFolderAt(DriveFolder(letter))) {
      drives.push_back({static_cast<char>(letter - 'a' + 'A'), ':'});
    }
  }
  return drives;
}

std::uint64_t HostFileSystem::FreeSpaceBytes(std::string_view path) const {
  std::string place = HostPath(path);
  struct statvfs status;
  while (statvfs(place.c_str(), &status) != 0) {
    // What is not there yet will be on the volume of the nearest folder above it.
    if (errno != ENOENT || place == "/" || place == ".") ThrowErrno(errno, path);
    place = ParentOf(place);
  }
  return std::uint64_t{status.f_bavail} * status.f_frsize;
}

}  // namespace txs
