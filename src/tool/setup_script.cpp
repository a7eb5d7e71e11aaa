#include "tool/setup_script.h"

#include <algorithm>
#include <array>
#include <limits>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "environment/code_page.h"
#include "environment/windows_path.h"

namespace txs {
namespace {

// 255 characters, of up to three bytes in UTF-8.
constexpr std::size_t kMaxFileNameBytes = 765;

constexpr std::size_t kMostFaults = 10000;
constexpr std::size_t kSingleArguments = 8;  // what stands behind in InstallFile are the disks
constexpr std::size_t kUnbounded = std::numeric_limits<std::size_t>::max();

struct CommandForm {
  std::string_view name;
  std::size_t least_arguments;
  std::size_t most_arguments;
};

// The commands that have arguments. ExecFile hands on the program's own switches, which may hold
// the separator.
constexpr std::array kCommands = {
    CommandForm{"SetVar", 2, 2},
    CommandForm{"WriteRegistry", 5, 5},
    CommandForm{"CreateDir", 1, 1},
    CommandForm{"DeleteFile", 1, 1},
    CommandForm{"InstallFile", 8, kUnbounded},
    CommandForm{"RegInProc", 1, 1},
    CommandForm{"RegOutProc", 1, 1},
    CommandForm{"ExecFile", 2, kUnbounded},
    CommandForm{"CreateShellLink", 3, 3},
};

constexpr std::array<std::string_view, 4> kBareCommands = {"CheckDiskSpace", "Exit", "If", "EndIf"};

struct ParameterForm {
  std::string_view name;
  int count;
};

constexpr std::array kParameters = {
    ParameterForm{"DefLang", 1},    ParameterForm{"Silent", 1},    ParameterForm{"Force", 1},
    ParameterForm{"TargetDir", 1},  ParameterForm{"SetupName", 1}, ParameterForm{"SetupDesc0", 3},
    ParameterForm{"SetupDesc1", 3}, ParameterForm{"MaxBytes", 1},  ParameterForm{"MaxDisk", 1},
};

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

std::optional<std::uint64_t> Digits(std::string_view text) {
  if (text.empty()) return std::nullopt;
  std::uint64_t number = 0;
  for (const char c : text) {
    if (!IsDigit(c)) return std::nullopt;
    const auto digit = static_cast<std::uint64_t>(c - '0');
    if (number > (std::numeric_limits<std::uint64_t>::max() - digit) / 10) return std::nullopt;
    number = number * 10 + digit;
  }
  return number;
}

// "dd.mm.yyyy", a day and month that exist.
bool IsDate(std::string_view text) {
  if (text.size() != 10 || text[2] != '.' || text[5] != '.') return false;
  const std::optional<std::uint64_t> day = Digits(text.substr(0, 2));
  const std::optional<std::uint64_t> month = Digits(text.substr(3, 2));
  return day && month && Digits(text.substr(6)) && *day >= 1 && *day <= 31 && *month >= 1 &&
         *month <= 12;
}

std::string_view TakeArgument(std::string_view& rest) {
  const std::size_t end = std::min(rest.find('|'), rest.size());
  const std::string_view argument = rest.substr(0, end);
  rest.remove_prefix(std::min(end + 1, rest.size()));
  return argument;
}

// The first kSingleArguments arguments of a command; the last part is all that follows, however
// many arguments that are. A line may be nothing but separators, so that each must not cost memory.
std::vector<std::string_view> Split(std::string_view text) {
  std::vector<std::string_view> parts;
  while (parts.size() + 1 < kSingleArguments && text.find('|') != std::string_view::npos) {
    parts.push_back(TakeArgument(text));
  }
  parts.push_back(text);
  return parts;
}

std::string Quoted(std::string_view text) {
  constexpr std::size_t kShown = 60;
  std::size_t end = std::min(text.size(), kShown);
  while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
  std::string quoted = "\"";
  for (const char c : text.substr(0, end)) {
    quoted += static_cast<unsigned char>(c) < 0x20 ? '?' : c;
  }
  return quoted + (end < text.size() ? "...\"" : "\"");
}

// Whether two folded texts are alike but for one byte or none, as after a flipped bit.
bool AlikeButForOneByte(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  std::size_t different = 0;
  for (std::size_t i = 0; i < a.size() && different <= 1; ++i) different += a[i] != b[i] ? 1 : 0;
  return different <= 1;
}

bool IsWord(std::string_view text) {
  const auto is_letter = [](char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); };
  return !text.empty() && std::all_of(text.begin(), text.end(), is_letter);
}

// Whether the engine may have a command of this name. Dependency files bring lines of their own, so
// this is no closed list; but what is a known name but for one letter, or for case, or the
// beginning of one, was damaged.
bool MayBeCommand(std::string_view name) {
  if (!IsWord(name)) return false;
  const std::string folded = FoldCase(name);
  const auto may_have_been = [&folded](std::string_view known) {
    const std::string known_folded = FoldCase(known);
    return AlikeButForOneByte(folded, known_folded) || known_folded.starts_with(folded);
  };
  return std::none_of(kCommands.begin(), kCommands.end(),
                      [&](const CommandForm& known) { return may_have_been(known.name); }) &&
         std::none_of(kBareCommands.begin(), kBareCommands.end(), may_have_been);
}

// "IsEqual(a|b)", or a condition of a dependency file's own: a word and what stands in parentheses.
bool MayBeCondition(std::string_view condition) {
  constexpr std::string_view kIsEqual = "IsEqual";
  const std::size_t parenthesis = condition.find('(');
  if (parenthesis == std::string_view::npos) return false;
  const std::string_view name = condition.substr(0, parenthesis);
  std::size_t open = 0;
  for (std::size_t i = parenthesis; i < condition.size(); ++i) {
    if (condition[i] == '(') ++open;
    if (condition[i] == ')') --open;
    if (open > 0) continue;
    if (i + 1 < condition.size()) return false;
    if (name == kIsEqual) return condition.find('|') != std::string_view::npos;
    return IsWord(name) && !AlikeButForOneByte(FoldCase(name), FoldCase(kIsEqual));
  }
  return false;
}

// The number of a user directory that the path begins with, "2" of "<UserDir2>\x.dll", or nothing.
std::string_view UserDirectoryNumber(std::string_view path) {
  constexpr std::string_view kBegin = "<UserDir";
  if (!EqualNoCase(path.substr(0, kBegin.size()), kBegin)) return {};
  const std::string_view number = path.substr(kBegin.size(), path.find('>') - kBegin.size());
  return Digits(number) ? number : std::string_view();
}

// Whether a directory in the path is "..", or what Windows takes for it or for nothing: blanks and
// dots only.
bool LeadsElsewhere(std::string_view path) {
  for (std::size_t begin = 0; begin < path.size();) {
    const std::size_t end = std::min(path.find_first_of("\\/", begin), path.size());
    const std::string_view part = path.substr(begin, end - begin);
    if (!part.empty() && part.find_first_not_of(". ") == std::string_view::npos) return true;
    begin = end + 1;
  }
  return false;
}

class Parser {
 public:
  explicit Parser(SetupScript& script) : script_(script) {}

  void Parse(std::string_view bytes) {
    if (bytes.find_first_not_of(' ') == std::string_view::npos) {
      Fault("the script was never written: only its room was kept");
      return;
    }
    while (!bytes.empty() && script_.faults.size() < kMostFaults) {
      ++line_;
      std::size_t end = bytes.find('\n');
      if (end == std::string_view::npos || end == 0 || bytes[end - 1] != '\r') {
        Fault("the line is not ended by CR LF");
        if (end == std::string_view::npos) end = bytes.size();
        TakeLine(AnsiToUtf8(bytes.substr(0, end)));
      } else {
        TakeLine(AnsiToUtf8(bytes.substr(0, end - 1)));
      }
      bytes.remove_prefix(std::min(end + 1, bytes.size()));
    }
    if (script_.faults.size() < kMostFaults) CheckWhole();
    // One line may have several faults, and so may the whole.
    if (script_.faults.size() >= kMostFaults) {
      script_.faults.resize(kMostFaults);
      line_ = 0;
      Fault("too many faults; the rest of the script was not read");
    }
  }

 private:
  enum class Section { kNone, kParams, kToDo };

  void Fault(std::string what) { script_.faults.push_back({line_, std::move(what)}); }

  void TakeLine(const std::string& line) {
    if (section_ == Section::kNone) {
      if (line != "[Params]") Fault("[Params] is expected, not " + Quoted(line));
      section_ = Section::kParams;
    } else if (section_ == Section::kParams) {
      if (line == "[ToDo]") {
        section_ = Section::kToDo;
        script_.has_commands = true;
      } else {
        TakeParameter(line);
      }
    } else {
      TakeCommand(line);
    }
  }

  void TakeParameter(std::string_view line) {
    const std::size_t equals = line.find('=');
    const std::string_view name = line.substr(0, equals);
    const auto* const form =
        std::find_if(kParameters.begin(), kParameters.end(),
                     [name](const ParameterForm& known) { return known.name == name; });
    if (equals == std::string_view::npos || form == kParameters.end()) {
      Fault("unknown parameter " + Quoted(line));
      return;
    }
    const std::string_view value = line.substr(equals + 1);
    ++parameter_counts_[static_cast<std::size_t>(form - kParameters.begin())];
    if (name == "DefLang" || name == "Silent" || name == "Force" || name == "MaxBytes") {
      const std::optional<std::uint64_t> number = Digits(value);
      if (!number) Fault(std::string(name) + " is no number");
      if (name == "MaxBytes") max_bytes_ = number;
      if (name == "MaxBytes") max_bytes_line_ = line_;
    } else if (name == "MaxDisk") {
      script_.disks = Digits(value);
      script_.disks_line = line_;
      if (!script_.disks) Fault("MaxDisk is no number");
    }
  }

  void TakeCommand(std::string_view line) {
    line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
    if (line.empty()) return;
    if (line == "CheckDiskSpace" || line == "Exit") return;
    if (line == "EndIf") {
      if (open_ifs_ == 0) Fault("EndIf without If");
      if (open_ifs_ > 0) --open_ifs_;
      return;
    }
    const std::size_t parenthesis = line.find('(');
    const std::string_view name = line.substr(0, parenthesis);
    if (parenthesis == std::string_view::npos && MayBeCommand(name)) return;
    if (parenthesis == std::string_view::npos || line.back() != ')') {
      Fault("no command: " + Quoted(line));
      return;
    }
    const std::string_view inner = line.substr(parenthesis + 1, line.size() - parenthesis - 2);
    if (name == "If") {
      TakeIf(inner);
      return;
    }
    const auto* const form =
        std::find_if(kCommands.begin(), kCommands.end(),
                     [name](const CommandForm& known) { return known.name == name; });
    if (form == kCommands.end()) {
      if (!MayBeCommand(name)) Fault("unknown command " + Quoted(name));
      return;
    }
    const std::vector<std::string_view> arguments = Split(inner);
    const auto count = static_cast<std::size_t>(std::count(inner.begin(), inner.end(), '|')) + 1;
    if (name == "InstallFile") NoteInstallFile(arguments);
    if (count < form->least_arguments || count > form->most_arguments) {
      Fault(std::string(name) + " has " + std::to_string(count) + " arguments");
      if (name == "InstallFile") lengths_known_ = false;
      return;
    }
    if (name == "InstallFile") TakeInstallFile(arguments);
    if (name == "RegInProc" || name == "RegOutProc") {
      registrations_.push_back({line_, std::string(arguments[0])});
    }
    if (name == "SetVar") variables_.insert(FoldCase(arguments[0]));
  }

  void TakeIf(std::string_view condition) {
    ++open_ifs_;
    if (!MayBeCondition(condition)) Fault("no condition: " + Quoted(condition));
  }

  // What even a line that cannot be carried out tells, so that one fault does not draw others.
  void NoteInstallFile(const std::vector<std::string_view>& arguments) {
    ++script_.install_lines;
    if (IsPlainFileName(arguments[0])) script_.archives_named.emplace_back(arguments[0]);
    if (arguments.size() > 1) {
      targets_.insert(FoldCase(arguments[1]));
      const std::string_view number = UserDirectoryNumber(arguments[1]);
      if (!number.empty()) user_directories_.try_emplace(std::string(number), line_);
    }
  }

  void TakeInstallFile(const std::vector<std::string_view>& arguments) {
    const std::size_t faults_before = script_.faults.size();
    InstallLine install;
    install.line = line_;
    install.archive = arguments[0];
    install.target = arguments[1];
    if (!IsPlainFileName(install.archive)) {
      Fault("not the name of an archive: " + Quoted(install.archive));
    } else if (!archives_.insert(FoldCase(install.archive)).second) {
      Fault("an earlier line installs from the same archive " + Quoted(install.archive));
    }
    if (!IsPlainFileName(FileName(install.target))) {
      Fault("the target is no file: " + Quoted(install.target));
    } else if (LeadsElsewhere(install.target)) {
      Fault("the target leads out of its directory: " + Quoted(install.target));
    }
    const std::optional<std::uint64_t> length = Digits(arguments[2]);
    if (length) {
      install.length_bytes = *length;
      if (*length > std::numeric_limits<std::uint64_t>::max() - total_bytes_) {
        Fault("the length is not possible");
        lengths_known_ = false;
      } else {
        total_bytes_ += *length;
      }
    } else {
      Fault("the length is no number");
      lengths_known_ = false;
    }
    if (!IsDate(arguments[3])) Fault("the date is no date");
    if (arguments[5] != "2" || arguments[6] != "0") Fault("the options are not 2|0");
    std::string_view disks = arguments.back();
    for (bool at_end = false; !at_end;) {
      at_end = disks.find('|') == std::string_view::npos;
      const std::optional<std::uint64_t> disk = Digits(TakeArgument(disks));
      if (!disk || *disk == 0 || (!install.disks.empty() && *disk <= install.disks.back())) {
        Fault("the disks are not in order");
        break;
      }
      install.disks.push_back(*disk);
    }
    if (script_.faults.size() == faults_before) script_.installs.push_back(std::move(install));
  }

  void CheckWhole() {
    CheckRegistrations();
    for (const auto& [number, line] : user_directories_) {
      if (variables_.contains(FoldCase("UserDir" + number))) continue;
      script_.faults.push_back(
          {line, "installs into <UserDir" + number + ">, which no SetVar sets"});
    }
    if (max_bytes_ && lengths_known_ && *max_bytes_ != total_bytes_) {
      script_.faults.push_back({max_bytes_line_, "MaxBytes is " + std::to_string(*max_bytes_) +
                                                     ", the files have " +
                                                     std::to_string(total_bytes_) + " bytes"});
    }
    std::stable_sort(script_.faults.begin(), script_.faults.end(),
                     [](const ScriptFault& a, const ScriptFault& b) { return a.line < b.line; });
    line_ = 0;
    if (section_ != Section::kToDo) Fault("[ToDo] is missing");
    for (std::size_t i = 0; i < kParameters.size(); ++i) {
      if (parameter_counts_[i] == kParameters[i].count) continue;
      Fault("the parameter " + std::string(kParameters[i].name) + " stands " +
            std::to_string(parameter_counts_[i]) + " times");
    }
    if (open_ifs_ > 0) Fault("If without EndIf");
  }

  // Dependency files may have components registered that are on the target computer already; one
  // that nearly is what a line installs was damaged.
  void CheckRegistrations() {
    // Each costs a look at all targets; a damaged script has a few.
    std::size_t left = 20;
    for (const auto& [line, target] : registrations_) {
      const std::string folded = FoldCase(target);
      if (targets_.contains(folded)) continue;
      if (left-- == 0) return;
      const bool damaged = std::any_of(
          targets_.begin(), targets_.end(),
          [&](const std::string& installed) { return AlikeButForOneByte(installed, folded); });
      if (!damaged) continue;
      script_.faults.push_back({line, "registers " + Quoted(target) + ", which no line installs"});
    }
  }

  SetupScript& script_;
  std::size_t line_ = 0;
  Section section_ = Section::kNone;
  std::array<int, kParameters.size()> parameter_counts_ = {};
  std::optional<std::uint64_t> max_bytes_;
  std::size_t max_bytes_line_ = 0;
  std::uint64_t total_bytes_ = 0;
  bool lengths_known_ = true;
  std::size_t open_ifs_ = 0;
  std::unordered_set<std::string> archives_;   // folded
  std::unordered_set<std::string> targets_;    // folded
  std::unordered_set<std::string> variables_;  // folded
  // Number as written, and the first line that installs into it.
  std::unordered_map<std::string, std::size_t> user_directories_;
  std::vector<std::pair<std::size_t, std::string>> registrations_;
};

bool IsDevice(std::string_view name) {
  std::string stem(name.substr(0, name.find('.')));
  while (!stem.empty() && stem.back() == ' ') stem.pop_back();
  for (const std::string_view device : {"CON", "PRN", "AUX", "NUL"}) {
    if (EqualNoCase(stem, device)) return true;
  }
  const bool numbered = stem.size() == 4 && IsDigit(stem[3]) && stem[3] != '0';
  return numbered &&
         (EqualNoCase(stem.substr(0, 3), "COM") || EqualNoCase(stem.substr(0, 3), "LPT"));
}

}  // namespace

SetupScript ParseSetupScript(std::string_view bytes) {
  SetupScript script;
  Parser(script).Parse(bytes);
  return script;
}

bool IsPlainFileName(std::string_view name) {
  if (name.empty() || name.size() > kMaxFileNameBytes) return false;
  if (name.back() == '.' || name.back() == ' ') return false;
  for (const char c : name) {
    if (static_cast<unsigned char>(c) < 0x20) return false;
    if (std::string_view("\\/:*?\"<>|").find(c) != std::string_view::npos) return false;
  }
  return !IsDevice(name);
}

}  // namespace txs
