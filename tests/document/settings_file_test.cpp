#include "document/settings_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "document/document_world.h"

namespace txs {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

std::vector<std::string> RowTexts(const FileList& list) {
  std::vector<std::string> texts;
  for (const FileRow& row : list.Rows()) {
    texts.push_back("[" + row.source + "][" + row.destination + "][" + row.registration + "]");
  }
  return texts;
}

// A project "Demo" in C:\Demo, its settings file as given.
class SettingsFile : public testing::Test {
 protected:
  DocumentWorld world_;
  Application& application_ = world_.application;
  SetupDocument& document_ = world_.application.document;
  StepSettings& steps_ = world_.application.document.steps;

  void Read(const std::string& settings) {
    world_.Put(kSettingsPath, settings);
    ReadSettings(application_);
  }
};

// --- Defaults

TEST_F(SettingsFile, GivesTheDefaultsWhenItIsAbsent) {
  ReadSettings(application_);

  StepSettings expected;
  expected.startmenu_folder = {"Visualisierung", "Visualization"};
  expected.startmenu_link = {"Demo", "Demo"};
  expected.tavix_directory = "C:\\TavixStudio";
  expected.project_directory = "C:\\Demo";
  expected.setup_directory = "<ProjectDir>\\Setup";
  EXPECT_EQ(steps_, expected);
  EXPECT_EQ(document_.program_name, "");
  EXPECT_EQ(document_.files.RowCount(), 0u);
  EXPECT_EQ(document_.hidden_files.RowCount(), 0u);
  EXPECT_THAT(document_.ini_files, IsEmpty());
  EXPECT_THAT(document_.hidden_ini_files, IsEmpty());
  EXPECT_FALSE(document_.changed);
}

// As the studio registers projects: the default was not in variable form.
TEST_F(SettingsFile, DefaultsDoNotDependOnABackslashBehindTheProjectDirectory) {
  application_.project.directory = "C:\\Demo\\";
  document_.path_variables =
      BuildPathVariables(application_.installation, world_.Memory().tools, "C:\\Demo\\");

  ReadSettings(application_);
  EXPECT_EQ(steps_.setup_directory, "<ProjectDir>\\Setup");

  ClearSettings(application_);
  EXPECT_EQ(steps_.setup_directory, "<ProjectDir>\\Setup");
}

TEST_F(SettingsFile, ReplacesWhatTheDocumentHeldBefore) {
  document_.files.Append("old", "old", "1");
  document_.hidden_files.Append("old", "old", "1");
  document_.ini_files = {"old.ini"};
  document_.hidden_ini_files = {"old.ini"};
  document_.program_name = "old.exe";
  document_.configurator_value = "old";
  document_.changed = true;
  steps_.user_directories = {{1, "D:\\Alt"}};
  steps_.use_jet = true;
  steps_.service_pack = true;
  steps_.file_count_label = "9";

  ReadSettings(application_);

  EXPECT_EQ(document_.files.RowCount(), 0u);
  EXPECT_EQ(document_.hidden_files.RowCount(), 0u);
  EXPECT_THAT(document_.ini_files, IsEmpty());
  EXPECT_THAT(document_.hidden_ini_files, IsEmpty());
  EXPECT_EQ(document_.program_name, "");
  EXPECT_EQ(document_.configurator_value, "");
  EXPECT_FALSE(document_.changed);
  EXPECT_THAT(steps_.user_directories, IsEmpty());
  EXPECT_FALSE(steps_.use_jet);
  EXPECT_FALSE(steps_.service_pack);
  EXPECT_EQ(steps_.file_count_label, "");
}

TEST_F(SettingsFile, KeyThatIsPresentAndEmptyIsNotTheDefault) {
  Read("[program]\r\ngroup=\r\nicon=\r\n[path]\r\ntavix=\r\n[destination]\r\npath=\r\n");

  EXPECT_EQ(steps_.startmenu_folder.german, "");
  EXPECT_EQ(steps_.startmenu_link.german, "");
  EXPECT_EQ(steps_.tavix_directory, "");
  EXPECT_EQ(steps_.setup_directory, "");
}

// --- Reading

TEST_F(SettingsFile, FillsAllFiveSteps) {
  Read(
      "[setup]\r\ntext1=Zeile 1\r\ntext2=Zeile 2\r\ntext3=Zeile 3\r\n"
      "text21=Line 1\r\ntext22=Line 2\r\ntext23=Line 3\r\n"
      "background=<ProjectDir>\\Süd.bmp\r\nbackground2=<ProjectDir>\\South.bmp\r\n"
      "[program]\r\ngroup=Anlagen\r\ngroup2=Plants\r\nicon=Süd\r\nicon2=South\r\n"
      "name=Mischanlage.exe\r\n"
      "[path]\r\ntavix=D:\\Tavix\r\nproject=D:\\Süd\r\n"
      "[function]\r\nVB5dbUseJet=1\r\nVB5dbUseODBC=1\r\n"
      "[destination]\r\nsize=1\r\npath=E:\\Setup\r\nMDAC=1\r\nServicePack=1\r\n");

  StepSettings expected;
  expected.info.german = {"Zeile 1", "Zeile 2", "Zeile 3"};
  expected.info.english = {"Line 1", "Line 2", "Line 3"};
  expected.background_picture = {"<ProjectDir>\\Süd.bmp", "<ProjectDir>\\South.bmp"};
  expected.startmenu_folder = {"Anlagen", "Plants"};
  expected.startmenu_link = {"Süd", "South"};
  expected.tavix_directory = "D:\\Tavix";
  expected.project_directory = "D:\\Süd";
  expected.use_jet = true;
  expected.use_odbc = true;
  expected.disk_size_index = 1;
  expected.setup_directory = "E:\\Setup";
  expected.minimal_mdac = true;
  expected.service_pack = true;
  EXPECT_EQ(steps_, expected);
  EXPECT_EQ(document_.program_name, "Mischanlage.exe");
}

TEST_F(SettingsFile, NamesOfSectionsAndKeysHaveNoCase) {
  Read("[SETUP]\r\nTEXT1=a\r\n[Destination]\r\nSIZE=1\r\nmdac=1\r\n[FILE]\r\n01=x,y,1\r\n");

  EXPECT_EQ(steps_.info.german[0], "a");
  EXPECT_EQ(steps_.disk_size_index, 1);
  EXPECT_TRUE(steps_.minimal_mdac);
  EXPECT_THAT(RowTexts(document_.files), ElementsAre("[x][y][1]"));
}

TEST_F(SettingsFile, FlagThatIsNoneOrOutOfRangeIsOff) {
  for (const char* text : {"2", "-1", "ja", "", "1x", "99999999999999999999"}) {
    Read(std::string("[function]\r\nVB5dbUseJet=") + text + "\r\n");

    EXPECT_FALSE(steps_.use_jet) << text;
  }
}

TEST_F(SettingsFile, IndexOfAnUnknownMediumCountsAsTheDiskette) {
  for (const char* text : {"2", "-1", "All", "4294967297"}) {
    Read(std::string("[destination]\r\nsize=") + text + "\r\n");

    EXPECT_EQ(steps_.disk_size_index, 0) << text;
  }
}

TEST_F(SettingsFile, NumericKeysOfSectionPathAreUserDirectoriesInFileOrder) {
  Read(
      "[path]\r\n7=D:\\Sieben\r\ntavix=C:\\TavixStudio\r\n2=D:\\Zwei\r\n2a=D:\\Nein\r\n"
      "-3=D:\\Nein\r\n+4=D:\\Nein\r\n5.0=D:\\Nein\r\n12=\r\n0=D:\\Null\r\n");

  EXPECT_THAT(steps_.user_directories,
              ElementsAre(UserDirectory{7, "D:\\Sieben"}, UserDirectory{2, "D:\\Zwei"},
                          UserDirectory{12, ""}, UserDirectory{0, "D:\\Null"}));
}

TEST_F(SettingsFile, SecondKeyOfOneUserDirectoryNumberIsPassedOver) {
  Read("[path]\r\n1=D:\\Erste\r\n01=D:\\Zweite\r\n2=D:\\Dritte\r\n");

  EXPECT_THAT(steps_.user_directories,
              ElementsAre(UserDirectory{1, "D:\\Erste"}, UserDirectory{2, "D:\\Dritte"}));
}

TEST_F(SettingsFile, UserDirectoryNumberThatIsTooLargeIsNoNumber) {
  Read(
      "[path]\r\n2147483647=D:\\Letzte\r\n2147483648=D:\\Nein\r\n99999999999999999999=D:"
      "\\Nein\r\n");

  EXPECT_THAT(steps_.user_directories, ElementsAre(UserDirectory{2147483647, "D:\\Letzte"}));
}

TEST_F(SettingsFile, RowHasSourceDestinationAndRegister) {
  Read("[file]\r\n01=<ProjectDir>\\Süd.exe,<ProjectDir>,0\r\n02= a.dll , b c , 1 \r\n");

  EXPECT_THAT(RowTexts(document_.files),
              ElementsAre("[<ProjectDir>\\Süd.exe][<ProjectDir>][0]", "[a.dll][ b c ][1]"));
}

TEST_F(SettingsFile, RowWithOneCommaHasAnEmptyRegister) {
  Read("[file]\r\n01=a.dll,<WinSysDir>\r\n02=b.dll,\r\n");

  EXPECT_THAT(RowTexts(document_.files), ElementsAre("[a.dll][<WinSysDir>][]", "[b.dll][][]"));
}

TEST_F(SettingsFile, RowWithoutCommaHasItsTextAsSourceAndDestination) {
  Read("[file]\r\n01=\" a.dll \"\r\n");

  EXPECT_THAT(RowTexts(document_.files), ElementsAre("[a.dll][ a.dll ][]"));
}

TEST_F(SettingsFile, RegisterMayHoldCommas) {
  Read("[file]\r\n01=a.dll,<WinSysDir>,1,2 , 3\r\n");

  EXPECT_THAT(RowTexts(document_.files), ElementsAre("[a.dll][<WinSysDir>][1,2 , 3]"));
}

TEST_F(SettingsFile, RowOfEmptyFieldsDoesNotEndTheList) {
  Read("[file]\r\n01=,,\r\n02=,\r\n03=a,b,1\r\n");

  EXPECT_THAT(RowTexts(document_.files), ElementsAre("[][][]", "[][][]", "[a][b][1]"));
}

TEST_F(SettingsFile, GapInTheNumberingEndsTheList) {
  Read("[file]\r\n01=a,b,1\r\n03=c,d,1\r\n");

  EXPECT_THAT(RowTexts(document_.files), ElementsAre("[a][b][1]"));
}

// A line deleted in an editor: the rows behind it were gone, and nobody was told.
TEST_F(SettingsFile, EntriesBehindAGapAreSaid) {
  Read(
      "[ini]\r\n01=a.ini\r\n[file]\r\n01=a,b,1\r\n03=c,d,1\r\n04=e,f,1\r\nNote=x\r\n"
      "[HiddenIni]\r\n02=b.ini\r\n");

  EXPECT_EQ(world_.MessageIds(), (std::vector<long>{1936, 1936}));
  EXPECT_THAT(world_.Prompts()[0], HasSubstr("[file] of the file 'C:\\Demo\\Demo.swz'"));
  EXPECT_THAT(world_.Prompts()[0], HasSubstr("not read: 2."));
  EXPECT_THAT(world_.Prompts()[1], HasSubstr("[HiddenIni]"));
}

TEST_F(SettingsFile, EmptyEntriesAtTheEndAndOtherKeysAreNoGap) {
  Read("[file]\r\n01=a,b,1\r\n02=\r\n03=\r\nNote=x\r\n[ini]\r\n01=a.ini\r\n01=b.ini\r\n");

  EXPECT_EQ(world_.MessageIds(), (std::vector<long>{}));
}

TEST_F(SettingsFile, EmptyValueEndsTheList) {
  Read("[file]\r\n01=a,b,1\r\n02=\r\n03=c,d,1\r\n");

  EXPECT_THAT(RowTexts(document_.files), ElementsAre("[a][b][1]"));
}

TEST_F(SettingsFile, ListKeysHaveAtLeastTwoDigits) {
  Read("[file]\r\n1=a,b,1\r\n001=c,d,1\r\n[ini]\r\n1=a.ini\r\n");

  EXPECT_EQ(document_.files.RowCount(), 0u);
  EXPECT_THAT(document_.ini_files, IsEmpty());
}

TEST_F(SettingsFile, ListGoesOnBeyondNinetyNine) {
  std::string settings = "[file]\r\n";
  for (int i = 1; i <= 101; ++i) {
    settings += (i < 10 ? "0" : "") + std::to_string(i) + "=" + std::to_string(i) + ",,\r\n";
  }

  Read(settings);

  ASSERT_EQ(document_.files.RowCount(), 101u);
  EXPECT_EQ(document_.files.Row(100).source, "100");
  EXPECT_EQ(document_.files.Row(101).source, "101");
}

TEST_F(SettingsFile, DuplicateRowsAreKept) {
  Read("[file]\r\n01=a.dll,b,1\r\n02=A.DLL,b,1\r\n03=a.dll,b,1\r\n");

  EXPECT_EQ(document_.files.RowCount(), 3u);
}

TEST_F(SettingsFile, DuplicateIniFilesAreReadOnce) {
  Read(
      "[ini]\r\n01=Süd.ini\r\n02=SÜD.INI\r\n03=b.ini\r\n[HiddenIni]\r\n01=Süd.ini\r\n02=süd."
      "ini\r\n");

  EXPECT_THAT(document_.ini_files, ElementsAre("Süd.ini", "b.ini"));
  EXPECT_THAT(document_.hidden_ini_files, ElementsAre("Süd.ini"));
}

TEST_F(SettingsFile, HiddenRowsGoIntoTheHiddenList) {
  Read("[HiddenFile]\r\n01=h.dll,<WinSysDir>,1\r\n02=i.dll\r\n");

  EXPECT_EQ(document_.files.RowCount(), 0u);
  EXPECT_THAT(RowTexts(document_.hidden_files),
              ElementsAre("[h.dll][<WinSysDir>][1]", "[i.dll][i.dll][]"));
}

TEST_F(SettingsFile, KeepsTheValueOfTheConfigurator) {
  world_.Put(kStudioProjectPath, "[Global]\r\nVersion=4.2\r\n");

  ReadSettings(application_);

  EXPECT_EQ(document_.configurator_value, "4.2");
}

TEST_F(SettingsFile, TakesTheFormDesignerFromTheStudioProject) {
  const std::vector<std::pair<const char*, FormDesigner>> cases = {
      {"Visual Basic 5.0", FormDesigner::kVisualBasic5},
      {"visual basic 6.0", FormDesigner::kVisualBasic6},
      {"DELPHI 4.0", FormDesigner::kDelphi4},
      {"Delphi 5.0", FormDesigner::kDelphi5},
      {"Delphi 6.0", FormDesigner::kOther},
      {"", FormDesigner::kOther},
  };
  for (const auto& [name, designer] : cases) {
    world_.Put(kStudioProjectPath, std::string("[global]\r\nDESIGNER=") + name + "\r\n");

    ReadSettings(application_);

    EXPECT_EQ(steps_.designer, designer) << name;
  }
}

TEST_F(SettingsFile, IsFoundBesideAProjectDirectoryWithTrailingBackslash) {
  world_.Put(kSettingsPath, "[setup]\r\ntext1=a\r\n");
  application_.project.directory = "C:\\Demo\\";

  ReadSettings(application_);

  EXPECT_EQ(steps_.info.german[0], "a");
}

// --- Writing

TEST_F(SettingsFile, IsWrittenInFullForANewProject) {
  ReadSettings(application_);
  steps_.info.german[0] = "Kläranlage";
  steps_.user_directories = {{1, "D:\\Messwerte"}, {3, ""}};
  steps_.use_jet = true;
  steps_.disk_size_index = 1;
  steps_.minimal_mdac = true;
  steps_.service_pack = true;
  document_.program_name = "Demo.exe";
  document_.ini_files = {"Demo.ini"};
  document_.hidden_ini_files = {"h.ini"};
  document_.files.Append("<ProjectDir>\\Demo.exe", "<ProjectDir>", "0");
  document_.files.Append("a.dll", "", "");
  document_.hidden_files.Append("h.dll", "<WinSysDir>", "1");
  document_.changed = true;

  WriteSettings(application_);

  EXPECT_EQ(world_.Get(kSettingsPath),
            "[setup]\r\ntext1=Kläranlage\r\ntext2=\r\ntext3=\r\ntext21=\r\ntext22=\r\ntext23=\r\n"
            "background=\r\nbackground2=\r\n"
            "[program]\r\ngroup=Visualisierung\r\ngroup2=Visualization\r\nicon=Demo\r\n"
            "icon2=Demo\r\nname=Demo.exe\r\n"
            "[path]\r\ntavix=C:\\TavixStudio\r\nproject=C:\\Demo\r\n1=D:\\Messwerte\r\n3=\r\n"
            "[function]\r\nVB5dbUseJet=1\r\nVB5dbUseODBC=0\r\n"
            "[destination]\r\nsize=1\r\npath=<ProjectDir>\\Setup\r\nMDAC=1\r\n"
            "[ini]\r\n01=Demo.ini\r\n"
            "[file]\r\n01=<ProjectDir>\\Demo.exe,<ProjectDir>,0\r\n02=a.dll,,\r\n");
  EXPECT_FALSE(document_.changed);
}

constexpr char kHandEdited[] =
    "; by hand\n"
    "[HiddenFile]\n"
    "01=h.dll,<WinSysDir>,1\n"
    "\n"
    "[file]\n"
    "; the program\n"
    "01 = <ProjectDir>\\Demo.exe,<ProjectDir>,0\n"
    "02=old.dll,<WinSysDir>,1\n"
    "03=gone.dll,<WinSysDir>,1\n"
    "[HiddenIni]\n"
    "01=h.ini\n"
    "[Destination]\n"
    "Owner=Müller\n"
    "ServicePack=1\n"
    "Size = 0\n"
    "[Fremd]\n"
    "key = value ; no comment\n"
    "no entry\n";

TEST_F(SettingsFile, KeepsEverythingItDoesNotKnowByteForByte) {
  Read(kHandEdited);
  steps_.info.german[0] = "neu";
  document_.files.Row(2).source = "new.dll";
  document_.files.DeleteRows({3});

  WriteSettings(application_);

  EXPECT_EQ(world_.Get(kSettingsPath),
            "; by hand\n"
            "[HiddenFile]\n"
            "01=h.dll,<WinSysDir>,1\n"
            "\n"
            "[file]\n"
            "; the program\n"
            "01 = <ProjectDir>\\Demo.exe,<ProjectDir>,0\n"
            "02=new.dll,<WinSysDir>,1\n"
            "[HiddenIni]\n"
            "01=h.ini\n"
            "[Destination]\n"
            "Owner=Müller\n"
            "ServicePack=1\n"
            "Size = 0\n"
            "path=<ProjectDir>\\Setup\n"
            "MDAC=0\n"
            "[Fremd]\n"
            "key = value ; no comment\n"
            "no entry\n"
            "[setup]\ntext1=neu\ntext2=\ntext3=\ntext21=\ntext22=\ntext23=\n"
            "background=\nbackground2=\n"
            "[program]\ngroup=Visualisierung\ngroup2=Visualization\nicon=Demo\nicon2=Demo\n"
            "name=\n"
            "[path]\ntavix=C:\\TavixStudio\nproject=C:\\Demo\n"
            "[function]\nVB5dbUseJet=0\nVB5dbUseODBC=0\n");
}

TEST_F(SettingsFile, IsTheSameWhenSavedASecondTime) {
  Read(kHandEdited);
  WriteSettings(application_);
  const std::string once = world_.Get(kSettingsPath);

  ReadSettings(application_);
  WriteSettings(application_);

  EXPECT_EQ(world_.Get(kSettingsPath), once);
}

TEST_F(SettingsFile, HiddenListsSurviveASaveEvenAfterClearing) {
  Read("[HiddenFile]\r\n01=h.dll,<WinSysDir>,1\r\n[HiddenIni]\r\n01=h.ini\r\n");
  ClearSettings(application_);

  WriteSettings(application_);
  ReadSettings(application_);

  EXPECT_THAT(RowTexts(document_.hidden_files), ElementsAre("[h.dll][<WinSysDir>][1]"));
  EXPECT_THAT(document_.hidden_ini_files, ElementsAre("h.ini"));
}

TEST_F(SettingsFile, LosesTheUserDirectoriesAndRowsThatWereDeleted) {
  Read("[path]\r\n1=D:\\a\r\n2=D:\\b\r\n[ini]\r\n01=a.ini\r\n[file]\r\n01=a,b,1\r\n02=c,d,1\r\n");
  steps_.user_directories.erase(steps_.user_directories.begin());
  document_.ini_files.clear();
  document_.files.Clear();

  WriteSettings(application_);

  const std::string settings = world_.Get(kSettingsPath);
  EXPECT_THAT(settings, HasSubstr("2=D:\\b\r\n"));
  EXPECT_THAT(settings, Not(HasSubstr("D:\\a")));
  EXPECT_THAT(settings, Not(HasSubstr("a.ini")));
  EXPECT_THAT(settings, Not(HasSubstr("=c,d,1")));
}

// They were passed over by reading and then deleted by the next save.
TEST_F(SettingsFile, KeepsNumberedDirectoriesThatItDoesNotRead) {
  Read("[path]\r\n1=D:\\a\r\n4294967296=D:\\b\r\n01=D:\\c\r\n-3=D:\\d\r\n5.0=D:\\e\r\n2=D:\\f\r\n");
  ASSERT_THAT(steps_.user_directories,
              ElementsAre(UserDirectory{1, "D:\\a"}, UserDirectory{2, "D:\\f"}));
  steps_.user_directories.pop_back();

  WriteSettings(application_);
  WriteSettings(application_);

  EXPECT_THAT(world_.Get(kSettingsPath),
              HasSubstr("1=D:\\a\r\n4294967296=D:\\b\r\n01=D:\\c\r\n-3=D:\\d\r\n5.0=D:\\e\r\n"));
  EXPECT_THAT(world_.Get(kSettingsPath), Not(HasSubstr("D:\\f")));
  ReadSettings(application_);
  EXPECT_THAT(steps_.user_directories, ElementsAre(UserDirectory{1, "D:\\a"}));
}

TEST_F(SettingsFile, KeepsADirectoryWhoseNumberASpellingBeforeItHas) {
  Read("[path]\r\n01=D:\\a\r\n1=D:\\b\r\n001=D:\\c\r\n");
  ASSERT_THAT(steps_.user_directories, ElementsAre(UserDirectory{1, "D:\\a"}));

  WriteSettings(application_);
  WriteSettings(application_);

  EXPECT_THAT(world_.Get(kSettingsPath), HasSubstr("1=D:\\a\r\n01=D:\\b\r\n001=D:\\c\r\n"));
}

TEST_F(SettingsFile, LosesDirectoriesThatItDoesNotReadWhenTheUserClearsEverything) {
  Read("[path]\r\n1=D:\\a\r\n01=D:\\b\r\n");

  ClearSettings(application_);
  WriteSettings(application_);
  ReadSettings(application_);

  EXPECT_THAT(steps_.user_directories, IsEmpty());
}

TEST_F(SettingsFile, AddsNoHeaderForListsThatWereAlwaysEmpty) {
  ReadSettings(application_);

  WriteSettings(application_);

  EXPECT_THAT(world_.Get(kSettingsPath), Not(HasSubstr("[ini]")));
  EXPECT_THAT(world_.Get(kSettingsPath), Not(HasSubstr("[file]")));
}

// --- Rows that the file cannot hold

struct UnwritableRow {
  const char* what;
  FileRow row;
};

class UnwritableRows : public testing::TestWithParam<UnwritableRow> {};

TEST_P(UnwritableRows, AreRefusedBeforeAnythingIsWritten) {
  DocumentWorld world;
  world.Put(kSettingsPath, "[file]\r\n01=a,b,1\r\n");
  ReadSettings(world.application);
  SetupDocument& document = world.application.document;
  document.files.Rows().push_back(GetParam().row);
  document.steps.info.german[0] = "changed";
  document.changed = true;

  try {
    WriteSettings(world.application);
    FAIL() << "no error was thrown";
  } catch (const RuntimeError& error) {
    EXPECT_EQ(error.Number(), ErrorNumber::kInvalidCall);
    EXPECT_THAT(error.Description(), HasSubstr("row 2"));
  }

  EXPECT_EQ(world.Get(kSettingsPath), "[file]\r\n01=a,b,1\r\n");
  EXPECT_TRUE(document.changed);
}

INSTANTIATE_TEST_SUITE_P(
    SettingsFile, UnwritableRows,
    testing::Values(UnwritableRow{"CommaInSource", {"a,b.dll", "c", {}, "", "", "1"}},
                    UnwritableRow{"CommaInDestination", {"a.dll", "c,d", {}, "", "", "1"}},
                    UnwritableRow{"LineFeedInSource", {"a\nb.dll", "c", {}, "", "", "1"}},
                    UnwritableRow{"LineBreakInDestination", {"a.dll", "c\r\n", {}, "", "", "1"}},
                    UnwritableRow{"ReturnInRegister", {"a.dll", "c", {}, "", "", "1\r2"}},
                    UnwritableRow{"BlankBeforeSource", {" a.dll", "c", {}, "", "", "1"}},
                    UnwritableRow{"TabBehindSource", {"a.dll\t", "c", {}, "", "", "1"}},
                    UnwritableRow{"BlankBeforeRegister", {"a.dll", "c", {}, "", "", " 1"}},
                    UnwritableRow{"BlankBehindRegister", {"a.dll", "c", {}, "", "", "1 "}}),
    [](const testing::TestParamInfo<UnwritableRow>& row) { return row.param.what; });

TEST_F(SettingsFile, RefusesAnEmptyIniFileNameWhichWouldEndTheList) {
  ReadSettings(application_);
  document_.ini_files = {"a.ini", "", "b.ini"};

  EXPECT_EQ(world_.NumberOfErrorFrom([&] { WriteSettings(application_); }),
            ErrorNumber::kInvalidCall);
  EXPECT_FALSE(world_.Has(kSettingsPath));
}

TEST_F(SettingsFile, RefusesALineBreakInAnyText) {
  for (std::string* text : {&steps_.info.german[1], &steps_.startmenu_link.english,
                            &steps_.tavix_directory, &steps_.setup_directory}) {
    ReadSettings(application_);
    *text = "one\r\ntwo=2";

    EXPECT_EQ(world_.NumberOfErrorFrom([&] { WriteSettings(application_); }),
              ErrorNumber::kInvalidCall);
    EXPECT_FALSE(world_.Has(kSettingsPath));
  }
}

TEST_F(SettingsFile, RefusesACharacterThatTheCodePageLacks) {
  Read("[file]\r\n01=a,b,1\r\n");
  document_.files.Append("<ProjectDir>\\Čapek.dll", "<ProjectDir>", "1");
  document_.changed = true;

  EXPECT_EQ(world_.NumberOfErrorFrom([&] { WriteSettings(application_); }),
            ErrorNumber::kInvalidCall);
  EXPECT_EQ(world_.Get(kSettingsPath), "[file]\r\n01=a,b,1\r\n");
  EXPECT_TRUE(document_.changed);
}

TEST_F(SettingsFile, CannotBeWrittenWithoutItsDirectory) {
  ReadSettings(application_);
  application_.project.directory = "C:\\Fehlt";
  document_.changed = true;

  EXPECT_EQ(world_.NumberOfErrorFrom([&] { WriteSettings(application_); }),
            ErrorNumber::kPathNotFound);
  EXPECT_TRUE(document_.changed);
}

// --- Clearing

TEST_F(SettingsFile, ClearingSetsTheDefaultsAndWritesNothing) {
  const std::string settings =
      "[setup]\r\ntext1=a\r\nbackground=b\r\n[program]\r\ngroup=c\r\nicon2=d\r\nname=e.exe\r\n"
      "[path]\r\ntavix=D:\\f\r\nproject=D:\\g\r\n1=D:\\h\r\n"
      "[destination]\r\nsize=1\r\npath=E:\\i\r\n"
      "[ini]\r\n01=j\r\n[HiddenIni]\r\n01=k\r\n[file]\r\n01=l,m,1\r\n[HiddenFile]\r\n01=n,o,1\r\n";
  Read(settings);
  document_.changed = true;

  ClearSettings(application_);

  StepSettings expected;
  expected.startmenu_folder = {"Visualisierung", "Visualization"};
  expected.startmenu_link = {"Demo", "Demo"};
  expected.tavix_directory = "C:\\TavixStudio";
  expected.project_directory = "C:\\Demo";
  expected.setup_directory = "<ProjectDir>\\Setup";
  EXPECT_EQ(steps_, expected);
  EXPECT_EQ(document_.program_name, "");
  EXPECT_EQ(document_.files.RowCount(), 0u);
  EXPECT_EQ(document_.hidden_files.RowCount(), 0u);
  EXPECT_THAT(document_.ini_files, IsEmpty());
  EXPECT_THAT(document_.hidden_ini_files, IsEmpty());
  EXPECT_FALSE(document_.changed);
  EXPECT_EQ(world_.Get(kSettingsPath), settings);
}

TEST_F(SettingsFile, ClearingLeavesRuntimeFunctionsAndOptimisationsAlone) {
  Read("[function]\r\nVB5dbUseJet=1\r\n[destination]\r\nMDAC=1\r\nServicePack=1\r\n");

  ClearSettings(application_);

  EXPECT_TRUE(steps_.use_jet);
  EXPECT_TRUE(steps_.minimal_mdac);
  EXPECT_TRUE(steps_.service_pack);
}

TEST_F(SettingsFile, ClearingLeavesPathVariablesAndToDoLinesAlone) {
  document_.extra_todo_lines = {"SetVar(Reboot|1)"};
  const PathVariableList before = document_.path_variables;

  ClearSettings(application_);

  EXPECT_EQ(document_.path_variables, before);
  EXPECT_THAT(document_.extra_todo_lines, ElementsAre("SetVar(Reboot|1)"));
}

// --- Path variables of the document

TEST_F(SettingsFile, UserDirectoriesBecomePathVariablesBehindTheTemporaryDirectory) {
  document_.path_variables = {{"<ProjectDir>", "C:\\Demo"}, {"<WinDir>", "C:\\Windows"}};
  steps_.user_directories = {{10, "D:\\Zehn"}, {2, "D:\\Zwei"}};

  ExtendPathVariables(application_);

  EXPECT_THAT(
      document_.path_variables,
      ElementsAre(PathVariable{"<ProjectDir>", "C:\\Demo"}, PathVariable{"<WinDir>", "C:\\Windows"},
                  PathVariable{"<TempDir>", "C:\\Demo\\~TEMP"},
                  PathVariable{"<UserDir2>", "D:\\Zwei"}, PathVariable{"<UserDir10>", "D:\\Zehn"}));
}

// Every path begins with an empty value, so a Scan put "<UserDir3>" before whatever it found.
TEST_F(SettingsFile, UserDirectoryWithoutADirectoryIsNoPathVariable) {
  document_.steps.user_directories = {{1, "D:\\Rezepte"}, {3, ""}};

  ExtendPathVariables(application_);

  const PathVariableList& variables = document_.path_variables;
  EXPECT_EQ(variables.back().name, "<UserDir1>");
}

TEST_F(SettingsFile, PathVariablesOfDeletedUserDirectoriesGo) {
  document_.path_variables = {{"<UserDirectory>", "x"}, {"<UserDir>", "y"}};
  steps_.user_directories = {{1, "D:\\a"}, {2, "D:\\b"}};
  ExtendPathVariables(application_);
  steps_.user_directories = {{2, "D:\\c"}};

  ExtendPathVariables(application_);

  EXPECT_THAT(document_.path_variables,
              ElementsAre(PathVariable{"<UserDirectory>", "x"}, PathVariable{"<UserDir>", "y"},
                          PathVariable{"<TempDir>", "C:\\Demo\\~TEMP"},
                          PathVariable{"<UserDir2>", "D:\\c"}));
}

}  // namespace
}  // namespace txs
