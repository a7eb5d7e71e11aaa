#include "scan/vb_project_reader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

#include "environment/full_path.h"
#include "scan/scan_world.h"

namespace txs {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class VisualBasicReader : public testing::Test {
 protected:
  bool Read(std::string_view file = "Demo.vbp") {
    VisualBasicProjectReader reader(world.Session(), world.Resolver());
    return reader.ReadProject(file);
  }
  bool ReadGroup(const std::vector<std::string>& lines) {
    world.files.AddFile("C:\\Demo\\Demo.vbg", Lines(lines));
    VisualBasicProjectReader reader(world.Session(), world.Resolver());
    return reader.ReadGroup("Demo.vbg");
  }
  // A project whose only content is one line more than the usual ones.
  bool ReadLine(const std::string& line) {
    world.SetVbProject({"Type=Exe", line, "ExeName32=\"Demo.exe\""});
    return Read();
  }
  std::vector<MissingItem> Missing() { return world.Session().TakeMissing(); }

  ResolutionWorld world;
};

std::string Reference(const std::string& guid, const std::string& rest) {
  return "Reference=*\\G" + guid + rest;
}

TEST_F(VisualBasicReader, AddsReferencesObjectsAndTheProgramInTheOrderOfTheLines) {
  world.AddSystemFile("a.tlb");
  world.AddSystemFile("b.ocx");
  world.RegisterLibrary(kGuid1, "2.0", "C:\\Windows\\System32\\a.tlb");
  world.RegisterLibrary(kGuid2, "1.2", "C:\\Windows\\System32\\b.ocx");
  world.SetVbProject({"Type=Exe", "Object=" + std::string(kGuid2) + "#1.2#0; b.ocx",
                      Reference(kGuid1, "#2.0#0#..\\elsewhere\\a.tlb#A"), "Form=Main.frm",
                      "ExeName32=\"Demo.exe\"", "Path32=\"\""});

  EXPECT_TRUE(Read());

  EXPECT_THAT(world.Sources(),
              ElementsAre("<WinSysDir>\\b.ocx", "<WinSysDir>\\a.tlb", "<ProjectDir>\\Demo.exe"));
  EXPECT_EQ(world.application.document.program_name, "Demo.exe");
  EXPECT_THAT(world.messages.shown, IsEmpty());
}

TEST_F(VisualBasicReader, KnowsKeysInAnyCase) {
  world.SetVbProject({"TYPE=exe", "exename32=\"Demo.exe\""});

  EXPECT_TRUE(Read());

  EXPECT_EQ(world.application.document.program_name, "Demo.exe");
}

TEST_F(VisualBasicReader, DoesNotKnowAKeyWithABlankBehindIt) {
  world.SetVbProject({"Type = Exe", "ExeName32=\"Demo.exe\""});

  EXPECT_TRUE(Read());

  EXPECT_EQ(world.application.document.program_name, "");
  EXPECT_THAT(world.Sources(), IsEmpty());
}

TEST_F(VisualBasicReader, ReadsALineWithoutEqualsSignAsNothing) { EXPECT_TRUE(ReadLine("Type")); }

TEST_F(VisualBasicReader, LooksUpTheVersionOfAnObjectInHexadecimal) {
  world.AddSystemFile("b.ocx");
  world.RegisterLibrary(kGuid1, "1.A", "C:\\Windows\\System32\\b.ocx");

  EXPECT_TRUE(ReadLine("Object=" + std::string(kGuid1) + "#1.10#0; b.ocx"));

  EXPECT_THAT(world.Sources(), ElementsAre("<WinSysDir>\\b.ocx", "<ProjectDir>\\Demo.exe"));
}

TEST_F(VisualBasicReader, LooksUpTheVersionOfAReferenceAsItStands) {
  world.AddSystemFile("b.dll");
  world.RegisterLibrary(kGuid1, "a.1", "C:\\Windows\\System32\\b.dll");

  EXPECT_TRUE(ReadLine(Reference(kGuid1, "#a.1#0#b.dll\\3#B")));

  EXPECT_EQ(world.Sources().size(), 2u);
}

TEST_F(VisualBasicReader, TakesAnObjectVersionWithHexadecimalLettersAsItIs) {
  world.AddSystemFile("b.ocx");
  world.RegisterLibrary(kGuid1, "1.a", "C:\\Windows\\System32\\b.ocx");

  EXPECT_TRUE(ReadLine("Object=" + std::string(kGuid1) + "#1.a#0; b.ocx"));

  EXPECT_EQ(world.Sources().size(), 2u);
}

TEST_F(VisualBasicReader, LooksUpTheLocaleOfAnObjectInHexadecimal) {
  world.AddSystemFile("b.ocx");
  world.RegisterLibrary(kGuid1, "1.0", "C:\\Windows\\System32\\b.ocx", "409");

  EXPECT_TRUE(ReadLine("Object=" + std::string(kGuid1) + "#1.0#1033; b.ocx"));

  EXPECT_EQ(world.Sources().size(), 2u);
}

TEST_F(VisualBasicReader, FindsAnObjectWhoseLocaleIsHexadecimalAlready) {
  world.AddSystemFile("b.ocx");
  world.RegisterLibrary(kGuid1, "1.0", "C:\\Windows\\System32\\b.ocx", "409");

  EXPECT_TRUE(ReadLine("Object=" + std::string(kGuid1) + "#1.0#409; b.ocx"));

  EXPECT_EQ(world.Sources().size(), 2u);
}

TEST_F(VisualBasicReader, FindsABareFileInTheProjectDirectoryFirst) {
  world.AddSystemFile("a.tlb");
  world.files.AddFile("C:\\Windows\\a.tlb", "");
  world.files.AddFile("C:\\Demo\\a.tlb", "");
  world.RegisterLibrary(kGuid1, "2.0", "a.tlb");

  EXPECT_TRUE(ReadLine(Reference(kGuid1, "#2.0#0#a.tlb#A")));

  EXPECT_EQ(world.Sources().front(), "<ProjectDir>\\a.tlb");
}

TEST_F(VisualBasicReader, FindsABareFileInTheSystemThenTheWindowsDirectory) {
  world.AddSystemFile("a.tlb");
  world.files.AddFile("C:\\Windows\\a.tlb", "");
  world.files.AddFile("C:\\Windows\\b.tlb", "");
  world.RegisterLibrary(kGuid1, "2.0", "a.tlb");
  world.RegisterLibrary(kGuid2, "2.0", "b.tlb");
  world.SetVbProject(
      {"ExeName32=\"Demo.exe\"", Reference(kGuid1, "#2.0#0##"), Reference(kGuid2, "#2.0#0##")});

  EXPECT_TRUE(Read());

  EXPECT_THAT(world.Sources(), ElementsAre("<WinSysDir>\\a.tlb", "<WinDir>\\b.tlb"));
}

TEST_F(VisualBasicReader, TakesAParentPathFromTheProjectDirectory) {
  world.files.AddFile("C:\\Lib\\a.tlb", "");
  world.RegisterLibrary(kGuid1, "2.0", "..\\Lib\\a.tlb");

  EXPECT_TRUE(ReadLine(Reference(kGuid1, "#2.0#0##")));

  EXPECT_EQ(world.Sources().front(), "C:\\Lib\\a.tlb");
}

TEST_F(VisualBasicReader, ListsALibraryOnceThatIsReferenceAndObject) {
  world.AddSystemFile("b.ocx");
  world.RegisterLibrary(kGuid1, "1.0", "C:\\Windows\\System32\\b.ocx");
  world.SetVbProject({"Type=Exe", Reference(kGuid1, "#1.0#0#b.ocx#B"),
                      "Object=" + std::string(kGuid1) + "#1.0#0; b.ocx", "ExeName32=\"Demo.exe\""});

  EXPECT_TRUE(Read());

  EXPECT_THAT(world.Kinds(), ElementsAre("b.ocx 0", "Demo.exe 0"));
}

TEST_F(VisualBasicReader, LeavesSystemFilesOut) {
  world.application.document.system_files.excluded = {"stdole2.tlb"};
  world.RegisterLibrary(kGuid1, "2.0", "C:\\Gone\\stdole2.tlb");

  EXPECT_TRUE(ReadLine(Reference(kGuid1, "#2.0#0##")));

  EXPECT_THAT(world.Kinds(), ElementsAre("Demo.exe 0"));
  EXPECT_THAT(world.dialog.requests, IsEmpty());
}

TEST_F(VisualBasicReader, AddsTheRuntimeFirstAndStep3sFunctionsBeforeTheProgram) {
  for (const char* name : {"vm.dll", "vm2.dll", "jet.dll", "odbc.dll"}) world.AddSystemFile(name);
  world.SetVb6File({"[VB Runtime]", "Uses1=vm.dll"});
  world.SetProductFile({"[VB Runtime]", "Uses1=vm2.dll", "[Jet Support]", "Uses1=jet.dll",
                        "[ODBC Direct Support]", "Uses1=odbc.dll"});
  world.application.document.steps.use_jet = true;
  world.application.document.steps.use_odbc = true;

  EXPECT_TRUE(Read());

  EXPECT_THAT(world.Kinds(),
              ElementsAre("vm.dll 0", "vm2.dll 0", "jet.dll 0", "odbc.dll 0", "Demo.exe 0"));
  EXPECT_THAT(world.view.captions, ElementsAre("Visual Basic", "Zusatzfunktionen", "EXE-Datei"));
}

TEST_F(VisualBasicReader, AddsNoStep3FunctionThatIsNotSet) {
  world.AddSystemFile("jet.dll");
  world.SetProductFile({"[Jet Support]", "Uses1=jet.dll"});

  EXPECT_TRUE(Read());

  EXPECT_THAT(world.Kinds(), ElementsAre("Demo.exe 0"));
}

TEST_F(VisualBasicReader, ShowsEachLineBeforeItReadsIt) {
  world.SetVbProject({"Type=Exe", "Title=\"Größe\"", "ExeName32=\"Demo.exe\""});

  EXPECT_TRUE(Read());

  EXPECT_THAT(world.view.files, testing::Contains("Title=\"Größe\""));
  EXPECT_THAT(world.view.diary,
              AllOf(testing::Contains("stage 705"), testing::Contains("stage 705 done")));
}

// --- The compiled program

TEST_F(VisualBasicReader, FailsWhereTheProgramIsMissing) {
  world.files.Vanish("C:\\Demo\\Demo.exe");

  EXPECT_FALSE(Read());

  EXPECT_THAT(world.messages.Ids(), ElementsAre(1711));
  EXPECT_THAT(Missing(), ElementsAre(MissingItem{"Demo.exe", {"Demo.vbp", "Demo.exe"}}));
  EXPECT_THAT(world.view.diary, testing::Contains("stage 705 failed"));
}

TEST_F(VisualBasicReader, FailsWhereTheProgramWasNeverNamed) {
  world.SetVbProject({"Type=Exe", "Path32=\"..\\\""});

  EXPECT_FALSE(Read());

  EXPECT_THAT(world.messages.Ids(), ElementsAre(1711));
}

struct ProgramPlace {
  const char* path32;
  const char* program;
};
class ProgramPlaces : public VisualBasicReader, public testing::WithParamInterface<ProgramPlace> {};

TEST_P(ProgramPlaces, FollowPath32FromTheFolderOfTheProject) {
  world.files.AddFile(GetParam().program, "");
  world.files.AddFile(
      "C:\\Demo\\Src\\App.vbp",
      Lines({"Type=OleDll", "ExeName32=\"App.dll\"", "Path32=" + std::string(GetParam().path32)}));

  EXPECT_TRUE(Read("Src\\App.vbp"));

  EXPECT_EQ(FullPath(FromVariableForm(world.application.document.path_variables,
                                      world.Sources().front())),
            GetParam().program);
}

INSTANTIATE_TEST_SUITE_P(VisualBasicReader, ProgramPlaces,
                         testing::Values(ProgramPlace{"\"\"", "C:\\Demo\\Src\\App.dll"},
                                         ProgramPlace{"", "C:\\Demo\\Src\\App.dll"},
                                         ProgramPlace{"\"Bin\"", "C:\\Demo\\Src\\Bin\\App.dll"},
                                         ProgramPlace{"\"..\\\"", "C:\\Demo\\App.dll"},
                                         ProgramPlace{"\"..\"", "C:\\Demo\\App.dll"},
                                         ProgramPlace{"\"..\\..\\Srv\"", "C:\\Srv\\App.dll"},
                                         ProgramPlace{"\"C:\\Srv\"", "C:\\Srv\\App.dll"},
                                         ProgramPlace{"\"C:\\\"", "C:\\App.dll"}));

TEST_F(VisualBasicReader, LooksInTheProjectDirectoryWhenPath32IsEmpty) {
  world.SetVbProject({"Type=Exe", "ExeName32=\"Demo.exe\"", "Path32=\"\""});

  EXPECT_TRUE(Read());

  EXPECT_THAT(world.Sources(), ElementsAre("<ProjectDir>\\Demo.exe"));
}

TEST_F(VisualBasicReader, KeepsQuotesInsideAName) {
  world.SetVbProject({"Type=Exe", "ExeName32=\"De\"mo\".exe\""});

  EXPECT_FALSE(Read());

  // No disk can hold a file of this name.
  EXPECT_THAT(Missing(), ElementsAre(MissingItem{"De\"mo\".exe", {"Demo.vbp", "De\"mo\".exe"}}));
}

TEST_F(VisualBasicReader, TakesNoKeysFromSectionsBehindTheProjects) {
  world.SetVbProject({"Type=Exe", "ExeName32=\"Demo.exe\"", "Path32=\"\"",
                      "[MS Transaction Server]", "AutoRefresh=1", "[TASK1]", "Type=OleDll",
                      "ExeName32=\"Other.exe\"", "Path32=\"C:\\Other\""});

  EXPECT_TRUE(Read());

  EXPECT_THAT(world.Kinds(), ElementsAre("Demo.exe 0"));
}

TEST_F(VisualBasicReader, PackagesAnExeOnlyForSingleAndClientProjects) {
  for (const long type : {1L, 4L}) {
    ResolutionWorld one;
    one.application.project.type = type;
    VisualBasicProjectReader reader(one.Session(), one.Resolver());
    EXPECT_TRUE(reader.ReadProject("Demo.vbp"));
    EXPECT_THAT(one.Kinds(), ElementsAre("Demo.exe 0")) << type;
    EXPECT_EQ(one.application.document.program_name, "Demo.exe");
  }
  for (const long type : {0L, 2L, 8L, 16L, 32L}) {
    ResolutionWorld one;
    one.application.project.type = type;
    VisualBasicProjectReader reader(one.Session(), one.Resolver());
    EXPECT_TRUE(reader.ReadProject("Demo.vbp"));
    EXPECT_THAT(one.Kinds(), IsEmpty()) << type;
  }
}

TEST_F(VisualBasicReader, NamesTheManagerAsTheProgramOfAServerWhateverItBuilds) {
  world.application.project.type = 2;
  world.files.AddFile("C:\\Demo\\Srv.dll", "");
  world.SetVbProject({"Type=OleDll", "ExeName32=\"Srv.dll\""});

  EXPECT_TRUE(Read());

  EXPECT_EQ(world.application.document.program_name, "TXEManager.exe");
  EXPECT_THAT(world.Kinds(), ElementsAre("Srv.dll 0"));
}

TEST_F(VisualBasicReader, DoesNotClearTheProgramNameAtItsStart) {
  world.application.document.program_name = "Earlier.exe";
  world.files.AddFile("C:\\Demo\\Srv.dll", "");
  world.SetVbProject({"Type=OleDll", "ExeName32=\"Srv.dll\""});

  EXPECT_TRUE(Read());

  EXPECT_EQ(world.application.document.program_name, "Earlier.exe");
}

// --- What cannot be resolved

TEST_F(VisualBasicReader, NamesATypeLibraryThatIsNotRegisteredAndGoesOn) {
  EXPECT_TRUE(ReadLine(Reference(kGuid1, "#2.0#0#C:\\a.tlb#Some # Library")));

  ASSERT_THAT(world.messages.Ids(), ElementsAre(914));
  EXPECT_THAT(world.messages.shown[0].prompt, HasSubstr(kGuid1));
  EXPECT_THAT(world.Kinds(), ElementsAre("Demo.exe 0"));
  const std::string name = std::string(kGuid1) + " 2.0 (Some # Library)";
  EXPECT_THAT(Missing(), ElementsAre(MissingItem{name, {"Demo.vbp", name}}));
}

// The box shows the GUID only; the list of missing files tells one version from the other.
TEST_F(VisualBasicReader, ShowsNoBoxTwiceForALibraryThatTwoLinesNameDifferently) {
  EXPECT_TRUE(ReadLine(Reference(kGuid1, "#2.0#0#C:\\a.tlb#Library") +
                       "\r\nObject=" + std::string(kGuid1) + "#3.0#0; lost.ocx"));

  EXPECT_THAT(world.messages.Ids(), ElementsAre(914));
  const std::vector<MissingItem> missing = Missing();
  ASSERT_EQ(missing.size(), 2u);
  EXPECT_EQ(missing[0].name, std::string(kGuid1) + " 2.0 (Library)");
  EXPECT_EQ(missing[1].name, std::string(kGuid1) + " 3.0 (lost.ocx)");
}

TEST_F(VisualBasicReader, NamesAnObjectThatIsNotRegistered) {
  EXPECT_TRUE(ReadLine("Object=" + std::string(kGuid1) + "#6.10#0; lost.ocx"));

  EXPECT_THAT(world.messages.Ids(), ElementsAre(914));
  EXPECT_EQ(Missing().front().name, std::string(kGuid1) + " 6.A (lost.ocx)");
}

// As in a group, whose members use the same.
TEST_F(VisualBasicReader, SaysOnceThatAnInsertableObjectIsNotInstalled) {
  EXPECT_TRUE(
      ReadLine("Object=Word.Document.8; WINWORD.EXE\r\nObject=WORD.Document.8; WINWORD.EXE"));

  EXPECT_THAT(world.messages.Ids(), ElementsAre(916));
}

TEST_F(VisualBasicReader, NamesAnInsertableObjectAndGoesOn) {
  EXPECT_TRUE(ReadLine("Object=Word.Document.8; WINWORD.EXE"));

  ASSERT_THAT(world.messages.Ids(), ElementsAre(916));
  EXPECT_EQ(world.messages.shown[0].buttons, kButtonsOk | kIconInformation);
  EXPECT_THAT(world.messages.shown[0].prompt, HasSubstr("'Word.Document.8; WINWORD.EXE'"));
  EXPECT_THAT(world.Kinds(), ElementsAre("Demo.exe 0"));
}

TEST_F(VisualBasicReader, NamesAProjectReferenceThatNobodyScans) {
  world.SetVbProject({"Type=Exe", "Reference=*\\A..\\Lib\\Lib.vbp", "Object=*\\ACtl.vbp",
                      "ExeName32=\"Demo.exe\""});

  EXPECT_TRUE(Read());

  EXPECT_THAT(world.messages.Ids(), ElementsAre(914, 916));
  EXPECT_THAT(Missing(),
              ElementsAre(MissingItem{"..\\Lib\\Lib.vbp", {"Demo.vbp", "..\\Lib\\Lib.vbp"}},
                          MissingItem{"Ctl.vbp", {"Demo.vbp", "Ctl.vbp"}}));
}

TEST_F(VisualBasicReader, EndsInMessage908AtABadNumber) {
  EXPECT_FALSE(ReadLine("Object=" + std::string(kGuid1) + "#one.two#0; b.ocx"));

  ASSERT_THAT(world.messages.Ids(), ElementsAre(908));
  EXPECT_THAT(world.messages.shown[0].prompt,
              AllOf(HasSubstr("'C:\\Demo\\Demo.vbp'"), HasSubstr("(13: ")));
}

TEST_F(VisualBasicReader, EndsInMessage908AtANumberTooLarge) {
  EXPECT_FALSE(ReadLine("Object=" + std::string(kGuid1) + "#99999999999.0#0; b.ocx"));

  EXPECT_THAT(world.messages.shown.at(0).prompt, HasSubstr("(6: "));
}

TEST_F(VisualBasicReader, EndsInMessage908WithoutAProjectFile) {
  EXPECT_FALSE(Read("Gone.vbp"));

  ASSERT_THAT(world.messages.Ids(), ElementsAre(908));
  EXPECT_THAT(world.messages.shown[0].prompt,
              AllOf(HasSubstr("'C:\\Demo\\Gone.vbp'"), HasSubstr("(53: ")));
}

TEST(VisualBasicReaderMessages, ComeInBothLanguages) {
  for (const long language : {1031L, 1033L}) {
    ResolutionWorld world;
    world.Speak(language);
    world.files.Vanish("C:\\Demo\\Demo.exe");
    world.SetVbProject({"Reference=*\\G{1}#1.0#0##", "Object=Word.Document.8"});
    VisualBasicProjectReader reader(world.Session(), world.Resolver());
    EXPECT_FALSE(reader.ReadProject("Demo.vbp"));
    EXPECT_FALSE(reader.ReadProject("Gone.vbp"));

    const TextService texts(language);
    ASSERT_THAT(world.messages.Ids(), ElementsAre(914, 916, 1711, 908));
    EXPECT_EQ(world.messages.shown[0].prompt, texts.GetText(914, {"{1}"}));
    EXPECT_EQ(world.messages.shown[1].prompt, texts.GetText(916, {"Word.Document.8"}));
    EXPECT_EQ(world.messages.shown[2].prompt, texts.GetText(1711));
    EXPECT_THAT(world.messages.shown[3].prompt,
                testing::StartsWith(texts.GetText(908, {"C:\\Demo\\Gone.vbp"})));
    EXPECT_EQ(world.messages.shown[0].title, texts.GetText(900, {"914"}));
  }
}

// --- Encodings and damage

TEST_F(VisualBasicReader, ReadsNamesInTheAnsiCodePage) {
  world.files.AddFile("C:\\Demo\\Förderanlage.exe", "");
  world.SetVbProject({"Type=Exe", "ExeName32=\"Förderanlage.exe\""});

  EXPECT_TRUE(Read());

  EXPECT_EQ(world.application.document.program_name, "Förderanlage.exe");
}

TEST_F(VisualBasicReader, ReadsLinesThatEndInLineFeeds) {
  world.files.AddFile("C:\\Demo\\Demo.vbp", "Type=Exe\nExeName32=\"Demo.exe\"");

  EXPECT_TRUE(Read());
}

TEST_F(VisualBasicReader, SurvivesAHugeLineAndNuls) {
  std::string bytes = "Type=Exe\r\nReference=" + std::string(5'000'000, '#') + "\r\nObject=";
  bytes += std::string("\0\0#\0#\0", 6) + "\r\nReference=\r\nReference=*\r\nObject=\r\n";
  world.files.AddFile("C:\\Demo\\Demo.vbp", bytes + "ExeName32=\"Demo.exe\"\r\n");

  static_cast<void>(Read());

  EXPECT_FALSE(world.messages.shown.empty());
  for (const std::string& line : world.view.files) EXPECT_LT(line.size(), 1000u);
}

TEST_F(VisualBasicReader, EndsOnJunkOfAnyKind) {
  std::mt19937 random(11);
  const std::vector<std::string> pieces = {"Reference=",
                                           "Object=",
                                           "*\\G",
                                           "*\\A",
                                           "{",
                                           "}",
                                           "#",
                                           "1.0",
                                           "a.f",
                                           "0",
                                           "; ",
                                           "=",
                                           "\r\n",
                                           "Type=Exe",
                                           "\"",
                                           "Path32=",
                                           "ExeName32=",
                                           "\\",
                                           "..\\",
                                           "[x]",
                                           "\xFF",
                                           "Project=",
                                           "C:\\",
                                           "Demo.exe",
                                           "Demo.vbp",
                                           "Demo.vbg",
                                           "99999999999",
                                           "StartupProject=",
                                           std::string(1, '\0')};
  for (int round = 0; round < 200; ++round) {
    ResolutionWorld one;
    std::string bytes;
    for (auto i = random() % 120; i > 0; --i) bytes += pieces[random() % pieces.size()];
    one.files.AddFile("C:\\Demo\\Demo.vbp", bytes);
    one.files.AddFile("C:\\Demo\\Demo.vbg", bytes);
    VisualBasicProjectReader reader(one.Session(), one.Resolver());

    const bool read = reader.ReadProject("Demo.vbp");
    const bool group = reader.ReadGroup("Demo.vbg");

    // What did not succeed was said.
    EXPECT_TRUE((read && group) || !one.messages.shown.empty()) << bytes;
    std::vector<std::string> sources = one.Sources();
    std::sort(sources.begin(), sources.end());
    EXPECT_EQ(std::adjacent_find(sources.begin(), sources.end()), sources.end()) << bytes;
  }
}

TEST_F(VisualBasicReader, StopsAtTheLineWhereCancelIsPressed) {
  world.AddSystemFile("a.tlb");
  world.RegisterLibrary(kGuid1, "2.0", "a.tlb");
  world.SetVbProject({"Title=\"x\"", Reference(kGuid1, "#2.0#0##"), "ExeName32=\"Demo.exe\""});
  world.view.on_events = [](RecordingScanView& view) {
    if (!view.files.empty() && view.files.back() == "Title=\"x\"") view.PressCancel();
  };

  EXPECT_TRUE(Read());

  EXPECT_THAT(world.Sources(), IsEmpty());
  EXPECT_THAT(world.messages.shown, IsEmpty());
}

// --- Groups

TEST_F(VisualBasicReader, ReadsEveryProjectOfAGroupOnce) {
  world.files.AddFile("C:\\Demo\\Lib\\Lib.vbp", Lines({"Type=OleDll", "ExeName32=\"Lib.dll\""}));
  world.files.AddFile("C:\\Demo\\Lib\\Lib.dll", "");

  EXPECT_TRUE(ReadGroup({"VBGROUP 5.0", "Project=Lib\\Lib.vbp", "startupproject=Demo.vbp",
                         "Project=LIB\\lib.vbp", "Other=x.vbp", "Project="}));

  EXPECT_THAT(world.Kinds(), ElementsAre("Lib.dll 0", "Demo.exe 0"));
}

TEST_F(VisualBasicReader, FailsAGroupWhoseSecondProgramIsMissingButKeepsTheFirst) {
  world.files.AddFile("C:\\Demo\\Lib.vbp", Lines({"Type=OleDll", "ExeName32=\"Lib.dll\""}));

  EXPECT_FALSE(ReadGroup({"Project=Demo.vbp", "Project=Lib.vbp"}));

  EXPECT_THAT(world.Kinds(), ElementsAre("Demo.exe 0"));
  EXPECT_THAT(world.messages.Ids(), ElementsAre(1711));
  EXPECT_THAT(Missing(), ElementsAre(MissingItem{"Lib.dll", {"Demo.vbg", "Lib.vbp", "Lib.dll"}}));
}

TEST_F(VisualBasicReader, NamesTheProjectThatAGroupHasLost) {
  EXPECT_FALSE(ReadGroup({"Project=Gone\\Gone.vbp", "Project=Demo.vbp"}));

  ASSERT_THAT(world.messages.Ids(), ElementsAre(908));
  EXPECT_THAT(world.messages.shown[0].prompt, HasSubstr("'C:\\Demo\\Gone\\Gone.vbp'"));
  EXPECT_THAT(world.Kinds(), ElementsAre("Demo.exe 0"));
  EXPECT_THAT(Missing(), ElementsAre(MissingItem{"Gone.vbp", {"Demo.vbg", "Gone.vbp"}}));
}

TEST_F(VisualBasicReader, EndsAtAGroupThatHoldsItself) {
  EXPECT_FALSE(ReadGroup({"Project=Demo.vbg", "StartupProject=.\\Demo.vbg"}));

  EXPECT_THAT(world.messages.Ids(), ElementsAre(1711));
}

TEST_F(VisualBasicReader, NamesAGroupFileThatCannotBeRead) {
  VisualBasicProjectReader reader(world.Session(), world.Resolver());

  EXPECT_FALSE(reader.ReadGroup("Gone.vbg"));

  ASSERT_THAT(world.messages.Ids(), ElementsAre(908));
  EXPECT_THAT(world.messages.shown[0].prompt, HasSubstr("'C:\\Demo\\Gone.vbg'"));
}

TEST_F(VisualBasicReader, IsSilentAboutReferencesToProjectsOfTheSameGroup) {
  world.files.AddFile("C:\\Demo\\Lib\\Lib.vbp", Lines({"Type=OleDll", "ExeName32=\"Lib.dll\"",
                                                       "Reference=*\\A..\\Demo.vbp"}));
  world.files.AddFile("C:\\Demo\\Lib\\Lib.dll", "");
  world.SetVbProject({"Type=Exe", "Reference=*\\ALib\\Lib.vbp", "ExeName32=\"Demo.exe\""});

  EXPECT_TRUE(ReadGroup({"StartupProject=Demo.vbp", "Project=Lib\\Lib.vbp"}));

  EXPECT_THAT(world.messages.shown, IsEmpty());
  EXPECT_THAT(Missing(), IsEmpty());
}

TEST_F(VisualBasicReader, TakesTheProjectsOfAGroupFromItsFolder) {
  world.files.AddFile("C:\\Demo\\Src\\All.vbg", Lines({"StartupProject=App.vbp"}));
  world.files.AddFile("C:\\Demo\\Src\\App.vbp", Lines({"Type=Exe", "ExeName32=\"App.exe\""}));
  world.files.AddFile("C:\\Demo\\Src\\App.exe", "");
  VisualBasicProjectReader reader(world.Session(), world.Resolver());

  EXPECT_TRUE(reader.ReadGroup("Src\\All.vbg"));

  EXPECT_THAT(world.Sources(), ElementsAre("<ProjectDir>\\Src\\App.exe"));
}

}  // namespace
}  // namespace txs
