#include "tool/setup_script.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "environment/code_page.h"

namespace txs {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// A script with the lines of [ToDo] that a test adds; they begin with line 14.
std::string ScriptWith(const std::string& commands, const std::string& max_bytes = "0") {
  return "[Params]\r\n"
         "DefLang=0\r\n"
         "Silent=1\r\n"
         "Force=0\r\n"
         "TargetDir=C:\\Demo\r\n"
         "SetupName=Demo\r\n"
         "SetupDesc0=a\r\nSetupDesc0=\r\nSetupDesc0=\r\n"
         "SetupDesc1=\r\nSetupDesc1=\r\nSetupDesc1=\r\n"
         "MaxBytes=" +
         max_bytes +
         "\r\n"
         "MaxDisk=3\r\n"
         "[ToDo]\r\n" +
         commands;
}
constexpr std::size_t kFirstCommand = 16;

std::vector<std::size_t> FaultLines(const std::string& bytes) {
  std::vector<std::size_t> lines;
  for (const ScriptFault& fault : ParseSetupScript(bytes).faults) lines.push_back(fault.line);
  return lines;
}

TEST(SetupScript, TakesEveryCommandThatCreateWrites) {
  const SetupScript script = ParseSetupScript(ScriptWith(
      "SetVar(TavixMainDir|C:\\TavixStudio)\r\n"
      "CheckDiskSpace\r\n"
      "WriteRegistry(HKEY_LOCAL_MACHINE|Software\\ORBEKA GmbH|MAINDIR|<TavixMainDir>|1)\r\n"
      "CreateDir(D:\\Rezepte (alt))\r\n"
      "InstallFile(a.dll.zip|<ProjectDir>\\a.dll|12|20.02.2004|1.2.0.0|2|0|1)\r\n"
      "InstallFile(b.dat.zip|<ProjectDir>\\b.dat|30|29.02.2004||2|0|2|3)\r\n"
      "RegInProc(<ProjectDir>\\A.DLL)\r\n"
      "ExecFile(<TempDir>\\mdac_typ.exe|0|/q:a|/c:\"setup.exe /qt\")\r\n"
      "DeleteFile(<TempDir>\\mdac_typ.exe)\r\n"
      "If(IsEqual(ReadRegistry(HKEY_LOCAL_MACHINE|Software|RuntimeSetup|0)|2))\r\n"
      "  SetVar(Reboot|1)\r\n"
      "  Exit\r\n"
      "EndIf\r\n"
      "If(IsEqual(<Language>|0))\r\n"
      "  CreateShellLink(<ProjectDir>\\a.exe|<ProgramsDir>\\Demo\\Demo|<ProjectDir>)\r\n"
      "EndIf\r\n",
      "42"));

  EXPECT_THAT(script.faults, IsEmpty());
  EXPECT_EQ(script.install_lines, 2u);
  EXPECT_EQ(script.disks, 3u);
  ASSERT_EQ(script.installs.size(), 2u);
  EXPECT_EQ(script.installs[1].line, kFirstCommand + 5);
  EXPECT_EQ(script.installs[1].archive, "b.dat.zip");
  EXPECT_EQ(script.installs[1].target, "<ProjectDir>\\b.dat");
  EXPECT_EQ(script.installs[1].length_bytes, 30u);
  EXPECT_THAT(script.installs[1].disks, ElementsAre(2u, 3u));
  EXPECT_THAT(script.archives_named, ElementsAre("a.dll.zip", "b.dat.zip"));
}

TEST(SetupScript, ReadsTheAnsiCodePage) {
  const SetupScript script = ParseSetupScript(ScriptWith(
      "InstallFile(Gr\xF6\xDF\x65.txt.zip|<ProjectDir>\\Gr\xF6\xDF\x65.txt|0|20.02.2004||2|0|1)"
      "\r\n"));

  ASSERT_EQ(script.installs.size(), 1u);
  EXPECT_EQ(script.installs[0].archive, "Größe.txt.zip");
}

TEST(SetupScript, EmptyFileAndThePlaceholderAreOneFault) {
  EXPECT_THAT(FaultLines(""), ElementsAre(0u));
  EXPECT_THAT(FaultLines(std::string(32000, ' ')), ElementsAre(0u));
}

struct FaultyCommand {
  const char* name;
  const char* line;
};

class SetupScriptFault : public ::testing::TestWithParam<FaultyCommand> {};

TEST_P(SetupScriptFault, IsReportedWithItsLine) {
  const std::string bytes =
      ScriptWith("CheckDiskSpace\r\n" + std::string(GetParam().line) + "\r\nExit\r\n");

  EXPECT_THAT(FaultLines(bytes), ElementsAre(kFirstCommand + 1));
}

INSTANTIATE_TEST_SUITE_P(
    Commands, SetupScriptFault,
    ::testing::Values(
        FaultyCommand{"UnknownCommand", "SetVat(a|b)"}, FaultyCommand{"LowerCase", "setvar(a|b)"},
        FaultyCommand{"NoName",
                      "Set\x01"
                      "Var(a|b)"},
        FaultyCommand{"Nameless", "(a|b)"}, FaultyCommand{"NoCommand", "SetVar"},
        FaultyCommand{"NoEnd", "SetVar(a|b"}, FaultyCommand{"SetVarOfOne", "SetVar(a)"},
        FaultyCommand{"SetVarOfThree", "SetVar(a|b|c)"},
        FaultyCommand{"WriteRegistryOfFour", "WriteRegistry(a|b|c|d)"},
        FaultyCommand{"WriteRegistryOfSix", "WriteRegistry(a|b|c|d|e|f)"},
        FaultyCommand{"CreateDirOfTwo", "CreateDir(a|b)"},
        FaultyCommand{"DeleteFileOfTwo", "DeleteFile(a|b)"},
        FaultyCommand{"ExecFileOfOne", "ExecFile(a)"},
        FaultyCommand{"CreateShellLinkOfTwo", "CreateShellLink(a|b)"},
        FaultyCommand{"EndIfAlone", "EndIf"}, FaultyCommand{"CutOffCommand", "InstallF"},
        FaultyCommand{"BareCommandFlipped", "Exiu"}, FaultyCommand{"BareFigures", "12"},
        FaultyCommand{"InstallWithoutDisk", "InstallFile(x.zip|T\\x|0|20.02.2004||2|0)"},
        FaultyCommand{"InstallOnDisk0", "InstallFile(x.zip|T\\x|0|20.02.2004||2|0|0)"},
        FaultyCommand{"DisksOutOfOrder", "InstallFile(x.zip|T\\x|0|20.02.2004||2|0|2|1)"},
        FaultyCommand{"DiskTwice", "InstallFile(x.zip|T\\x|0|20.02.2004||2|0|2|2)"},
        FaultyCommand{"EmptyDisk", "InstallFile(x.zip|T\\x|0|20.02.2004||2|0|)"},
        FaultyCommand{"LengthWithSign", "InstallFile(x.zip|T\\x|-1|20.02.2004||2|0|1)"},
        FaultyCommand{"NoLength", "InstallFile(x.zip|T\\x||20.02.2004||2|0|1)"},
        FaultyCommand{"HugeLength",
                      "InstallFile(x.zip|T\\x|99999999999999999999|20.02.2004||2|0|1)"},
        FaultyCommand{"NoDate", "InstallFile(x.zip|T\\x|0|2004-02-20||2|0|1)"},
        FaultyCommand{"Day32", "InstallFile(x.zip|T\\x|0|32.02.2004||2|0|1)"},
        FaultyCommand{"Month13", "InstallFile(x.zip|T\\x|0|20.13.2004||2|0|1)"},
        FaultyCommand{"Options", "InstallFile(x.zip|T\\x|0|20.02.2004||3|0|1)"},
        FaultyCommand{"ArchiveIsAPath", "InstallFile(a\\x.zip|T\\x|0|20.02.2004||2|0|1)"},
        FaultyCommand{"ArchiveIsParent", "InstallFile(..|T\\x|0|20.02.2004||2|0|1)"},
        FaultyCommand{"ArchiveOnDrive", "InstallFile(c:x.zip|T\\x|0|20.02.2004||2|0|1)"},
        FaultyCommand{"ArchiveIsDevice", "InstallFile(NUL|T\\x|0|20.02.2004||2|0|1)"},
        FaultyCommand{"NoArchive", "InstallFile(|T\\x|0|20.02.2004||2|0|1)"},
        FaultyCommand{"TargetIsAFolder", "InstallFile(x.zip|T\\|0|20.02.2004||2|0|1)"}),
    [](const auto& tested) { return tested.param.name; });

TEST(SetupScript, TwoLinesWithTheSameArchiveAreAFaultOfTheSecond) {
  const std::string bytes = ScriptWith(
      "InstallFile(x.zip|T\\x|0|20.02.2004||2|0|1)\r\n"
      "InstallFile(X.ZIP|T\\y|0|20.02.2004||2|0|1)\r\n");

  EXPECT_THAT(FaultLines(bytes), ElementsAre(kFirstCommand + 1));
}

TEST(SetupScript, CommandThatOnlyADependencyFileKnowsIsNoFault) {
  EXPECT_THAT(FaultLines(ScriptWith("RegTypeLib(<WinSysDir>\\stdole2.tlb)\r\n")), IsEmpty());
}

TEST(SetupScript, ParameterThatIsMissingDoubledOrUnknownIsAFault) {
  const std::string sound = ScriptWith("");
  const auto replaced = [&sound](const std::string& what, const std::string& by) {
    std::string changed = sound;
    return changed.replace(changed.find(what), what.size(), by);
  };

  EXPECT_THAT(FaultLines(sound), IsEmpty());
  EXPECT_THAT(FaultLines(replaced("Force=0\r\n", "")), ElementsAre(0u));
  EXPECT_THAT(FaultLines(replaced("SetupDesc1=\r\n", "")), ElementsAre(0u));
  EXPECT_THAT(FaultLines(replaced("Force=0\r\n", "Force=0\r\nForce=0\r\n")), ElementsAre(0u));
  EXPECT_THAT(FaultLines(replaced("Force=0", "Forge=0")), ElementsAre(4u, 0u));
  EXPECT_THAT(FaultLines(replaced("MaxDisk=3", "MaxDisk=x")), ElementsAre(14u));
  EXPECT_THAT(FaultLines(replaced("[Params]", "[Parans]")), ElementsAre(1u));
}

TEST(SetupScript, ScriptWithoutToDoIsAFault) {
  const std::string sound = ScriptWith("");

  const std::string bytes = sound.substr(0, sound.find("[ToDo]"));

  EXPECT_THAT(FaultLines(bytes), ElementsAre(0u));
}

TEST(SetupScript, TotalOfTheLengthsIsComparedWithMaxBytes) {
  const std::string bytes =
      ScriptWith("InstallFile(x.zip|T\\x|7|20.02.2004||2|0|1)\r\n", /*max_bytes=*/"8");

  EXPECT_THAT(FaultLines(bytes), ElementsAre(13u));
}

TEST(SetupScript, OpenIfIsAFault) {
  EXPECT_THAT(FaultLines(ScriptWith("If(IsEqual(<Language>|0))\r\n  Exit\r\n")), ElementsAre(0u));
}

TEST(SetupScript, ConditionThatIsNoneIsAFault) {
  for (const char* condition :
       {"<Language>", "", "IsEqual(<Language>)", "IsEqual(a|b", "IsEqual(a|b))", "(a|b)",
        "isEqual(a|b)", "IsEquam(a|b)", "Is\x01(a)", "Exists(a)b"}) {
    EXPECT_THAT(FaultLines(ScriptWith("If(" + std::string(condition) + ")\r\nEndIf\r\n")),
                ElementsAre(kFirstCommand))
        << condition;
  }
}

TEST(SetupScript, ConditionThatOnlyADependencyFileKnowsIsNoFault) {
  EXPECT_THAT(FaultLines(ScriptWith("If(FileExists(<WinSysDir>\\x (1).dll))\r\nReboot\r\nEndIf\r\n"
                                    "If(IsEqual(ReadRegistry(a|b|c)|2))\r\nEndIf\r\n")),
              IsEmpty());
}

// Of a component that is on every target computer, or that a predefined setup brings along.
TEST(SetupScript, RegistrationOfWhatIsInstalledOtherwiseIsNoFault) {
  EXPECT_THAT(FaultLines(ScriptWith(
                  "InstallFile(x.zip|<ProjectDir>\\x.dll|0|20.02.2004||2|0|1)\r\n"
                  "RegInProc(<WinSysDir>\\comcat.dll)\r\nRegOutProc(<WinSysDir>\\dcom.exe)\r\n")),
              IsEmpty());
}

TEST(SetupScript, RegistrationThatIsNearlyWhatALineInstallsIsAFault) {
  for (const char* registration :
       {"RegInProc(<ProjectDir>\\y.dll)", "RegOutProc(<PrnjectDir>\\X.dll)"}) {
    EXPECT_THAT(
        FaultLines(ScriptWith("InstallFile(x.zip|<ProjectDir>\\x.dll|0|20.02.2004||2|0|1)\r\n" +
                              std::string(registration) + "\r\n")),
        ElementsAre(kFirstCommand + 1))
        << registration;
  }
}

TEST(SetupScript, UserDirectoryThatNoLineSetsIsAFaultOfTheFirstFileInIt) {
  EXPECT_THAT(FaultLines(ScriptWith("SetVar(UserDir1|D:\\Data)\r\n"
                                    "InstallFile(a.zip|<USERDIR1>\\a|0|20.02.2004||2|0|1)\r\n"
                                    "InstallFile(b.zip|<UserDir2>\\b|0|20.02.2004||2|0|1)\r\n"
                                    "InstallFile(c.zip|<UserDir2>\\c|0|20.02.2004||2|0|1)\r\n"
                                    "InstallFile(d.zip|<UserDir>\\d|0|20.02.2004||2|0|1)\r\n")),
              ElementsAre(kFirstCommand + 2));
}

TEST(SetupScript, LineThatIsCutOffIsAFault) {
  EXPECT_THAT(FaultLines(ScriptWith("CheckDiskSpace\r\nExit")), ElementsAre(kFirstCommand + 1));
  EXPECT_THAT(FaultLines(ScriptWith("CheckDiskSpace\nExit\r\n")), ElementsAre(kFirstCommand));
}

TEST(SetupScript, StopsAfterTenThousandFaults) {
  std::string garbage;
  for (int i = 0; i < 20000; ++i) garbage += "?\r\n";

  const SetupScript script = ParseSetupScript(ScriptWith(garbage));

  EXPECT_EQ(script.faults.size(), 10001u);
}

TEST(SetupScript, TenThousandFaultsAreTheMostHoweverManyTheLastLineAndTheWholeHave) {
  std::string garbage;
  for (int i = 0; i < 9'999; ++i) garbage += "?\r\n";

  const SetupScript script = ParseSetupScript("[Params]\r\n[ToDo]\r\n" + garbage);

  ASSERT_EQ(script.faults.size(), 10'001u);
  EXPECT_EQ(script.faults.back().line, 0u);
  EXPECT_THAT(script.faults.back().what, testing::StartsWith("too many faults"));
}

// A line may be nothing but separators; the target setup_script of the fuzzer counts what it costs.
TEST(SetupScript, ArgumentsWithoutEndAreOneFault) {
  const std::string separators(1'000'000, '|');

  EXPECT_THAT(FaultLines(ScriptWith("SetVar(" + separators + ")\r\n")), ElementsAre(kFirstCommand));
  const SetupScript script = ParseSetupScript(
      ScriptWith("InstallFile(x.zip|T\\x|7|20.02.2004||2|0|1" + separators + ")\r\n",
                 /*max_bytes=*/"7"));
  ASSERT_EQ(script.faults.size(), 1u);
  EXPECT_EQ(script.faults[0].what, "the disks are not in order");
}

// It was cut off within a character, and the report was no UTF-8.
TEST(SetupScript, ALongLineIsQuotedInWholeCharacters) {
  for (std::size_t before = 50; before < 60; ++before) {
    const std::string line = std::string(before, 'x') + std::string(20, '\xC4') + "\r\n";

    const SetupScript script = ParseSetupScript(ScriptWith(line));

    ASSERT_EQ(script.faults.size(), 1u);
    EXPECT_TRUE(IsUtf8(script.faults[0].what)) << script.faults[0].what;
  }
}

TEST(IsPlainFileName, RefusesWhatLeadsElsewhere) {
  for (const char* name :
       {"",   ".",   "..", "a\\b", "a/b",   "c:",  "a*",      "a?",   "a\"",      "a<",
        "a>", "a|b", "a.", "a ",   "a\x01", "NUL", "nul.zip", "Com1", "LPT9.txt", "con .txt"}) {
    EXPECT_FALSE(IsPlainFileName(name)) << name;
  }
}

TEST(IsPlainFileName, AcceptsWhatCreateWrites) {
  for (const char* name : {"a", "a.dll.zip", "Größe (2).1.zip", ".hidden", "nulls.zip", "COM10.zip",
                           "com.zip", "COM0", "a@b#c;d=e.zip"}) {
    EXPECT_TRUE(IsPlainFileName(name)) << name;
  }
}

}  // namespace
}  // namespace txs
