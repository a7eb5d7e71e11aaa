// Every operation that a user can start, with every operation of the platform failing under it: for
// N = 1, 2, ... until the action succeeds undisturbed, the Nth operation of disk, registry, locks
// or archiver fails, alone or with all that follow, for each of four reasons.
//
// Each time: one message that carries the reason, no success that is none, the settings file whole,
// the sources as they were, and a next undisturbed action that ends as if nothing had happened.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <iostream>
#include <map>
#include <memory>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "document/path_variables.h"
#include "environment/code_page.h"
#include "environment/installation.h"
#include "fakes/memory_platform.h"
#include "fakes/noise.h"
#include "fakes/recording_create_view.h"
#include "fakes/recording_messages.h"
#include "fakes/scripted_setup_wizard_view.h"
#include "projects/open_project.h"
#include "startup/application_start.h"
#include "startup/message_routing.h"
#include "startup/start_routine.h"
#include "strings/string_table.h"
#include "ui/setup_wizard_presenter.h"

namespace txs {
namespace {

constexpr char kSettings[] = "C:\\Demo\\Demo.swz";
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
  files.AddFile("C:\\Demo\\Setup\\DISK7\\old.zip", "of an earlier run");

  computer.RegisterProject("Süd", "C:\\Anlagen\\Süd", "Server");
  files.AddFile(kOtherSettings,
                Utf8ToAnsi("[setup]\r\ntext1=Werk Süd\r\n[file]\r\n01=a.dll,<WinSysDir>,1\r\n"));
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

constexpr char kMissing[] = "missing: ";

// One process at work on the computer.
class Process {
 public:
  virtual ~Process() = default;

  // The action with operations failing under it. True when it says that it succeeded.
  [[nodiscard]] virtual bool Act() = 0;

  // Prompts shown during the last Act, in whatever way.
  [[nodiscard]] virtual std::vector<std::string> Prompts() const = 0;

  // What it holds in memory.
  [[nodiscard]] virtual std::string Memory() const { return {}; }

  // What must hold besides, after a disturbed Act and with the platform sound again.
  virtual void CheckAfterwards(MemoryPlatform& /*computer*/, bool /*succeeded*/) {}
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
    for (const auto& box : computer_.message_boxes.shown) prompts.push_back(box.prompt);
    // An entry of the log begins with the date and time, which stands still.
    const char* const log = "C:\\Demo\\TXSetupWizard.log";
    const std::string begin = "21.11.2026 07:11:45\r\n";
    const std::string text =
        computer_.files.Has(log) ? AnsiToUtf8(computer_.files.Contents(log)) : "";
    for (std::size_t at = text.find(begin); at != std::string::npos;) {
      const std::size_t next = text.find(begin, at + 1);
      prompts.push_back(text.substr(at + begin.size(), next == text.npos ? next : next - at));
      at = next;
    }
    // What could not be logged, with the reason why.
    if (!errors_.str().empty()) prompts.push_back(errors_.str());
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
      if ((message.buttons & kIconMask) != kIconQuestion) prompts.push_back(message.prompt);
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

  void CheckAfterwards(MemoryPlatform& /*computer*/, bool succeeded) override {
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
  void CheckAfterwards(MemoryPlatform& computer, bool /*succeeded*/) override {
    const std::string before = computer.files.Contents(kOtherSettings);
    const bool complete = application_->document.files.RowCount() == 1;
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

struct Scenario {
  const char* name;
  std::unique_ptr<Process> (*start)(MemoryPlatform&);
  // Files that the action may change: those below these folders, and these files.
  std::vector<std::string> may_change;
  bool changes_settings = false;
  bool makes_files = false;  // else what it makes is the document
  bool names_files = false;  // each file that was not found in a message of its own
};

template <typename Kind>
std::unique_ptr<Process> Start(MemoryPlatform& computer) {
  return std::make_unique<Kind>(computer);
}

std::ostream& operator<<(std::ostream& out, const Scenario& scenario) {
  return out << scenario.name;
}

const Scenario kScenarios[] = {
    {"UnattendedCreate",
     Start<UnattendedRun>,
     {"C:\\Demo\\Setup\\", "C:\\Demo\\~TEMP\\"},
     /*changes_settings=*/false,
     /*makes_files=*/true},
    {"Create",
     Start<CreateSession>,
     {"C:\\Demo\\Setup\\", "C:\\Demo\\~TEMP\\"},
     /*changes_settings=*/false,
     /*makes_files=*/true},
    {"Scan",
     Start<ScanSession>,
     {},
     /*changes_settings=*/false,
     /*makes_files=*/false,
     /*names_files=*/true},
    {"Save", Start<SaveSession>, {}, /*changes_settings=*/true},
    {"Open", Start<OpenSession>, {}},
    {"ClearAndSave", Start<ClearSession>, {}, /*changes_settings=*/true},
};

// Operations that answer "no" instead of failing.
bool IsQuestion(const std::string& operation) {
  return operation == "FileExists" || operation == "FolderExists" || operation == "Stamp" ||
         operation == "FinalPath";
}

struct Reason {
  const char* name;
  ErrorNumber number;
  const char* words;
};

constexpr Reason kReasons[] = {
    {"not found", ErrorNumber::kFileNotFound, "No such file or directory"},
    {"access denied", ErrorNumber::kPermissionDenied, "Access is denied"},
    {"disk full", ErrorNumber::kDiskFull, "No space left on device"},
    {"sharing violation", ErrorNumber::kPermissionDenied,
     "The process cannot access the file because it is being used by another process"},
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

// The directories of the studio are not there, as far as the disk says. The program then ends as
// after any other answer to its first questions, with exit code 0.
bool EndsTheStart(const std::string& prompt) { return IsMessage(prompt, {91, 92, 94}); }

// A success all the same, but not that of an undisturbed run, and said to be none.
bool SaysWhatIsMissing(const std::string& prompt) {
  return EndsTheStart(prompt) || prompt.starts_with(kMissing);
}

// What has no number and words of the system, since the system only said that something is not
// there, or in use.
bool NeedsNoReason(const std::string& prompt) {
  if (SaysWhatIsMissing(prompt) || IsMessage(prompt, {1709, 1711, 1713, 1930, 1937})) return true;
  // Of an archive that is no longer there when it was just made.
  static const std::regex kArchiveGone("^[^\\n]*'[^'\\\\]+\\.zip'!");
  return IsMessage(prompt, {902}) && std::regex_search(prompt, kArchiveGone);
}

class FaultSeries : public testing::TestWithParam<Scenario> {
 protected:
  // The faults of one series; how many were tried.
  void Try(const Reason& reason, bool all_after, const Disk& undisturbed_disk,
           const std::string& undisturbed_memory) {
    for (std::uint64_t number = 1;; ++number) {
      SCOPED_TRACE(std::string(reason.name) + (all_after ? " from operation " : " at operation ") +
                   std::to_string(number));
      MemoryPlatform computer;
      Install(computer);
      const Disk before = Contents(computer);
      std::unique_ptr<Process> process = GetParam().start(computer);
      computer.files.diary.clear();
      computer.files.failure_words = reason.words;
      if (all_after) {
        computer.files.FailFrom(number, reason.number);
      } else {
        computer.files.FailOperation(number, reason.number);
      }
      const bool succeeded = process->Act();
      computer.files.StopFailing();
      if (computer.files.diary.size() < number) {
        EXPECT_TRUE(succeeded);
        return;
      }
      ++faults_;
      const MemoryFileSystem::DiaryEntry& failed = computer.files.diary[number - 1];
      SCOPED_TRACE(failed.operation + " " + failed.path);

      CheckMessages(process->Prompts(), succeeded, reason);
      // With all that follows failing, the log may fail too, which is said elsewhere.
      if (!all_after && !GetParam().names_files) {
        EXPECT_LE(process->Prompts().size(), 1u) << testing::PrintToString(process->Prompts());
      }
      const Disk after = Contents(computer);
      ASSERT_EQ(Untouchable(GetParam(), after), Untouchable(GetParam(), before));
      const std::string& settings = after.at(kSettings);
      ASSERT_TRUE(settings == before.at(kSettings) || settings == undisturbed_disk.at(kSettings));
      if (GetParam().changes_settings) {
        ASSERT_EQ(settings != before.at(kSettings), succeeded);
      }
      // A scan that is told that a file is not there does without it.
      const bool answered = !GetParam().makes_files && (all_after || IsQuestion(failed.operation));
      const std::vector<std::string> prompts = process->Prompts();
      if (succeeded && !answered && std::ranges::none_of(prompts, SaysWhatIsMissing)) {
        ASSERT_EQ(process->Memory(), undisturbed_memory);
        ASSERT_TRUE(after == undisturbed_disk) << testing::PrintToString(Names(after));
      }
      process->CheckAfterwards(computer, succeeded);

      // As another process, since a scan keeps what a disturbed one has found.
      computer.message_boxes.shown.clear();
      computer.files.Vanish("C:\\Demo\\TXSetupWizard.log");
      process = GetParam().start(computer);
      ASSERT_TRUE(process->Act());
      ASSERT_THAT(process->Prompts(), testing::IsEmpty());
      ASSERT_EQ(process->Memory(), undisturbed_memory);
      ASSERT_TRUE(Contents(computer) == undisturbed_disk);
      if (HasFailure()) return;
    }
  }

  // One message, or several that differ when the scan names each file; each once.
  static void CheckMessages(const std::vector<std::string>& prompts, bool succeeded,
                            const Reason& reason) {
    const std::string all = testing::PrintToString(prompts);
    if (!succeeded) {
      EXPECT_FALSE(prompts.empty());
    }
    EXPECT_EQ(std::set<std::string>(prompts.begin(), prompts.end()).size(), prompts.size()) << all;
    static const std::regex kSuffix("\\r?\\n\\(([0-9]+): .+\\)");
    static const std::regex kCompressorsSuffix("\\r?\\n\\([0-9]+\\)\\r?\\n.+");
    for (const std::string& prompt : prompts) {
      if (NeedsNoReason(prompt)) continue;
      std::smatch suffix;
      if (IsMessage(prompt, {902}) && std::regex_search(prompt, kCompressorsSuffix)) {
        // Of a source that is not there (1), or no longer the one that was checked (6), the words
        // are the archiver's own.
        const bool has_own_words = reason.number == ErrorNumber::kFileNotFound ||
                                   prompt.find("\n(1)") != std::string::npos ||
                                   prompt.find("\n(6)") != std::string::npos;
        if (!has_own_words) {
          EXPECT_NE(prompt.find(reason.words), std::string::npos) << prompt;
        }
        continue;
      }
      const bool has_reason = std::regex_search(prompt, suffix, kSuffix);
      EXPECT_TRUE(has_reason) << prompt;
      if (!has_reason) continue;
      const int shown = std::stoi(suffix[1]);
      EXPECT_TRUE(shown == static_cast<int>(reason.number) ||
                  shown == static_cast<int>(ErrorNumber::kFileNotFound))
          << prompt;
      if (shown == static_cast<int>(reason.number) && reason.number != ErrorNumber::kFileNotFound) {
        EXPECT_NE(prompt.find(reason.words), std::string::npos) << prompt;
      }
    }
  }

  std::uint64_t faults_ = 0;
};

TEST_P(FaultSeries, IsSurvivedReportedOnceAndForgottenByTheNextRun) {
  MemoryPlatform computer;
  Install(computer);
  const std::unique_ptr<Process> undisturbed = GetParam().start(computer);
  ASSERT_TRUE(undisturbed->Act()) << testing::PrintToString(undisturbed->Prompts());
  ASSERT_THAT(undisturbed->Prompts(), testing::IsEmpty());
  const Disk disk = Contents(computer);
  const std::string memory = undisturbed->Memory();

  for (const Reason& reason : kReasons) {
    for (const bool all_after : {false, true}) {
      const std::uint64_t before = faults_;
      Try(reason, all_after, disk, memory);
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
