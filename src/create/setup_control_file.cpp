#include "create/setup_control_file.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <vector>

#include "create/setup_kit.h"
#include "create/stage_view.h"
#include "document/path_variables.h"
#include "document/work_border.h"
#include "environment/code_page.h"
#include "environment/project_type.h"
#include "environment/windows_path.h"

namespace txs {
namespace {

constexpr long kTextWriting = 426;
constexpr long kMessageControlFile = 904;
constexpr long kMessageFirstDiskTooFull = 1932;
constexpr long kMessageUserDirectoryAstray = 1934;
constexpr char kScriptName[] = "SETUP.STP";

constexpr std::string_view kWriteVendorValue =
    R"(WriteRegistry(HKEY_LOCAL_MACHINE|Software\ORBEKA GmbH|)";
constexpr std::string_view kWriteStudioValue =
    R"(WriteRegistry(HKEY_LOCAL_MACHINE|Software\ORBEKA GmbH\Tavix\4.0|)";

// The script grows by about this much per file; only the number of allocations depends on it.
constexpr std::size_t kBytesPerRow = 160;
constexpr std::size_t kBytesOfFrame = 4096;

// A row with what the developer's computer tells about its file.
struct ScriptFile {
  const FileRow* row = nullptr;
  std::string path;  // variables resolved
  std::string name;
};

std::string DateText(const LocalTime& time) {
  std::array<char, 40> text;
  const int length =
      std::snprintf(text.data(), text.size(), "%02d.%02d.%04d", time.day, time.month, time.year);
  return std::string(text.data(), static_cast<std::size_t>(length));
}

// Where the first of the commands ends that an entry joins by "@". Names of projects and drivers
// may hold an "@", too: within the parentheses of a command, one that no command follows joins
// nothing.
std::size_t EndOfCommand(std::string_view commands) {
  const auto is_letter = [](char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); };
  for (std::size_t at = commands.find('@'); at != std::string_view::npos;
       at = commands.find('@', at + 1)) {
    const std::string_view before = commands.substr(0, at);
    if (before.find('(') == std::string_view::npos) return at;
    if (before.back() != ')') continue;
    std::size_t next = at + 1;
    while (next < commands.size() && is_letter(commands[next])) ++next;
    if (next == commands.size() || commands[next] == '(' || commands[next] == '@') return at;
  }
  return commands.size();
}

class ScriptWriter {
 public:
  explicit ScriptWriter(Application& application)
      : application_(application), steps_(application.document.steps) {
    const std::vector<FileRow*> rows = application.document.AllRows();
    files_.reserve(rows.size());
    for (const FileRow* row : rows) {
      ScriptFile& file = files_.emplace_back();
      file.row = row;
      file.path = SourcePath(application.document.path_variables, row->source);
      file.name = FileName(file.path);
    }
    text_.reserve(kBytesOfFrame + rows.size() * kBytesPerRow);
  }

  std::string Write() {
    WriteParams();
    Line("[ToDo]");
    WriteDirectoryVariables();
    Line("CheckDiskSpace");
    WriteProductEntries();
    const std::vector<bool> installed = WriteRuntimeSetups();
    for (const UserDirectory& directory : steps_.user_directories) {
      Line("CreateDir(", directory.directory, ")");
    }
    for (std::size_t i = 0; i < files_.size(); ++i) {
      if (!installed[i]) WriteInstallFile(files_[i]);
    }
    WriteRegistrations();
    WriteExtraEntries();
    WriteStartEntries();
    return std::move(text_);
  }

 private:
  template <typename... Parts>
  void Line(const Parts&... parts) {
    (text_.append(parts), ...);
    text_.append("\r\n");
  }

  void WriteParams() {
    Line("[Params]");
    Line("DefLang=0");
    Line("Silent=1");
    Line("Force=0");
    Line("TargetDir=", steps_.project_directory);
    Line("SetupName=", application_.project.name);
    for (const std::string& info : steps_.info.german) Line("SetupDesc0=", info);
    for (const std::string& info : steps_.info.english) Line("SetupDesc1=", info);
    Line("MaxBytes=", steps_.total_bytes_label);
    Line("MaxDisk=", steps_.disks_needed_label);
  }

  void WriteDirectoryVariables() {
    const std::string& main_directory = steps_.tavix_directory;
    Line("SetVar(TavixMainDir|", main_directory, ")");
    // Kept on purpose: on the target computer the studio lies in the main directory itself.
    Line("SetVar(TavixStudioDir|", main_directory, ")");
    Line("SetVar(TavixCommonDir|", main_directory, "\\Common)");
    Line("SetVar(ProjectDir|", steps_.project_directory, ")");
    // Kept on purpose: the number is the row's, not that of its name in the list. They differ once
    // a row before it has been deleted.
    for (std::size_t i = 0; i < steps_.user_directories.size(); ++i) {
      Line("SetVar(UserDir", std::to_string(i + 1), "|", steps_.user_directories[i].directory, ")");
    }
  }

  void WriteProductEntries() {
    Line(kWriteVendorValue, "MAINDIR|<TavixMainDir>|1)");
    Line(kWriteVendorValue, "Common|<TavixCommonDir>|1)");
    Line(kWriteVendorValue, "OPC|<TavixMainDir>\\OPC|1)");
    Line(kWriteStudioValue, "Path|<TavixStudioDir>|1)");
    // Kept on purpose: German, whatever language the setup runs in.
    Line(kWriteStudioValue, "LCID|1031|3)");
  }

  // Installs and runs the predefined runtime setups among the first two rows. Returns for every row
  // whether it was installed here; all others are ordinary files, also a first row before a second
  // that is a runtime setup.
  std::vector<bool> WriteRuntimeSetups() {
    std::vector<bool> installed(files_.size(), false);
    if (!application_.use_runtime_setup) return installed;
    for (std::size_t i = 0; i < files_.size() && i < 2; ++i) {
      const ScriptFile& file = files_[i];
      if (!EqualNoCase(file.name, "TXSRuntimeClientSetup.exe") &&
          !EqualNoCase(file.name, "TXSRuntimeServerSetup.exe")) {
        continue;
      }
      installed[i] = true;
      Line(kWriteStudioValue, "RuntimeSetup|0|3)");
      WriteInstallFile(file);
      Line("ExecFile(<TavixMainDir>\\SetupKit\\", file.name, "|0|/S)");
      Line("If(IsEqual(ReadRegistry(HKEY_LOCAL_MACHINE|",
           "Software\\ORBEKA GmbH\\Tavix\\4.0|RuntimeSetup|0)|2))");
      Line(
          "  "
          "WriteRegistry(HKEY_CURRENT_USER|Software\\Microsoft\\Windows\\CurrentVersion\\RunOnce|",
          "TavixStudio Setup|<AppDir>\\Setup.exe|1)");
      Line("  SetVar(Reboot|1)");
      Line("  Exit");
      Line("EndIf");
    }
    return installed;
  }

  void WriteInstallFile(const ScriptFile& file) {
    const FileTime last_write = application_.platform.files.LastWriteTime(file.path);
    const std::string version = application_.platform.tools.FileVersionText(file.path);
    const std::string date = DateText(application_.platform.clock.ToLocal(last_write));
    const std::string length =
        file.row->length_bytes ? std::to_string(*file.row->length_bytes) : std::string();
    Line("InstallFile(", file.row->compressed_name, "|", file.row->destination, "\\", file.name,
         "|", length, "|", date, "|", version, "|2|0", file.row->disk, ")");
  }

  void WriteRegistrations() {
    for (const ScriptFile& file : files_) {
      const std::string& kind = file.row->registration;
      if (kind == "1") {
        Line("RegInProc(", file.row->destination, "\\", file.name, ")");
      } else if (kind == "2") {
        Line("RegOutProc(", file.row->destination, "\\", file.name, ")");
      }
    }
  }

  void WriteExtraEntries() {
    for (const std::string& entry : application_.document.extra_todo_lines) {
      for (std::string_view rest = entry; !rest.empty();) {
        const std::size_t end = EndOfCommand(rest);
        // An empty piece is no command: the engine's scripts have no blank lines.
        if (end > 0) Line(rest.substr(0, end));
        rest.remove_prefix(std::min(end + 1, rest.size()));
      }
    }
  }

  void WriteStartEntries() {
    std::string working_directory;
    switch (application_.project.type) {
      case kProjectTypeServer:
        working_directory = "<TavixStudioDir>\\System";
        Line(kWriteStudioValue, "Actual Project|", application_.project.name, "|1)");
        Line(kWriteStudioValue, "AutoStart|1|3)");
        break;
      case kProjectTypeSingle:
      case kProjectTypeClient:
        working_directory = "<ProjectDir>";
        break;
      default:
        // Kept on purpose: the link's target then begins with "\".
        break;
    }
    WriteShellLink("0", steps_.startmenu_folder.german, steps_.startmenu_link.german,
                   working_directory);
    WriteShellLink("1", steps_.startmenu_folder.english, steps_.startmenu_link.english,
                   working_directory);
  }

  void WriteShellLink(std::string_view language, const std::string& folder, const std::string& link,
                      const std::string& working_directory) {
    if (folder.empty() || link.empty()) return;
    Line("If(IsEqual(<Language>|", language, "))");
    Line("  CreateShellLink(", working_directory, "\\", application_.document.program_name,
         "|<ProgramsDir>\\", folder, "\\", link, "|", working_directory, ")");
    Line("EndIf");
  }

  Application& application_;
  const StepSettings& steps_;
  std::vector<ScriptFile> files_;
  std::string text_;
};

// The user directories that rows have as destinations and that the script does not set, or sets to
// another directory, since it numbers them anew: "<UserDir2>, <UserDir3>", or nothing.
std::string UserDirectoriesAstray(SetupDocument& document) {
  constexpr std::string_view kBegin = "<UserDir";
  const std::vector<UserDirectory>& directories = document.steps.user_directories;
  std::set<std::string> done;  // folded: those that keep their number, and those that were named
  for (std::size_t i = 0; i < directories.size(); ++i) {
    const std::string number = std::to_string(i + 1);
    if (std::to_string(directories[i].number) != number) continue;
    done.insert(FoldCase(std::string(kBegin) + number + ">"));
  }

  std::string astray;
  for (const FileRow* row : document.AllRows()) {
    const std::string_view destination = row->destination;
    const std::string_view variable = destination.substr(0, destination.find('>') + 1);
    if (!EqualNoCase(variable.substr(0, kBegin.size()), kBegin)) continue;
    if (!done.insert(FoldCase(variable)).second) continue;
    astray.append(astray.empty() ? "" : ", ").append(variable);
  }
  return astray;
}

}  // namespace

std::string SetupControlText(Application& application) { return ScriptWriter(application).Write(); }

bool CheckScriptCharacters(Application& application) {
  return AtWorkBorder(application, kMessageControlFile, kScriptName, [&] {
    const auto check = [](std::string_view text) { static_cast<void>(Utf8ToAnsi(text)); };
    SetupDocument& document = application.document;
    const StepSettings& steps = document.steps;
    check(application.project.name);
    check(document.program_name);
    for (const std::string& info : steps.info.german) check(info);
    for (const std::string& info : steps.info.english) check(info);
    for (const auto* text : {&steps.startmenu_folder, &steps.startmenu_link}) {
      check(text->german);
      check(text->english);
    }
    check(steps.tavix_directory);
    check(steps.project_directory);
    for (const UserDirectory& directory : steps.user_directories) check(directory.directory);
    for (const FileRow* row : document.AllRows()) {
      check(FileName(SourcePath(document.path_variables, row->source)));
      check(row->destination);
    }
    for (const std::string& entry : document.extra_todo_lines) check(entry);
    return true;
  });
}

bool WriteSetupControlFile(Application& application, CreateView& view, const CreateState& state) {
  std::uint64_t script_bytes = 0;
  const bool written = AtWorkBorder(application, kMessageControlFile, kScriptName, [&] {
    view.ShowFile(kScriptName);
    view.ShowAction(application.texts.GetText(kTextWriting));
    if (CancelledMeanwhile(view)) return false;

    const BusyPointer busy(view);
    // Complete and converted before the file is opened: a file that vanished or a character that
    // the code page lacks leaves the placeholder, not half a script.
    const std::string bytes = Utf8ToAnsi(SetupControlText(application));
    const std::unique_ptr<OutputFile> file = application.platform.files.CreateForWriting(
        JoinPath(state.first_disk_directory, kScriptName));
    file->Write(std::as_bytes(std::span(bytes)));
    file->Close();
    script_bytes = bytes.size();
    return true;
  });

  const std::uint64_t room = kScriptPlaceholderBytes + state.first_disk_free_bytes;
  if (script_bytes > room) {
    ShowWarning(application, kMessageFirstDiskTooFull, {std::to_string(script_bytes - room)});
  }
  if (written) {
    const std::string astray = UserDirectoriesAstray(application.document);
    if (!astray.empty()) ShowWarning(application, kMessageUserDirectoryAstray, {astray});
  }
  return written;
}

}  // namespace txs
