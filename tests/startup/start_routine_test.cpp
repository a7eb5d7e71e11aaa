#include "startup/start_routine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <vector>

#include "environment/code_page.h"
#include "environment/installation.h"
#include "environment/project_type.h"
#include "fakes/demo_project.h"
#include "fakes/memory_platform.h"
#include "fakes/recording_create_view.h"
#include "fakes/scripted_message_boxes.h"
#include "fakes/scripted_windows.h"
#include "startup/display_message_boxes.h"
#include "startup/module_shell.h"

namespace txs {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

constexpr char kLog[] = "C:\\Projects\\Demo\\TXSetupWizard.log";

// Chooses what the test says and remembers what the main form would show.
class ScriptedShell : public InteractiveShell {
 public:
  std::string choice;
  int asked = 0;
  int forms = 0;
  CurrentProject project;
  SetupDocument document;
  bool unattended = true;
  std::string help_file;

  std::string ChooseProject(Application& /*application*/) override {
    ++asked;
    return choice;
  }
  void RunMainForm(Application& application) override {
    ++forms;
    project = application.project;
    document = application.document;
    unattended = application.unattended;
    help_file = application.installation.HelpFile();
  }
};

struct StartRoutineTest : ::testing::Test {
  MemoryPlatform world;
  std::ostringstream last_resort;
  RoutedMessages messages{world.Get(), last_resort};
  ScriptedShell shell;
  RecordingCreateView view;

  StartRoutineTest() { InstallDemoProject(world); }

  int Run(std::string_view command_line) {
    return RunStartRoutine(world.Get(), messages, shell, view, command_line);
  }

  void SetLanguage(std::uint32_t id) {
    world.registry.Write(Hive::kLocalMachine, kStudioKey, "LCID", id);
  }

  [[nodiscard]] bool NothingHappened() const {
    return shell.asked == 0 && shell.forms == 0 && view.begun == 0;
  }
};

// --- The environment

TEST_F(StartRoutineTest, StudioThatIsNotRegisteredEndsWithMessage91) {
  world.registry.RemoveKey(Hive::kLocalMachine, kStudioKey);

  EXPECT_EQ(Run("Demo"), 0);

  ASSERT_EQ(world.message_boxes.shown.size(), 1u);
  EXPECT_THAT(world.message_boxes.shown[0].title, HasSubstr("91"));
  EXPECT_EQ(world.message_boxes.shown[0].buttons, kIconCritical);
  EXPECT_TRUE(NothingHappened());
}

TEST_F(StartRoutineTest, StudioDirectoryThatIsGoneEndsWithMessage92AndItsPath) {
  world.files.Vanish("C:\\TavixStudio\\Studio");

  EXPECT_EQ(Run("Demo"), 0);

  ASSERT_EQ(world.message_boxes.shown.size(), 1u);
  EXPECT_THAT(world.message_boxes.shown[0].title, HasSubstr("92"));
  EXPECT_THAT(world.message_boxes.shown[0].prompt, HasSubstr("[C:\\TavixStudio\\Studio]"));
  EXPECT_TRUE(NothingHappened());
}

TEST_F(StartRoutineTest, ConfiguratorThatCannotBeCreatedEndsWithMessage94) {
  world.configurator_available = false;

  EXPECT_EQ(Run("Demo"), 0);

  ASSERT_EQ(world.message_boxes.shown.size(), 1u);
  EXPECT_THAT(world.message_boxes.shown[0].title, HasSubstr("94"));
  EXPECT_EQ(world.message_boxes.shown[0].buttons, kIconCritical);
  EXPECT_TRUE(NothingHappened());
}

TEST_F(StartRoutineTest, ConfiguratorThatThrowsCountsAsOneThatCannotBeCreated) {
  world.Get().make_configurator = []() -> std::unique_ptr<ProjectConfigurator> {
    throw RuntimeError(ErrorNumber::kInternal, "component");
  };

  EXPECT_EQ(Run("Demo"), 0);

  ASSERT_EQ(world.message_boxes.shown.size(), 1u);
  EXPECT_THAT(world.message_boxes.shown[0].title, HasSubstr("94"));
}

TEST_F(StartRoutineTest, StartMessagesAreBoxesInUnattendedModeToo) {
  world.configurator_available = false;

  EXPECT_EQ(Run("/c=Demo"), 0);

  EXPECT_EQ(world.message_boxes.shown.size(), 1u);
  EXPECT_FALSE(world.files.Has(kLog));
}

TEST_F(StartRoutineTest, StartMessagesAreGermanInEveryLanguage) {
  world.configurator_available = false;
  Run("");
  SetLanguage(1033);

  Run("");

  ASSERT_EQ(world.message_boxes.shown.size(), 2u);
  EXPECT_EQ(world.message_boxes.shown[0].prompt, world.message_boxes.shown[1].prompt);
  EXPECT_THAT(world.message_boxes.shown[0].title, HasSubstr("Meldung"));
  EXPECT_THAT(world.message_boxes.shown[1].title, HasSubstr("Message"));
}

TEST_F(StartRoutineTest, ChecksTheEnvironmentBeforeTheCommandLine) {
  world.registry.RemoveKey(Hive::kLocalMachine, kStudioKey);

  Run("/x");

  ASSERT_EQ(world.message_boxes.shown.size(), 1u);
  EXPECT_THAT(world.message_boxes.shown[0].title, HasSubstr("91"));
}

// --- The command line refused

class RefusedSwitch : public StartRoutineTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(RefusedSwitch, EndsWithMessage913WithoutTitle) {
  EXPECT_EQ(Run(GetParam()), 0);

  ASSERT_EQ(world.message_boxes.shown.size(), 1u);
  EXPECT_EQ(world.message_boxes.shown[0].title, "");
  EXPECT_EQ(world.message_boxes.shown[0].buttons, kIconCritical);
  EXPECT_THAT(world.message_boxes.shown[0].prompt,
              EndsWith("\r\n[ProjectPath\\]ProjectName[.txs|.swz]"
                       "\r\n/c=[ProjectPath\\]ProjectName[.txs|.swz]"));
  EXPECT_TRUE(NothingHappened());
}

INSTANTIATE_TEST_SUITE_P(Switches, RefusedSwitch,
                         ::testing::Values("/c", "/c:Demo", "-x=Demo", "/x", "-", "  /d=Demo  "));

TEST_F(StartRoutineTest, RefusalSpeaksTheLanguageOfTheStudio) {
  Run("/x");
  SetLanguage(1033);
  Run("/x");

  ASSERT_EQ(world.message_boxes.shown.size(), 2u);
  EXPECT_THAT(world.message_boxes.shown[0].prompt, StartsWith("Über die Kommandozeile"));
  EXPECT_THAT(world.message_boxes.shown[1].prompt, StartsWith("The following commands"));
}

// --- Interactive starts

TEST_F(StartRoutineTest, EmptyCommandLineOpensTheChosenProject) {
  shell.choice = "Demo";

  EXPECT_EQ(Run("   "), 0);

  EXPECT_EQ(shell.asked, 1);
  EXPECT_EQ(shell.forms, 1);
  EXPECT_EQ(shell.project.name, "Demo");
  EXPECT_EQ(shell.project.directory, "C:\\Projects\\Demo\\");
  EXPECT_EQ(shell.project.type, kProjectTypeSingle);
  EXPECT_EQ(shell.project.file, "Demo");
  EXPECT_EQ(shell.document.program_name, "Demo.exe");
  EXPECT_FALSE(shell.unattended);
  EXPECT_TRUE(world.message_boxes.shown.empty());
}

TEST_F(StartRoutineTest, CancelledDialogEndsWithoutAMessage) {
  shell.choice = "";

  EXPECT_EQ(Run(""), 0);

  EXPECT_EQ(shell.asked, 1);
  EXPECT_EQ(shell.forms, 0);
  EXPECT_TRUE(world.message_boxes.shown.empty());
}

TEST_F(StartRoutineTest, RegisteredNameOpensTheMainForm) {
  EXPECT_EQ(Run("Demo"), 0);

  EXPECT_EQ(shell.asked, 0);
  EXPECT_EQ(shell.forms, 1);
  EXPECT_EQ(shell.project.directory, "C:\\Projects\\Demo\\");
}

TEST_F(StartRoutineTest, QuotedPathOpensTheMainForm) {
  EXPECT_EQ(Run("\"C:\\Projects\\Demo\\Demo.swz\""), 0);

  EXPECT_EQ(shell.forms, 1);
  EXPECT_EQ(shell.project.name, "Demo");
}

TEST_F(StartRoutineTest, InteractiveStartTakesTheRegisteredDirectoryOverTheGivenOne) {
  world.files.AddFolder("C:\\Elsewhere");

  Run("C:\\Elsewhere\\Demo.txs");

  EXPECT_EQ(shell.project.directory, "C:\\Projects\\Demo\\");
}

// A mistyped path opened an empty wizard without a word.
TEST_F(StartRoutineTest, GivenDirectoryOfAnUnregisteredProjectShowsMessage901BeforeTheForm) {
  EXPECT_EQ(Run("C:\\Elsewhere\\Other.txs"), 0);

  ASSERT_EQ(world.message_boxes.shown.size(), 1u);
  EXPECT_THAT(world.message_boxes.shown[0].title, HasSubstr("901"));
  EXPECT_THAT(world.message_boxes.shown[0].prompt, HasSubstr("'Other'"));
  EXPECT_EQ(world.message_boxes.shown[0].buttons, kIconExclamation);
  EXPECT_EQ(shell.forms, 1);
  EXPECT_EQ(shell.project.name, "Other");
}

// The settings of whatever lay in the root of the current drive were shown as those of the project.
TEST_F(StartRoutineTest, GivenDirectoryOfAnUnregisteredProjectReadsNoSettings) {
  for (const char* path : {"\\Other.swz", "C:\\Other.swz", "C:\\Elsewhere\\Other.swz"}) {
    world.files.AddFile(path, DemoSettings());
  }

  Run("C:\\Elsewhere\\Other.txs");

  EXPECT_EQ(shell.forms, 1);
  EXPECT_EQ(shell.document.program_name, "");
  EXPECT_EQ(shell.document.files.RowCount(), 0u);
}

TEST_F(StartRoutineTest, UnregisteredNameEndsWithMessage901) {
  EXPECT_EQ(Run("Other"), 0);

  ASSERT_EQ(world.message_boxes.shown.size(), 1u);
  EXPECT_THAT(world.message_boxes.shown[0].title, HasSubstr("901"));
  EXPECT_THAT(world.message_boxes.shown[0].prompt, HasSubstr("'Other'"));
  EXPECT_EQ(world.message_boxes.shown[0].buttons, kIconCritical);
  EXPECT_TRUE(NothingHappened());
}

TEST_F(StartRoutineTest, ChosenProjectWithoutDirectoryEndsWithMessage901) {
  shell.choice = "Gone";

  EXPECT_EQ(Run(""), 0);

  ASSERT_EQ(world.message_boxes.shown.size(), 1u);
  EXPECT_THAT(world.message_boxes.shown[0].title, HasSubstr("901"));
  EXPECT_EQ(shell.forms, 0);
}

TEST_F(StartRoutineTest, HelpFileLiesUnderTheCommonDirectory) {
  Run("Demo");

  EXPECT_EQ(shell.help_file, "C:\\TavixStudio\\Common\\HelpFiles\\Projektmanagement.chm");
}

TEST_F(StartRoutineTest, MainFormStateIsLoadedBeforeTheFormIsShown) {
  world.files.AddFile("C:\\TavixStudio\\SetupKit\\TXDependencies.ini",
                      "[Exclude]\r\n1=kernel32.dll\r\n");

  Run("Demo");

  EXPECT_THAT(shell.document.system_files.excluded, ::testing::ElementsAre("kernel32.dll"));
}

TEST_F(StartRoutineTest, WithoutWindowsItSaysSoOnceWhateverTheCommandLineIs) {
  for (const char* const command_line : {"", "Demo"}) {
    WindowModule module([] {
      return OpenedWindows{.windows = nullptr, .fault = WindowFault::kNoModule, .reason = {}};
    });
    ModuleShell no_windows(module);
    world.message_boxes.shown.clear();

    EXPECT_EQ(RunStartRoutine(world.Get(), messages, no_windows, view, command_line), 0);

    ASSERT_EQ(world.message_boxes.shown.size(), 1u) << "'" << command_line << "'";
    EXPECT_THAT(world.message_boxes.shown[0].title, HasSubstr("1900"));
  }
}

// --- Unattended starts

class UnattendedForm : public StartRoutineTest,
                       public ::testing::WithParamInterface<const char*> {};

TEST_P(UnattendedForm, BuildsTheInstallationWithoutAFormAndAMessage) {
  EXPECT_EQ(Run(GetParam()), 0);

  EXPECT_TRUE(world.files.Has("C:\\Projects\\Demo\\Setup\\DISK1\\SETUP.STP"));
  EXPECT_TRUE(world.files.Has("C:\\Projects\\Demo\\Setup\\DISK1\\Demo.exe.zip"));
  EXPECT_EQ(view.result, true);
  EXPECT_EQ(view.take_notes, 0);
  EXPECT_EQ(shell.asked, 0);
  EXPECT_EQ(shell.forms, 0);
  EXPECT_TRUE(world.message_boxes.shown.empty());
  EXPECT_FALSE(world.files.Has(kLog));
  EXPECT_EQ(last_resort.str(), "");
}

INSTANTIATE_TEST_SUITE_P(CommandLines, UnattendedForm,
                         ::testing::Values("/c=Demo", "/C=Demo", "-c=Demo", "-C=Demo",
                                           "  /c=Demo  ", "/c=Demo.txs", "/c=Demo.swz",
                                           "/C=C:\\Projects\\Demo\\Demo.swz",
                                           "-c=C:\\Projects\\Demo\\Demo.txs",
                                           "/c=\"C:\\Projects\\Demo\\Demo.txs\"",
                                           "/c=c:\\projects\\DEMO\\Demo"));

TEST_F(StartRoutineTest, UnattendedRunTakesTheGivenDirectoryOverTheRegisteredOne) {
  world.files.AddFile("C:\\Copy\\Demo.swz", DemoSettings());
  for (const char* name : {"Demo.exe", "Trend.ocx", "leer.txt"}) {
    world.files.AddFile(std::string("C:\\Copy\\") + name, name);
  }

  EXPECT_EQ(Run("/c=C:\\Copy\\Demo"), 0);

  EXPECT_TRUE(world.files.Has("C:\\Copy\\Setup\\DISK1\\SETUP.STP"));
  EXPECT_FALSE(world.files.Has("C:\\Projects\\Demo\\Setup"));
}

TEST_F(StartRoutineTest, UnattendedRunTakesTheProjectTypeFromTheRegistry) {
  world.RegisterProject("Demo", "C:\\Projects\\Demo\\", "Server");

  EXPECT_EQ(Run("/c=C:\\Projects\\Demo\\Demo.txs"), 0);

  EXPECT_THAT(world.files.Contents("C:\\Projects\\Demo\\Setup\\DISK1\\SETUP.STP"),
              HasSubstr("|AutoStart|1|3)"));
}

TEST_F(StartRoutineTest, FailedCreateEndsWithExitCode1AndItsMessageInTheLog) {
  world.files.Vanish("C:\\Projects\\Demo\\Trend.ocx");

  EXPECT_EQ(Run("/c=Demo"), 1);

  const std::string log = world.files.Contents(kLog);
  EXPECT_THAT(log, StartsWith("21.11.2026 07:11:45\r\n"));
  EXPECT_THAT(log, HasSubstr("Die markierten Dateien existieren nicht!\r\n"));
  EXPECT_THAT(log, EndsWith("\r\n\r\n"));
  EXPECT_TRUE(world.message_boxes.shown.empty());
  EXPECT_EQ(view.take_notes, 0);
}

TEST_F(StartRoutineTest, SecondFailedRunAppendsToTheLog) {
  world.files.Vanish("C:\\Projects\\Demo\\Trend.ocx");
  EXPECT_EQ(Run("/c=Demo"), 1);
  const std::string first = world.files.Contents(kLog);

  EXPECT_EQ(Run("/c=Demo"), 1);

  EXPECT_EQ(world.files.Contents(kLog), first + first);
}

TEST_F(StartRoutineTest, LogSpeaksTheLanguageOfTheStudio) {
  SetLanguage(1033);
  world.files.Vanish("C:\\Projects\\Demo\\Trend.ocx");

  EXPECT_EQ(Run("/c=Demo"), 1);

  EXPECT_THAT(world.files.Contents(kLog), HasSubstr("The marked files do not exist!"));
}

// The message was German, and why it came, in the line below it, English.
TEST_F(StartRoutineTest, ReasonsSpeakTheLanguageOfTheStudio) {
  const std::string settings = DemoSettings();
  const std::string path = "path=<ProjectDir>\\Setup";
  std::string relative = settings;
  relative.replace(relative.find(path), path.size(), "path=Setup");
  world.files.AddFile("C:\\Projects\\Demo\\Demo.swz", relative);

  EXPECT_EQ(Run("/c=Demo"), 1);
  EXPECT_THAT(world.files.Contents(kLog),
              HasSubstr(Utf8ToAnsi("(52: \"Setup\" ist kein vollständiger Pfad")));

  SetLanguage(1033);
  EXPECT_EQ(Run("/c=Demo"), 1);
  EXPECT_THAT(world.files.Contents(kLog), HasSubstr("(52: \"Setup\" is no complete path"));
}

TEST_F(StartRoutineTest, GivenDirectoryPutsTheLogBesideTheProjectDirectory) {
  world.files.Vanish("C:\\Projects\\Demo\\Trend.ocx");

  EXPECT_EQ(Run("/c=C:\\Projects\\Demo\\Demo.txs"), 1);

  EXPECT_FALSE(world.files.Has(kLog));
  EXPECT_TRUE(world.files.Has("C:\\Projects\\DemoTXSetupWizard.log"));
}

TEST_F(StartRoutineTest, ProjectWithoutSettingsFailsForWantOfItsProgram) {
  world.files.Vanish("C:\\Projects\\Demo\\Demo.swz");

  EXPECT_EQ(Run("/c=Demo"), 1);

  EXPECT_THAT(world.files.Contents(kLog), HasSubstr("Die Bin\xE4rdatei"));
  EXPECT_EQ(view.begun, 0);
}

TEST_F(StartRoutineTest, UnregisteredNameFailsUnattendedWithItsLogInTheCurrentFolder) {
  EXPECT_EQ(Run("/c=Other"), 1);

  EXPECT_TRUE(world.files.Has("TXSetupWizard.log"));
  EXPECT_TRUE(world.message_boxes.shown.empty());
}

TEST_F(StartRoutineTest, UnregisteredNameDoesNotReadSettingsOfTheDrivesRoot) {
  world.files.AddFile("C:\\Other.swz", DemoSettings());

  EXPECT_EQ(Run("/c=Other"), 1);

  EXPECT_EQ(view.begun, 0);
}

TEST_F(StartRoutineTest, EmptyUnattendedArgumentFails) {
  EXPECT_EQ(Run("/c="), 1);

  EXPECT_EQ(view.begun, 0);
  EXPECT_TRUE(world.message_boxes.shown.empty());
}

TEST_F(StartRoutineTest, UnreadableSettingsFailWithMessage901AndItsReasonInTheLog) {
  world.files.FailPath("C:\\Projects\\Demo\\Demo.swz", "OpenForReading",
                       ErrorNumber::kPermissionDenied);

  EXPECT_EQ(Run("/c=Demo"), 1);

  const std::string log = world.files.Contents(kLog);
  EXPECT_THAT(log, HasSubstr("'Demo'"));
  EXPECT_THAT(log, HasSubstr("\r\n(70: "));
  EXPECT_EQ(view.begun, 0);
  EXPECT_TRUE(world.message_boxes.shown.empty());
}

TEST_F(StartRoutineTest, LogThatCannotBeWrittenDoesNotChangeTheExitCode) {
  world.files.Vanish("C:\\Projects\\Demo\\Trend.ocx");
  world.files.FailPath("C:\\Projects\\Demo\\TXSetupWizard.log", "OpenForAppending",
                       ErrorNumber::kPathFileAccess);

  EXPECT_EQ(Run("/c=Demo"), 1);

  EXPECT_THAT(last_resort.str(), HasSubstr("Die markierten Dateien existieren nicht!\n"));
  EXPECT_THAT(last_resort.str(), Not(HasSubstr("\r")));
}

TEST_F(StartRoutineTest, NameWithBlanksAndDotsIsBuiltFromItsPath) {
  world.RegisterProject("Linie 2.1 Süd", "C:\\Projects\\Demo\\", "Single");
  world.files.AddFile("C:\\Projects\\Demo\\Linie 2.1 Süd.swz", DemoSettings());

  EXPECT_EQ(Run("/c=C:\\Projects\\Demo\\Linie 2.1 Süd.txs"), 0);

  EXPECT_THAT(world.files.Contents("C:\\Projects\\Demo\\Setup\\DISK1\\SETUP.STP"),
              HasSubstr("SetupName=Linie 2.1 S\xFC\x64\r\n"));
}

TEST_F(StartRoutineTest, SecondUnattendedRunOfAProjectSaysSoInTheLogAndEndsWithOne) {
  const auto first = world.locks.TryTake("C:\\Projects\\Demo\\~TXSetup.lock");

  EXPECT_EQ(Run("/c=Demo"), 1);

  EXPECT_THAT(AnsiToUtf8(world.files.Contents(kLog)),
              HasSubstr("Im Projektverzeichnis 'C:\\Projects\\Demo\\' arbeitet gerade ein anderer "
                        "Setup-Assistent oder ein TXSetupTool!\r\nWarten Sie"));
  EXPECT_FALSE(world.files.Has("C:\\Projects\\Demo\\Setup"));
}

// --- A start that has nothing to run on

struct FailedStart : ::testing::Test {
  ScriptedMessageBoxes console;
  ScriptedWindows windows;
  DisplayMessageBoxes boxes{console, windows.module};
};

TEST_F(FailedStart, ShowsNoBoxInAnUnattendedRunAndIsNoSuccess) {
  EXPECT_EQ(TellFailedStart("registry.reg", boxes, console, "/c=Demo"), 1);

  EXPECT_EQ(windows.opened, 0);
  ASSERT_EQ(console.shown.size(), 1u);
  EXPECT_EQ(console.shown[0].prompt, "registry.reg");
}

TEST_F(FailedStart, ShowsABoxInAnInteractiveRun) {
  EXPECT_EQ(TellFailedStart("registry.reg", boxes, console, "Demo"), 0);

  ASSERT_EQ(windows.message_boxes.shown.size(), 1u);
  EXPECT_EQ(windows.message_boxes.shown[0].prompt, "registry.reg");
}

}  // namespace
}  // namespace txs
