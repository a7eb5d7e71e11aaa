#include "scan/scan_run.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "document/mdac.h"
#include "scan/scan_world.h"

namespace txs {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class ScanRun : public testing::Test {
 protected:
  // A project with something of everything.
  void SetTheScene() {
    for (const char* name : {"a.tlb", "b.ocx", "need.dll", "vm.dll"}) world.AddSystemFile(name);
    world.RegisterLibrary(kGuid1, "2.0", "C:\\Windows\\System32\\a.tlb");
    world.RegisterLibrary(kGuid2, "1.2", "C:\\Windows\\System32\\b.ocx");
    world.SetVb6File({"[VB Runtime]", "Uses1=vm.dll", "[b.ocx]", "Register=$(DLLSelfRegister)",
                      "Uses1=need.dll", "Uses2=COMCAT.DLL", "[dao.dll]", "Replace=mdac_typ.exe"});
    world.SetProductFile({"[b.ocx]", "Uses1=dao.dll", "I1=b line", "[Tavix4]", "I1=runtime line"});
    world.AddSystemFile("dao.dll");
    world.files.AddFile("C:\\Tavix\\SetupKit\\mdac_typ.exe", "");
    world.files.AddFile("C:\\Tavix\\SetupKit\\Jet40Sp3_Comp.exe", "");
    world.RegisterDriver("Drv", "C:\\Tavix\\drv.exe", "Driver");
    world.files.AddFile("C:\\Tavix\\drv.exe", "");
    world.files.AddFile("C:\\Demo\\a.rct", "");
    world.SetStudioProject({"[device1]", "ProgID=Drv", "[ServerComponents]", "1=need.dll"});
    world.SetVbProject({"Type=Exe", "Reference=*\\G" + std::string(kGuid1) + "#2.0#0#a.tlb#A",
                        "Object=" + std::string(kGuid2) + "#1.2#0; b.ocx", "ExeName32=\"Demo.exe\"",
                        "Path32=\"\""});
  }

  ScanWorld world;
};

TEST_F(ScanRun, EndsWithTheOkLineAndAnEmptyFileLabel) {
  const ScanResult result = world.Run();

  EXPECT_TRUE(result.succeeded);
  EXPECT_EQ(world.view.result, true);
  EXPECT_EQ(world.view.files.back(), "");
  EXPECT_FALSE(world.view.busy);
  EXPECT_THAT(world.view.diary,
              ElementsAre("begin", "busy", "stage 704", "caption TavixStudio", "caption TXS-Datei",
                          "caption Server-Komponenten", "caption Treiberprogramme",
                          "stage 704 done", "stage 705", "caption Visual Basic",
                          "caption Zusatzfunktionen", "caption EXE-Datei", "stage 705 done",
                          "not busy", "end OK: Project succesfully scanned!"));
}

TEST(ScanRunTexts, ComeInBothLanguages) {
  for (const long language : {1031L, 1033L}) {
    const TextService texts(language);
    ScanWorld good;
    good.Speak(language);
    good.application.use_runtime_setup = true;
    good.application.project.type = 8;
    static_cast<void>(good.Run());
    EXPECT_EQ(good.view.result_line, texts.GetText(725));
    EXPECT_EQ(good.view.note, texts.GetText(730));
    EXPECT_TRUE(good.view.use_runtime_setup);

    ScanWorld bad;
    bad.Speak(language);
    bad.files.Vanish("C:\\Demo\\Demo.exe");
    static_cast<void>(bad.Run());
    EXPECT_EQ(bad.view.result_line, texts.GetText(724));
    EXPECT_EQ(bad.view.note, texts.GetText(731));
    EXPECT_FALSE(bad.view.use_runtime_setup);

    ScanWorld other;
    other.Speak(language);
    other.SetStudioProject({}, "Delphi 5.0");
    static_cast<void>(other.Run());
    EXPECT_EQ(other.messages.shown.at(0).prompt, texts.GetText(1713, {"Delphi 5.0"}));
  }
}

TEST_F(ScanRun, ListsEverythingOnceInTheOrderOfTheStages) {
  SetTheScene();

  const ScanResult result = world.Run();

  EXPECT_TRUE(result.succeeded);
  EXPECT_THAT(world.Kinds(),
              ElementsAre("Demo.txs 0", "need.dll 0", "drv.exe 0", "a.rct 0", "vm.dll 0", "a.tlb 0",
                          "b.ocx 1", "mdac_typ.exe 0", "Jet40Sp3_Comp.exe 0", "Demo.exe 0"));
  EXPECT_THAT(world.ToDo(), Contains("b line"));
  EXPECT_THAT(world.ToDo(), Contains("runtime line"));
  EXPECT_THAT(result.missing,
              ElementsAre(MissingItem{"COMCAT.DLL", {"Demo.vbp", "b.ocx", "COMCAT.DLL"}}));
  EXPECT_EQ(world.view.missing, result.missing);
}

TEST_F(ScanRun, AddsNothingTheSecondTime) {
  SetTheScene();
  static_cast<void>(world.Run());
  const FileList rows = world.application.document.files;
  const std::vector<std::string> lines = world.ToDo();

  world.view.count = 0;
  static_cast<void>(world.Run());

  EXPECT_EQ(world.application.document.files.Rows(), rows.Rows());
  EXPECT_EQ(world.ToDo(), lines);
  // It read "0" beside the line that says that all went well.
  EXPECT_EQ(world.view.count, rows.RowCount());
}

TEST_F(ScanRun, KeepsTheUsersEditsAndDeletions) {
  SetTheScene();
  static_cast<void>(world.Run());
  FileList& list = world.application.document.files;
  const std::size_t ocx = list.Find("<WinSysDir>\\b.ocx", FileColumn::kSource);
  list.SetCell(ocx, FileColumn::kDestination, "<UserDir1>");
  list.SetCell(ocx, FileColumn::kRegister, "0");
  const std::size_t runtime = list.Find("<WinSysDir>\\vm.dll", FileColumn::kSource);
  list.SetCell(runtime, FileColumn::kDestination, "");

  static_cast<void>(world.Run());

  EXPECT_EQ(list.Row(ocx).destination, "<UserDir1>");
  EXPECT_EQ(list.Row(ocx).registration, "0");
  EXPECT_EQ(list.Row(runtime).destination, "");
}

TEST_F(ScanRun, LeavesADeletedFileBelowAKeptRowDeleted) {
  SetTheScene();
  world.SetStudioProject({});
  static_cast<void>(world.Run());
  FileList& list = world.application.document.files;
  list.DeleteRows({list.Find("<WinSysDir>\\need.dll", FileColumn::kSource)});

  static_cast<void>(world.Run());

  EXPECT_THAT(world.Kinds(), Not(Contains("need.dll 0")));
}

// Rows come back from the settings file in the next process, script lines do not.
TEST_F(ScanRun, GivesTheScriptLinesBackToRowsOutOfTheSettingsFile) {
  SetTheScene();
  static_cast<void>(world.Run());
  std::vector<std::string> lines = world.ToDo();
  const FileList rows = world.application.document.files;
  world.application.document.extra_todo_lines.clear();

  static_cast<void>(world.Run());

  std::vector<std::string> again = world.ToDo();
  std::sort(lines.begin(), lines.end());
  std::sort(again.begin(), again.end());
  EXPECT_EQ(again, lines);
  EXPECT_EQ(world.application.document.files.Rows(), rows.Rows());
}

// --- A list that an earlier Scan left incomplete

class SecondScan : public ScanRun {
 protected:
  // x.ocx needs n1.dll and n2.dll, has a script line, and is what the project names.
  SecondScan() {
    for (const char* name : {"x.ocx", "n1.dll", "n2.dll"}) world.AddSystemFile(name);
    world.RegisterLibrary(kGuid2, "1.2", "C:\\Windows\\System32\\x.ocx");
    world.SetVbProject(
        {"Type=Exe", "Object=" + std::string(kGuid2) + "#1.2#0; x.ocx", "ExeName32=\"Demo.exe\""});
    world.SetVb6File({"[x.ocx]", "Uses1=n1.dll", "Uses2=n2.dll", "I1=x line"});
  }
  // What a save and the next process leave of the document: the rows.
  void StartTheNextProcess() {
    const FileList rows = world.application.document.files;
    world.application.document = {};
    world.application.document.files = rows;
    world.BuildVariables();
  }
  [[nodiscard]] FileList& Rows() { return world.application.document.files; }
  [[nodiscard]] std::size_t RowOf(const std::string& name) {
    return Rows().Find("<WinSysDir>\\" + name, FileColumn::kSource);
  }
};

// Ended with "OK" and nothing missing.
TEST_F(SecondScan, MissesAgainWhatStillIsNotThere) {
  world.files.Vanish("C:\\Windows\\System32\\n1.dll");
  const MissingItem lost{"n1.dll", {"Demo.vbp", "x.ocx", "n1.dll"}};
  EXPECT_THAT(world.Run().missing, ElementsAre(lost));

  EXPECT_THAT(world.Run().missing, ElementsAre(lost));

  StartTheNextProcess();
  EXPECT_THAT(world.Run().missing, ElementsAre(lost));
  EXPECT_THAT(world.Kinds(), ElementsAre("Demo.txs 0", "x.ocx 0", "n2.dll 0", "Demo.exe 0"));
}

TEST_F(SecondScan, AddsWhatWasMissingAndHasCome) {
  world.files.Vanish("C:\\Windows\\System32\\n1.dll");
  static_cast<void>(world.Run());
  world.AddSystemFile("n1.dll");

  EXPECT_THAT(world.Run().missing, IsEmpty());

  EXPECT_THAT(world.Kinds(), Contains("n1.dll 0"));
}

TEST_F(SecondScan, AddsWhatTheUserFindsForAFileThatASavedListLacks) {
  world.files.Vanish("C:\\Windows\\System32\\n1.dll");
  static_cast<void>(world.Run());
  StartTheNextProcess();
  world.files.AddDrive('D');
  world.files.AddFile("D:\\Kept\\n1.dll", "");
  world.dialog.answers = {{SearchFileResult::kOk, "D:\\Kept"}};

  EXPECT_THAT(world.Run().missing, IsEmpty());

  EXPECT_THAT(world.Sources(), Contains("D:\\Kept\\n1.dll"));
}

TEST_F(SecondScan, LeavesDeletedWhatStandsBesideAFileThatWasMissing) {
  world.files.Vanish("C:\\Windows\\System32\\n1.dll");
  static_cast<void>(world.Run());
  Rows().DeleteRows({RowOf("n2.dll")});
  world.AddSystemFile("n1.dll");

  static_cast<void>(world.Run());

  EXPECT_THAT(world.Kinds(), Contains("n1.dll 0"));
  EXPECT_THAT(world.Kinds(), Not(Contains("n2.dll 0")));
}

// It said "OK" over a list without the rest.
TEST_F(SecondScan, CompletesWhatCancelCutWhereverItWas) {
  static_cast<void>(world.Run());
  const std::size_t events = world.view.events_run;
  std::vector<std::string> whole = world.Sources();
  std::sort(whole.begin(), whole.end());

  for (std::size_t at = 1; at <= events; ++at) {
    Rows().Clear();
    world.application.document.extra_todo_lines.clear();
    world.view.events_run = 0;
    world.view.on_events = [&](RecordingScanView& view) {
      if (view.events_run == at) view.PressCancel();
    };
    EXPECT_FALSE(world.Run().succeeded) << at;
    world.view.on_events = nullptr;

    EXPECT_TRUE(world.Run().succeeded) << at;

    std::vector<std::string> sources = world.Sources();
    std::sort(sources.begin(), sources.end());
    EXPECT_EQ(sources, whole) << at;
    EXPECT_TRUE(world.HasToDo("x line")) << at;
  }
}

TEST_F(SecondScan, CompletesWhatALockedDependencyFileCut) {
  world.files.AddFile("C:\\Windows\\System32\\n1.dep", Lines({"[n1.dll]", "Uses1=deep.dll"}));
  world.AddSystemFile("deep.dll");
  world.files.FailPath("C:\\Windows\\System32\\n1.dep", "OpenForReading",
                       ErrorNumber::kPermissionDenied);
  EXPECT_FALSE(world.Run().succeeded);
  EXPECT_THAT(world.messages.Ids(), ElementsAre(907));
  world.files.StopFailing();

  EXPECT_TRUE(world.Run().succeeded);

  for (const char* row : {"n1.dll 0", "deep.dll 0", "n2.dll 0"}) {
    EXPECT_THAT(world.Kinds(), Contains(row));
  }
  EXPECT_TRUE(world.HasToDo("x line"));
}

// The product's source of the driver comes after the usual one, which failed.
TEST_F(SecondScan, CompletesTheProductsPartOfADriverThatFailed) {
  world.RegisterDriver("Drv", "C:\\Tavix\\drv.exe", "Driver");
  world.files.AddFile("C:\\Tavix\\drv.exe", "");
  world.files.AddFile("C:\\Tavix\\drv.dep", Lines({"[drv.exe]", "Uses1=n1.dll"}));
  world.files.AddFile("C:\\Windows\\System32\\n1.dep", Lines({"[n1.dll]"}));
  world.SetProductFile({"[drv.exe]", "Uses1=deep.dll"});
  world.AddSystemFile("deep.dll");
  world.SetStudioProject({"[device1]", "ProgID=Drv"});
  world.files.FailPath("C:\\Windows\\System32\\n1.dep", "OpenForReading",
                       ErrorNumber::kPermissionDenied);
  EXPECT_FALSE(world.Run().succeeded);
  world.files.StopFailing();

  EXPECT_TRUE(world.Run().succeeded);

  EXPECT_THAT(world.Kinds(), Contains("deep.dll 0"));
}

TEST_F(SecondScan, KeepsTheRegistrationThatTheUserGaveARowThatWasCut) {
  world.SetVb6File({"[x.ocx]", "Register=$(DLLSelfRegister)", "Uses1=n1.dll", "Uses2=n2.dll"});
  world.view.on_events = [&](RecordingScanView& view) {
    if (RowOf("x.ocx") != 0) view.PressCancel();
  };
  EXPECT_TRUE(world.Run().cancelled);
  world.view.on_events = nullptr;
  Rows().SetCell(RowOf("x.ocx"), FileColumn::kRegister, "0");

  EXPECT_TRUE(world.Run().succeeded);

  EXPECT_EQ(Rows().Row(RowOf("x.ocx")).registration, "0");
  EXPECT_THAT(world.Kinds(), Contains("n2.dll 0"));
}

// What is deleted after a Scan that ended well stays deleted, whatever became of an earlier one.
TEST_F(SecondScan, ForgetsWhatWasCutOnceItIsComplete) {
  world.view.on_events = [&](RecordingScanView& view) {
    if (RowOf("x.ocx") != 0) view.PressCancel();
  };
  EXPECT_TRUE(world.Run().cancelled);
  world.view.on_events = nullptr;
  EXPECT_TRUE(world.Run().succeeded);
  Rows().DeleteRows({RowOf("n2.dll")});

  EXPECT_TRUE(world.Run().succeeded);

  EXPECT_THAT(world.Kinds(), Not(Contains("n2.dll 0")));
}

// Adding makes script lines as well, and the rows out of the settings file then counted as done.
TEST_F(SecondScan, GivesTheLinesBackToSavedRowsWhenAFileWasAddedBefore) {
  static_cast<void>(world.Run());
  StartTheNextProcess();
  world.AddSystemFile("own.dll");
  world.SetVb6File(
      {"[x.ocx]", "Uses1=n1.dll", "Uses2=n2.dll", "I1=x line", "[own.dll]", "I1=own line"});
  EXPECT_TRUE(
      AddFileByHand(world.application, world.view, world.dialog, "C:\\Windows\\System32\\own.dll"));

  EXPECT_TRUE(world.Run().succeeded);

  EXPECT_TRUE(world.HasToDo("own line"));
  EXPECT_TRUE(world.HasToDo("x line"));
}

// "scan --save" and "create --scan" made a shorter script than "create --scan" alone.
TEST_F(SecondScan, GivesTheLinesBackThatBelongToNoRow) {
  world.application.use_runtime_setup = true;
  world.files.AddFile("C:\\Tavix\\SetupKit\\TXSRuntimeServerSetup.exe", "");
  world.files.AddFile("C:\\Tavix\\SetupKit\\TXSRuntimeServerSetup.ini",
                      Lines({"[Files]", "1=data.dll", "2=away.dll"}));
  world.AddSystemFile("data.dll");
  world.SetVb6File({"[x.ocx]", "Uses1=Reports", "Uses2=data.dll", "[Reports]", "Uses1=away.dll",
                    "Uses2=n1.dll", "I1=reports line", "[data.dll]", "I1=data line", "[away.dll]",
                    "I1=away line"});
  static_cast<void>(world.Run());
  const std::vector<std::string> lines = world.ToDo();
  for (const char* line : {"reports line", "data line", "away line"}) {
    ASSERT_TRUE(world.HasToDo(line)) << line;
  }
  Rows().DeleteRows({RowOf("n1.dll")});
  const std::vector<std::string> rows = world.Sources();
  StartTheNextProcess();

  EXPECT_THAT(world.Run().missing,
              ElementsAre(testing::Field(&MissingItem::name, "TXSRuntimeClientSetup.exe")));

  EXPECT_EQ(world.ToDo(), lines);
  EXPECT_EQ(world.Sources(), rows);
}

// A dependency file beside the caller tells of the files that it names, too.
TEST_F(SecondScan, GivesTheLinesBackThatStandInTheFileOfTheOneThatNeedsTheRow) {
  world.files.AddFile("C:\\Windows\\System32\\x.dep",
                      Lines({"[x.ocx]", "Uses1=n1.dll", "[n1.dll]", "I1=n1 line"}));
  static_cast<void>(world.Run());
  ASSERT_TRUE(world.HasToDo("n1 line"));
  StartTheNextProcess();

  static_cast<void>(world.Run());

  EXPECT_TRUE(world.HasToDo("n1 line"));
}

TEST_F(SecondScan, GivesTheLinesBackToARowThatTheProjectNoLongerNames) {
  static_cast<void>(world.Run());
  StartTheNextProcess();
  world.SetVbProject({"Type=Exe", "ExeName32=\"Demo.exe\""});

  EXPECT_TRUE(world.Run().succeeded);

  EXPECT_TRUE(world.HasToDo("x line"));
}

// --- the cost of looking through what is there

TEST_F(SecondScan, TakesNoMoreWorkThanTheFirst) {
  constexpr int kCount = 200;
  std::vector<std::string> lines = {"[x.ocx]"};
  for (int i = 0; i < kCount; ++i) {
    lines.push_back("Uses" + std::to_string(i + 1) + "=u" + std::to_string(i) + ".dll");
  }
  for (int i = 0; i < kCount; ++i) {  // each of them names all of the others
    world.AddSystemFile("u" + std::to_string(i) + ".dll");
    lines.push_back("[u" + std::to_string(i) + ".dll]");
    for (int j = 0; j < kCount; ++j) {
      lines.push_back("Uses" + std::to_string(j + 1) + "=u" + std::to_string(j) + ".dll");
    }
  }
  world.SetVb6File(lines);
  static_cast<void>(world.Run());
  const std::size_t first = world.files.diary.size();
  world.files.diary.clear();
  StartTheNextProcess();

  static_cast<void>(world.Run());

  EXPECT_LE(world.files.diary.size(), first + 100);
  EXPECT_EQ(world.Opened(kVb6File), 0u);  // unchanged since the first Scan
}

TEST_F(ScanRun, EndsBeforeTheVisualBasicStageWhenCancelledInTheFirst) {
  SetTheScene();
  world.view.on_events = [](RecordingScanView& view) { view.PressCancel(); };

  const ScanResult result = world.Run();

  EXPECT_FALSE(result.succeeded);
  EXPECT_TRUE(result.cancelled);
  EXPECT_EQ(world.view.result_line, TextService(1033).GetText(724));
  EXPECT_THAT(world.view.diary, Not(Contains("stage 705")));
}

TEST_F(ScanRun, KeepsWhatItHadWhereverItIsCancelled) {
  SetTheScene();
  static_cast<void>(world.Run());
  const std::vector<std::string> whole = world.Sources();
  const std::size_t events = world.view.events_run;

  for (std::size_t at = 1; at <= events; ++at) {
    world.application.document.files.Clear();
    world.application.document.extra_todo_lines.clear();
    world.view.events_run = 0;
    world.view.on_events = [&](RecordingScanView& view) {
      if (view.events_run == at) view.PressCancel();
    };

    const ScanResult result = world.Run();

    EXPECT_FALSE(result.succeeded) << at;
    const std::vector<std::string> part = world.Sources();
    ASSERT_LE(part.size(), whole.size()) << at;
    EXPECT_TRUE(std::equal(part.begin(), part.end(), whole.begin())) << at;
  }
}

TEST_F(ScanRun, AcceptsAnUnsupportedDesigner) {
  world.SetStudioProject({}, "Delphi 5.0");

  const ScanResult result = world.Run();

  EXPECT_TRUE(result.succeeded);
  EXPECT_THAT(world.messages.Ids(), ElementsAre(1713));
  EXPECT_EQ(world.view.result_line, TextService(1033).GetText(725));
  EXPECT_THAT(world.view.diary, Not(Contains("stage 705")));
}

TEST_F(ScanRun, AsksAboutAnEmptyDesignerToo) {
  world.SetStudioProject({}, "");

  EXPECT_TRUE(world.Run().succeeded);

  EXPECT_THAT(world.messages.Ids(), ElementsAre(1713));
}

TEST_F(ScanRun, ReadsAGroupByItsExtensionOfAnyCase) {
  world.SetStudioProject({}, "VISUAL BASIC 6.0", "All.VBG");
  world.files.AddFile("C:\\Demo\\All.VBG", Lines({"StartupProject=Demo.vbp"}));

  EXPECT_TRUE(world.Run().succeeded);

  EXPECT_THAT(world.Kinds(), Contains("Demo.exe 0"));
}

TEST_F(ScanRun, RunsTheVisualBasicStageAfterAFailedFirstStage) {
  world.files.FailPath("C:\\Demo", "List", ErrorNumber::kDeviceIo);

  const ScanResult result = world.Run();

  EXPECT_FALSE(result.succeeded);
  EXPECT_THAT(world.Kinds(), Contains("Demo.exe 0"));
  EXPECT_THAT(world.view.diary, Contains("stage 705 done"));
}

TEST_F(ScanRun, NamesAMissingDesignerProject) {
  world.SetStudioProject({}, "Visual Basic 6.0", "");

  EXPECT_FALSE(world.Run().succeeded);

  ASSERT_THAT(world.messages.Ids(), ElementsAre(908));
  EXPECT_THAT(
      world.messages.shown[0].prompt,
      HasSubstr("(52: C:\\Demo\\Demo.txs: Section Global has no value of DesignerProject)"));
}

// Drivers, script entries and the names never to be packaged come from it.
TEST_F(ScanRun, SaysThatTheStudiosListOfDependenciesIsMissing) {
  SetTheScene();
  world.files.Vanish(kProductFile);

  const ScanResult result = world.Run();

  EXPECT_THAT(world.messages.Ids(), Contains(1937).Times(1));
  EXPECT_THAT(world.messages.shown[0].prompt, HasSubstr(kProductFile));
  EXPECT_THAT(result.missing,
              Contains(MissingItem{"TXDependencies.ini", {"TXDependencies.ini"}}).Times(1));
}

TEST_F(ScanRun, SaysThatTheStudiosListOfDependenciesCannotBeRead) {
  SetTheScene();
  world.files.FailPath(kProductFile, "OpenForReading", ErrorNumber::kPermissionDenied);

  const ScanResult result = world.Run();

  EXPECT_THAT(world.messages.Ids(), Contains(1937).Times(1));
  EXPECT_THAT(result.missing,
              Contains(MissingItem{"TXDependencies.ini", {"TXDependencies.ini"}}).Times(1));
}

TEST_F(ScanRun, LeavesOutWhatTheStudiosListExcludesOnceItIsBack) {
  SetTheScene();
  world.files.Vanish(kProductFile);
  LoadMainFormState(world.application);
  world.application.use_runtime_setup = false;
  world.SetProductFile({"[Exclude]", "1=need.dll"});

  EXPECT_TRUE(world.Run().succeeded);

  EXPECT_THAT(world.Kinds(), Not(Contains("need.dll 0")));
  EXPECT_THAT(world.Kinds(), Contains("drv.exe 0"));
}

// The second stage asked about the designer '' of a project file that was not there.
TEST_F(ScanRun, SaysOnceThatTheProjectFileIsMissing) {
  SetTheScene();
  world.files.Vanish("C:\\Demo\\Demo.txs");

  const ScanResult result = world.Run();

  EXPECT_THAT(world.messages.Ids(), Not(Contains(1713)));
  EXPECT_THAT(result.missing, Contains(testing::Field(&MissingItem::name, "Demo.txs")));
}

TEST_F(ScanRun, SaysOnceThatTheProjectHasNoDirectory) {
  world.application.project.directory.clear();

  EXPECT_FALSE(world.Run().succeeded);

  EXPECT_THAT(world.messages.Ids(), ElementsAre(908));
}

// Both installers were packaged and run.
TEST_F(ScanRun, PutsTheFullMdacBackInThePlaceOfTheMinimalOne) {
  SetTheScene();
  world.files.AddFile("C:\\Tavix\\SetupKit\\Mdac_min.exe", "");
  SetupDocument& document = world.application.document;
  document.files.Append("<TavixMainDir>\\SetupKit\\Mdac_min.exe", "<TempDir>", "0");
  document.extra_todo_lines = {kMinimalMdacEntry};

  static_cast<void>(world.Run());

  EXPECT_EQ(document.files.Row(1).source, "<TavixMainDir>\\SetupKit\\mdac_typ.exe");
  EXPECT_THAT(world.Kinds(), Not(Contains("Mdac_min.exe 0")));
  EXPECT_THAT(world.Kinds(), Contains("mdac_typ.exe 0").Times(1));
  EXPECT_THAT(world.ToDo(), Contains(kFullMdacEntry).Times(1));
  EXPECT_THAT(world.ToDo(), Not(Contains(kMinimalMdacEntry)));
}

TEST_F(ScanRun, OpensEachFileOnceAndListsEachFolderOnce) {
  SetTheScene();
  world.SetVb6File({"[b.ocx]", "Uses1=no1.dll", "Uses2=no2.dll", "Uses3=no3.dll"});
  for (int i = 0; i < 10; ++i) world.files.AddFolder("C:\\Demo\\Sub" + std::to_string(i));

  static_cast<void>(world.Run());

  std::multiset<std::string> opened;
  std::multiset<std::string> listed;
  for (const auto& entry : world.files.diary) {
    const bool is_pattern_of_its_own = entry.path == "C:\\Demo";  // the ".rct" files
    if (entry.operation == "OpenForReading") opened.insert(FoldCase(entry.path));
    if (entry.operation == "List" && !is_pattern_of_its_own) listed.insert(FoldCase(entry.path));
  }
  for (const std::string& path : opened) EXPECT_EQ(opened.count(path), 1u) << path;
  for (const std::string& path : listed) EXPECT_EQ(listed.count(path), 1u) << path;
  EXPECT_EQ(world.view.missing.size(), 3u);
}

// Both stages read it, and both said so in the same words.
TEST_F(ScanRun, SaysOnceThatTheProjectFileCannotBeRead) {
  SetTheScene();
  world.files.FailPath("C:\\Demo\\Demo.txs", "OpenForReading", ErrorNumber::kPermissionDenied);

  EXPECT_FALSE(world.Run().succeeded);

  EXPECT_THAT(world.messages.Ids(), ElementsAre(908));
}

TEST_F(ScanRun, IsSilentWhereNobodyLooks) {
  SetTheScene();
  SilentScanView view;
  IgnoreMissingFiles nobody;

  const ScanResult result = RunScan(world.application, view, nobody);

  EXPECT_TRUE(result.succeeded);
  EXPECT_EQ(result.missing.size(), 1u);
}

TEST(ChainText, JoinsWithArrows) {
  EXPECT_EQ(ChainText({"Demo.vbp", "MSCOMCTL.OCX", "COMCAT.DLL"}),
            "Demo.vbp → MSCOMCTL.OCX → COMCAT.DLL");
}

TEST_F(ScanRun, AddsAFileByHandOnceMoreWithWhatItNeeds) {
  SetTheScene();
  const auto add = [&] {
    return AddFileByHand(world.application, world.view, world.dialog,
                         "C:\\Windows\\System32\\b.ocx");
  };

  EXPECT_TRUE(add());
  EXPECT_TRUE(add());

  EXPECT_THAT(world.Kinds(), ElementsAre("b.ocx 1", "need.dll 0", "b.ocx 1"));
}

class FilesByHand : public ScanRun {
 protected:
  FilesByHand() {
    for (const char* name : {"a.dll", "b.dll", "c.dll"}) {
      world.files.AddFile(std::string("C:\\Demo\\") + name, name);
    }
  }

  AddingByHand adding{world.application, world.view, world.dialog};
};

TEST_F(FilesByHand, AreListedFromThenOnInWhateverSpelling) {
  world.application.document.files.Append("<ProjectDir>\\c.dll", "<WinSysDir>", "0");
  EXPECT_FALSE(adding.IsListed("C:\\Demo\\a.dll"));
  EXPECT_TRUE(adding.IsListed("C:\\Demo\\c.dll"));

  EXPECT_TRUE(adding.Add("C:\\Demo\\a.dll"));

  EXPECT_TRUE(adding.IsListed("c:/DEMO//A.dll"));
  EXPECT_FALSE(adding.IsListed("C:\\Demo\\b.dll"));
}

TEST_F(FilesByHand, AreListedInAProjectThatIsRegisteredWithATrailingBackslash) {
  world.application.project.directory = "C:\\Demo\\";
  world.BuildVariables();
  world.application.document.files.Append("<ProjectDir>\\c.dll", "<WinSysDir>", "0");

  EXPECT_TRUE(adding.Add("C:\\Demo\\a.dll"));

  EXPECT_TRUE(adding.IsListed("C:\\Demo\\a.dll"));
  EXPECT_TRUE(adding.IsListed("C:\\Demo\\c.dll"));
}

TEST_F(FilesByHand, AskForAMissingFileOnce) {
  world.SetVb6File({"[a.dll]", "Uses1=gone.dll", "[b.dll]", "Uses1=gone.dll"});

  EXPECT_TRUE(adding.Add("C:\\Demo\\a.dll"));
  EXPECT_TRUE(adding.Add("C:\\Demo\\b.dll"));

  EXPECT_EQ(world.dialog.requests.size(), 1u);
  EXPECT_THAT(world.Kinds(), ElementsAre("a.dll 0", "b.dll 0"));
}

// What was being followed when the first one failed counted as read, and stayed out for good.
TEST_F(FilesByHand, StartAfreshAfterOneThatFailed) {
  world.SetVb6File(
      {"[a.dll]", "Uses1=Runtime", "[b.dll]", "Uses1=Runtime", "[Runtime]", "Uses1=d.dll"});
  world.AddSystemFile("d.dll");
  world.files.AddFile("C:\\Windows\\System32\\d.dep", Lines({"[d.dll]"}));
  world.files.FailPath("C:\\Windows\\System32\\d.dep", "OpenForReading",
                       ErrorNumber::kPermissionDenied);
  EXPECT_FALSE(adding.Add("C:\\Demo\\a.dll"));
  EXPECT_THAT(world.messages.Ids(), ElementsAre(907));
  EXPECT_THAT(world.Kinds(), ElementsAre("a.dll 0"));
  world.files.StopFailing();

  EXPECT_TRUE(adding.Add("C:\\Demo\\b.dll"));

  EXPECT_THAT(world.Kinds(), ElementsAre("a.dll 0", "b.dll 0", "d.dll 0"));
}

// The setups were only in use during a Scan.
TEST_F(FilesByHand, DoNotBringWhatThePredefinedSetupsInstall) {
  world.application.use_runtime_setup = true;
  world.files.AddFile("C:\\Tavix\\SetupKit\\TXSRuntimeServerSetup.exe", "");
  world.files.AddFile("C:\\Tavix\\SetupKit\\TXSRuntimeServerSetup.ini",
                      Lines({"[Files]", "1=c.dll", "2=b.dll"}));
  world.application.document.files.Append("<TavixMainDir>\\SetupKit\\TXSRuntimeServerSetup.exe",
                                          "<TavixMainDir>\\SetupKit", "0");
  world.SetVb6File({"[a.dll]", "Uses1=c.dll"});

  EXPECT_TRUE(adding.Add("C:\\Demo\\a.dll"));
  EXPECT_TRUE(adding.Add("C:\\Demo\\b.dll"));  // chosen on purpose

  EXPECT_THAT(world.Kinds(), ElementsAre("TXSRuntimeServerSetup.exe 0", "a.dll 0", "b.dll 0"));
}

TEST_F(FilesByHand, BringEverythingWhereThePredefinedSetupIsNotListed) {
  world.application.use_runtime_setup = true;
  world.files.AddFile("C:\\Tavix\\SetupKit\\TXSRuntimeServerSetup.exe", "");
  world.files.AddFile("C:\\Tavix\\SetupKit\\TXSRuntimeServerSetup.ini",
                      Lines({"[Files]", "1=c.dll"}));
  world.SetVb6File({"[a.dll]", "Uses1=c.dll"});

  EXPECT_TRUE(adding.Add("C:\\Demo\\a.dll"));

  EXPECT_THAT(world.Kinds(), ElementsAre("a.dll 0", "c.dll 0"));
}

TEST_F(FilesByHand, SayWhyThePredefinedSetupCannotBeRead) {
  world.application.use_runtime_setup = true;
  const std::string description = "C:\\Tavix\\SetupKit\\TXSRuntimeServerSetup.ini";
  world.files.AddFile("C:\\Tavix\\SetupKit\\TXSRuntimeServerSetup.exe", "");
  world.files.AddFile(description, Lines({"[Files]", "1=c.dll"}));
  world.files.FailPath(description, "OpenForReading", ErrorNumber::kPermissionDenied);
  world.application.document.files.Append("<TavixMainDir>\\SetupKit\\TXSRuntimeServerSetup.exe",
                                          "<TavixMainDir>\\SetupKit", "0");

  EXPECT_FALSE(adding.IsListed("C:\\Demo\\a.dll"));
  EXPECT_FALSE(adding.Add("C:\\Demo\\a.dll"));

  EXPECT_THAT(world.messages.Ids(), ElementsAre(907));
}

// The next Scan knew the row and took the rest for deleted.
TEST_F(FilesByHand, AreCompletedByTheNextScanAfterOneThatFailed) {
  world.files.AddFile("C:\\Demo\\b.dep", Lines({"[b.dll]"}));
  world.files.FailPath("C:\\Demo\\b.dep", "OpenForReading", ErrorNumber::kPermissionDenied);
  world.SetVb6File({"[a.dll]", "Uses1=C:\\Demo\\b.dll", "Uses2=C:\\Demo\\c.dll"});
  EXPECT_FALSE(adding.Add("C:\\Demo\\a.dll"));
  world.files.StopFailing();

  EXPECT_TRUE(world.Run().succeeded);

  EXPECT_THAT(world.Kinds(), Contains("b.dll 0"));
  EXPECT_THAT(world.Kinds(), Contains("c.dll 0"));
}

TEST_F(FilesByHand, ReadEachDependencyFileOnce) {
  world.SetProductFile({"[x]"});

  for (const char* name : {"a.dll", "b.dll", "c.dll"}) {
    EXPECT_TRUE(adding.Add(std::string("C:\\Demo\\") + name));
  }

  EXPECT_EQ(world.Opened(kProductFile), 1u);
}

}  // namespace
}  // namespace txs
