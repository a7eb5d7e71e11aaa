// The wizard's command line: empty, [ProjectPath\]ProjectName[.txs|.swz], or /c= and the same.
#pragma once

#include <string>
#include <string_view>

namespace txs {

struct CommandLine {
  enum class Kind {
    kEmpty,       // choose a project in the Open-Project dialog
    kProject,     // open this project
    kUnattended,  // build this project without a form
    kRefused,     // message 913
  };
  Kind kind = Kind::kEmpty;
  std::string project_name;       // base name of the argument
  std::string project_directory;  // its parent folder; empty when it has none
  std::string project_file;       // directory + "\" + name + ".txs", or the bare name
};

// Parses the text behind the program's name. Never fails.
[[nodiscard]] CommandLine ParseCommandLine(std::string_view text);

// The command line of Windows is one text; here the arguments are joined by blanks.
[[nodiscard]] std::string JoinArguments(int argc, const char* const* argv);

// What stands behind the program's name on a whole command line of Windows. The name ends where the
// C runtime has it end: at the first blank or tab outside quotes, wherever in it these begin.
[[nodiscard]] std::string_view BehindProgramName(std::string_view command_line);

// A command line as Windows hands it over, when a program and not a person typed it: many put an
// argument with blanks into quotes as a whole ("/c=C:\Demo Süd\Demo.txs"). Quotes around one of the
// four unattended switches and what follows it are removed; any other text stays as it is.
[[nodiscard]] std::string UnquoteSwitch(std::string_view text);

// `StripQuotes`: a leading double quote is removed, and only then a trailing one.
[[nodiscard]] std::string StripQuotes(std::string_view text);

}  // namespace txs
