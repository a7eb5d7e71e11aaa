#include <windows.h>
// After <windows.h>.
#include <shellapi.h>

#include <string>
#include <system_error>

#include "environment/windows_calls_win32.h"
#include "startup/command_line.h"
#include "startup/program_place.h"

namespace txs {
namespace {

std::filesystem::path ProgramFile() {
  std::wstring path(MAX_PATH, L'\0');
  for (;;) {
    const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    if (length < path.size()) {
      path.resize(length);
      return path;
    }
    path.resize(path.size() * 2);
  }
}

}  // namespace

std::filesystem::path ProgramDirectory() { return ProgramFile().parent_path(); }

ApplicationInfo ThisApplication() {
  ApplicationInfo info;
  info.directory = ToUtf8(ProgramDirectory().native());
  while (info.directory.ends_with('\\')) info.directory.pop_back();
  info.executable_name = ToUtf8(ProgramFile().stem().native());
  info.title = kApplicationTitle;
  return info;
}

std::string SpareLogDirectory() {
  std::error_code none;
  return ToUtf8(std::filesystem::temp_directory_path(none).native());
}

std::string CommandLineText(int /*argc*/, const char* const* /*argv*/) {
  return UnquoteSwitch(BehindProgramName(ToUtf8(GetCommandLineW())));
}

std::vector<std::string> CommandLineArguments(int /*argc*/, const char* const* /*argv*/) {
  int count = 0;
  wchar_t** const wide = CommandLineToArgvW(GetCommandLineW(), &count);
  std::vector<std::string> arguments;
  for (int i = 1; i < count; ++i) arguments.push_back(ToUtf8(wide[i]));
  LocalFree(wide);
  return arguments;
}

bool ErrorsGoToATerminal() {
  DWORD mode = 0;
  return GetConsoleMode(GetStdHandle(STD_ERROR_HANDLE), &mode) != 0;
}

Utf8Console::Utf8Console() : code_page_before_(GetConsoleOutputCP()) {
  SetConsoleOutputCP(CP_UTF8);
}

Utf8Console::~Utf8Console() {
  if (code_page_before_ != 0) SetConsoleOutputCP(code_page_before_);
}

}  // namespace txs
