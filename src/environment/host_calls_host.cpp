#include "environment/host_calls_host.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>

namespace txs {
namespace {

constexpr mode_t kNewFileMode = 0666;

// A file that goes unless it took the place of another.
class TemporaryFile {
 public:
  explicit TemporaryFile(std::string path) : path_(std::move(path)) {}
  ~TemporaryFile() {
    if (!path_.empty()) unlink(path_.c_str());
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  // 0 or the errno.
  [[nodiscard]] int RenameTo(const std::string& target) {
    if (rename(path_.c_str(), target.c_str()) != 0) return errno;
    path_.clear();
    return 0;
  }

 private:
  std::string path_;
};

mode_t UserMask() {
  const mode_t mask = umask(0);
  umask(mask);
  return mask;
}

// Without this the new name may be gone after a power failure. It is in place already, so that a
// file system that cannot do it is no reason to report a failure.
void SyncFolderOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  const std::string folder = slash == std::string::npos ? "." : path.substr(0, slash + 1);
  const Descriptor opened(OpenRetrying(folder, O_RDONLY | O_DIRECTORY));
  if (opened.IsOpen()) static_cast<void>(fsync(opened.Get()));
}

}  // namespace

ErrorNumber NumberOfErrno(int error) {
  switch (error) {
    case ENOENT:
      return ErrorNumber::kFileNotFound;
    case ENOTDIR:
      return ErrorNumber::kPathNotFound;
    case EACCES:
    case EPERM:
    case EROFS:
    case EBUSY:
    case ETXTBSY:
      return ErrorNumber::kPermissionDenied;
    case EEXIST:
      return ErrorNumber::kAlreadyExists;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
      return ErrorNumber::kDiskFull;
    case EIO:
      return ErrorNumber::kDeviceIo;
    case EMFILE:
    case ENFILE:
      return ErrorNumber::kTooManyFiles;
    case ENAMETOOLONG:
    case EINVAL:
    case EILSEQ:
    case ELOOP:
      return ErrorNumber::kBadFileName;
    case ENODEV:
    case ENXIO:
      return ErrorNumber::kDeviceUnavailable;
    case ENOMEM:
      return ErrorNumber::kOutOfMemory;
    default:
      return ErrorNumber::kPathFileAccess;  // EISDIR, ENOTEMPTY and what has no number of its own
  }
}

void ThrowAbout(ErrorNumber number, std::string_view path, std::string_view words) {
  throw RuntimeError(number, std::string(path) + ": " + std::string(words));
}

void ThrowErrno(int error, std::string_view path) {
  ThrowAbout(NumberOfErrno(error), path, std::strerror(error));
}

Descriptor::~Descriptor() {
  if (fd_ >= 0) close(fd_);
}

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
  if (fd_ >= 0) close(fd_);
  fd_ = std::exchange(other.fd_, -1);
  return *this;
}

int Descriptor::Close() { return close(std::exchange(fd_, -1)) == 0 ? 0 : errno; }

int OpenRetrying(const std::string& path, int flags) {
  for (;;) {
    const int fd = open(path.c_str(), flags | O_CLOEXEC, kNewFileMode);
    if (fd >= 0 || errno != EINTR) return fd;
  }
}

void WriteAll(int fd, std::string_view bytes, std::string_view shown_path) {
  while (!bytes.empty()) {
    const ssize_t written = write(fd, bytes.data(), bytes.size());
    if (written < 0) {
      if (errno == EINTR) continue;
      ThrowErrno(errno, shown_path);
    }
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
}

void ReplaceByTemporary(Descriptor temporary, const std::string& temporary_path,
                        const std::string& target, std::string_view bytes,
                        std::string_view shown_path) {
  TemporaryFile file(temporary_path);
  struct stat old = {};
  const bool existed = stat(target.c_str(), &old) == 0;
  // Only root can give a file to another owner; nobody else loses one by this. The mode must come
  // after it.
  if (existed) static_cast<void>(fchown(temporary.Get(), old.st_uid, old.st_gid) == 0);
  const mode_t mode = existed ? old.st_mode & 07777 : kNewFileMode & ~UserMask();
  if (fchmod(temporary.Get(), mode) != 0) ThrowErrno(errno, shown_path);
  WriteAll(temporary.Get(), bytes, shown_path);
  if (fsync(temporary.Get()) != 0) ThrowErrno(errno, shown_path);
  if (const int error = temporary.Close(); error != 0) ThrowErrno(error, shown_path);
  if (const int error = file.RenameTo(target); error != 0) ThrowErrno(error, shown_path);
  SyncFolderOf(target);
}

bool IsTooFreshToTrust(std::int64_t time_ns, std::int64_t seen_at_ns) {
  constexpr std::int64_t kStepNs = 20'000'000;
  constexpr std::int64_t kCoarseStepNs = 2'000'000'000;  // file systems that keep whole seconds
  const std::int64_t age = seen_at_ns - time_ns;
  // Slightly in the future: the clock of a file server that runs ahead.
  return age > -kCoarseStepNs && age < (time_ns % 1'000'000'000 == 0 ? kCoarseStepNs : kStepNs);
}

std::int64_t NowNs() {
  timespec now = {};
  clock_gettime(CLOCK_REALTIME, &now);
  return std::int64_t{now.tv_sec} * 1'000'000'000 + now.tv_nsec;
}

}  // namespace txs
