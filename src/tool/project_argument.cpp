#include "tool/project_argument.h"

#include "environment/windows_path.h"
#include "projects/project_registry.h"
#include "startup/command_line.h"

namespace txs {
namespace {

// Names that belong to no single place: a host path always has a "/".
std::optional<ProjectArgument> ReadHostPath(
    const std::string& argument,
    const std::function<std::optional<std::string>(const std::string&)>& windows_path) {
  const std::size_t slash = argument.rfind('/');
  if (slash == std::string::npos || argument.find('\\') != std::string::npos) return std::nullopt;
  const std::string folder = slash == 0 ? "/" : argument.substr(0, slash);
  std::optional<std::string> directory = windows_path(folder);
  if (!directory) return std::nullopt;
  return ProjectArgument{BaseName(argument), std::move(*directory)};
}

}  // namespace

ProjectArgument ReadProjectArgument(
    Platform& platform, const std::string& argument,
    const std::function<std::optional<std::string>(const std::string&)>& windows_path) {
  const bool is_bare_name = argument.find_first_of("\\/:") == std::string::npos;
  if (is_bare_name && !argument.empty() && !LookUpProject(platform, argument).directory.empty()) {
    return {argument, {}};
  }
  if (std::optional<ProjectArgument> host = ReadHostPath(argument, windows_path)) return *host;
  const std::string path = StripQuotes(argument);
  return {BaseName(path), ParentFolder(path)};
}

}  // namespace txs
