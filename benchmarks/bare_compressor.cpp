// What no Create can do without, as one small program: the compressor on the bytes of the files,
// and the system calls that bring the bytes in and the archives out. create's figures in
// docs/PERFORMANCE.md stand beside it.
//
//     bare_compressor TARGET_FOLDER < names
//
// Each file is read whole (in pieces of 8 MiB above 64 MiB), compressed by libdeflate at the level
// that the archiver uses, written into the folder as a bare deflate stream, renamed and removed.
// Prints a JSON object: CPU seconds of the compressor and of the system calls, bytes in and out.

#include <fcntl.h>
#include <libdeflate.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <iostream>
#include <memory>
#include <string>

namespace {

constexpr int kLevel = 5;
constexpr std::uint64_t kWholeBytes = std::uint64_t{64} << 20;
constexpr std::uint64_t kPieceBytes = std::uint64_t{8} << 20;

double CpuSeconds() {
  timespec time = {};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

[[noreturn]] void Fail(const std::string& what) {
  std::perror(what.c_str());
  std::exit(1);
}

struct Sums {
  double compress_seconds = 0;
  double disk_seconds = 0;
  std::uint64_t bytes = 0;
  std::uint64_t packed_bytes = 0;
};

// Memory that grows and is not cleared.
class Buffer {
 public:
  std::byte* Get(std::size_t size) {
    if (size > size_) {
      bytes_.reset();
      bytes_ = std::make_unique_for_overwrite<std::byte[]>(size);
      size_ = size;
    }
    return bytes_.get();
  }

 private:
  std::unique_ptr<std::byte[]> bytes_;
  std::size_t size_ = 0;
};

class Bench {
 public:
  explicit Bench(const std::string& folder)
      : temporary_(folder + "/archive.tmp"),
        target_(folder + "/archive.zip"),
        compressor_(libdeflate_alloc_compressor(kLevel)) {}

  void Compress(const std::string& path) {
    double now = CpuSeconds();
    const int source = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    struct stat status;
    if (source < 0 || fstat(source, &status) != 0) Fail(path);
    const int target = open(temporary_.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (target < 0) Fail(temporary_);
    const auto length = static_cast<std::uint64_t>(status.st_size);
    std::uint64_t rest = length;
    do {
      const auto size =
          static_cast<std::size_t>(length <= kWholeBytes ? rest : std::min(rest, kPieceBytes));
      std::byte* const input = input_.Get(size);
      if (read(source, input, size) != static_cast<ssize_t>(size)) Fail(path);
      const std::size_t room = libdeflate_deflate_compress_bound(compressor_, size);
      std::byte* const output = output_.Get(room);
      Count(sums_.disk_seconds, now);
      const std::size_t packed =
          libdeflate_deflate_compress(compressor_, input, size, output, room);
      Count(sums_.compress_seconds, now);
      if (write(target, output, packed) != static_cast<ssize_t>(packed)) Fail(temporary_);
      sums_.packed_bytes += packed;
      rest -= size;
    } while (rest > 0);
    sums_.bytes += length;
    close(source);
    if (close(target) != 0 || rename(temporary_.c_str(), target_.c_str()) != 0) Fail(target_);
    Count(sums_.disk_seconds, now);
    if (unlink(target_.c_str()) != 0) Fail(target_);
  }

  [[nodiscard]] const Sums& Result() const { return sums_; }

 private:
  static void Count(double& sum, double& since) {
    const double now = CpuSeconds();
    sum += now - since;
    since = now;
  }

  std::string temporary_;
  std::string target_;
  libdeflate_compressor* compressor_;  // as long as the process
  Buffer input_;
  Buffer output_;
  Sums sums_;
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s TARGET_FOLDER < names\n", argv[0]);
    return 2;
  }
  Bench bench(argv[1]);
  for (std::string name; std::getline(std::cin, name);) bench.Compress(name);
  const Sums& sums = bench.Result();
  std::printf("{\"compress\": %.6f, \"disk\": %.6f, \"bytes\": %llu, \"packed\": %llu}\n",
              sums.compress_seconds, sums.disk_seconds, static_cast<unsigned long long>(sums.bytes),
              static_cast<unsigned long long>(sums.packed_bytes));
}
