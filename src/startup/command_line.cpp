#include "startup/command_line.h"

#include <algorithm>
#include <array>

#include "environment/windows_path.h"

namespace txs {
namespace {

constexpr std::array<std::string_view, 4> kUnattendedSwitches = {"-c=", "-C=", "/c=", "/C="};

std::string_view TrimSpaces(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(' ');
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(' ') - begin + 1);
}

CommandLine ProjectArgument(CommandLine::Kind kind, std::string_view argument) {
  const std::string path = StripQuotes(argument);
  CommandLine result;
  result.kind = kind;
  result.project_name = BaseName(path);
  result.project_directory = ParentFolder(path);
  // Whatever extension was given is dropped: the wizard works from the project name.
  result.project_file = result.project_directory.empty()
                            ? result.project_name
                            : result.project_directory + "\\" + result.project_name + ".txs";
  return result;
}

}  // namespace

CommandLine ParseCommandLine(std::string_view text) {
  const std::string_view line = TrimSpaces(text);
  if (line.empty()) return {};
  if (line.front() != '-' && line.front() != '/') {
    return ProjectArgument(CommandLine::Kind::kProject, line);
  }
  for (const std::string_view unattended : kUnattendedSwitches) {
    if (line.starts_with(unattended)) {
      return ProjectArgument(CommandLine::Kind::kUnattended, line.substr(unattended.size()));
    }
  }
  CommandLine refused;
  refused.kind = CommandLine::Kind::kRefused;
  return refused;
}

std::string JoinArguments(int argc, const char* const* argv) {
  std::string line;
  for (int i = 1; i < argc; ++i) {
    if (i > 1) line += ' ';
    line += argv[i];
  }
  return line;
}

std::string_view BehindProgramName(std::string_view command_line) {
  bool is_quoted = false;
  std::size_t end = 0;
  for (; end < command_line.size(); ++end) {
    const char c = command_line[end];
    if (c == '"') is_quoted = !is_quoted;
    if (!is_quoted && (c == ' ' || c == '\t')) break;
  }
  const std::size_t begin = command_line.find_first_not_of(" \t", end);
  return begin == std::string_view::npos ? std::string_view() : command_line.substr(begin);
}

std::string UnquoteSwitch(std::string_view text) {
  const std::string_view line = TrimSpaces(text);
  if (line.size() >= 2 && line.front() == '"' && line.back() == '"') {
    const std::string_view inside = line.substr(1, line.size() - 2);
    const bool is_switch = std::ranges::any_of(
        kUnattendedSwitches,
        [&](std::string_view unattended) { return inside.starts_with(unattended); });
    if (is_switch && inside.find('"') == std::string_view::npos) return std::string(inside);
  }
  return std::string(text);
}

std::string StripQuotes(std::string_view text) {
  if (!text.starts_with('"')) return std::string(text);
  text.remove_prefix(1);
  if (text.ends_with('"')) text.remove_suffix(1);
  return std::string(text);
}

}  // namespace txs
