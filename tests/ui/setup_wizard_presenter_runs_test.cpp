// Scan, Create and adding files: what takes its time, and what must wait meanwhile.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "document/path_variables.h"
#include "ui/setup_wizard_presenter.h"
#include "ui/wizard_world.h"

namespace txs {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class Runs : public testing::Test {
 public:
  void Answer(MessageResult answer) { messages.answers.push_back(answer); }

  // Everything that must not happen while a run is under way, tried at once.
  void TryEverything() {
    const std::vector<std::string> diary = view.diary;
    const std::vector<std::string> sources = world.Sources();
    const StepSettings steps_before = steps;
    const bool changed_before = document.changed;
    const std::vector<long> ids = messages.Ids();

    EXPECT_TRUE(presenter.IsRunning());
    EXPECT_FALSE(presenter.MayClose());
    EXPECT_FALSE(presenter.Save());
    EXPECT_FALSE(presenter.ChangeStep(Step::kFiles, Step::kMedium));
    EXPECT_FALSE(presenter.AddUserDirectory("E:\\neu"));
    EXPECT_EQ(presenter.BrowsePicture(FindTextBox("txtBackgroundPicture1")), "");
    presenter.OpenProject();
    presenter.End();
    presenter.ShowHelpContents();
    presenter.ShowInfo();
    presenter.ShowOptions();
    presenter.ClearSettings();
    presenter.TextEdited(FindTextBox("txtInfo11"), "meanwhile");
    presenter.LooseTextEdited();
    presenter.DeleteUserDirectory(0);
    presenter.RenameUserDirectory(0, "E:\\neu");
    presenter.SetUseJet(true);
    presenter.SetUseOdbc(true);
    presenter.SetMinimalMdac(true);
    presenter.SetServicePack(true);
    presenter.SetDiskSize(0);
    presenter.Scan();
    presenter.AddFiles();
    presenter.AddFiles({"C:\\Demo\\neu.dll"});
    presenter.DeleteRows({1});
    presenter.EditCell(1, FileColumn::kDestination, "meanwhile");
    presenter.Create();

    EXPECT_EQ(view.diary, diary);
    EXPECT_EQ(world.Sources(), sources);
    EXPECT_EQ(steps, steps_before);
    EXPECT_EQ(document.changed, changed_before);
    EXPECT_EQ(messages.Ids(), ids);
    tried = true;
  }

  WizardWorld world;
  RecordingMessages& messages = world.messages;
  Application& application = world.application;
  SetupDocument& document = application.document;
  StepSettings& steps = document.steps;
  ScriptedSetupWizardView& view = world.view;
  SetupWizardPresenter& presenter = world.presenter;
  bool tried = false;
};

// --- Scan

class ScanButton : public Runs {};

TEST_F(ScanButton, LocksTheControlsUntilTheWindowIsClosed) {
  presenter.Scan();

  EXPECT_THAT(view.diary, ElementsAre("scan window", "controls off", "scan begins", "scan ends",
                                      "file list", "figures", "wait", "controls on"));
  ASSERT_EQ(view.scans.size(), 1u);
  EXPECT_EQ(view.scans[0].run.result, true);
  EXPECT_EQ(view.scans[0].waits, 1);
  EXPECT_FALSE(view.scans[0].exists);
  EXPECT_FALSE(view.scans[0].run.busy);
  EXPECT_TRUE(view.controls_enabled);
  EXPECT_FALSE(presenter.IsRunning());
}

TEST_F(ScanButton, AddsRowsAndTheirFigures) {
  presenter.Scan();

  EXPECT_THAT(world.Sources(), Contains("<ProjectDir>\\Demo.txs"));
  EXPECT_EQ(steps.file_count_label, std::to_string(document.files.RowCount()));
  EXPECT_TRUE(document.changed);
}

TEST_F(ScanButton, ChangesNothingWhenEverythingIsListed) {
  presenter.Scan();
  document.changed = false;

  presenter.Scan();

  EXPECT_FALSE(document.changed);
  EXPECT_EQ(view.scans.size(), 2u);
}

TEST_F(ScanButton, LeavesTheStepsAsTheyAre) {
  ASSERT_TRUE(presenter.ChangeStep(Step::kFiles, Step::kMedium));
  const StepSettings before = steps;

  presenter.Scan();

  StepSettings after = steps;
  after.file_count_label = before.file_count_label;
  after.total_bytes_label = before.total_bytes_label;
  after.disks_needed_label = before.disks_needed_label;
  EXPECT_EQ(after, before);
}

TEST_F(ScanButton, ReportsMessagesAndMissingFilesOfTheRun) {
  world.Put("C:\\Demo\\Demo.txs",
            "[Global]\r\nDesigner=Delphi 5.0\r\n[ServerComponents]\r\n1=fehlt.dll\r\n");

  presenter.Scan();

  ASSERT_EQ(view.scans.size(), 1u);
  ASSERT_TRUE(view.scans[0].report.has_value());
  const RunReport& report = *view.scans[0].report;
  EXPECT_THAT(report.messages,
              ElementsAre("Das Form-Entwicklungswerkzeug 'Delphi 5.0' wird in dieser Funktion z.Z. "
                          "nicht unterstützt!"));
  EXPECT_EQ(report.messages[0], messages.shown[0].prompt);
  EXPECT_THAT(report.missing, Contains(MissingItem{"fehlt.dll", {"Demo.txs", "fehlt.dll"}}));
  EXPECT_EQ(report.missing, view.scans[0].run.missing);
  EXPECT_THAT(view.diary, ElementsAre("scan window", "controls off", "scan begins", "scan ends",
                                      "file list", "figures", "report", "wait", "controls on"));
}

TEST_F(ScanButton, ReportsNothingWhenThereIsNothingToTell) {
  presenter.Scan();

  EXPECT_FALSE(view.scans[0].report.has_value());
}

TEST_F(ScanButton, KeepsMessagesAfterTheRunOutOfTheReport) {
  view.on_scan_window = [&](ScanWindowRecord& record) {
    record.on_wait = [&] { messages.ShowMessage(application.texts.Compose(1714)); };
  };

  presenter.Scan();

  EXPECT_FALSE(view.scans[0].report.has_value());
}

TEST_F(ScanButton, AsksTheFormsDialogForMissingFiles) {
  world.Put("C:\\Demo\\Demo.txs",
            "[Global]\r\nDesigner=Delphi 5.0\r\n[ServerComponents]\r\n1=fehlt.dll\r\n");
  world.Put("C:\\da\\fehlt.dll", "found");
  view.search.answers = {{SearchFileResult::kOk, "C:\\da"}};

  presenter.Scan();

  ASSERT_EQ(view.search.requests.size(), 1u);
  EXPECT_EQ(view.search.requests[0].file_name, "fehlt.dll");
  EXPECT_THAT(world.Sources(), Contains("C:\\da\\fehlt.dll"));
}

TEST_F(ScanButton, LetsNothingElseHappenMeanwhile) {
  view.on_scan_window = [&](ScanWindowRecord& record) {
    record.run.on_events = [&](RecordingScanView&) {
      if (!tried) TryEverything();
    };
  };

  presenter.Scan();

  EXPECT_TRUE(tried);
  EXPECT_EQ(view.scans.size(), 1u);
}

TEST_F(ScanButton, LetsNothingElseHappenUntilItsWindowIsClosed) {
  view.on_scan_window = [&](ScanWindowRecord& record) {
    record.on_wait = [&] {
      EXPECT_FALSE(view.controls_enabled);
      TryEverything();
    };
  };

  presenter.Scan();

  EXPECT_TRUE(tried);
  EXPECT_FALSE(presenter.IsRunning());
}

TEST_F(ScanButton, ShowsWhatACancelledRunHadFound) {
  view.on_scan_window = [](ScanWindowRecord& record) {
    record.run.on_events = [](RecordingScanView& run) {
      constexpr std::size_t kListedBefore = 2;
      if (run.count > kListedBefore) run.PressCancel();
    };
  };

  presenter.Scan();

  EXPECT_EQ(view.scans[0].run.result, false);
  EXPECT_THAT(world.Sources(), Contains("<ProjectDir>\\Demo.txs"));
  EXPECT_TRUE(view.Did("file list"));
  EXPECT_EQ(view.scans[0].waits, 1);
}

TEST_F(ScanButton, UnlocksTheControlsWhateverItsWindowThrows) {
  for (const char* what : {"scan window", "file list", "figures", "report", "wait"}) {
    messages.shown.clear();
    world.Put("C:\\Demo\\Demo.txs", "[Global]\r\nDesigner=Delphi 5.0\r\n");
    view.before = [&](const std::string& step) {
      if (step == what) throw std::runtime_error("broken");
    };

    presenter.Scan();

    EXPECT_TRUE(view.controls_enabled) << what;
    EXPECT_FALSE(presenter.IsRunning()) << what;
    EXPECT_THAT(messages.Ids(), Contains(1913)) << what;
  }
}

TEST_F(ScanButton, ForgetsTheRunsMessagesAfterwards) {
  presenter.Scan();
  const MessageService::Listener listener = messages.SetListener({});

  EXPECT_FALSE(listener);
}

// --- Create

class CreateButton : public Runs {};

TEST_F(CreateButton, LocksTheControlsUntilTheWindowIsClosed) {
  presenter.Create();

  EXPECT_THAT(view.diary,
              ElementsAre("create window", "controls off", "create begins", "create ends",
                          "take note", "file list", "figures", "wait", "controls on"));
  ASSERT_EQ(view.creates.size(), 1u);
  EXPECT_EQ(view.creates[0].run.result, true);
  EXPECT_EQ(view.creates[0].run.take_notes, 1);
  EXPECT_FALSE(view.creates[0].report.has_value());
  EXPECT_FALSE(view.creates[0].exists);
  EXPECT_TRUE(world.platform.files.Has("C:\\Demo\\Setup\\DISK1\\SETUP.STP"));
  EXPECT_FALSE(presenter.IsRunning());
}

TEST_F(CreateButton, ShowsTheDisksThatWereFilled) {
  presenter.Create();

  EXPECT_EQ(steps.disks_needed_label, "1");
  EXPECT_FALSE(steps.disks_needed_is_estimate);
  EXPECT_EQ(document.files.Row(1).disk, "|1");
}

TEST_F(CreateButton, ShowsNoWindowWhenTheProgramIsMissing) {
  document.program_name.clear();

  presenter.Create();

  EXPECT_THAT(messages.Ids(), ElementsAre(1711));
  EXPECT_EQ(view.creates[0].run.begun, 0);
  EXPECT_TRUE(view.controls_enabled);
  EXPECT_EQ(view.selected_step, std::nullopt);
}

TEST_F(CreateButton, ReportsTheMessagesOfTheRun) {
  world.platform.archiver.FailFor("C:\\Demo\\Trend.ocx", ArchiveResult{12});

  presenter.Create();

  EXPECT_EQ(view.creates[0].run.result, false);
  ASSERT_TRUE(view.creates[0].report.has_value());
  ASSERT_EQ(view.creates[0].report->messages.size(), 1u);
  EXPECT_EQ(view.creates[0].report->messages[0], messages.shown[0].prompt);
  EXPECT_THAT(view.creates[0].report->messages[0], HasSubstr("Trend.ocx"));
  EXPECT_THAT(view.creates[0].report->missing, IsEmpty());
  EXPECT_EQ(view.selected_step, std::nullopt);
}

TEST_F(CreateButton, SelectsStep4AfterItsWindowWhenFilesAreMissing) {
  world.platform.files.Vanish("C:\\Demo\\Trend.ocx");
  bool existed = true;
  view.before = [&](const std::string& what) {
    if (what == "step 4") existed = view.creates[0].exists;
  };

  presenter.Create();

  EXPECT_THAT(messages.Ids(), ElementsAre(1709));
  EXPECT_TRUE(document.files.Row(2).marked);
  EXPECT_THAT(view.diary, ElementsAre("create window", "controls off", "create begins",
                                      "create ends", "take note", "file list", "figures", "report",
                                      "wait", "controls on", "step 4", "file list"));
  EXPECT_FALSE(existed);
}

TEST_F(CreateButton, SelectsStep4WhenDestinationsAreMissing) {
  document.files.Row(1).destination.clear();

  presenter.Create();

  EXPECT_THAT(messages.Ids(), ElementsAre(1710));
  EXPECT_EQ(view.selected_step, Step::kFiles);
}

TEST_F(CreateButton, StaysOnStep5WhenOnlyAHiddenFileIsMissing) {
  document.hidden_files.Append("<ProjectDir>\\weg.dll", "<WinSysDir>", "0");

  presenter.Create();

  EXPECT_THAT(messages.Ids(), ElementsAre(1709));
  EXPECT_EQ(view.selected_step, std::nullopt);
}

TEST_F(CreateButton, LetsNothingElseHappenMeanwhile) {
  view.on_create_window = [&](CreateWindowRecord& record) {
    record.run.on_events = [&](RecordingCreateView&) {
      if (!tried) TryEverything();
    };
    record.on_wait = [&] { TryEverything(); };
  };

  presenter.Create();

  EXPECT_TRUE(tried);
  EXPECT_EQ(view.creates.size(), 1u);
  EXPECT_EQ(view.creates[0].run.result, true);
}

TEST_F(CreateButton, WaitsForItsWindowAfterCancelToo) {
  view.on_create_window = [](CreateWindowRecord& record) {
    record.run.on_events = [](RecordingCreateView& run) { run.PressCancel(); };
  };

  presenter.Create();

  EXPECT_EQ(view.creates[0].run.result, false);
  EXPECT_EQ(view.creates[0].waits, 1);
  EXPECT_TRUE(view.controls_enabled);
}

TEST_F(CreateButton, UnlocksTheControlsWhateverItsWindowThrows) {
  for (const char* what : {"create window", "create begins", "file list", "figures", "wait"}) {
    view.before = [&](const std::string& step) {
      if (step == what) throw std::runtime_error("broken");
    };

    presenter.Create();

    EXPECT_TRUE(view.controls_enabled) << what;
    EXPECT_FALSE(presenter.IsRunning()) << what;
  }
}

TEST_F(CreateButton, ReplacesTheDisksOfTheRunBefore) {
  presenter.Create();
  presenter.Create();

  EXPECT_THAT(messages.Ids(), IsEmpty());
  EXPECT_EQ(view.creates.size(), 2u);
  EXPECT_EQ(view.creates[1].run.result, true);
}

// --- Adding files by hand

class AddButton : public Runs {
 public:
  AddButton() {
    for (const char* name : {"a.dll", "b.dll", "c.dll"}) {
      world.Put(std::string("C:\\Demo\\") + name, std::string(100, 'x'));
    }
  }
};

TEST_F(AddButton, AsksForFilesInTheProjectDirectory) {
  presenter.AddFiles();

  ASSERT_EQ(view.file_questions.size(), 1u);
  EXPECT_EQ(view.file_questions[0].title, "Datei hinzufügen");
  EXPECT_EQ(view.file_questions[0].filter, AddFileFilter(application.texts));
  EXPECT_EQ(view.file_questions[0].directory, "C:\\Demo");
  EXPECT_TRUE(view.file_questions[0].several);
}

TEST_F(AddButton, AddsNothingWhenTheDialogIsCancelled) {
  presenter.AddFiles();

  EXPECT_EQ(document.files.RowCount(), 2u);
  EXPECT_FALSE(document.changed);
  EXPECT_THAT(view.diary, ElementsAre("choose files"));
}

TEST_F(AddButton, AddsTheChosenFilesInTheirOrder) {
  view.file_choices = {{"C:\\Demo\\b.dll", "C:\\Demo\\a.dll"}};

  presenter.AddFiles();

  EXPECT_THAT(world.Sources(), ElementsAre("<ProjectDir>\\Demo.exe", "<ProjectDir>\\Trend.ocx",
                                           "<ProjectDir>\\b.dll", "<ProjectDir>\\a.dll"));
  EXPECT_TRUE(document.changed);
  EXPECT_EQ(steps.file_count_label, "4");
  EXPECT_THAT(view.diary, ElementsAre("choose files", "busy", "ready", "file list", "figures"));
  EXPECT_THAT(messages.Ids(), IsEmpty());
}

TEST_F(AddButton, AddsWhatAFileNeeds) {
  world.Put("C:\\Demo\\a.dep", "[a.dll]\r\nUses1=b.dll\r\n");

  presenter.AddFiles({"C:\\Demo\\a.dll"});

  EXPECT_THAT(world.Sources(), Contains("<ProjectDir>\\b.dll"));
  EXPECT_TRUE(view.scans.empty());
}

TEST_F(AddButton, RefusesASystemFileWhereverItLies) {
  document.system_files.excluded = {"KERNEL32.dll"};
  world.Put("C:\\seltsam\\kernel32.dll", "x");

  presenter.AddFiles({"C:\\seltsam\\kernel32.dll", "C:\\Demo\\a.dll"});

  ASSERT_THAT(messages.Ids(), ElementsAre(1705));
  EXPECT_EQ(messages.shown[0].buttons, kButtonsOk | kIconExclamation);
  EXPECT_EQ(messages.shown[0].prompt,
            "Die Datei 'C:\\seltsam\\kernel32.dll' ist eine Systemdatei!\r\n"
            "Sie muss nicht zusätzlich in die Liste aufgenommen werden!");
  EXPECT_THAT(world.Sources(), Contains("<ProjectDir>\\a.dll"));
  EXPECT_EQ(document.files.RowCount(), 3u);
}

TEST_F(AddButton, AsksWhetherAListedFileIsAddedAgain) {
  Answer(MessageResult::kYes);

  presenter.AddFiles({"c:\\DEMO\\trend.OCX"});

  ASSERT_THAT(messages.Ids(), ElementsAre(1702));
  EXPECT_EQ(messages.shown[0].buttons, kButtonsYesNoCancel | kIconQuestion);
  EXPECT_EQ(messages.shown[0].prompt,
            "Die Datei 'c:\\DEMO\\trend.OCX' ist bereits in der Liste vorhanden!\r\n"
            "Soll sie noch einmal in die Liste aufgenommen werden?");
  EXPECT_EQ(document.files.RowCount(), 3u);
  EXPECT_TRUE(document.changed);
}

TEST_F(AddButton, SkipsAListedFileOnNo) {
  Answer(MessageResult::kNo);

  presenter.AddFiles({"C:\\Demo\\Trend.ocx", "C:\\Demo\\a.dll"});

  EXPECT_THAT(world.Sources(), ElementsAre("<ProjectDir>\\Demo.exe", "<ProjectDir>\\Trend.ocx",
                                           "<ProjectDir>\\a.dll"));
}

TEST_F(AddButton, EndsAtOnceOnCancelAndKeepsWhatWasAdded) {
  Answer(MessageResult::kCancel);

  presenter.AddFiles({"C:\\Demo\\a.dll", "C:\\Demo\\Trend.ocx", "C:\\Demo\\b.dll"});

  EXPECT_THAT(world.Sources(), ElementsAre("<ProjectDir>\\Demo.exe", "<ProjectDir>\\Trend.ocx",
                                           "<ProjectDir>\\a.dll"));
  EXPECT_TRUE(view.Did("file list"));
  EXPECT_FALSE(view.busy);
}

TEST_F(AddButton, ChangesNothingWhenEveryFileIsSkipped) {
  Answer(MessageResult::kNo);

  presenter.AddFiles({"C:\\Demo\\Trend.ocx"});

  EXPECT_FALSE(document.changed);
}

TEST_F(AddButton, AsksAboutAFileThatIsChosenTwice) {
  Answer(MessageResult::kNo);

  presenter.AddFiles({"C:\\Demo\\a.dll", "C:\\Demo\\A.DLL"});

  EXPECT_THAT(messages.Ids(), ElementsAre(1702));
  EXPECT_EQ(document.files.RowCount(), 3u);
}

// A project directory registered with a trailing backslash made every file look new.
TEST_F(AddButton, KnowsAListedFileHoweverItsRowIsSpelled) {
  application.project.directory = "C:\\Demo\\";
  SetPathVariable(document.path_variables, "<ProjectDir>", "C:\\Demo\\");
  document.files.Append("C:\\Demo\\a.dll", "<WinSysDir>", "0");
  messages.answers.assign(2, MessageResult::kNo);

  presenter.AddFiles({"C:\\Demo\\Trend.ocx", "C:/Demo//a.dll"});

  EXPECT_THAT(messages.Ids(), ElementsAre(1702, 1702));
  EXPECT_EQ(document.files.RowCount(), 3u);
}

TEST_F(AddButton, ShowsTheUsualPointerWhileItAsks) {
  document.system_files.excluded = {"c.dll"};
  std::vector<bool> busy_while_shown;
  messages.SetListener([&](const Message&) { busy_while_shown.push_back(view.busy); });
  Answer(MessageResult::kOk);
  Answer(MessageResult::kYes);

  presenter.AddFiles({"C:\\Demo\\c.dll", "C:\\Demo\\Trend.ocx", "C:\\Demo\\a.dll"});

  EXPECT_THAT(busy_while_shown, ElementsAre(false, false));
  EXPECT_THAT(view.diary, ElementsAre("busy", "ready", "busy", "ready", "busy", "ready",
                                      "file list", "figures"));
}

TEST_F(AddButton, PassesOverPathsThatAreNotFull) {
  presenter.AddFiles({"a.dll", "\\Demo\\a.dll", "C:a.dll", ""});

  EXPECT_EQ(document.files.RowCount(), 2u);
  EXPECT_FALSE(document.changed);
  EXPECT_THAT(messages.Ids(), IsEmpty());
  EXPECT_THAT(view.search.requests, IsEmpty());
}

// A folder that was dropped onto the list was passed over without a word.
TEST_F(AddButton, NamesTheFoldersThatItDoesNotAddInOneMessage) {
  world.platform.files.AddFolder("C:\\Demo\\Bilder.dll");
  world.platform.files.AddFolder("C:\\Demo\\Texte");

  presenter.AddFiles({"C:\\Demo\\Bilder.dll", "C:\\Demo\\a.dll", "C:\\Demo\\Texte"});

  EXPECT_THAT(world.Sources(), Contains("<ProjectDir>\\a.dll"));
  ASSERT_THAT(messages.Ids(), ElementsAre(1927));
  EXPECT_THAT(
      messages.shown[0].prompt,
      HasSubstr("diese Verzeichnisse nicht:\r\nC:\\Demo\\Bilder.dll\r\nC:\\Demo\\Texte\r\n"));
  EXPECT_FALSE(view.busy);
}

TEST_F(AddButton, NamesNoMoreFoldersThanABoxHasRoomFor) {
  std::vector<std::string> paths;
  for (int i = 0; i < 200; ++i) {
    paths.push_back("C:\\Demo\\Ordner" + std::to_string(i));
    world.platform.files.AddFolder(paths.back());
  }

  presenter.AddFiles(paths);

  ASSERT_THAT(messages.Ids(), ElementsAre(1927));
  EXPECT_THAT(messages.shown[0].prompt, HasSubstr("Ordner9\r\n...\r\n"));
  EXPECT_EQ(document.files.RowCount(), 2u);
}

TEST_F(AddButton, GoesOnWithTheNextFileAfterAFailure) {
  world.Put("C:\\Demo\\a.dep", "[a.dll]\r\nUses1=b.dll\r\n");
  world.platform.files.FailPath("C:\\Demo\\a.dep", "OpenForReading",
                                ErrorNumber::kPermissionDenied);

  presenter.AddFiles({"C:\\Demo\\a.dll", "C:\\Demo\\c.dll"});

  ASSERT_THAT(messages.Ids(), ElementsAre(907));
  EXPECT_THAT(messages.shown[0].prompt, HasSubstr("a.dll"));
  EXPECT_THAT(world.Sources(), Contains("<ProjectDir>\\c.dll"));
  EXPECT_EQ(document.files.RowCount(), std::stoul(steps.file_count_label));
  EXPECT_FALSE(view.busy);
}

TEST_F(AddButton, SearchesForWhatAFileNeedsInTheFormsDialog) {
  world.Put("C:\\Demo\\a.dep", "[a.dll]\r\nUses1=fehlt.dll\r\n");

  presenter.AddFiles({"C:\\Demo\\a.dll"});

  ASSERT_EQ(view.search.requests.size(), 1u);
  EXPECT_EQ(view.search.requests[0].file_name, "fehlt.dll");
}

TEST_F(AddButton, ShowsTheUsualPointerAndTheRowsAfterAnError) {
  Answer(MessageResult::kYes);
  view.before = [&](const std::string& what) {
    if (what == "busy" && view.Did("ready")) throw std::runtime_error("broken");
  };

  presenter.AddFiles({"C:\\Demo\\a.dll", "C:\\Demo\\Trend.ocx", "C:\\Demo\\b.dll"});

  EXPECT_THAT(messages.Ids(), ElementsAre(1702, 1913));
  EXPECT_FALSE(view.busy);
  EXPECT_TRUE(view.Did("file list"));
  EXPECT_THAT(world.Sources(), ElementsAre("<ProjectDir>\\Demo.exe", "<ProjectDir>\\Trend.ocx",
                                           "<ProjectDir>\\a.dll"));
  EXPECT_FALSE(presenter.IsRunning());
}

TEST_F(AddButton, LetsNothingElseHappenWhileItAsks) {
  Answer(MessageResult::kNo);
  messages.SetListener([&](const Message&) {
    if (!tried) TryEverything();
  });

  presenter.AddFiles({"C:\\Demo\\Trend.ocx"});

  EXPECT_TRUE(tried);
  EXPECT_FALSE(presenter.IsRunning());
}

TEST(AddButtonInEnglish, AsksAndRefusesInEnglish) {
  WizardWorld world(kEnglish);
  world.Put("C:\\Demo\\kernel32.dll", "x");
  world.application.document.system_files.excluded = {"kernel32.dll"};
  world.messages.answers = {MessageResult::kOk, MessageResult::kNo};

  world.presenter.AddFiles();
  world.presenter.AddFiles({"C:\\Demo\\kernel32.dll", "C:\\Demo\\Trend.ocx"});

  EXPECT_EQ(world.view.file_questions[0].title, "Add File");
  ASSERT_THAT(world.messages.Ids(), ElementsAre(1705, 1702));
  EXPECT_EQ(world.messages.shown[0].prompt,
            "The file 'C:\\Demo\\kernel32.dll' is a system file!\r\n"
            "It has not to be listed additionally!");
  EXPECT_EQ(world.messages.shown[1].prompt,
            "The file 'C:\\Demo\\Trend.ocx' is already noted in the list!\r\n"
            "Add it to the list again?");
}

// --- A whole session

TEST(Session, ScansEditsCreatesAndCloses) {
  WizardWorld world(kEnglish);
  SetupWizardPresenter& presenter = world.presenter;

  presenter.Load();
  presenter.TextEdited(FindTextBox("txtInfo21"), "Mixing plant");
  EXPECT_TRUE(presenter.ChangeStep(Step::kTexts, Step::kDirectories));
  EXPECT_TRUE(presenter.AddUserDirectory("E:\\Archive"));
  EXPECT_TRUE(presenter.ChangeStep(Step::kDirectories, Step::kFunctions));
  EXPECT_TRUE(presenter.ChangeStep(Step::kFunctions, Step::kFiles));
  presenter.Scan();
  presenter.EditCell(1, FileColumn::kDestination, "<UserDir2>");
  EXPECT_TRUE(presenter.ChangeStep(Step::kFiles, Step::kMedium));
  presenter.Create();
  world.messages.answers = {MessageResult::kYes};
  EXPECT_TRUE(presenter.MayClose());

  EXPECT_THAT(world.messages.Ids(), ElementsAre(1703));
  EXPECT_EQ(world.view.creates[0].run.result_line, "OK: Installation disks created!");
  EXPECT_THAT(world.Get(kDemoSettings), HasSubstr("01=<ProjectDir>\\Demo.exe,<UserDir2>,0\r\n"));
  EXPECT_THAT(world.Get(kDemoSettings), HasSubstr("2=E:\\Archive\r\n"));
  EXPECT_THAT(world.Get(kDemoSettings), HasSubstr("text21=Mixing plant\r\n"));
}

}  // namespace
}  // namespace txs
