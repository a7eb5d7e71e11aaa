#include "environment/file_locks_host.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <exception>
#include <string>
#include <utility>

#include "environment/host_calls_host.h"

namespace txs {
namespace {

bool IsStillAt(const std::string& path, const Descriptor& file) {
  struct stat opened = {};
  struct stat named = {};
  return fstat(file.Get(), &opened) == 0 && lstat(path.c_str(), &named) == 0 &&
         opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}

class HostLock : public HeldLock {
 public:
  HostLock(std::string path, Descriptor file) : path_(std::move(path)), file_(std::move(file)) {}
  // Removed before the lock is let go: whoever opened the file meanwhile finds that it has no name
  // any more, and opens the next one.
  ~HostLock() override {
    if (IsStillAt(path_, file_)) unlink(path_.c_str());
  }

 private:
  std::string path_;
  Descriptor file_;
};

Descriptor OpenLockFile(const std::string& path) {
  Descriptor file(OpenRetrying(path, O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY));
  if (file.IsOpen()) {
    // Other users of a shared project must be able to open it whatever this one's mask says.
    static_cast<void>(fchmod(file.Get(), 0666));
    return file;
  }
  // That of another user; reading is enough for a lock on most file systems.
  if (errno != EACCES && errno != EPERM) return {};
  return Descriptor(OpenRetrying(path, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY));
}

}  // namespace

std::unique_ptr<HeldLock> HostFileLocks::TryTake(std::string_view path) {
  try {
    const std::string host_path = paths_.HostPath(path);
    for (;;) {
      Descriptor file = OpenLockFile(host_path);
      if (!file.IsOpen()) break;
      while (flock(file.Get(), LOCK_EX | LOCK_NB) != 0) {
        if (errno == EWOULDBLOCK) return nullptr;
        if (errno != EINTR) return std::make_unique<HeldLock>();
      }
      if (IsStillAt(host_path, file)) return std::make_unique<HostLock>(host_path, std::move(file));
    }
  } catch (const std::exception&) {
    // No such drive, no such name: nothing that could be locked.
  }
  return std::make_unique<HeldLock>();
}

}  // namespace txs
