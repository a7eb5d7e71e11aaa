#include <unistd.h>

#include <algorithm>
#include <string>
#include <system_error>

#include "startup/command_line.h"
#include "startup/program_place.h"

namespace txs {
namespace {

std::filesystem::path ProgramFile() {
  std::error_code none;
  return std::filesystem::read_symlink("/proc/self/exe", none);
}

}  // namespace

std::filesystem::path ProgramDirectory() { return ProgramFile().parent_path(); }

ApplicationInfo ThisApplication() {
  ApplicationInfo info;
  info.directory = "Z:" + ProgramDirectory().string();
  std::replace(info.directory.begin(), info.directory.end(), '/', '\\');
  info.executable_name = ProgramFile().filename().string();
  info.title = kApplicationTitle;
  return info;
}

std::string SpareLogDirectory() { return {}; }

std::string CommandLineText(int argc, const char* const* argv) { return JoinArguments(argc, argv); }

std::vector<std::string> CommandLineArguments(int argc, const char* const* argv) {
  return {argv + 1, argv + argc};
}

bool ErrorsGoToATerminal() { return isatty(STDERR_FILENO) == 1; }

// The terminals of Linux show UTF-8.
Utf8Console::Utf8Console() = default;
Utf8Console::~Utf8Console() = default;

}  // namespace txs
