#include "environment/special_folders_host.h"

#include <optional>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "environment/code_page.h"

namespace txs {
namespace {

constexpr std::string_view kCurrentVersion = "Software\\Microsoft\\Windows\\CurrentVersion";
constexpr std::string_view kNtCurrentVersion = "Software\\Microsoft\\Windows NT\\CurrentVersion";

using Variables = std::vector<std::pair<std::string_view, std::string>>;

std::string Expand(const std::string& text, const Variables& variables) {
  std::string expanded;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t close = text[at] == '%' ? text.find('%', at + 1) : std::string::npos;
    if (close == std::string::npos) {
      expanded += text[at++];
      continue;
    }
    const std::string_view name = std::string_view(text).substr(at + 1, close - at - 1);
    bool is_known = false;
    for (const auto& [variable, value] : variables) {
      if (!EqualNoCase(name, variable)) continue;
      expanded += value;
      at = close + 1;
      is_known = true;
      break;
    }
    if (!is_known) expanded += text[at++];
  }
  return expanded;
}

bool IsAbsolute(std::string_view path) {
  const bool has_drive = path.size() >= 2 && path[1] == ':' &&
                         ((path[0] >= 'A' && path[0] <= 'Z') || (path[0] >= 'a' && path[0] <= 'z'));
  return (has_drive && (path.size() == 2 || path[2] == '\\')) || path.starts_with("\\\\");
}

std::string PathValue(const Registry& registry, std::string_view key, std::string_view name,
                      const Variables& variables, std::string default_path) {
  const std::optional<RegistryValue> value = registry.Read(Hive::kLocalMachine, key, name);
  const auto* text = value ? std::get_if<std::string>(&*value) : nullptr;
  if (text == nullptr) return default_path;
  std::string path = Expand(std::string(TrimBlanks(*text)), variables);
  if (!IsAbsolute(path)) return default_path;
  while (path.ends_with('\\')) path.pop_back();
  return path.empty() ? default_path : path;
}

}  // namespace

std::string HostSpecialFolders::Folder(SpecialFolder folder) const {
  std::string windows = PathValue(registry_, kNtCurrentVersion, "SystemRoot", {}, "C:\\Windows");
  Variables variables = {{"SystemRoot", windows},
                         {"windir", windows},
                         {"SystemDrive", windows.substr(0, windows.find(':') + 1)}};
  const auto program_files = [&] {
    return PathValue(registry_, kCurrentVersion, "ProgramFilesDir", variables, "C:\\Program Files");
  };
  switch (folder) {
    case SpecialFolder::kWindows:
      return windows;
    case SpecialFolder::kSystem:
      return windows + "\\System32";
    case SpecialFolder::kFonts:
      return windows + "\\Fonts";
    case SpecialFolder::kProgramFiles:
      return program_files();
    case SpecialFolder::kCommonFiles: {
      const std::string programs = program_files();
      variables.emplace_back("ProgramFiles", programs);
      return PathValue(registry_, kCurrentVersion, "CommonFilesDir", variables,
                       programs + "\\Common Files");
    }
  }
  return {};
}

}  // namespace txs
