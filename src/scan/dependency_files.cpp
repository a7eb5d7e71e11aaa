#include "scan/dependency_files.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <utility>

#include "environment/code_page.h"
#include "environment/system_tools.h"
#include "environment/windows_path.h"

namespace txs {
namespace {

// Setups are made in German and English, so a component's files for both are packaged.
constexpr std::array<std::uint32_t, 2> kSetupLanguages = {0x0007, 0x0009};

struct SectionName {
  std::string_view file_name;
  std::optional<std::uint32_t> language;
};

// "MSCOMCTL.OCX <0007>" in its parts; a name without a language comes back whole.
SectionName ParseSectionName(std::string_view name) {
  const SectionName whole{name, std::nullopt};
  const std::size_t open = name.rfind('<');
  if (open == std::string_view::npos || open == 0 || name.back() != '>') return whole;
  const std::string_view digits = TrimBlanks(name.substr(open + 1, name.size() - open - 2));
  std::uint32_t language = 0;
  const char* const end = digits.data() + digits.size();
  const auto [stopped, error] = std::from_chars(digits.data(), end, language, 16);
  if (digits.empty() || error != std::errc() || stopped != end) return whole;
  return {TrimBlanks(name.substr(0, open)), language};
}

// A ";" at the start or behind a blank begins a comment that its writer put behind the value.
std::string_view WithoutComment(std::string_view value) {
  for (std::size_t at = value.find(';'); at != std::string_view::npos;
       at = value.find(';', at + 1)) {
    if (at == 0 || value[at - 1] == ' ' || value[at - 1] == '\t') {
      return TrimBlanks(value.substr(0, at));
    }
  }
  return value;
}

void ReadSection(const ProfileDocument& document, const std::string& section,
                 DependencyEntries& entries) {
  const auto value = [&](const std::string& key) {
    return document.Value(section, key).value_or(std::string());
  };
  if (entries.registration == RegistrationKind::kNone) {
    entries.registration = RegistrationKindOf(WithoutComment(value("Register")));
  }
  if (entries.replace.empty()) entries.replace = WithoutComment(value("Replace"));
  for (std::size_t number = 1;; ++number) {
    const std::string use = value("Uses" + std::to_string(number));
    if (use.empty()) break;
    const std::string_view name = WithoutComment(use);
    if (!name.empty()) entries.uses.emplace_back(name);
  }
  for (std::size_t number = 1;; ++number) {
    std::string line = value("I" + std::to_string(number));
    if (line.empty()) break;
    // Script lines may hold a ";" of their own, so only a line that is nothing else is a comment.
    if (line.front() != ';') entries.script_lines.push_back(std::move(line));
  }
}

}  // namespace

RegistrationKind RegistrationKindOf(std::string_view register_value) {
  struct Known {
    std::string_view text;
    RegistrationKind kind;
  };
  constexpr std::array<Known, 4> kKnown = {{
      {"$(DLLSelfRegister)", RegistrationKind::kInProcess},
      {"$(EXESelfRegister)", RegistrationKind::kOutOfProcess},
      {"$(REMOTE)", RegistrationKind::kRemote},
      {"$(TLBRegister)", RegistrationKind::kTypeLibrary},
  }};
  if (register_value.empty()) return RegistrationKind::kNone;
  for (const Known& known : kKnown) {
    if (EqualNoCase(register_value, known.text)) return known.kind;
  }
  return RegistrationKind::kOther;
}

DependencyFile::DependencyFile(const ProfileDocument& document) : document_(document) {
  for (std::string& name : document.SectionNames()) {
    const SectionName parsed = ParseSectionName(name);
    std::string key = FoldCase(parsed.file_name);
    if (parsed.language) {
      localised_[std::move(key)].push_back(std::move(name));
    } else {
      plain_.try_emplace(std::move(key), std::move(name));
    }
  }
}

std::optional<DependencyEntries> DependencyFile::Find(std::string_view file_name) const {
  const std::string key = FoldCase(file_name);
  const auto plain = plain_.find(key);
  const auto localised = localised_.find(key);
  if (plain == plain_.end() && localised == localised_.end()) return std::nullopt;

  DependencyEntries entries;
  bool any_read = false;
  if (plain != plain_.end()) {
    ReadSection(document_, plain->second, entries);
    any_read = true;
  }
  if (localised == localised_.end()) return entries;
  for (const std::uint32_t language : kSetupLanguages) {
    const auto section =
        std::find_if(localised->second.begin(), localised->second.end(),
                     [&](const auto& name) { return ParseSectionName(name).language == language; });
    if (section == localised->second.end()) continue;
    ReadSection(document_, *section, entries);
    any_read = true;
  }
  if (!any_read) ReadSection(document_, localised->second.front(), entries);
  return entries;
}

const DependencyFile* DependencyFiles::Open(std::string_view path) {
  if (path.empty()) return nullptr;
  const auto [opened, is_new] = opened_.try_emplace(FoldCase(path));
  if (is_new && files_.FileExists(path)) {
    opened->second = std::make_unique<DependencyFile>(profiles_.Open(path));
  }
  return opened->second.get();
}

const DependencyFile* DependencyFiles::OpenOwn(std::string_view component_path) {
  return Open(JoinPath(ParentFolder(component_path), BaseName(component_path) + ".dep"));
}

}  // namespace txs
