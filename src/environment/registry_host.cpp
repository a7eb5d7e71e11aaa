#include "environment/registry_host.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <thread>
#include <unordered_set>
#include <utility>

#include "environment/code_page.h"
#include "environment/host_calls_host.h"
#include "environment/registry_file.h"
#include "environment/runtime_error.h"
#include "strings/reason.h"

namespace txs {
namespace {

constexpr auto kLockPatience = std::chrono::seconds(10);
constexpr auto kLockPause = std::chrono::milliseconds(5);
constexpr mode_t kAnyWriteBit = 0222;
constexpr std::string_view kWow = "Wow6432Node";

// The file is there or is about to be: what is missing can only be its folder.
[[noreturn]] void ThrowWriteError(int error, const std::string& path) {
  if (error == ENOENT) ThrowAbout(ErrorNumber::kPathNotFound, path, Words(Reason::kFolderNotFound));
  ThrowErrno(error, path);
}

// What tells that the file is another one than was read.
struct Stamp {
  bool exists = false;
  dev_t device = 0;
  ino_t inode = 0;
  off_t size = 0;
  std::int64_t time_ns = 0;

  bool operator==(const Stamp&) const = default;
};

Stamp StampOf(const struct stat& status) {
  return {true, status.st_dev, status.st_ino, status.st_size,
          std::int64_t{status.st_mtim.tv_sec} * 1'000'000'000 + status.st_mtim.tv_nsec};
}

// Held while a process changes the file. The lock lies on a file of its own because the registry
// file itself is replaced by renaming, and a lock on a replaced file guards nothing.
class Lock {
 public:
  explicit Lock(const std::string& path) : file_(OpenRetrying(path, O_RDWR | O_CREAT)) {
    if (!file_.IsOpen()) ThrowWriteError(errno, path);
    const auto deadline = std::chrono::steady_clock::now() + kLockPatience;
    while (flock(file_.Get(), LOCK_EX | LOCK_NB) != 0) {
      if (errno != EWOULDBLOCK && errno != EINTR) ThrowWriteError(errno, path);
      if (std::chrono::steady_clock::now() >= deadline) {
        ThrowAbout(ErrorNumber::kPermissionDenied, path, Words(Reason::kRegistryIsBusy));
      }
      std::this_thread::sleep_for(kLockPause);
    }
  }

 private:
  Descriptor file_;
};

// Where the file lies when `path` is a symbolic link: the link must survive.
std::string Resolve(const std::string& path) {
  std::array<char, PATH_MAX> resolved;
  return realpath(path.c_str(), resolved.data()) == nullptr ? path : std::string(resolved.data());
}

// Only under the lock. A failure leaves the old file and nothing else.
void Replace(const std::string& path, std::string_view bytes) {
  struct stat old = {};
  const bool existed = stat(path.c_str(), &old) == 0;
  if (existed) {
    if ((old.st_mode & kAnyWriteBit) == 0) {
      ThrowAbout(ErrorNumber::kPathFileAccess, path, Words(Reason::kReadOnly));
    }
    if (access(path.c_str(), W_OK) != 0) ThrowWriteError(errno, path);
  }

  // A fixed name: what a process that was killed left behind goes with the next change.
  const std::string new_path = path + ".new";
  unlink(new_path.c_str());
  Descriptor file(OpenRetrying(new_path, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW));
  if (!file.IsOpen()) ThrowWriteError(errno, path);
  ReplaceByTemporary(std::move(file), new_path, path, bytes, path);
}

std::string Join(std::string_view left, std::string_view right) {
  std::string path(left);
  if (!path.empty() && !right.empty()) path += '\\';
  path += right;
  return path;
}

// What follows `front` in `key` as whole names; nothing when `key` does not begin so.
std::optional<std::string_view> Behind(std::string_view key, std::string_view front) {
  if (!EqualNoCase(key.substr(0, front.size()), front)) return std::nullopt;
  if (key.size() == front.size()) return std::string_view();
  if (key[front.size()] != '\\') return std::nullopt;
  return key.substr(front.size() + 1);
}

// The keys of the file that one key of the 32-bit view shows, the first to be seen first.
std::vector<std::string> PlacesOf(Hive hive, std::string_view key) {
  std::vector<std::string> places;
  switch (hive) {
    case Hive::kCurrentUser:
      places.push_back(Join("HKEY_CURRENT_USER", key));
      break;
    case Hive::kLocalMachine:
      if (const auto software = Behind(key, "Software");
          software && !Behind(*software, kWow).has_value()) {
        places.push_back(Join("HKEY_LOCAL_MACHINE\\Software\\Wow6432Node", *software));
      }
      places.push_back(Join("HKEY_LOCAL_MACHINE", key));
      break;
    case Hive::kClassesRoot:
      for (const char* classes : {"HKEY_CLASSES_ROOT", "HKEY_CURRENT_USER\\Software\\Classes",
                                  "HKEY_LOCAL_MACHINE\\Software\\Wow6432Node\\Classes",
                                  "HKEY_LOCAL_MACHINE\\Software\\Classes"}) {
        if (!Behind(key, kWow)) places.push_back(Join(Join(classes, kWow), key));
        places.push_back(Join(classes, key));
      }
      break;
  }
  return places;
}

// Whether a key below HKEY_LOCAL_MACHINE\Software\Wow6432Node belongs into a tree that is there:
// the key itself or a key above it, up to the vendor's.
bool HasTreeOf(const RegistryFile& file, std::string_view wow_place) {
  const std::string_view top = "HKEY_LOCAL_MACHINE\\Software\\Wow6432Node";
  while (wow_place.size() > top.size()) {
    if (file.HasKey(wow_place)) return true;
    wow_place = wow_place.substr(0, wow_place.rfind('\\'));
  }
  return false;
}

std::string NewPlaceOf(Hive hive, std::string_view key) {
  switch (hive) {
    case Hive::kCurrentUser:
      return Join("HKEY_CURRENT_USER", key);
    case Hive::kLocalMachine:
      return Join("HKEY_LOCAL_MACHINE", key);
    case Hive::kClassesRoot:
      break;
  }
  return Join("HKEY_CLASSES_ROOT", key);
}

}  // namespace

struct HostRegistry::State {
  explicit State(const std::string& path_in) : path(path_in) {}

  // The file as it is now. Throws kPathFileAccess and kInvalidCall; the registry then stays as it
  // was read before.
  RegistryFile& Load() {
    struct stat status = {};
    Stamp now;
    if (stat(path.c_str(), &status) == 0) now = StampOf(status);
    if (!is_loaded || now != stamp ||
        (stamp.exists && IsTooFreshToTrust(stamp.time_ns, read_at_ns)))
      return Reload();
    if (failure) throw RuntimeError(*failure);
    return file;
  }

  RegistryFile& Reload() {
    stamp = {};
    failure.reset();
    read_at_ns = NowNs();
    is_loaded = true;
    try {
      const std::string bytes = ReadBytes();
      file = RegistryFile(bytes);
      return file;
    } catch (const RuntimeError& error) {
      failure.emplace(error.Number(), path + ": " + error.Description());
    }
    throw RuntimeError(*failure);
  }

  // A share that is away for a moment must not look like a computer without projects and type
  // libraries: nobody would be told.
  const RegistryFile& LoadForReading() {
    try {
      return Load();
    } catch (const RuntimeError&) {
      return file;
    }
  }

  // Changes the file as it is by then, under the lock. `edit` answers whether it changed anything.
  template <typename Edit>
  void Change(const Edit& edit) {
    const std::string target = Resolve(path);
    const Lock lock(target + ".lock");
    Reload();
    // Readers keep what they have until the new file is there.
    RegistryFile edited(ReadBytes());
    std::string bytes;
    try {
      if (!edit(edited)) return;
      bytes = edited.Bytes();
    } catch (const RuntimeError& error) {
      ThrowAbout(error.Number(), path, error.Description());
    }
    Replace(target, bytes);
    file = std::move(edited);
    struct stat status = {};
    if (stat(path.c_str(), &status) == 0) stamp = StampOf(status);
    read_at_ns = NowNs();
    is_loaded = true;
  }

  // Takes the stamp of what it reads. A missing file has no bytes; but one that was there and is
  // gone must not be made anew with one value in it.
  std::string ReadBytes() {
    const auto require = [](bool succeeded) {
      if (!succeeded) throw RuntimeError(ErrorNumber::kPathFileAccess, std::strerror(errno));
    };
    const Descriptor opened(OpenRetrying(path, O_RDONLY | O_NONBLOCK));
    if (!opened.IsOpen() && errno == ENOENT && !was_there) return {};
    require(opened.IsOpen());
    was_there = true;
    struct stat status = {};
    require(fstat(opened.Get(), &status) == 0);
    if (!S_ISREG(status.st_mode))
      throw RuntimeError(ErrorNumber::kPathFileAccess, Words(Reason::kNoOrdinaryFile));
    stamp = StampOf(status);
    std::string bytes;
    std::vector<char> block(std::size_t{1} << 18);
    for (;;) {
      const ssize_t count = read(opened.Get(), block.data(), block.size());
      if (count == 0) return bytes;
      if (count < 0 && errno == EINTR) continue;
      require(count > 0);
      bytes.append(block.data(), static_cast<std::size_t>(count));
    }
  }

  std::string path;
  RegistryFile file;
  Stamp stamp;
  std::int64_t read_at_ns = 0;
  std::optional<RuntimeError> failure;  // why the file could not be read
  bool is_loaded = false;
  bool was_there = false;
};

HostRegistry::HostRegistry(std::string path)
    : path_(std::move(path)), state_(std::make_unique<State>(path_)) {
  static_cast<void>(state_->Load());
}

HostRegistry::~HostRegistry() = default;

std::optional<RegistryValue> HostRegistry::Read(Hive hive, std::string_view key,
                                                std::string_view name) const {
  const RegistryFile& file = state_->LoadForReading();
  for (const std::string& place : PlacesOf(hive, key)) {
    if (std::optional<RegistryValue> value = file.Value(place, name)) return value;
  }
  return std::nullopt;
}

std::vector<std::string> HostRegistry::Subkeys(Hive hive, std::string_view key) const {
  const RegistryFile& file = state_->LoadForReading();
  std::vector<std::string> names;
  std::unordered_set<std::string> seen;
  for (const std::string& place : PlacesOf(hive, key)) {
    for (std::string& name : file.Subkeys(place)) {
      if (seen.insert(FoldCase(name)).second) names.push_back(std::move(name));
    }
  }
  return names;
}

void HostRegistry::Write(Hive hive, std::string_view key, std::string_view name,
                         const RegistryValue& value) {
  state_->Change([&](RegistryFile& file) {
    std::string target = NewPlaceOf(hive, key);
    const std::vector<std::string> places = PlacesOf(hive, key);
    if (hive == Hive::kLocalMachine) {
      if (places.size() > 1 && HasTreeOf(file, places.front())) target = places.front();
    } else {
      const auto existing = std::ranges::find_if(
          places, [&](const std::string& place) { return file.HasKey(place); });
      if (existing != places.end()) target = *existing;
    }
    if (file.Value(target, name) == value) return false;
    file.Set(target, name, value);
    return true;
  });
}

void HostRegistry::RemoveKey(Hive hive, std::string_view key) {
  // Without the key there is nothing to write, so the file may be read-only or missing.
  if (key.empty()) ThrowAbout(ErrorNumber::kInvalidCall, path_, "A whole hive cannot be removed");
  const std::vector<std::string> places = PlacesOf(hive, key);
  const RegistryFile& file = state_->Load();
  bool exists = false;
  for (const std::string& place : places) exists = exists || file.HasKey(place);
  if (!exists) return;
  state_->Change([&](RegistryFile& now) {
    bool removed = false;
    for (const std::string& place : places) removed = now.RemoveKey(place) || removed;
    return removed;
  });
}

}  // namespace txs
