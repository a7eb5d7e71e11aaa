#include "create/setup_control_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "create/create_world.h"
#include "document/mdac.h"
#include "environment/code_page.h"

namespace txs {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

constexpr char kScript[] = "C:\\Demo\\Setup\\DISK1\\SETUP.STP";

// The blocks of a whole script, in their order, as the engine reads them. Every test compares all
// of it, so that no line can appear where it does not belong.
struct ExpectedScript {
  std::string params = R"([Params]
DefLang=0
Silent=1
Force=0
TargetDir=C:\Anlage
SetupName=Demo
SetupDesc0=
SetupDesc0=
SetupDesc0=
SetupDesc1=
SetupDesc1=
SetupDesc1=
MaxBytes=4711
MaxDisk=2
)";
  std::string variables = R"([ToDo]
SetVar(TavixMainDir|C:\TavixStudio)
SetVar(TavixStudioDir|C:\TavixStudio)
SetVar(TavixCommonDir|C:\TavixStudio\Common)
SetVar(ProjectDir|C:\Anlage)
)";
  std::string user_variables;
  std::string product = R"(CheckDiskSpace
WriteRegistry(HKEY_LOCAL_MACHINE|Software\ORBEKA GmbH|MAINDIR|<TavixMainDir>|1)
WriteRegistry(HKEY_LOCAL_MACHINE|Software\ORBEKA GmbH|Common|<TavixCommonDir>|1)
WriteRegistry(HKEY_LOCAL_MACHINE|Software\ORBEKA GmbH|OPC|<TavixMainDir>\OPC|1)
WriteRegistry(HKEY_LOCAL_MACHINE|Software\ORBEKA GmbH\Tavix\4.0|Path|<TavixStudioDir>|1)
WriteRegistry(HKEY_LOCAL_MACHINE|Software\ORBEKA GmbH\Tavix\4.0|LCID|1031|3)
)";
  std::string runtime_setups;
  std::string user_directories;
  std::string files;
  std::string registrations;
  std::string extra;
  std::string start;
  std::string links = R"(If(IsEqual(<Language>|0))
  CreateShellLink(<ProjectDir>\Demo.exe|<ProgramsDir>\Visualisierung\Demo|<ProjectDir>)
EndIf
If(IsEqual(<Language>|1))
  CreateShellLink(<ProjectDir>\Demo.exe|<ProgramsDir>\Visualization\Demo|<ProjectDir>)
EndIf
)";

  [[nodiscard]] std::string Text() const {
    std::string text;
    const std::string lines = params + variables + user_variables + product + runtime_setups +
                              user_directories + files + registrations + extra + start + links;
    for (const char c : lines) text.append(c == '\n' ? "\r\n" : std::string(1, c));
    return text;
  }
};

std::string RuntimeBlock(std::string_view install_line, std::string_view file_name) {
  std::string block =
      "WriteRegistry(HKEY_LOCAL_MACHINE|Software\\ORBEKA GmbH\\Tavix\\4.0|RuntimeSetup|0|3)\n";
  block += install_line;
  block += "ExecFile(<TavixMainDir>\\SetupKit\\" + std::string(file_name) + "|0|/S)\n";
  block +=
      R"(If(IsEqual(ReadRegistry(HKEY_LOCAL_MACHINE|Software\ORBEKA GmbH\Tavix\4.0|RuntimeSetup|0)|2))
  WriteRegistry(HKEY_CURRENT_USER|Software\Microsoft\Windows\CurrentVersion\RunOnce|TavixStudio Setup|<AppDir>\Setup.exe|1)
  SetVar(Reboot|1)
  Exit
EndIf
)";
  return block;
}

void Put(std::string& bytes, std::size_t at, std::uint32_t value, int size) {
  if (bytes.size() < at + 4) bytes.resize(at + 4);
  for (int i = 0; i < size; ++i) {
    bytes[at + static_cast<std::size_t>(i)] = static_cast<char>((value >> (8 * i)) & 0xFF);
  }
}

// The smallest program file that has the file version 6.1.98.39.
std::string ProgramFile() {
  std::string image;
  Put(image, 0, 0x5A4D, 2);
  Put(image, 0x3C, 0x40, 4);
  Put(image, 0x40, 0x4550, 4);
  Put(image, 0x46, 1, 2);       // one section
  Put(image, 0x54, 224, 2);     // optional header
  Put(image, 0x58, 0x10B, 2);   // PE32
  Put(image, 0xB4, 16, 4);      // directories
  Put(image, 0xC8, 0x1000, 4);  // resources
  Put(image, 0xCC, 0x100, 4);
  Put(image, 0x138 + 8, 0x200, 4);  // the section
  Put(image, 0x138 + 12, 0x1000, 4);
  Put(image, 0x138 + 16, 0x200, 4);
  Put(image, 0x138 + 20, 0x200, 4);
  const std::size_t root = 0x200;
  Put(image, root + 14, 1, 2);
  Put(image, root + 16, 16, 4);  // RT_VERSION
  Put(image, root + 20, 0x80000018, 4);
  Put(image, root + 0x18 + 14, 1, 2);
  Put(image, root + 0x18 + 16, 1, 4);
  Put(image, root + 0x18 + 20, 0x80000030, 4);
  Put(image, root + 0x30 + 14, 1, 2);
  Put(image, root + 0x30 + 16, 0x407, 4);
  Put(image, root + 0x30 + 20, 0x48, 4);
  Put(image, root + 0x48, 0x1060, 4);
  Put(image, root + 0x4C, 0x5C, 4);
  const std::size_t resource = root + 0x60;
  Put(image, resource, 0x5C, 2);
  Put(image, resource + 2, 52, 2);
  const std::string_view key = "VS_VERSION_INFO";
  for (std::size_t i = 0; i < key.size(); ++i) {
    Put(image, resource + 6 + 2 * i, static_cast<unsigned char>(key[i]), 2);
  }
  Put(image, resource + 40, 0xFEEF04BD, 4);
  Put(image, resource + 44, 0x10000, 4);
  Put(image, resource + 48, 6u << 16 | 1, 4);
  Put(image, resource + 52, 98u << 16 | 39, 4);
  image.resize(0x400);
  return image;
}

class SetupControlFile : public testing::Test {
 protected:
  SetupControlFile() {
    steps_.total_bytes_label = "4711";
    steps_.disks_needed_label = "2";
    world_.application.use_runtime_setup = true;
  }

  // A row as distribution leaves it.
  FileRow& Add(std::string_view source, std::uint64_t length, std::string_view archive,
               std::string_view disk, std::string_view destination = "<ProjectDir>",
               std::string_view registration = "") {
    FileRow& row = world_.Add(source, "contents", destination, registration);
    row.length_bytes = length;
    row.compressed_name = archive;
    row.disk = disk;
    return row;
  }
  void AddClientSetup() {
    Add("<TavixMainDir>\\SetupKit\\TXSRuntimeClientSetup.exe", 900, "TXSRuntimeClientSetup.exe.zip",
        "|1", "<TavixMainDir>\\SetupKit");
  }
  void AddServerSetup() {
    Add("<TavixMainDir>\\SetupKit\\txsruntimeSERVERsetup.EXE", 800, "txsruntimeSERVERsetup.EXE.zip",
        "|1|2", "<TavixMainDir>\\SetupKit");
  }
  void AddProgram() { Add("<ProjectDir>\\Demo.exe", 130560, "Demo.exe.zip", "|1"); }

  static constexpr char kClientInstall[] =
      "InstallFile(TXSRuntimeClientSetup.exe.zip|<TavixMainDir>\\SetupKit\\"
      "TXSRuntimeClientSetup.exe|900|20.02.2004||2|0|1)\n";
  static constexpr char kServerInstall[] =
      "InstallFile(txsruntimeSERVERsetup.EXE.zip|<TavixMainDir>\\SetupKit\\"
      "txsruntimeSERVERsetup.EXE|800|20.02.2004||2|0|1|2)\n";
  static constexpr char kProgramInstall[] =
      "InstallFile(Demo.exe.zip|<ProjectDir>\\Demo.exe|130560|20.02.2004||2|0|1)\n";

  [[nodiscard]] std::string Script() { return SetupControlText(world_.application); }
  bool Write() {
    const CreateState state = world_.MakeState();
    world_.files.AddFile(kScript, std::string(32000, ' '));
    return WriteSetupControlFile(world_.application, world_.view, state);
  }

  CreateWorld world_;
  StepSettings& steps_ = world_.application.document.steps;
};

// --- Whole scripts

TEST_F(SetupControlFile, ASingleProjectWithOneFile) {
  AddProgram();

  ExpectedScript expected;
  expected.files = kProgramInstall;
  EXPECT_EQ(Script(), expected.Text());
}

TEST_F(SetupControlFile, AnEmptyListHasNoFileLines) {
  EXPECT_EQ(Script(), ExpectedScript().Text());
}

TEST_F(SetupControlFile, AClientProjectStartsInTheProjectDirectory) {
  world_.application.project.type = 4;
  AddProgram();

  ExpectedScript expected;
  expected.files = kProgramInstall;
  EXPECT_EQ(Script(), expected.Text());
}

TEST_F(SetupControlFile, AServerProjectStartsWithTheStation) {
  world_.application.project.type = 2;
  world_.application.document.program_name = "TXEManager.exe";
  AddProgram();

  ExpectedScript expected;
  expected.files = kProgramInstall;
  expected.start =
      R"(WriteRegistry(HKEY_LOCAL_MACHINE|Software\ORBEKA GmbH\Tavix\4.0|Actual Project|Demo|1)
WriteRegistry(HKEY_LOCAL_MACHINE|Software\ORBEKA GmbH\Tavix\4.0|AutoStart|1|3)
)";
  expected.links = R"(If(IsEqual(<Language>|0))
  CreateShellLink(<TavixStudioDir>\System\TXEManager.exe|<ProgramsDir>\Visualisierung\Demo|<TavixStudioDir>\System)
EndIf
If(IsEqual(<Language>|1))
  CreateShellLink(<TavixStudioDir>\System\TXEManager.exe|<ProgramsDir>\Visualization\Demo|<TavixStudioDir>\System)
EndIf
)";
  EXPECT_EQ(Script(), expected.Text());
}

class OtherProjectType : public SetupControlFile, public testing::WithParamInterface<long> {};

TEST_P(OtherProjectType, LeavesTheWorkingDirectoryOfTheLinksEmpty) {
  world_.application.project.type = GetParam();
  AddProgram();

  ExpectedScript expected;
  expected.files = kProgramInstall;
  expected.links = R"(If(IsEqual(<Language>|0))
  CreateShellLink(\Demo.exe|<ProgramsDir>\Visualisierung\Demo|)
EndIf
If(IsEqual(<Language>|1))
  CreateShellLink(\Demo.exe|<ProgramsDir>\Visualization\Demo|)
EndIf
)";
  EXPECT_EQ(Script(), expected.Text());
}

INSTANTIATE_TEST_SUITE_P(Types, OtherProjectType, testing::Values(0L, 8L, 16L, 32L));

TEST_F(SetupControlFile, EverythingAtOnce) {
  steps_.info.german = {"Anlage Süd", "", "Stand 3"};
  steps_.info.english = {"Plant South", "Release 3", ""};
  steps_.user_directories = {{1, "D:\\Daten"}, {4, "E:\\Archiv"}};
  AddClientSetup();
  AddServerSetup();
  world_.files.AddFile("C:\\Windows\\System32\\msctl.ocx", ProgramFile(), Noon(1998, 6, 24));
  Add("<WinSysDir>\\msctl.ocx", 1024, "msctl.ocx.zip", "|2|3", "<WinSysDir>", "1");
  world_.files.AddFile("C:\\Windows\\System32\\msctl.ocx", ProgramFile(), Noon(1998, 6, 24));
  AddProgram();
  FileRow& hidden = world_.AddHidden("D2.exe", "x", "<UserDir4>", "2", Noon(2026, 12, 1));
  hidden.source = "C:\\Hidden\\D2.exe";
  world_.files.AddFile("C:\\Hidden\\D2.exe", "x", Noon(2026, 12, 1));
  hidden.length_bytes = 1;
  hidden.compressed_name = "D2.exe.zip";
  hidden.disk = "|3";
  world_.application.document.extra_todo_lines = {kMinimalMdacEntry, "Single(1)"};

  ExpectedScript expected;
  expected.params = R"([Params]
DefLang=0
Silent=1
Force=0
TargetDir=C:\Anlage
SetupName=Demo
SetupDesc0=Anlage Süd
SetupDesc0=
SetupDesc0=Stand 3
SetupDesc1=Plant South
SetupDesc1=Release 3
SetupDesc1=
MaxBytes=4711
MaxDisk=2
)";
  expected.user_variables = "SetVar(UserDir1|D:\\Daten)\nSetVar(UserDir2|E:\\Archiv)\n";
  expected.runtime_setups = RuntimeBlock(kClientInstall, "TXSRuntimeClientSetup.exe") +
                            RuntimeBlock(kServerInstall, "txsruntimeSERVERsetup.EXE");
  expected.user_directories = "CreateDir(D:\\Daten)\nCreateDir(E:\\Archiv)\n";
  expected.files =
      R"(InstallFile(msctl.ocx.zip|<WinSysDir>\msctl.ocx|1024|24.06.1998|6.1.98.39|2|0|2|3)
InstallFile(Demo.exe.zip|<ProjectDir>\Demo.exe|130560|20.02.2004||2|0|1)
InstallFile(D2.exe.zip|<UserDir4>\D2.exe|1|01.12.2026||2|0|3)
)";
  expected.registrations = "RegInProc(<WinSysDir>\\msctl.ocx)\nRegOutProc(<UserDir4>\\D2.exe)\n";
  expected.extra = R"(ExecFile(<TempDir>\Mdac_min.exe|0|/S)
DeleteFile(<TempDir>\Mdac_min.exe)
SetVar(Reboot|1)
Single(1)
)";
  EXPECT_EQ(Script(), expected.Text());
}

// --- User directories

TEST_F(SetupControlFile, ThreeUserDirectoriesAreNumberedInListOrder) {
  steps_.user_directories = {{7, "D:\\Eins"}, {2, "D:\\Zwei"}, {9, "D:\\Drei"}};

  ExpectedScript expected;
  expected.user_variables =
      "SetVar(UserDir1|D:\\Eins)\nSetVar(UserDir2|D:\\Zwei)\nSetVar(UserDir3|D:\\Drei)\n";
  expected.user_directories = "CreateDir(D:\\Eins)\nCreateDir(D:\\Zwei)\nCreateDir(D:\\Drei)\n";
  EXPECT_EQ(Script(), expected.Text());
}

TEST_F(SetupControlFile, WithoutUserDirectoriesCheckDiskSpaceFollowsTheProjectDirectory) {
  EXPECT_THAT(Script(), HasSubstr("SetVar(ProjectDir|C:\\Anlage)\r\nCheckDiskSpace\r\n"));
  EXPECT_THAT(Script(), Not(HasSubstr("UserDir")));
  EXPECT_THAT(Script(), Not(HasSubstr("CreateDir")));
}

TEST_F(SetupControlFile, UserDirectoriesAreCreatedWithoutTheRuntimeSetupToo) {
  world_.application.use_runtime_setup = false;
  steps_.user_directories = {{1, "D:\\Daten"}};

  ExpectedScript expected;
  expected.user_variables = "SetVar(UserDir1|D:\\Daten)\n";
  expected.user_directories = "CreateDir(D:\\Daten)\n";
  EXPECT_EQ(Script(), expected.Text());
}

// --- Runtime setups

TEST_F(SetupControlFile, BothRuntimeSetupsRunFirstAndAreNotInstalledTwice) {
  AddClientSetup();
  AddServerSetup();
  AddProgram();

  ExpectedScript expected;
  expected.runtime_setups = RuntimeBlock(kClientInstall, "TXSRuntimeClientSetup.exe") +
                            RuntimeBlock(kServerInstall, "txsruntimeSERVERsetup.EXE");
  expected.files = kProgramInstall;
  EXPECT_EQ(Script(), expected.Text());
}

TEST_F(SetupControlFile, OneRuntimeSetupInFrontRunsFirst) {
  AddServerSetup();
  AddProgram();

  ExpectedScript expected;
  expected.runtime_setups = RuntimeBlock(kServerInstall, "txsruntimeSERVERsetup.EXE");
  expected.files = kProgramInstall;
  EXPECT_EQ(Script(), expected.Text());
}

TEST_F(SetupControlFile, ARuntimeSetupBehindAnOrdinaryFileLeavesThatFileInItsPlace) {
  AddProgram();
  AddClientSetup();

  ExpectedScript expected;
  expected.runtime_setups = RuntimeBlock(kClientInstall, "TXSRuntimeClientSetup.exe");
  expected.files = kProgramInstall;
  EXPECT_EQ(Script(), expected.Text());
}

TEST_F(SetupControlFile, ARuntimeSetupInRow3IsAnOrdinaryFile) {
  AddProgram();
  Add("<ProjectDir>\\Second.dat", 5, "Second.dat.zip", "|1");
  AddClientSetup();

  ExpectedScript expected;
  expected.files = std::string(kProgramInstall) +
                   "InstallFile(Second.dat.zip|<ProjectDir>\\Second.dat|5|20.02.2004||2|0|1)\n" +
                   kClientInstall;
  EXPECT_EQ(Script(), expected.Text());
}

TEST_F(SetupControlFile, WithoutTheOptionRow1IsAnOrdinaryFile) {
  world_.application.use_runtime_setup = false;
  AddClientSetup();
  AddServerSetup();

  ExpectedScript expected;
  expected.files = std::string(kClientInstall) + kServerInstall;
  EXPECT_EQ(Script(), expected.Text());
}

// --- Registrations

TEST_F(SetupControlFile, OnlyInProcessAndOutOfProcessServersAreRegistered) {
  for (const char* const kind : {"", "0", "1", "2", "3", "4", "5", "6", " 1", "01"}) {
    Add("<ProjectDir>\\Demo.exe", 1, "x.zip", "|1", "<ProjectDir>", kind);
  }

  const std::string script = Script();

  EXPECT_THAT(script, HasSubstr("|2|0|1)\r\nRegInProc(<ProjectDir>\\Demo.exe)\r\n"
                                "RegOutProc(<ProjectDir>\\Demo.exe)\r\nIf(IsEqual(<Language>"));
}

TEST_F(SetupControlFile, ARuntimeSetupIsRegisteredLikeEveryRow) {
  AddClientSetup();
  world_.application.document.files.Row(1).registration = "2";

  EXPECT_THAT(Script(),
              HasSubstr("RegOutProc(<TavixMainDir>\\SetupKit\\TXSRuntimeClientSetup.exe)\r\n"));
}

// --- Extra entries

TEST_F(SetupControlFile, TheMinimalMdacEntryBecomesThreeLines) {
  world_.application.document.extra_todo_lines = {kMinimalMdacEntry};

  ExpectedScript expected;
  expected.extra = R"(ExecFile(<TempDir>\Mdac_min.exe|0|/S)
DeleteFile(<TempDir>\Mdac_min.exe)
SetVar(Reboot|1)
)";
  EXPECT_EQ(Script(), expected.Text());
}

TEST_F(SetupControlFile, TheFullMdacEntryBecomesThreeLines) {
  world_.application.document.extra_todo_lines = {kFullMdacEntry};

  ExpectedScript expected;
  expected.extra = R"script(ExecFile(<TempDir>\mdac_typ.exe|0|/q:a|/c:"setup.exe /qt")
DeleteFile(<TempDir>\mdac_typ.exe)
SetVar(Reboot|1)
)script";
  EXPECT_EQ(Script(), expected.Text());
}

TEST_F(SetupControlFile, EmptyPiecesOfAnEntryMakeNoBlankLines) {
  world_.application.document.extra_todo_lines = {"@A(1)@@B(2)@", "", "@"};

  ExpectedScript expected;
  expected.extra = "A(1)\nB(2)\n";
  EXPECT_EQ(Script(), expected.Text());
}

// A project "Leit@Werk" had its registry lines cut in two, and Create ended well.
TEST_F(SetupControlFile, AnAtInAnArgumentJoinsNothing) {
  for (const char* entry :
       {"WriteRegistry(HKEY_LOCAL_MACHINE|Software\\Leit@Werk|Path|<ProjectDir>|1)",
        "WriteRegistry(HKEY_LOCAL_MACHINE|Software\\Leit@Werk(2)|Path|<ProjectDir>|1)",
        "WriteRegistry(HKEY_LOCAL_MACHINE|Software\\A|Name|Waage (Halle)@COM1|1)",
        "WriteRegistry(HKEY_LOCAL_MACHINE|Software\\A|B|@%SystemRoot%\\x.dll,-1|1)"}) {
    world_.application.document.extra_todo_lines = {entry,
                                                    std::string(entry) + "@SetVar(Reboot|1)"};

    ExpectedScript expected;
    expected.extra = std::string(entry) + "\n" + entry + "\nSetVar(Reboot|1)\n";
    EXPECT_EQ(Script(), expected.Text());
  }
}

TEST_F(SetupControlFile, CommandsWithoutArgumentsAreJoinedLikeEveryOther) {
  world_.application.document.extra_todo_lines = {"CheckDiskSpace@A(1)@Exit", "Exit@EndIf"};

  ExpectedScript expected;
  expected.extra = "CheckDiskSpace\nA(1)\nExit\nExit\nEndIf\n";
  EXPECT_EQ(Script(), expected.Text());
}

// --- Shell links

TEST_F(SetupControlFile, ALanguageWithoutALinkNameHasNoBlock) {
  steps_.startmenu_link.german = "";

  ExpectedScript expected;
  expected.links = R"(If(IsEqual(<Language>|1))
  CreateShellLink(<ProjectDir>\Demo.exe|<ProgramsDir>\Visualization\Demo|<ProjectDir>)
EndIf
)";
  EXPECT_EQ(Script(), expected.Text());
}

TEST_F(SetupControlFile, ALanguageWithoutAFolderHasNoBlock) {
  steps_.startmenu_folder.english = "";

  ExpectedScript expected;
  expected.links = R"(If(IsEqual(<Language>|0))
  CreateShellLink(<ProjectDir>\Demo.exe|<ProgramsDir>\Visualisierung\Demo|<ProjectDir>)
EndIf
)";
  EXPECT_EQ(Script(), expected.Text());
}

TEST_F(SetupControlFile, NoLanguageHasALinkWhenBothLackOne) {
  steps_.startmenu_folder.english = "";
  steps_.startmenu_link.german = "";

  ExpectedScript expected;
  expected.links = "";
  EXPECT_EQ(Script(), expected.Text());
}

// --- Lines of one file

TEST_F(SetupControlFile, AnUnknownLengthIsEmpty) {
  AddProgram();
  world_.application.document.files.Row(1).length_bytes.reset();

  EXPECT_THAT(Script(), HasSubstr("|<ProjectDir>\\Demo.exe||20.02.2004||2|0|1)\r\n"));
}

TEST_F(SetupControlFile, TheDateIsThatOfTheUsersTimeZoneWithTwoDigitDays) {
  Add("<ProjectDir>\\a.dat", 1, "a.dat.zip", "|1");
  world_.files.SetLastWriteTime("C:\\Demo\\a.dat", Noon(1999, 1, 2));

  EXPECT_THAT(Script(), HasSubstr("|1|02.01.1999||2|0|1)\r\n"));
}

// --- Writing

TEST_F(SetupControlFile, TheScriptReplacesItsPlaceholder) {
  AddProgram();

  EXPECT_TRUE(Write());

  EXPECT_EQ(world_.files.Contents(kScript), Script());
  EXPECT_THAT(world_.view.diary,
              ElementsAre("file SETUP.STP", "action Writing", "busy", "not busy"));
  EXPECT_THAT(world_.messages.shown, IsEmpty());
}

TEST_F(SetupControlFile, TheScriptIsInTheAnsiCodePage) {
  steps_.info.german[0] = "Müllöfen 5 €";

  EXPECT_TRUE(Write());

  EXPECT_THAT(world_.files.Contents(kScript), HasSubstr("SetupDesc0=M\xFCll\xF6"
                                                        "fen 5 \x80\r\n"));
}

TEST_F(SetupControlFile, AScriptThatFillsTheRoomLeftOnDisk1IsNothingToMention) {
  steps_.info.german[0] = std::string(40'000, 'x');
  CreateState state = world_.MakeState();
  state.first_disk_free_bytes = Script().size() - 32'000;

  EXPECT_TRUE(WriteSetupControlFile(world_.application, world_.view, state));

  EXPECT_THAT(world_.messages.shown, IsEmpty());
}

TEST_F(SetupControlFile, AScriptThatOverfillsDisk1IsWrittenWholeAndMessage1932SaysByHowMuch) {
  steps_.info.german[0] = std::string(40'000, 'x');
  CreateState state = world_.MakeState();
  state.first_disk_free_bytes = Script().size() - 32'000 - 7;

  EXPECT_TRUE(WriteSetupControlFile(world_.application, world_.view, state));

  EXPECT_EQ(world_.files.Contents(kScript), Script());
  ASSERT_EQ(world_.messages.shown.size(), 1u);
  EXPECT_EQ(world_.messages.shown[0].prompt,
            "The setup control file 'SETUP.STP' is larger than the room left for it: disk 1 holds "
            "7 bytes more than the medium!\r\nSelect a larger medium format!");
}

// The script numbers them in their order, whatever was deleted before them.
TEST_F(SetupControlFile, FilesOfUserDirectoriesBehindAGapAreMessage1934) {
  steps_.user_directories = {{1, "D:\\Eins"}, {3, "D:\\Drei"}};
  world_.Add("C:\\Demo\\a.txt", "a", "<UserDir1>\\Sub");
  world_.Add("C:\\Demo\\b.txt", "b", "<UserDir3>");
  world_.Add("C:\\Demo\\c.txt", "c", "<UserDir2>");
  world_.Add("C:\\Demo\\d.txt", "d", "<USERDIR2>\\Sub");

  EXPECT_TRUE(Write());

  ASSERT_EQ(world_.messages.shown.size(), 1u);
  EXPECT_THAT(
      world_.messages.shown[0].prompt,
      StartsWith("On the target computer, files with the destination directory '<UserDir3>, "
                 "<UserDir2>' will not get where they belong!\r\n"));
}

TEST_F(SetupControlFile, UserDirectoriesWithoutAGapAreNothingToMention) {
  steps_.user_directories = {{1, "D:\\Eins"}, {2, "D:\\Zwei"}};
  world_.Add("C:\\Demo\\a.txt", "a", "<userdir2>\\Sub");
  world_.Add("C:\\Demo\\b.txt", "b", "<ProjectDir>");

  EXPECT_TRUE(Write());

  EXPECT_THAT(world_.messages.shown, IsEmpty());
}

TEST_F(SetupControlFile, ACharacterThatTheCodePageLacksLeavesThePlaceholder) {
  steps_.info.german[0] = "Čapek";

  EXPECT_FALSE(Write());

  EXPECT_EQ(world_.files.Contents(kScript), std::string(32000, ' '));
  ASSERT_EQ(world_.messages.shown.size(), 1u);
  EXPECT_THAT(world_.messages.shown[0].prompt,
              StartsWith("Error writing the setup control file!\r\n(5: "));
}

TEST_F(SetupControlFile, AFileThatVanishedIsMessage904) {
  AddProgram();
  world_.files.Vanish("C:\\Demo\\Demo.exe");

  EXPECT_FALSE(Write());

  ASSERT_EQ(world_.messages.shown.size(), 1u);
  EXPECT_THAT(world_.messages.shown[0].prompt,
              StartsWith("Error writing the setup control file!\r\n(53: "));
}

TEST_F(SetupControlFile, AFullDiskIsMessage904AndLeavesWhatWasWritten) {
  AddProgram();
  const CreateState state = world_.MakeState();
  world_.files.SetFreeSpace(100);

  EXPECT_FALSE(WriteSetupControlFile(world_.application, world_.view, state));

  ASSERT_EQ(world_.messages.shown.size(), 1u);
  EXPECT_THAT(world_.messages.shown[0].prompt,
              StartsWith("Error writing the setup control file!\r\n(61: "));
  EXPECT_EQ(world_.files.Contents(kScript).size(), 100u);
}

TEST_F(SetupControlFile, AnErrorThatOnlyClosingShowsIsMessage904) {
  world_.files.FailPath(kScript, "Close", ErrorNumber::kDeviceIo);

  EXPECT_FALSE(Write());

  ASSERT_EQ(world_.messages.shown.size(), 1u);
  EXPECT_THAT(world_.messages.shown[0].prompt,
              StartsWith("Error writing the setup control file!\r\n(57: "));
}

TEST_F(SetupControlFile, CancelBeforeTheFileIsOpenedLeavesThePlaceholder) {
  world_.view.on_events = [](RecordingCreateView& view) { view.PressCancel(); };

  EXPECT_FALSE(Write());

  EXPECT_EQ(world_.files.Contents(kScript), std::string(32000, ' '));
  EXPECT_THAT(world_.messages.shown, IsEmpty());
}

TEST_F(SetupControlFile, EveryFileIsAskedOnceForItsStamp) {
  AddProgram();
  AddServerSetup();
  world_.files.diary.clear();

  static_cast<void>(Script());

  EXPECT_EQ(world_.files.Times("Stamp"), 2u);
}

}  // namespace
}  // namespace txs
