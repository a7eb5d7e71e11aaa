#include "document/path_variables.h"

#include <algorithm>
#include <utility>

#include "environment/code_page.h"
#include "environment/full_path.h"
#include "environment/runtime_error.h"
#include "environment/windows_path.h"
#include "strings/reason.h"

namespace txs {
namespace {

constexpr char kWinSysDir[] = "<WinSysDir>";

// How much longer a text may become than its variable names make it. Values may name further
// variables, so a few user directories that name each other twice would double without end.
constexpr std::size_t kGrowthLimitBytes = std::size_t{1} << 20;

// Whether `text` begins with `prefix`, without regard to case.
bool BeginsWith(std::string_view text, std::string_view prefix) {
  return text.size() >= prefix.size() && EqualNoCase(text.substr(0, prefix.size()), prefix);
}

// The first match in list order, not the longest.
const PathVariable* FirstMatch(const PathVariableList& variables, std::string_view directory) {
  const auto found = std::find_if(
      variables.begin(), variables.end(),
      [&](const PathVariable& variable) { return BeginsWith(directory, variable.value); });
  return found == variables.end() ? nullptr : &*found;
}

// Names begin with "<", which has no other case, so the search may leap from one to the next.
std::size_t FindName(std::string_view text, std::string_view name, std::size_t from) {
  for (std::size_t at = text.find(name.front(), from); at != std::string_view::npos;
       at = text.find(name.front(), at + 1)) {
    if (BeginsWith(text.substr(at), name)) return at;
  }
  return std::string_view::npos;
}

// The value goes in as it is: a name in it is not replaced by the variable's own value again.
void ReplaceName(std::string& text, const PathVariable& variable, std::size_t longest) {
  if (variable.name.empty()) return;
  std::size_t found = FindName(text, variable.name, 0);
  if (found == std::string::npos) return;

  std::string result;
  std::size_t copied = 0;
  while (found != std::string::npos) {
    result.append(text, copied, found - copied);
    result += variable.value;
    if (result.size() > longest) {
      throw RuntimeError(ErrorNumber::kOutOfMemory, Words(Reason::kValueTooLong, {variable.name}));
    }
    copied = found + variable.name.size();
    found = FindName(text, variable.name, copied);
  }
  result.append(text, copied);
  text = std::move(result);
}

}  // namespace

std::string AsVariableValue(std::string_view directory) {
  std::string tidy = FullPath(directory);
  tidy.erase(tidy.find_last_not_of('\\') + 1);
  // Nothing but backslashes and dots names no place; an empty value would match every directory.
  return tidy.empty() ? std::string(directory) : tidy;
}

PathVariableList BuildPathVariables(const InstallationSettings& installation,
                                    const SystemTools& tools, std::string_view project_directory) {
  return {
      {"<ProjectDir>", AsVariableValue(project_directory)},
      {"<TavixCommonDir>", AsVariableValue(installation.common_directory)},
      {"<TavixStudioDir>", AsVariableValue(installation.studio_directory)},
      {"<TavixMainDir>", AsVariableValue(installation.main_directory)},
      {kWinSysDir, AsVariableValue(tools.Folder(SpecialFolder::kSystem))},
      {"<FontDir>", AsVariableValue(tools.Folder(SpecialFolder::kFonts))},
      {"<WinDir>", AsVariableValue(tools.Folder(SpecialFolder::kWindows))},
      {"<CommonFilesDir>", AsVariableValue(tools.Folder(SpecialFolder::kCommonFiles))},
      {"<ProgramFilesDir>", AsVariableValue(tools.Folder(SpecialFolder::kProgramFiles))},
  };
}

void SetPathVariable(PathVariableList& variables, std::string_view name, std::string_view value) {
  for (PathVariable& variable : variables) {
    if (!EqualNoCase(variable.name, name)) continue;
    variable.value = AsVariableValue(value);
    return;
  }
  variables.push_back({std::string(name), AsVariableValue(value)});
}

std::string ToVariableForm(const PathVariableList& variables, std::string_view path,
                           VariableForm form) {
  if (form != VariableForm::kWholePath && form != VariableForm::kDirectoryOnly) return {};

  std::string directory = ParentFolder(path);
  std::string tidy = AsVariableValue(directory);
  const PathVariable* const variable = FirstMatch(variables, tidy);
  if (variable != nullptr) {
    directory = std::move(tidy.replace(0, variable->value.size(), variable->name));
  } else if (form == VariableForm::kDirectoryOnly) {
    directory = kWinSysDir;
  }
  if (form == VariableForm::kDirectoryOnly) return directory;
  return directory + "\\" + FileName(path);
}

std::string FromVariableForm(const PathVariableList& variables, std::string_view text) {
  std::string result(text);
  const std::size_t longest = text.size() + kGrowthLimitBytes;
  for (const PathVariable& variable : variables) ReplaceName(result, variable, longest);
  return result;
}

std::string SourcePath(const PathVariableList& variables, std::string_view text) {
  return NormalizeDirectory(FromVariableForm(variables, text));
}

}  // namespace txs
