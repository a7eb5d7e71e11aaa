// Every operation that a user can start, with every operation of the platform failing under it: for
// N = 1, 2, ... until the action succeeds undisturbed, the Nth operation of disk, registry, locks
// or archiver fails, alone or with all that follow, not done or half done, for each of five
// reasons.
//
// Each time: one message with the number, the file and the words of what failed, no success that is
// none, the settings file whole, the sources as they were, and a next undisturbed action that ends
// as if nothing had happened. Where something else is right, a function here says what and why.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <iostream>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <sstream>
#include <string>
#include <vector>

#include "document/path_variables.h"
#include "environment/code_page.h"
#include "environment/installation.h"
#include "environment/windows_path.h"
#include "fakes/memory_platform.h"
#include "fakes/noise.h"
#include "fakes/recording_create_view.h"
#include "fakes/recording_messages.h"
#include "fakes/scripted_setup_wizard_view.h"
#include "projects/open_project.h"
#include "projects/project_registry.h"
#include "startup/application_start.h"
#include "startup/message_routing.h"
#include "startup/start_routine.h"
#include "strings/reason.h"
#include "strings/string_table.h"
#include "ui/setup_wizard_presenter.h"
#include "ui/window_memory.h"

namespace txs {
namespace {

constexpr char kSettings[] = "C:\\Demo\\Demo.swz";
constexpr char kOutput[] = "C:\\Demo\\Setup";
constexpr char kOldArchive[] = "C:\\Demo\\Setup\\DISK7\\old.zip";
constexpr char kOtherSettings[] = "C:\\Anlagen\\Süd\\Süd.swz";

constexpr char kOldSettings[] =
    "; by hand\r\n"
    "[program]\r\nname=Demo.exe\r\ngroup=Demo\r\nicon=Demo\r\n"
    "[path]\r\ntavix=C:\\TavixStudio\r\nproject=C:\\Demo\r\n1=D:\\Rezepte\r\n"
    "[destination]\r\nsize=0\r\nServicePack=0\r\npath=<ProjectDir>\\Setup\r\n"
    "[file]\r\n"
    "01=<ProjectDir>\\Demo.exe,<ProjectDir>,0\r\n"
    "02=<WinSysDir>\\Trend.ocx,<WinSysDir>,1\r\n"
    "03=<ProjectDir>\\leer.txt,<UserDir1>,0\r\n"
    "[HiddenFile]\r\n01=<ProjectDir>\\hidden.dat,<ProjectDir>,0\r\n";

// A project whose directory has been deleted.
constexpr char kGone[] = "Altwerk";
constexpr char kForm[] = "FSetupWizard";

// A studio with a Visual Basic project on diskettes: the setup kit leaves so little room on the
// first one that an archive is split. A second project.
void Install(MemoryPlatform& computer) {
  computer.InstallStudio();
  MemoryFileSystem& files = computer.files;
  files.AddFile("C:\\TavixStudio\\SetupKit\\TXSTPKIT.INI",
                "[SetupFiles]\r\nCount=2\r\n1=SETUP.EXE\r\n2=README.TXT\r\n");
  files.AddFile("C:\\TavixStudio\\SetupKit\\SETUP.EXE", std::string(1'408'000, 's'));
  files.AddFile("C:\\TavixStudio\\SetupKit\\README.TXT", "read me");
  files.AddFile("C:\\TavixStudio\\SetupKit\\TXDependencies.ini",
                "[Exclude]\r\n1=kernel32.dll\r\n[Trend.ocx]\r\nUses1=need.dll\r\nI1=a line\r\n");
  computer.registry.Write(Hive::kLocalMachine,
                          "Software\\Microsoft\\VisualStudio\\6.0\\Setup\\Microsoft Visual Basic",
                          "ProductDir", std::string("C:\\VB98"));
  files.AddFile("C:\\VB98\\Wizards\\PDWizard\\Vb6dep.ini",
                "[VB Runtime]\r\nUses1=vm.dll\r\n[Trend.ocx]\r\nRegister=$(DLLSelfRegister)\r\n");
  computer.registry.Write(Hive::kClassesRoot, "TypeLib\\{1}\\1.2\\0\\win32", "",
                          std::string("C:\\Windows\\System32\\Trend.ocx"));
  for (const char* name : {"Trend.ocx", "need.dll", "vm.dll"}) {
    files.AddFile(std::string("C:\\Windows\\System32\\") + name, Noise(700));
  }

  computer.RegisterProject("Demo", "C:\\Demo\\", "Single");
  files.AddFile("C:\\Demo\\Demo.txs",
                "[Global]\r\nDesigner=Visual Basic 6.0\r\nDesignerProject=Demo.vbp\r\n"
                "[ServerComponents]\r\n1=need.dll\r\n");
  files.AddFile("C:\\Demo\\Demo.vbp",
                "Type=Exe\r\nObject={1}#1.2#0; Trend.ocx\r\nExeName32=\"Demo.exe\"\r\n");
  files.AddFile("C:\\Demo\\Demo.exe", Noise(25'000));
  files.AddFile("C:\\Demo\\leer.txt", "");
  files.AddFile("C:\\Demo\\hidden.dat", "hidden");
  files.AddFile("C:\\Demo\\Alarm.rct", "alarm");
  files.AddFile(kSettings, kOldSettings);
  files.AddFile(kOldArchive, "of an earlier run");

  computer.RegisterProject("Süd", "C:\\Anlagen\\Süd", "Server");
  files.AddFile(kOtherSettings,
                Utf8ToAnsi("[setup]\r\ntext1=Werk Süd\r\n[file]\r\n01=a.dll,<WinSysDir>,1\r\n"));

  computer.RegisterProject(kGone, "C:\\Anlagen\\Altwerk", "Single");
  computer.files.Vanish("C:\\Anlagen\\Altwerk");
  RememberWindow(computer.registry, kForm, {.width = 800, .height = 600, .columns = {120}});
  computer.CountEverything();
}

// All that a document holds.
std::string Describe(const SetupDocument& document) {
  std::ostringstream text;
  const auto list = [&](const char* name, const std::vector<std::string>& lines) {
    for (const std::string& line : lines) text << name << ' ' << line << '\n';
  };
  const auto rows = [&](const char* name, const FileList& file_list) {
    for (const auto& [source, destination, length, disk, archive, registration, marked] :
         file_list.Rows()) {
      text << name << ' ' << source << '|' << destination << '|'
           << (length ? std::to_string(*length) : "") << '|' << disk << '|' << archive << '|'
           << registration << '|' << marked << '\n';
      if (marked) text << "marked " << SourcePath(document.path_variables, source) << '\n';
    }
  };
  const auto both = [&](const char* name, const Bilingual<std::string>& texts) {
    list(name, {texts.german, texts.english});
  };
  // Names every member, so that a new one cannot be forgotten here.
  const auto& [steps, files, hidden_files, ini_files, hidden_ini_files, system_files,
               extra_todo_lines, unfinished_files, program_name, path_variables, configurator_value,
               settings_source, settings_digest, changed] = document;
  const auto& [info, background_picture, startmenu_folder, startmenu_link, tavix_directory,
               project_directory, user_directories, use_jet, use_odbc, designer, disk_size_index,
               setup_directory, minimal_mdac, service_pack, file_count, total_bytes, disks_needed,
               is_estimate] = steps;
  list("German", {info.german.begin(), info.german.end()});
  list("English", {info.english.begin(), info.english.end()});
  both("picture", background_picture);
  both("folder", startmenu_folder);
  both("link", startmenu_link);
  list("directories", {tavix_directory, project_directory, setup_directory});
  for (const auto& [number, directory] : user_directories) {
    text << "user " << number << ' ' << directory << '\n';
  }
  text << "flags " << use_jet << use_odbc << static_cast<int>(designer) << disk_size_index
       << minimal_mdac << service_pack << is_estimate << changed << '\n';
  list("figures", {file_count, total_bytes, disks_needed});
  rows("row", files);
  rows("hidden", hidden_files);
  list("ini", ini_files);
  list("hidden ini", hidden_ini_files);
  list("resolved", system_files.resolved);
  list("excluded", system_files.excluded);
  list("to do", extra_todo_lines);
  list("unfinished", unfinished_files);
  for (const auto& [name, value] : path_variables) text << name << '=' << value << '\n';
  list("program", {program_name, configurator_value});
  text << "source " << static_cast<int>(settings_source) << ' ' << settings_digest << '\n';
  return text.str();
}

bool Contains(std::string_view text, const std::string& part) {
  return text.find(part) != std::string_view::npos;
}

constexpr char kMissing[] = "missing: ";

// Lines as in memory, without empty ones at the end.
std::string Tidy(std::string text) {
  std::erase(text, '\r');
  text.erase(text.find_last_not_of('\n') + 1);
  return text;
}

// Operations that answer "no" instead of failing.
bool IsQuestion(const std::string& operation) {
  return operation == "FileExists" || operation == "FolderExists" || operation == "Stamp" ||
         operation == "FinalPath";
}

// Operations that may have done half of their work when they fail.
bool CanBeHalfDone(const std::string& operation) {
  return operation == "Write" || operation == "CopyWhole" || operation == "MoveWhole" ||
         operation == "RemoveTree";
}

struct FaultKind {
  const char* name;
  ErrorNumber number;
  const char* words;
};

constexpr FaultKind kKinds[] = {
    {"not found", ErrorNumber::kFileNotFound, "No such file or directory"},
    {"path not found", ErrorNumber::kPathNotFound, "The network path was not found"},
    {"access denied", ErrorNumber::kPermissionDenied, "Access is denied"},
    {"disk full", ErrorNumber::kDiskFull, "No space left on device"},
    {"sharing violation", ErrorNumber::kPermissionDenied,
     "The process cannot access the file because it is being used by another process"},
};

bool SaysNotFound(ErrorNumber error) {
  return error == ErrorNumber::kFileNotFound || error == ErrorNumber::kPathNotFound;
}

using Entries = std::span<const MemoryFileSystem::DiaryEntry>;

// What failed while an action was under way: one operation, or all from one on.
struct Fault {
  const FaultKind& reason;
  Entries operations;
  const MemoryFileSystem& files;  // sound again

  template <typename Condition>
  [[nodiscard]] bool Any(const Condition& condition) const {
    return std::ranges::any_of(operations, condition);
  }
  // The disk said, in one way or another, that what the path names is not there.
  [[nodiscard]] bool Hid(const MemoryFileSystem::DiaryEntry& entry) const {
    return IsQuestion(entry.operation) || SaysNotFound(reason.number);
  }
};

// One process at work on the computer.
class Process {
 public:
  virtual ~Process() = default;

  // The action with operations failing under it. True when it says that it succeeded.
  [[nodiscard]] virtual bool Act() = 0;

  // Prompts shown during the last Act, in whatever way; tidied.
  [[nodiscard]] virtual std::vector<std::string> Prompts() const = 0;

  // What it holds in memory.
  [[nodiscard]] virtual std::string Memory() const { return {}; }

  // What must hold besides, after a disturbed Act and with the platform sound again.
  virtual void CheckAfterwards(MemoryPlatform& /*computer*/, const Fault& /*fault*/,
                               bool /*succeeded*/) {}
};

// TXSetupWizard /c=Demo
class UnattendedRun : public Process {
 public:
  explicit UnattendedRun(MemoryPlatform& computer)
      : computer_(computer), messages_(computer.Get(), errors_) {}

  [[nodiscard]] bool Act() override {
    struct NoShell : InteractiveShell {
      std::string ChooseProject(Application&) override { return {}; }
      void RunMainForm(Application&) override {}
    } shell;
    RecordingCreateView view;
    return RunStartRoutine(computer_.Get(), messages_, shell, view, "/c=Demo") == 0;
  }

  [[nodiscard]] std::vector<std::string> Prompts() const override {
    std::vector<std::string> prompts;
    for (const auto& box : computer_.message_boxes.shown) prompts.push_back(Tidy(box.prompt));
    // An entry of the log begins with the date and time, which stands still.
    const char* const log = "C:\\Demo\\TXSetupWizard.log";
    const std::string begin = "21.11.2026 07:11:45\r\n";
    const std::string text =
        computer_.files.Has(log) ? AnsiToUtf8(computer_.files.Contents(log)) : "";
    for (std::size_t at = text.find(begin); at != std::string::npos;) {
      const std::size_t next = text.find(begin, at + 1);
      const std::size_t start = at + begin.size();
      prompts.push_back(Tidy(text.substr(start, next == text.npos ? next : next - start)));
      at = next;
    }
    // What could not be logged, and in a line of its own the reason why.
    const std::string unlogged = Tidy(errors_.str());
    if (const std::size_t line = unlogged.rfind('\n'); line != std::string::npos) {
      prompts.push_back(unlogged.substr(0, line));
      prompts.push_back(unlogged.substr(line + 1));
    } else if (!unlogged.empty()) {
      prompts.push_back(unlogged);
    }
    return prompts;
  }

 private:
  MemoryPlatform& computer_;
  std::ostringstream errors_;
  RoutedMessages messages_;
};

// The wizard with project Demo open, and a user who answers Yes.
class Session : public Process {
 public:
  using Action = std::function<bool(SetupWizardPresenter&)>;

  Session(MemoryPlatform& computer, Action action)
      : action_(std::move(action)),
        application_(StartApplication(computer.Get(), messages_, [](const Message&) {})),
        presenter_(*application_, view_) {
    SelectProject(*application_, "Demo", /*directory=*/{});
    LoadMainFormState(*application_);
    application_->use_runtime_setup = false;
    EXPECT_TRUE(OpenProject(*application_, "Demo"));
  }

  [[nodiscard]] bool Act() override {
    messages_.shown.clear();
    return action_(presenter_);
  }
  [[nodiscard]] std::vector<std::string> Prompts() const override {
    std::vector<std::string> prompts;
    for (const Message& message : messages_.shown) {
      if ((message.buttons & kIconMask) != kIconQuestion) prompts.push_back(Tidy(message.prompt));
    }
    return prompts;
  }
  [[nodiscard]] std::string Memory() const override { return Describe(application_->document); }

 protected:
  static constexpr int kIconMask = 0x70;

  Action action_;
  RecordingMessages messages_;
  std::unique_ptr<Application> application_;
  ScriptedSetupWizardView view_;
  SetupWizardPresenter presenter_;
};

class CreateSession : public Session {
 public:
  explicit CreateSession(MemoryPlatform& computer)
      : Session(computer, [this](SetupWizardPresenter& presenter) {
          presenter.Create();
          EXPECT_FALSE(view_.creates.back().run.busy);
          EXPECT_TRUE(view_.controls_enabled);
          return view_.creates.back().run.result == true;
        }) {}
};

class ScanSession : public Session {
 public:
  explicit ScanSession(MemoryPlatform& computer)
      : Session(computer, [this](SetupWizardPresenter& presenter) {
          presenter.Scan();
          EXPECT_FALSE(view_.scans.back().run.busy);
          EXPECT_TRUE(view_.controls_enabled);
          return view_.scans.back().run.result == true;
        }) {}

  // A file that was not found is reported in the window.
  [[nodiscard]] std::vector<std::string> Prompts() const override {
    std::vector<std::string> prompts = Session::Prompts();
    for (const MissingItem& item : view_.scans.back().run.missing) {
      prompts.push_back(kMissing + item.name);
    }
    return prompts;
  }
};

class SaveSession : public Session {
 public:
  explicit SaveSession(MemoryPlatform& computer)
      : Session(computer, [](SetupWizardPresenter& presenter) { return presenter.Save(); }) {
    presenter_.TextEdited(FindTextBox("txtInfo11"), "new");
    presenter_.DeleteRows({0});
  }

  void CheckAfterwards(MemoryPlatform& /*computer*/, const Fault& /*fault*/,
                       bool succeeded) override {
    EXPECT_EQ(application_->document.changed, !succeeded);
  }
};

class OpenSession : public Session {
 public:
  explicit OpenSession(MemoryPlatform& computer)
      : Session(computer, [this](SetupWizardPresenter& presenter) {
          view_.projects = {"Süd"};
          presenter.OpenProject();
          return Prompts().empty();
        }) {}

  // What was not read is not replaced, even by a user who saves at once.
  void CheckAfterwards(MemoryPlatform& computer, const Fault& /*fault*/, bool succeeded) override {
    const std::string before = computer.files.Contents(kOtherSettings);
    const std::size_t rows = application_->document.files.RowCount();
    const bool complete = rows == 1;
    if (succeeded && !complete) {
      EXPECT_EQ(rows, 0u);  // as of a project without settings
    }
    const bool saved = application_->project.name == "Süd" && presenter_.Save();
    EXPECT_EQ(saved, complete) << Memory();
    if (!saved) {
      EXPECT_EQ(computer.files.Contents(kOtherSettings), before);
    }
    computer.files.AddFile(kOtherSettings, before);
  }
};

// Clearing itself asks nothing of the platform and leaves the file alone; the save behind it may
// fail.
class ClearSession : public Session {
 public:
  explicit ClearSession(MemoryPlatform& computer)
      : Session(computer, [this](SetupWizardPresenter& presenter) {
          messages_.answers = {MessageResult::kYes};
          presenter.ClearSettings();
          EXPECT_EQ(application_->document.files.RowCount(), 0u);
          return presenter.Save();
        }) {}
};

// The Open-Project dialog fills its list, and tidies up the registration of a project that has
// gone.
class ProjectList : public Process {
 public:
  explicit ProjectList(MemoryPlatform& computer) : computer_(computer) {}

  [[nodiscard]] bool Act() override {
    constexpr long kAllTypes = -1;
    FillRegisteredProjects(computer_.Get(), kAllTypes, list_);
    return list_.rows.size() == 2 && !Registered(kGone);
  }
  [[nodiscard]] std::vector<std::string> Prompts() const override { return {}; }
  [[nodiscard]] std::string Memory() const override {
    std::string text;
    for (const auto& [key, name, directory, type] : list_.rows) {
      text += key + '|' + name + '|' + directory + '|' + type + '\n';
    }
    return text;
  }

  // Only what the disk says is not there is missing in the list, and nobody's registration with it.
  void CheckAfterwards(MemoryPlatform& computer, const Fault& fault, bool /*succeeded*/) override;

 private:
  [[nodiscard]] bool Registered(const std::string& name) const {
    return !computer_.tools
                .RegistryText(Hive::kLocalMachine, std::string(kProjectsKey) + "\\" + name, "Path",
                              "")
                .empty();
  }

  MemoryPlatform& computer_;
  ProjectListModel list_;
};

// The disk alone fails, as a share does: the registry would take every change.
class ProjectListOfAFailingDisk : public ProjectList {
 public:
  explicit ProjectListOfAFailingDisk(MemoryPlatform& computer) : ProjectList(computer) {
    computer.registry.before_change = nullptr;
  }
};

// A form is closed and its place is kept for the next session.
class WindowPlacement : public Process {
 public:
  explicit WindowPlacement(MemoryPlatform& computer) : computer_(computer) {}

  [[nodiscard]] bool Act() override {
    const RememberedWindow window{.width = 900, .height = 700, .columns = {300, 200}};
    RememberWindow(computer_.registry, kForm, window);
    return RecallWindow(computer_.registry, kForm) == window;
  }
  [[nodiscard]] std::vector<std::string> Prompts() const override { return {}; }

 private:
  MemoryPlatform& computer_;
};

struct Scenario {
  const char* name;
  std::unique_ptr<Process> (*start)(MemoryPlatform&);
  // Files that the action may change: those below these folders, and these files.
  std::vector<std::string> may_change = {};
  bool changes_settings = false;
  bool names_files = false;  // each file that was not found in a message of its own
  bool is_quiet = false;     // what fails is left as it was for the next time, without a word
};

template <typename Kind>
std::unique_ptr<Process> Start(MemoryPlatform& computer) {
  return std::make_unique<Kind>(computer);
}

std::ostream& operator<<(std::ostream& out, const Scenario& scenario) {
  return out << scenario.name;
}

const Scenario kScenarios[] = {
    {.name = "UnattendedCreate",
     .start = Start<UnattendedRun>,
     .may_change = {"C:\\Demo\\Setup\\", "C:\\Demo\\~TEMP\\"}},
    {.name = "Create",
     .start = Start<CreateSession>,
     .may_change = {"C:\\Demo\\Setup\\", "C:\\Demo\\~TEMP\\"}},
    {.name = "Scan", .start = Start<ScanSession>, .names_files = true},
    {.name = "Save", .start = Start<SaveSession>, .changes_settings = true},
    {.name = "Open", .start = Start<OpenSession>},
    {.name = "ClearAndSave", .start = Start<ClearSession>, .changes_settings = true},
    {.name = "ListOfProjects", .start = Start<ProjectList>, .is_quiet = true},
    {.name = "ListOfProjectsOfAFailingDisk",
     .start = Start<ProjectListOfAFailingDisk>,
     .is_quiet = true},
    {.name = "WindowPlacement", .start = Start<WindowPlacement>, .is_quiet = true},
};

using Disk = std::map<std::string, std::string>;

// Files and registry.
Disk Contents(const MemoryPlatform& computer) {
  Disk disk;
  for (auto& [address, value] : computer.registry.Everything()) {
    disk["registry " + address] = value;
  }
  for (const std::string& path : computer.files.AllFiles()) {
    if (!path.ends_with("TXSetupWizard.log")) disk[path] = computer.files.Contents(path);
  }
  return disk;
}

Disk Untouchable(const Scenario& scenario, Disk disk) {
  std::erase_if(disk, [&](const auto& file) {
    return file.first == kSettings ||
           std::any_of(scenario.may_change.begin(), scenario.may_change.end(),
                       [&](const std::string& place) { return file.first.starts_with(place); });
  });
  return disk;
}

std::vector<std::string> Names(const Disk& disk) {
  std::vector<std::string> names;
  for (const auto& [name, bytes] : disk) names.push_back(name);
  return names;
}

// Whether the prompt is one of these messages, whatever its parameters.
bool IsMessage(const std::string& prompt, std::initializer_list<long> ids) {
  return std::ranges::any_of(ids, [&](long id) {
    const std::string_view text = StoredText(id).value_or("@");
    return text.find('@') > 0 && prompt.starts_with(text.substr(0, text.find_first_of("@\r\\")));
  });
}

bool IsLog(const std::string& path) { return path.ends_with("TXSetupWizard.log"); }

// The archiver's code for what failed below it.
ArchiveResult CodeOf(const std::string& operation, ErrorNumber error) {
  const bool is_full = error == ErrorNumber::kDiskFull;
  if (operation == "OpenForReading" || operation == "Archiver.Compress") {
    if (SaysNotFound(error)) return ArchiveResult::kSourceNotFound;
    return is_full && operation == "Archiver.Compress" ? ArchiveResult::kDiskFull
                                                       : ArchiveResult::kSourceUnreadable;
  }
  if (operation == "Read" || operation == "Seek") return ArchiveResult::kSourceUnreadable;
  if (is_full) return ArchiveResult::kDiskFull;
  return operation == "CreateForWriting" ? ArchiveResult::kArchiveNotCreated
                                         : ArchiveResult::kWriteError;
}

// The directories of the studio are not there, as far as the disk says. The program then ends as
// after any other answer to its first questions, with exit code 0.
bool EndsTheStart(const std::string& prompt) { return IsMessage(prompt, {91, 92, 94}); }

// A success all the same, but not that of an undisturbed run, and said to be none. 1713 is what a
// Scan says of a project whose file does not tell the tool it was made with, 1937 of a studio
// without its dependency file.
bool SaysWhatIsMissing(const std::string& prompt) {
  return EndsTheStart(prompt) || prompt.starts_with(kMissing) || IsMessage(prompt, {1713, 1937});
}

// The number, the file and the words of an operation that failed.
bool TellsTheError(const std::string& prompt, const Fault& fault) {
  return fault.Any([&](const MemoryFileSystem::DiaryEntry& entry) {
    const auto tells = [&](ErrorNumber number, const std::string& words) {
      return prompt.ends_with("\n(" + std::to_string(static_cast<int>(number)) + ": " + entry.path +
                              ": " + words + ")");
    };
    if (prompt == entry.path + ": " + fault.reason.words) return IsLog(entry.path);
    // What answers "no" leaves the words to the program.
    return tells(fault.reason.number, fault.reason.words) ||
           (IsQuestion(entry.operation) &&
            tells(ErrorNumber::kFileNotFound, Words(Reason::kFileNotFound)));
  });
}

// The archiver's code, the file and the words.
bool TellsTheArchiversError(const std::string& prompt, const Fault& fault) {
  if (!IsMessage(prompt, {902})) return false;
  return fault.Any([&](const MemoryFileSystem::DiaryEntry& entry) {
    const auto tells = [&](ArchiveResult code, const std::string& words) {
      return prompt.ends_with("'!\n(" + std::to_string(static_cast<int>(code)) + ")\n" +
                              entry.path + ": " + words);
    };
    if (IsQuestion(entry.operation)) {
      return tells(ArchiveResult::kSourceNotFound, Words(Reason::kFileNotFound)) ||
             tells(ArchiveResult::kSourceChanged, Words(Reason::kChangedDuringRun));
    }
    return tells(CodeOf(entry.operation, fault.reason.number), fault.reason.words);
  });
}

// What has no number and words of the system, since the system only said that something is not
// there; but names it.
bool NamesWhatIsNotThere(const std::string& prompt, const Fault& fault, const std::string& memory) {
  return fault.Any([&](const MemoryFileSystem::DiaryEntry& entry) {
    // A folder that cannot be listed is not searched for a file.
    if (entry.operation == "List" && prompt.starts_with(kMissing)) {
      return fault.files.Has(JoinPath(entry.path, prompt.substr(sizeof(kMissing) - 1)));
    }
    if (!fault.Hid(entry)) return false;
    const std::string name = FileName(entry.path);
    if (EndsTheStart(prompt)) return Contains(prompt, "[" + entry.path + "]");
    if (prompt.starts_with(kMissing)) return prompt == kMissing + name;
    // In the text, or by a mark on the row that shows it.
    if (IsMessage(prompt, {1709})) {
      return prompt.ends_with("\n" + entry.path) || Contains(prompt, "\n" + entry.path + "\n") ||
             Contains(memory, "marked " + entry.path + "\n");
    }
    if (IsMessage(prompt, {1711})) return name == "Demo.exe" || entry.path == kSettings;
    if (IsMessage(prompt, {1713})) return name == "Demo.txs";
    if (IsMessage(prompt, {1937})) return Contains(prompt, "'" + entry.path + "'");
    // An archive that is no longer there when it was just made.
    return IsMessage(prompt, {902}) && prompt.ends_with("'" + name + "'!");
  });
}

// The document of a success is that of an undisturbed run, but for what the disk only said was not
// there, or not there any more:
bool MayDiffer(const Fault& fault, const std::vector<std::string>& prompts) {
  // A file that a Scan looked for is left out, and named; so is a program whose kind nobody told.
  if (std::ranges::any_of(prompts, SaysWhatIsMissing)) return true;
  return fault.Any([&](const MemoryFileSystem::DiaryEntry& entry) {
    // Many computers do not have the dependency file of Visual Basic: a Scan does without it.
    if (entry.operation == "FileExists" && entry.path.ends_with("\\Vb6dep.ini")) return true;
    // A project without settings opens with none.
    return fault.Hid(entry) && entry.path == kOtherSettings;
  });
}

// The lines of a document that tell of files and what is done with them.
std::set<std::string> FileLines(const std::string& memory) {
  std::set<std::string> lines;
  std::istringstream text(memory);
  for (std::string line; std::getline(text, line);) {
    if (line.starts_with("row ") || line.starts_with("to do ")) lines.insert(line);
  }
  return lines;
}

void ProjectList::CheckAfterwards(MemoryPlatform& /*computer*/, const Fault& fault,
                                  bool /*succeeded*/) {
  for (const char* const name : {"Demo", "Süd"}) {
    EXPECT_TRUE(Registered(name));
    const bool is_listed = Contains(Memory(), std::string("|") + name + "|");
    const bool was_hidden = fault.Any([&](const MemoryFileSystem::DiaryEntry& entry) {
      return IsQuestion(entry.operation) && FileName(entry.path) == std::string(name) + ".txs";
    });
    EXPECT_EQ(is_listed, !was_hidden) << Memory();
  }
  EXPECT_GE(list_.rows.size() + list_.unreachable, 2u);
}

class FaultSeries : public testing::TestWithParam<Scenario> {
 protected:
  // The faults of one series.
  void TrySeries(const FaultKind& reason, bool all_after) {
    for (std::uint64_t number = 1;; ++number) {
      SCOPED_TRACE(std::string(reason.name) + (all_after ? " from operation " : " at operation ") +
                   std::to_string(number));
      const std::optional<std::string> operation = Try(reason, all_after, number, /*half=*/false);
      if (!operation || HasFailure()) return;
      if (CanBeHalfDone(*operation)) {
        SCOPED_TRACE("half done");
        Try(reason, all_after, number, /*half=*/true);
        if (HasFailure()) return;
      }
    }
  }

  // One fault, and all that must hold then. The operation; nothing when there are less than that.
  std::optional<std::string> Try(const FaultKind& reason, bool all_after, std::uint64_t number,
                                 bool half) {
    MemoryPlatform computer;
    Install(computer);
    const Disk before = Contents(computer);
    std::unique_ptr<Process> process = GetParam().start(computer);
    computer.files.diary.clear();
    computer.files.failure_words = reason.words;
    computer.files.fail_half_done = half;
    if (all_after) {
      computer.files.FailFrom(number, reason.number);
    } else {
      computer.files.FailOperation(number, reason.number);
    }
    const bool succeeded = process->Act();
    computer.files.StopFailing();
    const std::vector<MemoryFileSystem::DiaryEntry> diary = computer.files.diary;
    if (diary.size() < number) {
      EXPECT_TRUE(succeeded);
      return std::nullopt;
    }
    ++faults_;
    const MemoryFileSystem::DiaryEntry& failed = diary[number - 1];
    SCOPED_TRACE(failed.operation + " " + failed.path);

    const Entries from_here = Entries(diary).subspan(number - 1);
    const Fault fault{reason, all_after ? from_here : from_here.first(1), computer.files};
    CheckMessages(*process, succeeded, all_after, fault);
    CheckResult(computer, before, *process, succeeded, fault);
    process->CheckAfterwards(computer, fault, succeeded);

    // As another process, since a scan keeps what a disturbed one has found.
    computer.message_boxes.shown.clear();
    computer.files.Vanish("C:\\Demo\\TXSetupWizard.log");
    process = GetParam().start(computer);
    EXPECT_TRUE(process->Act());
    EXPECT_THAT(process->Prompts(), testing::IsEmpty());
    EXPECT_EQ(process->Memory(), undisturbed_memory_);
    EXPECT_TRUE(Contents(computer) == undisturbed_disk_);
    return failed.operation;
  }

  // What the disturbed action has left.
  void CheckResult(const MemoryPlatform& computer, const Disk& before, const Process& process,
                   bool succeeded, const Fault& fault) const {
    Disk after = Contents(computer);
    if (GetParam().is_quiet) {
      EXPECT_TRUE(after == before || after == undisturbed_disk_);
    } else {
      EXPECT_EQ(Untouchable(GetParam(), after), Untouchable(GetParam(), before));
    }
    const std::string& settings = after.at(kSettings);
    EXPECT_TRUE(settings == before.at(kSettings) || settings == undisturbed_disk_.at(kSettings));
    if (GetParam().changes_settings) {
      EXPECT_EQ(settings != before.at(kSettings), succeeded);
    }
    if (!succeeded) return;
    const std::vector<std::string> prompts = process.Prompts();
    const bool ended_the_start = std::ranges::any_of(prompts, EndsTheStart);
    EXPECT_TRUE(after == (ended_the_start ? before : undisturbed_disk_))
        << testing::PrintToString(Names(after));
    if (MayDiffer(fault, prompts)) {
      // Without what was not there, and with nothing else instead.
      EXPECT_TRUE(
          std::ranges::includes(FileLines(undisturbed_memory_), FileLines(process.Memory())))
          << process.Memory();
    } else {
      EXPECT_EQ(process.Memory(), undisturbed_memory_);
    }
  }

  // One message, or several that differ when the scan names each file; each once.
  static void CheckMessages(const Process& process, bool succeeded, bool all_after,
                            const Fault& fault) {
    const std::vector<std::string> prompts = process.Prompts();
    const std::string all = testing::PrintToString(prompts);
    if (GetParam().is_quiet) {
      EXPECT_TRUE(prompts.empty()) << all;
      return;
    }
    if (!succeeded) {
      EXPECT_FALSE(prompts.empty());
    }
    // With all that follows failing, the log may fail too, which is said elsewhere.
    if (!all_after) {
      EXPECT_LE(std::ranges::count_if(prompts,
                                      [](const std::string& prompt) {
                                        return !GetParam().names_files ||
                                               !prompt.starts_with(kMissing);
                                      }),
                1)
          << all;
    }
    EXPECT_EQ(std::set<std::string>(prompts.begin(), prompts.end()).size(), prompts.size()) << all;
    for (const std::string& prompt : prompts) {
      EXPECT_TRUE(TellsTheError(prompt, fault) || TellsTheArchiversError(prompt, fault) ||
                  NamesWhatIsNotThere(prompt, fault, process.Memory()))
          << prompt;
    }
  }

  Disk undisturbed_disk_;
  std::string undisturbed_memory_;
  std::uint64_t faults_ = 0;
};

TEST_P(FaultSeries, IsSurvivedReportedOnceAndForgottenByTheNextRun) {
  MemoryPlatform computer;
  Install(computer);
  const std::unique_ptr<Process> undisturbed = GetParam().start(computer);
  ASSERT_TRUE(undisturbed->Act()) << testing::PrintToString(undisturbed->Prompts());
  ASSERT_THAT(undisturbed->Prompts(), testing::IsEmpty());
  undisturbed_disk_ = Contents(computer);
  undisturbed_memory_ = undisturbed->Memory();

  for (const FaultKind& reason : kKinds) {
    for (const bool all_after : {false, true}) {
      const std::uint64_t before = faults_;
      TrySeries(reason, all_after);
      if (HasFailure()) return;
      EXPECT_GT(faults_, before);
    }
  }
  std::cout << "RELIABILITY faults during " << GetParam().name << ": " << faults_ << '\n';
}

INSTANTIATE_TEST_SUITE_P(Actions, FaultSeries, testing::ValuesIn(kScenarios),
                         [](const testing::TestParamInfo<Scenario>& test) {
                           return std::string(test.param.name);
                         });

}  // namespace
}  // namespace txs
