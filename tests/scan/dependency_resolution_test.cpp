#include "scan/dependency_resolution.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "scan/scan_world.h"

namespace txs {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kMdac[] = "C:\\Tavix\\SetupKit\\mdac_typ.exe";
constexpr char kJet[] = "C:\\Tavix\\SetupKit\\Jet40Sp3_Comp.exe";
constexpr char kMdacLine[] =
    "ExecFile(<TempDir>\\mdac_typ.exe|0|/q:a|/c:\"setup.exe /qt\")"
    "@DeleteFile(<TempDir>\\mdac_typ.exe)@SetVar(Reboot|1)";
constexpr char kJetLine[] =
    "ExecFile(<TempDir>\\Jet40Sp3_Comp.exe|0|/q)"
    "@DeleteFile(<TempDir>\\Jet40Sp3_Comp.exe)@SetVar(Reboot|1)";

class DependencyResolution : public testing::Test {
 protected:
  ResolutionWorld world;
  FileList& list = world.application.document.files;
};

TEST_F(DependencyResolution, ListsAFileWithPathDestinationLengthAndKind) {
  world.files.AddFile("C:\\Tavix\\Common\\x.dll", "12345");
  world.SetVb6File({"[X.DLL]", "Register=$(DLLSelfRegister)"});

  EXPECT_TRUE(world.Add("C:\\Tavix\\Common\\x.dll"));

  ASSERT_EQ(list.RowCount(), 1u);
  EXPECT_EQ(list.Row(1).source, "<TavixCommonDir>\\x.dll");
  EXPECT_EQ(list.Row(1).destination, "<TavixCommonDir>");
  EXPECT_EQ(list.Row(1).length_bytes, 5u);
  EXPECT_EQ(list.Row(1).registration, "1");
  EXPECT_EQ(list.Row(1).disk, "");
  EXPECT_EQ(list.Row(1).compressed_name, "");
  EXPECT_TRUE(world.application.document.changed);
}

TEST_F(DependencyResolution, SendsAFileFromNoKnownPlaceToTheSystemDirectory) {
  world.files.AddDrive('D');
  world.files.AddFile("D:\\Other\\x.dll", "");

  EXPECT_TRUE(world.Add("D:\\Other\\x.dll"));

  EXPECT_EQ(list.Row(1).source, "D:\\Other\\x.dll");
  EXPECT_EQ(list.Row(1).destination, "<WinSysDir>");
}

TEST_F(DependencyResolution, AddsTwoFilesThatNameEachOtherOnceEach) {
  world.AddSystemFile("a.dll");
  world.AddSystemFile("b.dll");
  world.SetVb6File({"[a.dll]", "Uses1=b.dll", "[b.dll]", "Uses1=a.dll"});

  EXPECT_TRUE(world.Add("a.dll"));

  EXPECT_THAT(world.Sources(), ElementsAre("<WinSysDir>\\a.dll", "<WinSysDir>\\b.dll"));
}

TEST_F(DependencyResolution, AddsAFileThatUsesItselfOnce) {
  world.AddSystemFile("a.dll");
  world.SetVb6File({"[a.dll]", "Uses1=A.DLL"});

  EXPECT_TRUE(world.Add("a.dll"));

  EXPECT_THAT(world.Sources(), ElementsAre("<WinSysDir>\\a.dll"));
}

TEST_F(DependencyResolution, EndsTheNeedsOfAFileAtAGapInTheNumbers) {
  for (const char* name : {"x.dll", "a.dll", "c.dll"}) world.AddSystemFile(name);
  world.SetVb6File({"[x.dll]", "Uses1=a.dll", "Uses3=c.dll"});

  EXPECT_TRUE(world.Add("x.dll"));

  EXPECT_THAT(world.Kinds(), ElementsAre("x.dll 0", "a.dll 0"));
}

TEST_F(DependencyResolution, ListsTheKindOfEachRegistration) {
  for (const char* name : {"t.dll", "u.dll", "n.dll", "e.exe", "r.exe"}) world.AddSystemFile(name);
  world.SetVb6File({"[t.dll]", "Register=$(TLBRegister)", "[u.dll]", "Register=unknown", "[n.dll]",
                    "[e.exe]", "Register=$(EXESelfRegister)", "[r.exe]", "Register=$(REMOTE)"});

  for (const char* name : {"t.dll", "u.dll", "n.dll", "e.exe", "r.exe"}) {
    EXPECT_TRUE(world.Add(name));
  }

  EXPECT_THAT(world.Kinds(), ElementsAre("t.dll 5", "u.dll 3", "n.dll 0", "e.exe 2", "r.exe 4"));
}

TEST_F(DependencyResolution, VisitsEachNeededFileCompletelyBeforeTheNext) {
  for (const char* name : {"x.dll", "a.dll", "a1.dll", "b.dll"}) world.AddSystemFile(name);
  world.SetVb6File({"[x.dll]", "Uses1=a.dll", "Uses2=b.dll", "I1=after x", "[a.dll]",
                    "Uses1=a1.dll", "I1=after a"});

  EXPECT_TRUE(world.Add("x.dll"));

  EXPECT_THAT(world.Kinds(), ElementsAre("x.dll 0", "a.dll 0", "a1.dll 0", "b.dll 0"));
  EXPECT_THAT(world.ToDo(), ElementsAre("after a", "after x"));
}

TEST_F(DependencyResolution, LeavesARowThatStoodInTheListAloneAndUnread) {
  for (const char* name : {"x.dll", "a.dll"}) world.AddSystemFile(name);
  world.SetVb6File({"[x.dll]", "Register=$(DLLSelfRegister)", "Uses1=a.dll"});
  list.Append("C:\\WINDOWS\\system32\\X.dll", "<UserDir1>", "");

  EXPECT_TRUE(world.Add("x.dll"));

  EXPECT_THAT(world.Sources(), ElementsAre("C:\\WINDOWS\\system32\\X.dll"));
  EXPECT_EQ(list.Row(1).destination, "<UserDir1>");
  EXPECT_EQ(list.Row(1).registration, "");
}

TEST_F(DependencyResolution, DoesNotReadAComponentAgainThatAnotherProjectNames) {
  for (const char* name : {"x.dll", "a.dll"}) world.AddSystemFile(name);
  world.SetVb6File({"[x.dll]", "Uses1=a.dll"});
  EXPECT_TRUE(world.Add("x.dll"));
  list.DeleteRows({2});  // if it were read again, a.dll would come back

  EXPECT_TRUE(world.Add("C:\\Windows\\System32\\x.dll"));

  EXPECT_THAT(world.Kinds(), ElementsAre("x.dll 0"));
}

TEST_F(DependencyResolution, FollowsTheProductFileOfAFileThatItsOwnSourceListed) {
  for (const char* name : {"x.dll", "own.dll", "product.dll"}) world.AddSystemFile(name);
  world.SetVb6File({"[x.dll]", "Uses1=own.dll"});
  world.SetProductFile({"[x.dll]", "Uses1=product.dll", "I1=line"});

  EXPECT_TRUE(world.Add("x.dll"));

  EXPECT_THAT(world.Kinds(), ElementsAre("x.dll 0", "own.dll 0", "product.dll 0"));
  EXPECT_THAT(world.ToDo(), ElementsAre("line"));
}

TEST_F(DependencyResolution, FollowsTheProductFileOfNeededFilesToo) {
  for (const char* name : {"x.dll", "need.dll", "product.dll"}) world.AddSystemFile(name);
  world.SetVb6File({"[x.dll]", "Uses1=need.dll"});
  world.SetProductFile({"[need.dll]", "Uses1=product.dll"});

  EXPECT_TRUE(world.Add("x.dll"));

  EXPECT_THAT(world.Kinds(), ElementsAre("x.dll 0", "need.dll 0", "product.dll 0"));
}

TEST_F(DependencyResolution, TakesTheKindFromTheProductFileWhereTheFirstSourceHasNone) {
  world.AddSystemFile("x.ocx");
  world.SetProductFile({"[x.ocx]", "Register=$(DLLSelfRegister)"});

  EXPECT_TRUE(world.Add("x.ocx"));

  EXPECT_THAT(world.Kinds(), ElementsAre("x.ocx 1"));
}

TEST_F(DependencyResolution, PrefersAComponentsOwnDependencyFile) {
  world.files.AddFile("C:\\Srv\\x.ocx", "");
  world.files.AddFile("C:\\Srv\\x.dep",
                      Lines({"[x.ocx]", "Register=$(DLLSelfRegister)", "Uses1=own.dll", "[own.dll]",
                             "Register=$(EXESelfRegister)"}));
  world.AddSystemFile("own.dll");
  world.SetVb6File({"[x.ocx]", "Uses1=other.dll"});

  EXPECT_TRUE(world.Add("C:\\Srv\\x.ocx"));

  EXPECT_THAT(world.Kinds(), ElementsAre("x.ocx 1", "own.dll 2"));
}

TEST_F(DependencyResolution, AsksTheOwnFileOfANeededFileThatTheCallersDoesNotKnow) {
  world.files.AddFile("C:\\Demo\\x.ocx", "");
  world.files.AddFile("C:\\Demo\\x.dep", Lines({"[x.ocx]", "Uses1=y.ocx"}));
  world.files.AddFile("C:\\Demo\\y.ocx", "");
  world.files.AddFile("C:\\Demo\\y.dep", Lines({"[Y.OCX]", "Register=$(DLLSelfRegister)"}));

  EXPECT_TRUE(world.Add("C:\\Demo\\x.ocx"));

  EXPECT_THAT(world.Kinds(), ElementsAre("x.ocx 0", "y.ocx 1"));
}

TEST_F(DependencyResolution, TurnsToVisualBasicsFileWhereTheDepBesideIsSomethingElse) {
  world.files.AddFile("C:\\Srv\\x.ocx", "");
  world.files.AddFile("C:\\Srv\\x.dep", "x.obj : x.cpp \\\r\n\tx.h\r\n[odd\r\n");
  world.SetVb6File({"[x.ocx]", "Register=$(DLLSelfRegister)"});

  EXPECT_TRUE(world.Add("C:\\Srv\\x.ocx"));

  EXPECT_THAT(world.Kinds(), ElementsAre("x.ocx 1"));
}

TEST_F(DependencyResolution, UsesTheFileOfVisualBasic5ForItsProjects) {
  world.SetStudioProject({}, "visual basic 5.0");
  world.platform.registry.Write(Hive::kLocalMachine, "Software\\Microsoft\\Visual Basic\\5.0",
                                "InstallDir", std::string("C:\\VB5\\"));
  world.files.AddFile("C:\\VB5\\SETUPKIT\\KITFIL32\\VB5DEP.INI",
                      Lines({"[x.ocx]", "Register=$(DLLSelfRegister)"}));
  world.AddSystemFile("x.ocx");

  EXPECT_TRUE(world.Add("x.ocx"));

  EXPECT_THAT(world.Kinds(), ElementsAre("x.ocx 1"));
}

TEST_F(DependencyResolution, HasNoFurtherSourceForAnotherDesigner) {
  world.SetStudioProject({}, "Delphi 5.0");
  world.SetVb6File({"[x.ocx]", "Register=$(DLLSelfRegister)"});
  world.AddSystemFile("x.ocx");

  EXPECT_TRUE(world.Add("x.ocx"));

  EXPECT_THAT(world.Kinds(), ElementsAre("x.ocx 0"));
}

TEST_F(DependencyResolution, NeitherListsNorSearchesPseudoFiles) {
  world.SetProductFile(
      {"[VB Runtime]", "Uses1=MSVBVM60.DLL", "I1=line", "[Exclude]", "1=VB Runtime"});
  world.AddSystemFile("MSVBVM60.DLL");

  EXPECT_TRUE(world.Add("VB Runtime"));
  EXPECT_TRUE(world.Add("Nothing At All"));

  EXPECT_THAT(world.Kinds(), ElementsAre("MSVBVM60.DLL 0"));
  EXPECT_THAT(world.ToDo(), ElementsAre("line"));
  EXPECT_THAT(world.dialog.requests, IsEmpty());
}

TEST_F(DependencyResolution, NeverListsOrSearchesSystemFiles) {
  world.application.document.system_files.excluded = {"kernel32.dll"};
  world.application.document.system_files.resolved = {"OLE32.DLL"};
  world.files.AddFile("C:\\Demo\\ole32.dll", "");
  world.AddSystemFile("x.dll");
  world.SetVb6File({"[x.dll]", "Uses1=KERNEL32.DLL", "Uses2=C:\\Demo\\ole32.dll"});

  EXPECT_TRUE(world.Add("x.dll"));

  EXPECT_THAT(world.Kinds(), ElementsAre("x.dll 0"));
  EXPECT_THAT(world.dialog.requests, IsEmpty());
}

TEST_F(DependencyResolution, ListsAFileOnceMoreByForce) {
  world.AddSystemFile("x.dll");
  EXPECT_TRUE(world.Resolver().AddFile("C:\\Windows\\System32\\x.dll", Force::kNo, ""));

  EXPECT_TRUE(world.Resolver().AddFile("C:\\Windows\\System32\\x.dll", Force::kYes, ""));

  EXPECT_THAT(world.Kinds(), ElementsAre("x.dll 0", "x.dll 0"));
}

TEST_F(DependencyResolution, FindsTheSameFileHoweverItIsNamed) {
  world.files.AddFile("C:\\Demo\\Sub\\x.dll", "");

  for (const char* path : {"C:\\Demo\\Sub\\x.dll", "c:\\DEMO\\sub\\X.DLL", "C:/Demo/Sub/x.dll",
                           "C:\\Demo\\\\Sub\\x.dll", "C:\\Demo\\Other\\..\\Sub\\x.dll"}) {
    EXPECT_TRUE(world.Add(path));
  }

  EXPECT_THAT(world.Sources(), ElementsAre("<ProjectDir>\\Sub\\x.dll"));
}

TEST_F(DependencyResolution, FindsTheProjectsFilesBelowADirectoryStoredWithABackslash) {
  world.application.project.directory = "C:\\Demo\\";
  world.BuildVariables();
  world.files.AddFile("C:\\Demo\\x.dll", "");
  list.Append("<ProjectDir>\\old.dll", "<ProjectDir>", "");
  world.files.AddFile("C:\\Demo\\old.dll", "");

  EXPECT_TRUE(world.Add("C:\\Demo\\x.dll"));
  EXPECT_TRUE(world.Add("C:\\Demo\\old.dll"));

  EXPECT_THAT(world.Sources(), ElementsAre("<ProjectDir>\\old.dll", "<ProjectDir>\\x.dll"));
  EXPECT_EQ(list.Row(2).destination, "<ProjectDir>");
}

TEST_F(DependencyResolution, FollowsAChainOfAHundredThousandFiles) {
  std::string bytes;
  constexpr int kLinks = 100'000;
  for (int i = 0; i < kLinks; ++i) {
    bytes += "[v" + std::to_string(i) + "]\r\nUses1=v" + std::to_string(i + 1) + "\r\n";
  }
  bytes += "[v100000]\r\nUses1=end.dll\r\nUses2=lost.dll\r\n";
  world.files.AddFile(kVb6File, bytes);
  world.AddSystemFile("end.dll");

  EXPECT_TRUE(world.Add("v0"));

  EXPECT_THAT(world.Kinds(), ElementsAre("end.dll 0"));
  ASSERT_EQ(world.dialog.requests.size(), 1u);
  EXPECT_LT(world.dialog.requests[0].chain.size(), 80u);
  EXPECT_EQ(world.dialog.requests[0].chain.back(), "lost.dll");
}

// --- Missing files

TEST_F(DependencyResolution, AsksForAMissingFileWithTheChainThatNeedsIt) {
  world.AddSystemFile("MSCOMCTL.OCX");
  world.SetVb6File({"[MSCOMCTL.OCX]", "Uses1=COMCAT.DLL"});

  EXPECT_TRUE(world.Add("MSCOMCTL.OCX"));

  ASSERT_EQ(world.dialog.requests.size(), 1u);
  EXPECT_EQ(world.dialog.requests[0].file_name, "COMCAT.DLL");
  EXPECT_THAT(world.dialog.requests[0].chain,
              ElementsAre("Demo.vbp", "MSCOMCTL.OCX", "COMCAT.DLL"));
  EXPECT_THAT(world.Session().TakeMissing(),
              ElementsAre(MissingItem{"COMCAT.DLL", {"Demo.vbp", "MSCOMCTL.OCX", "COMCAT.DLL"}}));
}

TEST_F(DependencyResolution, AsksForEachMissingFileOnce) {
  world.AddSystemFile("a.dll");
  world.AddSystemFile("b.dll");
  world.SetVb6File({"[a.dll]", "Uses1=lost.dll", "[b.dll]", "Uses1=LOST.DLL"});

  EXPECT_TRUE(world.Add("a.dll"));
  EXPECT_TRUE(world.Add("b.dll"));
  EXPECT_TRUE(world.Add("C:\\Elsewhere\\lost.dll"));

  EXPECT_EQ(world.dialog.requests.size(), 1u);
  EXPECT_EQ(world.Session().TakeMissing().size(), 1u);
}

TEST_F(DependencyResolution, TakesTheFileFromTheDirectoryThatTheUserChose) {
  world.files.AddDrive('D');
  world.files.AddFile("D:\\Kept\\lost.dll", "123");
  world.dialog.answers = {{SearchFileResult::kOk, "D:\\Kept"}};

  EXPECT_TRUE(world.Add("lost.dll"));
  EXPECT_TRUE(world.Add("C:\\Windows\\lost.dll"));

  EXPECT_THAT(world.Sources(), ElementsAre("D:\\Kept\\lost.dll"));
  EXPECT_EQ(world.dialog.requests.size(), 1u);
  EXPECT_THAT(world.Session().TakeMissing(), IsEmpty());
}

TEST_F(DependencyResolution, RecordsAFileThatIsNotWhereTheUserSays) {
  world.dialog.answers = {{SearchFileResult::kOk, "D:\\Nowhere"}};

  EXPECT_TRUE(world.Add("lost.dll"));

  EXPECT_THAT(world.Sources(), IsEmpty());
  EXPECT_EQ(world.Session().TakeMissing().size(), 1u);
}

TEST_F(DependencyResolution, LeavesAnIgnoredFileOutAndGoesOnWithWhatItNeeds) {
  world.AddSystemFile("need.dll");
  world.AddSystemFile("x.dll");
  world.AddSystemFile("after.dll");
  world.SetVb6File({"[x.dll]", "Uses1=lost.dll", "Uses2=after.dll", "[lost.dll]", "Uses1=need.dll",
                    "I1=line for lost.dll"});
  world.dialog.answers = {{SearchFileResult::kIgnore, {}}};

  EXPECT_TRUE(world.Add("x.dll"));

  EXPECT_THAT(world.Kinds(), ElementsAre("x.dll 0", "need.dll 0", "after.dll 0"));
  EXPECT_THAT(world.ToDo(), IsEmpty());
}

TEST_F(DependencyResolution, LeavesACancelledFileOutWithItsDependencies) {
  world.AddSystemFile("need.dll");
  world.AddSystemFile("x.dll");
  world.AddSystemFile("after.dll");
  world.SetVb6File(
      {"[x.dll]", "Uses1=lost.dll", "Uses2=after.dll", "[lost.dll]", "Uses1=need.dll"});
  world.dialog.answers = {{SearchFileResult::kCancel, {}}};

  EXPECT_TRUE(world.Add("x.dll"));

  EXPECT_THAT(world.Kinds(), ElementsAre("x.dll 0", "after.dll 0"));
}

TEST_F(DependencyResolution, SearchesTheDocumentedPlacesInOrder) {
  world.files.AddFile("C:\\VB98\\Redist\\f.dll", "");
  EXPECT_TRUE(world.Add("f.dll"));
  world.files.AddFile("C:\\Windows\\e.dll", "");
  ResolutionWorld in_windows;
  in_windows.files.AddFile("C:\\Windows\\f.dll", "");
  in_windows.files.AddFile("C:\\VB98\\Redist\\f.dll", "");
  EXPECT_TRUE(in_windows.Add("f.dll"));
  ResolutionWorld in_kit;
  in_kit.files.AddFile("C:\\Tavix\\SetupKit\\f.dll", "");
  in_kit.AddSystemFile("f.dll");
  EXPECT_TRUE(in_kit.Add("f.dll"));
  ResolutionWorld in_project;
  in_project.files.AddFile("C:\\Demo\\Sub\\f.dll", "");
  in_project.files.AddFile("C:\\Tavix\\SetupKit\\f.dll", "");
  EXPECT_TRUE(in_project.Add("f.dll"));

  EXPECT_THAT(world.Sources(), ElementsAre("C:\\VB98\\Redist\\f.dll"));
  EXPECT_THAT(in_windows.Sources(), ElementsAre("<WinDir>\\f.dll"));
  EXPECT_THAT(in_kit.Sources(), ElementsAre("<TavixMainDir>\\SetupKit\\f.dll"));
  EXPECT_THAT(in_project.Sources(), ElementsAre("<ProjectDir>\\Sub\\f.dll"));
}

TEST_F(DependencyResolution, SearchesTheProductsOwnDirectoriesLast) {
  world.files.AddFile("C:\\Tavix\\Common\\c.dll", "");
  world.files.AddFile("C:\\Tavix\\Studio\\System\\c.dll", "");
  world.files.AddFile("C:\\Tavix\\Studio\\System\\s.dll", "");

  EXPECT_TRUE(world.Add("c.dll"));
  EXPECT_TRUE(world.Add("s.dll"));

  EXPECT_THAT(world.Sources(),
              ElementsAre("<TavixCommonDir>\\c.dll", "<TavixStudioDir>\\System\\s.dll"));
}

TEST_F(DependencyResolution, DoesNotTakeAFileOutOfABackup) {
  world.files.AddFile("C:\\Demo\\BackUp 2003\\lost.dll", "");

  EXPECT_TRUE(world.Add("lost.dll"));

  EXPECT_THAT(world.Sources(), IsEmpty());
}

TEST_F(DependencyResolution, FindsABareNameBesideTheFileThatNamesIt) {
  world.files.AddFile("C:\\Srv\\x.ocx", "");
  world.files.AddFile("C:\\Srv\\beside.dll", "");
  world.SetVb6File({"[x.ocx]", "Uses1=beside.dll"});

  EXPECT_TRUE(world.Add("C:\\Srv\\x.ocx"));

  EXPECT_THAT(world.Kinds(), ElementsAre("x.ocx 0", "beside.dll 0"));
}

TEST_F(DependencyResolution, TakesAFileThatTheListAlreadyHoldsForABareName) {
  world.files.AddDrive('D');
  world.files.AddFile("D:\\Own\\x.dll", "");
  list.Append("D:\\Own\\x.dll", "<ProjectDir>", "");

  EXPECT_TRUE(world.Add("x.dll"));

  EXPECT_EQ(list.RowCount(), 1u);
  EXPECT_THAT(world.dialog.requests, IsEmpty());
}

TEST_F(DependencyResolution, NoLongerMissesAFileThatTurnsUpUnderItsPath) {
  world.files.AddFile("C:\\Elsewhere\\x.dll", "");
  EXPECT_TRUE(world.Add("x.dll"));

  EXPECT_TRUE(world.Add("C:\\Elsewhere\\x.dll"));

  EXPECT_EQ(list.RowCount(), 1u);
  EXPECT_THAT(world.Session().TakeMissing(), IsEmpty());
}

// --- Errors and Cancel

class DependencyResolutionErrors : public testing::TestWithParam<long> {};

TEST_P(DependencyResolutionErrors, ShowMessage907WithTheFileAndKeepTheRowsSoFar) {
  ResolutionWorld world;
  world.Speak(GetParam());
  world.AddSystemFile("x.dll");
  world.AddSystemFile("after.dll");
  world.files.AddFile("C:\\Demo\\y.ocx", "");
  world.files.AddFile("C:\\Demo\\y.dep", "");
  world.files.FailPath("C:\\Demo\\y.dep", "OpenForReading", ErrorNumber::kPermissionDenied);
  world.SetVb6File({"[x.dll]", "Uses1=C:\\Demo\\y.ocx", "Uses2=after.dll"});

  EXPECT_FALSE(world.Resolver().AddFile("x.dll", Force::kNo, ""));

  ASSERT_THAT(world.messages.Ids(), ElementsAre(907));
  EXPECT_THAT(world.messages.shown[0].prompt, testing::HasSubstr("'C:\\Demo\\y.ocx'"));
  EXPECT_THAT(world.messages.shown[0].prompt, testing::HasSubstr("(70: "));
  EXPECT_EQ(world.messages.shown[0].prompt.rfind(
                GetParam() == 1033 ? "Error adding" : "Fehler beim Hinzu", 0),
            0u);
  EXPECT_THAT(world.Kinds(), ElementsAre("x.dll 0"));
}

INSTANTIATE_TEST_SUITE_P(BothLanguages, DependencyResolutionErrors, testing::Values(1031, 1033));

TEST_F(DependencyResolution, StopsWithoutAMessageWhenCancelIsPressed) {
  for (const char* name : {"x.dll", "a.dll", "b.dll"}) world.AddSystemFile(name);
  world.SetVb6File({"[x.dll]", "Uses1=a.dll", "Uses2=b.dll"});
  world.view.on_events = [&](RecordingScanView& view) {
    if (list.RowCount() == 2) view.PressCancel();
  };

  EXPECT_FALSE(world.Add("x.dll"));

  EXPECT_THAT(world.Kinds(), ElementsAre("x.dll 0", "a.dll 0"));
  EXPECT_THAT(world.messages.shown, IsEmpty());
}

// --- MDAC and Jet

class MdacAndJet : public DependencyResolution {
 protected:
  MdacAndJet() {
    world.AddSystemFile("dao360.dll");
    world.AddSystemFile("ado.dll");
    world.SetVb6File({"[dao360.dll]", "Replace=MDAC_TYP.EXE", "Uses1=never.dll", "[ado.dll]",
                      "Replace=mdac_typ.exe", "[x.dll]", "Replace=other.exe"});
  }
  void AddKit() {
    world.files.AddFile(kMdac, "mdac");
    world.files.AddFile(kJet, "jet");
  }
};

TEST_F(MdacAndJet, TakeThePlaceOfAComponentThatTheyReplace) {
  AddKit();

  EXPECT_TRUE(world.Add("dao360.dll"));

  EXPECT_THAT(world.Sources(), ElementsAre("<TavixMainDir>\\SetupKit\\mdac_typ.exe",
                                           "<TavixMainDir>\\SetupKit\\Jet40Sp3_Comp.exe"));
  EXPECT_EQ(list.Row(1).destination, "<TempDir>");
  EXPECT_EQ(list.Row(2).destination, "<TempDir>");
  EXPECT_THAT(world.ToDo(), ElementsAre(kMdacLine, kJetLine));
  EXPECT_THAT(world.messages.Ids(), ElementsAre(917));
  EXPECT_EQ(world.messages.shown[0].buttons, kIconInformation | kButtonHelp);
  EXPECT_THAT(world.dialog.requests, IsEmpty());
}

TEST_F(MdacAndJet, ComeOnceForManyComponents) {
  AddKit();

  EXPECT_TRUE(world.Add("dao360.dll"));
  EXPECT_TRUE(world.Add("ado.dll"));

  EXPECT_EQ(list.RowCount(), 2u);
  EXPECT_THAT(world.ToDo(), ElementsAre(kMdacLine, kJetLine));
  EXPECT_THAT(world.messages.Ids(), ElementsAre(917));
}

TEST_F(MdacAndJet, AreOnlyAHintWithThePredefinedSetup) {
  AddKit();
  world.application.use_runtime_setup = true;

  EXPECT_TRUE(world.Add("dao360.dll"));
  EXPECT_TRUE(world.Add(kMdac));

  EXPECT_THAT(world.Sources(), IsEmpty());
  EXPECT_THAT(world.ToDo(), IsEmpty());
  EXPECT_THAT(world.messages.Ids(), ElementsAre(917));
}

TEST_F(MdacAndJet, AreSilentWithThePredefinedSetupWhereTheHintIsHidden) {
  world.application.use_runtime_setup = true;
  world.application.hide_mdac_hint = true;

  EXPECT_TRUE(world.Add("dao360.dll"));

  EXPECT_THAT(world.messages.shown, IsEmpty());
}

TEST_F(MdacAndJet, AreAskedForWhenTheyAreNotInTheKit) {
  world.files.AddFile("C:\\CD\\Mdac_typ.exe", "mdac");
  world.dialog.answers = {{SearchFileResult::kOk, "C:\\CD"}, {SearchFileResult::kCancel, {}}};

  EXPECT_TRUE(world.Add("dao360.dll"));

  ASSERT_EQ(world.dialog.requests.size(), 2u);
  EXPECT_EQ(world.dialog.requests[0].file_name, "Mdac_typ.exe");
  EXPECT_EQ(world.dialog.requests[1].file_name, "Jet40Sp3_Comp.exe");
  EXPECT_THAT(world.Sources(), ElementsAre("C:\\CD\\Mdac_typ.exe"));
  EXPECT_THAT(world.ToDo(), ElementsAre(kMdacLine));
  EXPECT_THAT(world.Session().TakeMissing(),
              ElementsAre(MissingItem{"Jet40Sp3_Comp.exe",
                                      {"Demo.vbp", "dao360.dll", "Jet40Sp3_Comp.exe"}}));
}

// They were asked for, and missing, at every Scan although they were listed.
TEST_F(MdacAndJet, AreTakenFromTheRowsWhereTheyAreNotInTheKit) {
  world.files.AddFile("C:\\CD\\Mdac_typ.exe", "mdac");
  world.files.AddFile("C:\\CD\\Jet40Sp3_Comp.exe", "jet");
  list.Append("C:\\CD\\Mdac_typ.exe", "<TempDir>", "0");
  list.Append("C:\\CD\\Jet40Sp3_Comp.exe", "<TempDir>", "0");

  EXPECT_TRUE(world.Add("dao360.dll"));

  EXPECT_EQ(list.RowCount(), 2u);
  EXPECT_THAT(world.ToDo(), ElementsAre(kMdacLine, kJetLine));
  EXPECT_THAT(world.dialog.requests, IsEmpty());
}

// A file of that name that is only copied is not what its line would run.
TEST_F(MdacAndJet, AreAskedForWhereARowOfTheirNameGoesElsewhereOrHasNoFile) {
  world.files.AddFile("C:\\CD\\Mdac_typ.exe", "mdac");
  list.Append("C:\\CD\\Mdac_typ.exe", "<ProjectDir>", "0");
  list.Append("C:\\CD\\Jet40Sp3_Comp.exe", "<TempDir>", "0");

  EXPECT_TRUE(world.Add("dao360.dll"));

  EXPECT_EQ(world.dialog.requests.size(), 2u);
  EXPECT_THAT(world.ToDo(), IsEmpty());
}

// The user was asked for what is never packaged, and it counted as missing.
TEST_F(MdacAndJet, AreNotLookedForWithThePredefinedSetup) {
  world.application.use_runtime_setup = true;
  world.SetVb6File({"[VB Runtime]", "Uses1=mdac_typ.exe"});

  EXPECT_TRUE(world.Add("VB Runtime"));

  EXPECT_THAT(world.dialog.requests, IsEmpty());
  EXPECT_THAT(world.Session().TakeMissing(), IsEmpty());
  EXPECT_THAT(world.messages.Ids(), ElementsAre(917));
}

// Below a component that stood in the list before.
TEST_F(MdacAndJet, AreMissedAgainBelowAKeptRow) {
  world.AddSystemFile("x.dll");
  world.SetVb6File({"[x.dll]", "Uses1=dao360.dll", "[dao360.dll]", "Replace=mdac_typ.exe"});
  list.Append("<WinSysDir>\\x.dll", "<WinSysDir>", "0");

  EXPECT_TRUE(world.Add("x.dll"));

  EXPECT_EQ(world.dialog.requests.size(), 2u);
  EXPECT_EQ(world.Session().TakeMissing().size(), 2u);
  EXPECT_THAT(world.messages.shown, IsEmpty());
}

TEST_F(MdacAndJet, StayDeletedBelowAKeptRow) {
  AddKit();
  world.AddSystemFile("x.dll");
  world.SetVb6File({"[x.dll]", "Uses1=dao360.dll", "[dao360.dll]", "Replace=mdac_typ.exe"});
  list.Append("<WinSysDir>\\x.dll", "<WinSysDir>", "0");

  EXPECT_TRUE(world.Add("x.dll"));

  EXPECT_EQ(list.RowCount(), 1u);
  EXPECT_THAT(world.ToDo(), IsEmpty());
  EXPECT_THAT(world.messages.shown, IsEmpty());
}

// The row was packed while the option was off, and stays in the package. Nobody would run it
// without its line.
TEST_F(MdacAndJet, KeepTheirLinesWithTheirRowsWhenThePredefinedSetupIsChosenLater) {
  AddKit();
  EXPECT_TRUE(world.Add("dao360.dll"));
  world.application.document.extra_todo_lines.clear();
  world.application.use_runtime_setup = true;
  ScanSession later(world.application, world.view, world.dialog);
  DependencyResolver resolver(later);

  resolver.AddInstallerLinesOfKeptRows();

  EXPECT_THAT(world.ToDo(), ElementsAre(kMdacLine, kJetLine));
}

TEST_F(MdacAndJet, ReplaceAComponentThatOnlyTheProductFileKnowsSo) {
  AddKit();
  world.AddSystemFile("rdo.dll");
  world.SetVb6File({"[rdo.dll]", "Register=$(DLLSelfRegister)"});
  world.SetProductFile({"[RDO.dll]", "Replace=mdac_typ.exe"});

  EXPECT_TRUE(world.Add("rdo.dll"));

  EXPECT_THAT(world.Kinds(), ElementsAre("mdac_typ.exe 0", "Jet40Sp3_Comp.exe 0"));
}

TEST_F(MdacAndJet, DoNothingUnforcedWhereTheyAreListedOrInTheScript) {
  AddKit();
  list.Append("<TavixMainDir>\\SetupKit\\mdac_typ.exe", "<TempDir>", "");
  EXPECT_TRUE(world.Resolver().AddMdacAndJet(Force::kNo));
  EXPECT_EQ(list.RowCount(), 1u);

  ResolutionWorld other;
  other.application.document.extra_todo_lines = {kMdacLine};
  EXPECT_TRUE(other.Resolver().AddMdacAndJet(Force::kNo));
  EXPECT_THAT(other.messages.shown, IsEmpty());
}

TEST_F(MdacAndJet, DoNotBringTheFullInstallerBackBesideTheMinimalOne) {
  AddKit();
  world.application.document.steps.minimal_mdac = true;
  world.files.AddFile("C:\\Tavix\\SetupKit\\Mdac_min.exe", "");
  list.Append("<TavixMainDir>\\SetupKit\\Mdac_min.exe", "<TempDir>", "");

  EXPECT_TRUE(world.Add("dao360.dll"));

  EXPECT_THAT(world.Kinds(), ElementsAre("Mdac_min.exe ", "Jet40Sp3_Comp.exe 0"));
}

TEST_F(MdacAndJet, DoNotHideWhatAComponentNeedsThatOneSourceOnlyCallsReplaced) {
  AddKit();
  world.AddSystemFile("need.dll");
  world.files.AddFile("C:\\Srv\\a.ocx", "");
  world.files.AddFile("C:\\Srv\\a.dep",
                      Lines({"[a.ocx]", "Uses1=rdo.dll", "[rdo.dll]", "Replace=mdac_typ.exe"}));
  world.AddSystemFile("rdo.dll");
  world.SetVb6File({"[rdo.dll]", "Uses1=need.dll"});

  EXPECT_TRUE(world.Add("C:\\Srv\\a.ocx"));
  EXPECT_TRUE(world.Add("rdo.dll"));

  EXPECT_THAT(world.Kinds(), testing::IsSupersetOf({"rdo.dll 0", "need.dll 0"}));
}

TEST_F(MdacAndJet, HaveNothingToDoWithAnotherReplacement) {
  world.AddSystemFile("x.dll");

  EXPECT_TRUE(world.Add("x.dll"));

  EXPECT_THAT(world.Kinds(), ElementsAre("x.dll 0"));
}

TEST(MdacHint, IsShownInBothLanguages) {
  for (const long language : {1031L, 1033L}) {
    ResolutionWorld world;
    world.Speak(language);
    EXPECT_TRUE(world.Resolver().AddMdacAndJet(Force::kYes));

    ASSERT_THAT(world.messages.Ids(), ElementsAre(917));
    EXPECT_EQ(world.messages.shown[0].prompt, TextService(language).GetText(917));
    EXPECT_THAT(world.messages.shown[0].prompt,
                testing::StartsWith(language == 1033 ? "It was found" : "Es wurde eine"));
  }
}

// --- Predefined runtime setups

TEST_F(DependencyResolution, LeavesOutWhatAPredefinedSetupInstallsButFollowsItsNeeds) {
  world.application.use_runtime_setup = true;
  world.AddSystemFile("x.dll");
  world.AddSystemFile("need.dll");
  world.SetVb6File({"[x.dll]", "Uses1=need.dll", "[need.dll]", "Uses1=x.dll"});
  world.Session().Setups().Use(ProfileDocument("[Files]\n1=x.dll\n"));

  EXPECT_TRUE(world.Add("x.dll"));

  EXPECT_THAT(world.Kinds(), ElementsAre("need.dll 0"));
}

TEST_F(DependencyResolution, DoesNotMissWhatAPredefinedSetupInstallsAnyway) {
  world.application.use_runtime_setup = true;
  world.AddSystemFile("need.dll");
  world.SetVb6File({"[x.dll]", "Uses1=need.dll", "I1=line"});
  world.Session().Setups().Use(ProfileDocument("[Files]\n1=X.DLL#2003-09-30\n"));

  EXPECT_TRUE(world.Add("x.dll"));

  EXPECT_THAT(world.Kinds(), ElementsAre("need.dll 0"));
  EXPECT_THAT(world.ToDo(), ElementsAre("line"));
  EXPECT_THAT(world.dialog.requests, IsEmpty());
}

TEST_F(DependencyResolution, PackagesAFileThatIsYoungerThanThePredefinedSetup) {
  world.application.use_runtime_setup = true;
  world.files.AddFile("C:\\Windows\\System32\\x.dll", "",
                      std::chrono::sys_days(std::chrono::year(2004) / 1 / 1));
  world.Session().Setups().Use(ProfileDocument("[Files]\n1=x.dll#2003-09-30\n"));

  EXPECT_TRUE(world.Add("x.dll"));

  EXPECT_THAT(world.Kinds(), ElementsAre("x.dll 0"));
}

TEST_F(DependencyResolution, PackagesEverythingWithTheOptionOff) {
  world.AddSystemFile("x.dll");
  world.Session().Setups().Use(ProfileDocument("[Files]\n1=x.dll\n"));

  EXPECT_TRUE(world.Add("x.dll"));

  EXPECT_THAT(world.Kinds(), ElementsAre("x.dll 0"));
}

// --- Cost

TEST_F(DependencyResolution, ReadsEachDependencyFileOnce) {
  std::vector<std::string> lines;
  for (int i = 0; i < 50; ++i) {
    const std::string name = "x" + std::to_string(i) + ".dll";
    world.AddSystemFile(name);
    lines.push_back("[" + name + "]");
    lines.push_back("Uses1=x" + std::to_string((i + 1) % 50) + ".dll");
  }
  world.SetVb6File(lines);
  world.SetProductFile(lines);

  EXPECT_TRUE(world.Add("x0.dll"));

  EXPECT_EQ(list.RowCount(), 50u);
  EXPECT_EQ(world.Opened(kVb6File), 1u);
  EXPECT_EQ(world.Opened(kProductFile), 1u);
}

}  // namespace
}  // namespace txs
