// The running program: where it stands, how it was called, and what its console shows.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "environment/system_tools.h"

namespace txs {

inline constexpr char kApplicationTitle[] = "TavixStudio - Setup Wizard";

// Directory of the program file; empty when the system does not tell.
[[nodiscard]] std::filesystem::path ProgramDirectory();

// What SystemTools is told about this program.
[[nodiscard]] ApplicationInfo ThisApplication();

// Where messages of an unattended run go that its log cannot take: the temporary folder of the user
// on Windows, where the program has no console. Empty elsewhere, where standard error serves.
[[nodiscard]] std::string SpareLogDirectory();

// What stands behind the program's name on its command line, in UTF-8: on Windows, where that is
// one text, as it was typed; elsewhere the arguments joined by blanks.
[[nodiscard]] std::string CommandLineText(int argc, const char* const* argv);

// The arguments behind the program's name, in UTF-8.
[[nodiscard]] std::vector<std::string> CommandLineArguments(int argc, const char* const* argv);

// Whether somebody can watch standard error; false when it goes to a file or another program.
[[nodiscard]] bool ErrorsGoToATerminal();

// As long as it lives, the console shows as UTF-8 what the program writes.
class Utf8Console {
 public:
  Utf8Console();
  ~Utf8Console();  // NOLINT(performance-trivially-destructible): it does something on Windows
  Utf8Console(const Utf8Console&) = delete;
  Utf8Console& operator=(const Utf8Console&) = delete;

 private:
  unsigned code_page_before_ = 0;
};

}  // namespace txs
