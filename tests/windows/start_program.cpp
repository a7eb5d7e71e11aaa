// Runs the command line that stands in a file, in UTF-8, as it is; its exit code is the program's.

#include <windows.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

#include "environment/windows_calls_win32.h"

int main(int argc, char** argv) {
  std::ifstream file(argc > 1 ? argv[1] : "", std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>(file), {}};
  std::wstring line = txs::ToWide(text);
  STARTUPINFOW startup = {};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process = {};
  if (text.empty() || !CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr,
                                      nullptr, &startup, &process)) {
    std::fprintf(stderr, "not started: %s (%lu)\n", text.c_str(), GetLastError());
    return 100;
  }
  WaitForSingleObject(process.hProcess, INFINITE);
  DWORD code = 100;
  GetExitCodeProcess(process.hProcess, &code);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  return static_cast<int>(code);
}
