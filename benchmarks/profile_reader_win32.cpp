// As profile_reader.cpp, with GetPrivateProfileStringA. Built by performance.py with mingw-w64 and
// run under Wine, whose functions are then what is measured.
//
//     profile_reader_win32.exe PATH KEYS

#include <windows.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

std::uint64_t Ticks(const FILETIME& time) {
  return (std::uint64_t{time.dwHighDateTime} << 32U) | time.dwLowDateTime;
}

// Of this process; std::clock counts wall time here.
double CpuSeconds() {
  constexpr double kTicksPerSecond = 1e7;
  FILETIME created;
  FILETIME ended;
  FILETIME kernel;
  FILETIME user;
  if (GetProcessTimes(GetCurrentProcess(), &created, &ended, &kernel, &user) == FALSE) return 0;
  return static_cast<double>(Ticks(kernel) + Ticks(user)) / kTicksPerSecond;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: %s PATH KEYS\n", argv[0]);
    return 2;
  }
  const std::string path = argv[1];
  const long keys = std::atol(argv[2]);

  const auto start = std::chrono::steady_clock::now();
  const double cpu_start = CpuSeconds();
  long found = 0;
  char value[260];
  for (long i = 0; i < keys; ++i) {
    const std::string key = "Key" + std::to_string(i);
    if (GetPrivateProfileStringA("File", key.c_str(), "", value, sizeof value, path.c_str()) > 0) {
      ++found;
    }
  }
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
  std::printf("%.6f %.6f %ld\n", seconds.count(), CpuSeconds() - cpu_start, found);
}
