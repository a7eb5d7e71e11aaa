// Path variables: directory prefixes in angle brackets that keep file lists valid when a project or
// the studio moves, and that tell the setup engine where a file goes on the target computer.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "environment/installation.h"
#include "environment/system_tools.h"

namespace txs {

struct PathVariable {
  std::string name;  // with its angle brackets: "<ProjectDir>"
  std::string value;

  bool operator==(const PathVariable&) const = default;
};

// Files with this destination lie on the target computer only while the installation runs.
inline constexpr char kTempDirName[] = "<TempDir>";

// How the list holds a directory: as FullPath spells it, since it is compared with such paths, and
// without the trailing backslashes with which the studio registers projects, since names are
// followed by "\". "C:/Demo\\." gives "C:\Demo".
[[nodiscard]] std::string AsVariableValue(std::string_view directory);

// In list order; the order matters, since conversion to variable form takes the first match.
using PathVariableList = std::vector<PathVariable>;

enum class VariableForm {
  kWholePath = 0,      // mode 0: directory converted, then "\" and the file name
  kDirectoryOnly = 1,  // mode 1: the directory, and <WinSysDir> when no variable matches
};

// The nine variables of an opened project.
[[nodiscard]] PathVariableList BuildPathVariables(const InstallationSettings& installation,
                                                  const SystemTools& tools,
                                                  std::string_view project_directory);

// Sets the value of the variable, appending it when the list has none of that name.
void SetPathVariable(PathVariableList& variables, std::string_view name, std::string_view value);

// Replaces the directory prefix of `path` by the first variable whose value it begins with,
// compared without regard to case, its directory as AsVariableValue spells it. Kept on purpose: no
// longest match, no check that the match ends at a backslash, and an empty value matches every
// directory.
[[nodiscard]] std::string ToVariableForm(const PathVariableList& variables, std::string_view path,
                                         VariableForm form);

// Replaces every occurrence of every variable's name by its value, one variable after the other in
// list order, without regard to case. Unknown names stay. A value that holds names of variables
// further down the list is resolved in turn, its own name is not. Throws RuntimeError kOutOfMemory
// when values that name each other make the text grow by more than 1 MiB.
[[nodiscard]] std::string FromVariableForm(const PathVariableList& variables,
                                           std::string_view text);

// The full path of the file that a list or a box names: variables resolved, and tidied, since the
// project's directory may be stored with a backslash at its end. Throws as FromVariableForm.
[[nodiscard]] std::string SourcePath(const PathVariableList& variables, std::string_view text);

}  // namespace txs
