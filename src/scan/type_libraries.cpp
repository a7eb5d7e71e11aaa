#include "scan/type_libraries.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <optional>

#include "environment/code_page.h"
#include "environment/windows_path.h"

namespace txs {
namespace {

constexpr char kTypeLibKey[] = "TypeLib\\";

std::optional<std::uint32_t> ParseHex(std::string_view text) {
  std::uint32_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [stopped, error] = std::from_chars(text.data(), end, number, 16);
  if (error != std::errc() || stopped != end) return std::nullopt;
  return number;
}

struct Version {
  std::uint32_t major_part = 0;
  std::uint32_t minor_part = 0;
};

std::optional<Version> ParseVersion(std::string_view text) {
  const std::size_t dot = text.find('.');
  const std::optional<std::uint32_t> major_part = ParseHex(text.substr(0, dot));
  const std::optional<std::uint32_t> minor_part =
      dot == std::string_view::npos ? std::uint32_t{0} : ParseHex(text.substr(dot + 1));
  if (!major_part || !minor_part) return std::nullopt;
  return Version{*major_part, *minor_part};
}

std::string ReadPath(const SystemTools& tools, const std::string& library_key,
                     std::string_view version, std::string_view locale) {
  std::string key = library_key + "\\";
  key += version;
  key += '\\';
  key += locale;
  key += "\\win32";
  return tools.RegistryText(Hive::kClassesRoot, key, /*name=*/{}, /*default_value=*/{});
}

std::optional<std::string> PlatformVariable(const SystemTools& tools, std::string_view name) {
  struct Known {
    std::string_view name;
    SpecialFolder folder;
  };
  constexpr std::array<Known, 6> kKnown = {{
      {"SystemRoot", SpecialFolder::kWindows},
      {"windir", SpecialFolder::kWindows},
      {"ProgramFiles", SpecialFolder::kProgramFiles},
      {"ProgramFiles(x86)", SpecialFolder::kProgramFiles},
      {"CommonProgramFiles", SpecialFolder::kCommonFiles},
      {"CommonProgramFiles(x86)", SpecialFolder::kCommonFiles},
  }};
  if (EqualNoCase(name, "SystemDrive")) {
    return tools.Folder(SpecialFolder::kWindows).substr(0, 2);
  }
  for (const Known& known : kKnown) {
    if (EqualNoCase(name, known.name)) return tools.Folder(known.folder);
  }
  return std::nullopt;
}

std::string ExpandVariables(const SystemTools& tools, std::string_view text) {
  std::string result;
  while (!text.empty()) {
    const std::size_t begin = text.find('%');
    const std::size_t end = begin == std::string_view::npos ? begin : text.find('%', begin + 1);
    if (end == std::string_view::npos) break;
    result += text.substr(0, begin);
    if (const std::optional<std::string> value =
            PlatformVariable(tools, text.substr(begin + 1, end - begin - 1))) {
      result += *value;
      text.remove_prefix(end + 1);
    } else {
      // The second "%" may begin the next name.
      result += text.substr(begin, end - begin);
      text.remove_prefix(end);
    }
  }
  result += text;
  return result;
}

bool IsResourceIndex(std::string_view component) {
  return !component.empty() && std::all_of(component.begin(), component.end(),
                                           [](char c) { return c >= '0' && c <= '9'; });
}

}  // namespace

std::string TypeLibraryFile(const SystemTools& tools, std::string_view guid,
                            std::string_view version, std::string_view locale) {
  // An empty component would make the key of another depth and find what has nothing to do with it.
  if (guid.empty() || version.empty() || locale.empty()) return {};

  const std::string library_key = kTypeLibKey + std::string(guid);
  std::string path = ReadPath(tools, library_key, version, locale);
  if (path.empty()) {
    const std::vector<std::string> versions =
        tools.RegistrySubkeys(Hive::kClassesRoot, library_key);
    const auto fitting = std::find_if(
        versions.begin(), versions.end(),
        [&](const auto& registered) { return TypeLibraryVersionFits(version, registered); });
    if (fitting != versions.end()) path = ReadPath(tools, library_key, *fitting, locale);
  }
  return FileOfRegisteredPath(tools, path);
}

bool TypeLibraryVersionFits(std::string_view asked, std::string_view registered) {
  const std::optional<Version> wanted = ParseVersion(asked);
  const std::optional<Version> offered = ParseVersion(registered);
  return wanted && offered && wanted->major_part == offered->major_part &&
         offered->minor_part >= wanted->minor_part;
}

std::string FileOfRegisteredPath(const SystemTools& tools, std::string_view text) {
  text = TrimBlanks(text);
  if (!text.empty() && text.front() == '"') {
    text.remove_prefix(1);
    text = TrimBlanks(text.substr(0, text.find('"')));
  }
  std::string path = ExpandVariables(tools, text);
  // A folder called "3" below one with a dot in its name does not hold type libraries; a resource
  // index behind a file name is everyday.
  if (IsResourceIndex(FileName(path))) {
    std::string file = ParentFolder(path);
    if (!Extension(file).empty()) path = std::move(file);
  }
  return path;
}

}  // namespace txs
