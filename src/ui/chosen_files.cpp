#include "ui/chosen_files.h"

namespace txs {
namespace {

constexpr long kTooManyFiles = 1701;

// A shortcut among the chosen files stands for its target, which is elsewhere.
bool IsFullPath(std::string_view name) {
  return name.starts_with("\\\\") || name.substr(0, 3).find(":\\") == 1;
}

}  // namespace

std::vector<std::string> ChosenPaths(Application& application, const OpenFilesAnswer& answer) {
  if (!answer.too_many) return answer.host_paths;
  ShowWarning(application, kTooManyFiles, {});
  return {};
}

std::vector<std::string> SplitChosenFiles(std::string_view buffer) {
  std::vector<std::string_view> parts;
  while (!buffer.empty() && buffer.front() != '\0') {
    const std::size_t end = buffer.find('\0');
    parts.push_back(buffer.substr(0, end));
    buffer.remove_prefix(end == std::string_view::npos ? buffer.size() : end + 1);
  }
  std::vector<std::string> paths;
  if (parts.size() == 1) paths.emplace_back(parts.front());
  for (std::size_t i = 1; i < parts.size(); ++i) {
    std::string path;
    if (!IsFullPath(parts[i])) {
      path = parts.front();
      if (!path.ends_with('\\')) path += '\\';
    }
    path += parts[i];
    paths.push_back(std::move(path));
  }
  return paths;
}

}  // namespace txs
