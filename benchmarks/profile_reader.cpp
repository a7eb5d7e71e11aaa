// Reads keys of a profile file as the program does, file by path and key by name each time, and
// prints the wall and CPU seconds that this took. profile_reader_win32.cpp does the same with the
// functions that Windows has for it.
//
//     profile_reader STUDIO_FOLDER PATH KEYS
//
// Reads KEYS keys "Key0", "Key1", ... of section "File" from the file at the Windows path PATH. The
// last line is "WALL CPU FOUND".

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>

#include "environment/file_system_host.h"
#include "environment/profile_files.h"

int main(int argc, char** argv) {
  if (argc != 4) {
    std::fprintf(stderr, "usage: %s STUDIO_FOLDER PATH KEYS\n", argv[0]);
    return 2;
  }
  const std::string path = argv[2];
  const long keys = std::atol(argv[3]);
  txs::HostFileSystem files(argv[1]);

  const auto start = std::chrono::steady_clock::now();
  const std::clock_t cpu_start = std::clock();
  txs::ProfileFiles profiles(files);
  long found = 0;
  for (long i = 0; i < keys; ++i) {
    if (profiles.Open(path).Value("File", "Key" + std::to_string(i))) ++found;
  }
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
  const double cpu_seconds = static_cast<double>(std::clock() - cpu_start) / CLOCKS_PER_SEC;
  std::printf("%.6f %.6f %ld\n", seconds.count(), cpu_seconds, found);
}
