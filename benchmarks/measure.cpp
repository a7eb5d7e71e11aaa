// Runs a program and prints what it cost as a JSON object: exit code, wall and CPU seconds, peak
// resident set in bytes.
//
//     measure PROGRAM ARGUMENTS...
//
// A program of its own, since the peak that the kernel tells of a process counts what its parent
// had when it was started, and a Python interpreter has more than most of what is measured here.
// The program's output goes to standard error, its input is ours.

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <ctime>

namespace {

double Now() {
  timespec time = {};
  clock_gettime(CLOCK_MONOTONIC, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

double Seconds(const timeval& time) {
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "usage: %s PROGRAM ARGUMENTS...\n", argv[0]);
    return 2;
  }
  const double start = Now();
  const pid_t child = fork();
  if (child < 0) {
    std::perror("fork");
    return 2;
  }
  if (child == 0) {
    if (dup2(STDERR_FILENO, STDOUT_FILENO) >= 0) execvp(argv[1], argv + 1);
    std::perror(argv[1]);
    _exit(127);
  }
  int status = 0;
  rusage usage = {};
  if (wait4(child, &status, 0, &usage) != child) {
    std::perror("wait4");
    return 2;
  }
  const double wall = Now() - start;
  std::printf("{\"code\": %d, \"wall\": %.6f, \"cpu\": %.6f, \"peak\": %lld}\n",
              WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status), wall,
              Seconds(usage.ru_utime) + Seconds(usage.ru_stime),
              static_cast<long long>(usage.ru_maxrss) * 1024);
}
