// Preloaded into a program, this kills it in the middle of its work: TXS_DIE_AT=N ends the process,
// as `kill -9` does, instead of its Nth call that changes a file or folder. Of a write, half is
// done first. With TXS_CALLS_FILE=PATH a process that ends by itself leaves the number of its calls
// there.
//
// What a killed process leaves depends on nothing else: so one round per call tries every moment.
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <cstdlib>

namespace {

std::atomic<long> calls = 0;

template <typename Function>
Function* Real(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

// Counts a call. True when it is the last of this process.
bool IsLast() {
  static const char* const kDieAt = std::getenv("TXS_DIE_AT");
  return ++calls == (kDieAt != nullptr ? std::atol(kDieAt) : 0);
}

void DieWhenLast() {
  if (IsLast()) static_cast<void>(raise(SIGKILL));
}

// Leaves the number of calls.
struct Counter {
  ~Counter() {
    const char* const path = std::getenv("TXS_CALLS_FILE");
    if (path == nullptr) return;
    if (std::FILE* const file = std::fopen(path, "w"); file != nullptr) {
      static_cast<void>(std::fprintf(file, "%ld\n", calls.load()));
      static_cast<void>(std::fclose(file));
    }
  }
} counter;

}  // namespace

extern "C" {

ssize_t write(int file, const void* bytes, size_t count) {
  static const auto kReal = Real<ssize_t(int, const void*, size_t)>("write");
  if (IsLast()) {
    static_cast<void>(kReal(file, bytes, count / 2));
    static_cast<void>(raise(SIGKILL));
  }
  return kReal(file, bytes, count);
}

ssize_t pwrite(int file, const void* bytes, size_t count, off_t offset) {
  static const auto kReal = Real<ssize_t(int, const void*, size_t, off_t)>("pwrite");
  if (IsLast()) {
    static_cast<void>(kReal(file, bytes, count / 2, offset));
    static_cast<void>(raise(SIGKILL));
  }
  return kReal(file, bytes, count, offset);
}

ssize_t copy_file_range(int from, off64_t* from_offset, int to, off64_t* to_offset, size_t count,
                        unsigned flags) {
  static const auto kReal =
      Real<ssize_t(int, off64_t*, int, off64_t*, size_t, unsigned)>("copy_file_range");
  if (IsLast()) {
    static_cast<void>(kReal(from, from_offset, to, to_offset, count / 2, flags));
    static_cast<void>(raise(SIGKILL));
  }
  return kReal(from, from_offset, to, to_offset, count, flags);
}

int open(const char* path, int flags, ...) {
  static const auto kReal = Real<int(const char*, int, ...)>("open");
  std::va_list rest;
  va_start(rest, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
  va_end(rest);
  if ((flags & (O_CREAT | O_TRUNC)) != 0) DieWhenLast();
  return kReal(path, flags, mode);
}

int rename(const char* source, const char* target) {
  static const auto kReal = Real<int(const char*, const char*)>("rename");
  DieWhenLast();
  return kReal(source, target);
}

int unlink(const char* path) {
  static const auto kReal = Real<int(const char*)>("unlink");
  DieWhenLast();
  return kReal(path);
}

int remove(const char* path) {
  static const auto kReal = Real<int(const char*)>("remove");
  DieWhenLast();
  return kReal(path);
}

int rmdir(const char* path) {
  static const auto kReal = Real<int(const char*)>("rmdir");
  DieWhenLast();
  return kReal(path);
}

int mkdir(const char* path, mode_t mode) {
  static const auto kReal = Real<int(const char*, mode_t)>("mkdir");
  DieWhenLast();
  return kReal(path, mode);
}

int fchmod(int file, mode_t mode) {
  static const auto kReal = Real<int(int, mode_t)>("fchmod");
  DieWhenLast();
  return kReal(file, mode);
}

// Changes nothing that another process sees, and stands where things are half done.
int fsync(int file) {
  static const auto kReal = Real<int(int)>("fsync");
  DieWhenLast();
  return kReal(file);
}

int futimens(int file, const timespec times[2]) {
  static const auto kReal = Real<int(int, const timespec*)>("futimens");
  DieWhenLast();
  return kReal(file, times);
}
}
