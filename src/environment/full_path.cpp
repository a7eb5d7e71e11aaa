#include "environment/full_path.h"

#include <algorithm>
#include <vector>

#include "environment/windows_path.h"

namespace txs {
namespace {

constexpr std::string_view kSeparators = "\\/";

bool IsSeparator(char c) { return c == '\\' || c == '/'; }

struct SplitRoot {
  std::string root;  // "C:\", "\\", "C:", "\" or nothing
  std::string_view rest;
  std::size_t fixed = 0;  // components that ".." never removes: server and share
};

SplitRoot TakeRoot(std::string_view path) {
  if (path.size() >= 2 && IsSeparator(path[0]) && IsSeparator(path[1])) {
    return {"\\\\", path.substr(2), 2};
  }
  if (!path.empty() && IsSeparator(path[0])) return {"\\", path.substr(1), 0};
  if (path.size() >= 2 && path[1] == ':') {
    std::string root(path.substr(0, 2));
    if (path.size() == 2 || !IsSeparator(path[2])) return {std::move(root), path.substr(2), 0};
    return {root + "\\", path.substr(3), 0};
  }
  return {{}, path, 0};
}

}  // namespace

std::string FullPath(std::string_view path) {
  SplitRoot split = TakeRoot(path);
  std::vector<std::string_view> parts;
  std::string_view rest = split.rest;
  while (!rest.empty()) {
    const std::size_t end = std::min(rest.find_first_of(kSeparators), rest.size());
    const std::string_view part = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    if (part.empty() || part == ".") continue;
    const bool goes_up = part == "..";
    if (goes_up && parts.size() > split.fixed && parts.back() != "..") {
      parts.pop_back();
    } else if (!goes_up ||
               split.root.empty()) {  // ".." without a root: nothing known to go up from
      parts.push_back(part);
    }
  }

  const bool has_root = !split.root.empty();
  std::string result = std::move(split.root);
  for (std::size_t i = 0; i < parts.size(); ++i) {
    if (i > 0) result += '\\';
    result += parts[i];
  }
  // What stood behind "x\.." may be a drive: "x\..\C:y" begins with one now.
  if (!has_root && !TakeRoot(result).root.empty()) return FullPath(result);
  return result;
}

std::string FullPathFrom(std::string_view directory, std::string_view path) {
  if (IsAbsolutePath(path)) return FullPath(path);
  return FullPath(JoinPath(directory, path));
}

}  // namespace txs
