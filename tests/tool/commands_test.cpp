#include "tool/commands.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "environment/installation.h"
#include "fakes/demo_project.h"
#include "fakes/memory_platform.h"

namespace txs {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

struct CommandsTest : ::testing::Test {
  MemoryPlatform world;
  std::ostringstream out;
  std::ostringstream err;
  bool platform_fails = false;
  bool platform_asked = false;

  CommandsTest() {
    InstallDemoProject(world);
    world.registry.Write(Hive::kLocalMachine, kStudioKey, "LCID", std::uint32_t{1033});
  }

  int Run(const std::vector<std::string>& arguments) {
    ToolContext context{.out = out,
                        .err = err,
                        .err_is_terminal = false,
                        .version = "1.2.3",
                        .platform = [this]() -> Platform& {
                          platform_asked = true;
                          if (platform_fails) {
                            throw RuntimeError(ErrorNumber::kPathFileAccess, "registry.reg");
                          }
                          return world.Get();
                        },
                        .windows_path = [](const std::string& path) -> std::optional<std::string> {
                          if (path == "./Setup") return "C:\\Projects\\Demo\\Setup";
                          return std::nullopt;
                        }};
    return RunTool(arguments, context);
  }

  [[nodiscard]] std::uint64_t ArchiveBytes(const std::string& archive) const {
    return world.files.Contents("C:\\Projects\\Demo\\Setup\\DISK1\\" + archive).size();
  }
};

// --- Usage

TEST_F(CommandsTest, HelpAndVersionNeedNoComputer) {
  EXPECT_EQ(Run({"--help"}), 0);
  EXPECT_EQ(Run({"create", "--help"}), 0);
  EXPECT_THAT(out.str(), AllOf(HasSubstr("verify"), HasSubstr("TAVIX_ROOT")));
  out.str("");
  EXPECT_EQ(Run({"--version"}), 0);

  EXPECT_EQ(out.str(), "TXSetupTool 1.2.3\n");
  EXPECT_EQ(err.str(), "");
  EXPECT_FALSE(platform_asked);
}

class WrongUsage : public CommandsTest,
                   public ::testing::WithParamInterface<std::vector<std::string>> {};

TEST_P(WrongUsage, EndsWithExitCode2AndAHint) {
  EXPECT_EQ(Run(GetParam()), 2);

  EXPECT_EQ(out.str(), "");
  EXPECT_THAT(err.str(), HasSubstr("--help"));
  EXPECT_FALSE(platform_asked);
}

INSTANTIATE_TEST_SUITE_P(Lines, WrongUsage,
                         ::testing::Values(std::vector<std::string>{},
                                           std::vector<std::string>{"scan"},
                                           std::vector<std::string>{"scan", "Demo", "--scan"},
                                           std::vector<std::string>{"create"},
                                           std::vector<std::string>{"create", "Demo", "Other"},
                                           std::vector<std::string>{"create", "Demo", "--save"},
                                           std::vector<std::string>{"scan", ""},
                                           std::vector<std::string>{"plan"},
                                           std::vector<std::string>{"verify"},
                                           std::vector<std::string>{"projects", "Demo"},
                                           std::vector<std::string>{"--json"},
                                           std::vector<std::string>{"verify", "--what", "C:\\"}));

TEST_F(CommandsTest, ComputerThatCannotBeReadEndsWithItsReason) {
  platform_fails = true;

  for (const std::vector<std::string>& line :
       std::vector<std::vector<std::string>>{{"projects"}, {"create", "Demo"}, {"plan", "Demo"}}) {
    err.str("");
    EXPECT_EQ(Run(line), 1);
    EXPECT_THAT(err.str(), HasSubstr("registry.reg (75)"));
  }
  EXPECT_EQ(out.str(), "");
}

TEST_F(CommandsTest, WhatCannotBeDoneIsOneJsonObjectToo) {
  platform_fails = true;

  EXPECT_EQ(Run({"projects", "--json"}), 1);

  EXPECT_EQ(out.str(),
            "{\n"
            "  \"result\": false,\n"
            "  \"messages\": [\n"
            "    {\n"
            "      \"id\": 0,\n"
            "      \"text\": \"registry.reg (75)\"\n"
            "    }\n"
            "  ]\n"
            "}\n");
  EXPECT_EQ(err.str(), "TXSetupTool: registry.reg (75)\n");
}

TEST_F(CommandsTest, ResultThatCannotBeWrittenIsAFailure) {
  out.setstate(std::ios::badbit);

  EXPECT_EQ(Run({"projects"}), 1);
}

// --- projects

TEST_F(CommandsTest, ProjectsAreListedAndNoneIsRemoved) {
  world.RegisterProject("Klärwerk", "C:\\K", "Group");
  world.RegisterProject("Weg", "C:\\W\\", "77");
  world.files.Vanish("C:\\W\\Weg.txs");

  EXPECT_EQ(Run({"projects"}), 0);
  EXPECT_EQ(Run({"projects"}), 0);

  const std::string listed =
      "Demo      Single  C:\\Projects\\Demo\\\n"
      "Klärwerk  Group   C:\\K\n"
      "Weg       77      C:\\W\\              project file missing\n";
  EXPECT_EQ(out.str(), listed + listed);
  EXPECT_EQ(err.str(), "");
}

TEST_F(CommandsTest, ProjectsAsJson) {
  world.RegisterProject("Weg", "C:\\W\\", "4");
  world.files.Vanish("C:\\W\\Weg.txs");

  EXPECT_EQ(Run({"projects", "--json"}), 0);

  EXPECT_EQ(out.str(),
            "{\n"
            "  \"projects\": [\n"
            "    {\n"
            "      \"name\": \"Demo\",\n"
            "      \"type\": \"Single\",\n"
            "      \"directory\": \"C:\\\\Projects\\\\Demo\\\\\",\n"
            "      \"exists\": true\n"
            "    },\n"
            "    {\n"
            "      \"name\": \"Weg\",\n"
            "      \"type\": \"Client\",\n"
            "      \"directory\": \"C:\\\\W\\\\\",\n"
            "      \"exists\": false\n"
            "    }\n"
            "  ]\n"
            "}\n");
}

TEST_F(CommandsTest, ProjectsOfAStudioThatIsNotThereAreNoEmptyList) {
  world.registry.RemoveKey(Hive::kLocalMachine, kVendorKey);

  EXPECT_EQ(Run({"projects"}), 1);
  EXPECT_EQ(out.str(), "");
  EXPECT_THAT(err.str(), StartsWith("message 91: "));

  EXPECT_EQ(Run({"projects", "--json"}), 1);
  EXPECT_THAT(out.str(), StartsWith("{\n"
                                    "  \"result\": false,\n"
                                    "  \"messages\": [\n"
                                    "    {\n"
                                    "      \"id\": 91,\n"));
}

TEST_F(CommandsTest, NoProjectsAreAnEmptyList) {
  world.registry.RemoveKey(Hive::kLocalMachine, kProjectsKey);

  EXPECT_EQ(Run({"projects", "--json"}), 0);

  EXPECT_EQ(out.str(), "{\n  \"projects\": []\n}\n");
}

// --- create

TEST_F(CommandsTest, CreateBuildsTheInstallation) {
  EXPECT_EQ(Run({"create", "Demo"}), 0);

  EXPECT_THAT(out.str(), StartsWith("C:\\Projects\\Demo\\Setup: 1 disk, 3 files, "));
  EXPECT_EQ(err.str(), "");
  EXPECT_TRUE(world.files.Has("C:\\Projects\\Demo\\Setup\\DISK1\\SETUP.STP"));
  EXPECT_TRUE(world.message_boxes.shown.empty());
  EXPECT_FALSE(world.files.Has("C:\\Projects\\Demo\\TXSetupWizard.log"));
}

TEST_F(CommandsTest, CreateAsJson) {
  EXPECT_EQ(Run({"create", "C:\\Projects\\Demo\\Demo.txs", "--json"}), 0);

  const std::uint64_t bytes =
      ArchiveBytes("Demo.exe.zip") + ArchiveBytes("Trend.ocx.zip") + ArchiveBytes("leer.txt.zip");
  EXPECT_EQ(out.str(),
            "{\n"
            "  \"result\": true,\n"
            "  \"output\": \"C:\\\\Projects\\\\Demo\\\\Setup\",\n"
            "  \"disks\": 1,\n"
            "  \"files\": 3,\n"
            "  \"bytes\": " +
                std::to_string(bytes) +
                ",\n"
                "  \"messages\": []\n"
                "}\n");
}

TEST_F(CommandsTest, FailedCreateTellsItsMessages) {
  world.files.Vanish("C:\\TavixStudio\\SetupKit\\SETUP.EXE");

  EXPECT_EQ(Run({"create", "Demo"}), 1);

  EXPECT_EQ(out.str(), "");
  EXPECT_THAT(err.str(), StartsWith("message 909: Error copying the file 'SETUP.EXE'!\n(53: "));
  EXPECT_THAT(err.str(), ::testing::Not(HasSubstr("\r")));
}

TEST_F(CommandsTest, FailedCreateAsJsonHoldsItsMessages) {
  world.files.AddFile("C:\\TavixStudio\\SetupKit\\TXSTPKIT.INI", "[SetupFiles]\r\n");
  world.files.Vanish("C:\\Projects\\Demo\\Demo.swz");

  EXPECT_EQ(Run({"create", "Demo", "--json"}), 1);

  EXPECT_THAT(out.str(), StartsWith("{\n"
                                    "  \"result\": false,\n"
                                    "  \"output\": \"\",\n"
                                    "  \"disks\": 0,\n"));
  EXPECT_THAT(out.str(), HasSubstr("\"messages\": [\n"
                                   "    {\n"
                                   "      \"id\": 1711,\n"
                                   "      \"text\": \"The binary file of the Visual Basic project "
                                   "is missing!\\r\\nPlease"));
}

TEST_F(CommandsTest, UnknownProjectIsMessage901) {
  for (const char* project : {"Other", "C:\\Nowhere\\Demo.txs.txs", "C:\\Nowhere\\Other"}) {
    err.str("");
    EXPECT_EQ(Run({"create", project}), 1) << project;
    EXPECT_THAT(err.str(), StartsWith("message 901: ")) << project;
  }
  EXPECT_EQ(Run({"plan", "Other"}), 1);
  EXPECT_EQ(out.str(), "");
}

TEST_F(CommandsTest, PathThatEndsInASeparatorIsNamedAsItWasGiven) {
  for (const char* path : {"C:\\Projects\\Demo\\", "./Setup/"}) {
    err.str("");
    EXPECT_EQ(Run({"create", path}), 1);
    EXPECT_THAT(err.str(),
                StartsWith(std::string("message 901: It is not possible to edit the project '") +
                           path + "'!\n"));
  }
}

TEST_F(CommandsTest, RegisteredProjectInAnotherDirectoryIsNotTakenForIt) {
  EXPECT_EQ(Run({"create", "C:\\Nowhere\\Demo.txs"}), 1);

  EXPECT_THAT(err.str(), StartsWith("message 901: "));
}

TEST_F(CommandsTest, UnreadableSettingsAreMessage901WithItsReason) {
  world.files.FailPath("C:\\Projects\\Demo\\Demo.swz", "OpenForReading",
                       ErrorNumber::kPermissionDenied);

  EXPECT_EQ(Run({"create", "Demo"}), 1);

  EXPECT_THAT(err.str(), StartsWith("message 901: "));
  EXPECT_THAT(err.str(), HasSubstr("\n(70: "));
}

TEST_F(CommandsTest, StudioThatIsMissingIsMessage91Or92) {
  world.files.Vanish("C:\\TavixStudio\\Studio");
  EXPECT_EQ(Run({"create", "Demo"}), 1);
  EXPECT_THAT(err.str(), StartsWith("message 92: "));

  err.str("");
  world.registry.RemoveKey(Hive::kLocalMachine, kVendorKey);
  EXPECT_EQ(Run({"plan", "Demo"}), 1);
  EXPECT_THAT(err.str(), StartsWith("message 91: "));
  EXPECT_TRUE(world.message_boxes.shown.empty());
}

TEST_F(CommandsTest, MissingConfiguratorIsMessage94) {
  world.configurator_available = false;

  EXPECT_EQ(Run({"create", "Demo", "--json"}), 1);

  EXPECT_THAT(err.str(), StartsWith("message 94: "));
  EXPECT_THAT(out.str(), HasSubstr("\"id\": 94,"));
}

// --- plan

TEST_F(CommandsTest, PlanAsJsonIsWhatCreateDoes) {
  EXPECT_EQ(Run({"plan", "Demo", "--json"}), 0);

  EXPECT_FALSE(world.files.Has("C:\\Projects\\Demo\\Setup"));
  EXPECT_FALSE(world.files.Has("C:\\Projects\\Demo\\~TEMP"));
  const std::string planned = out.str();
  ASSERT_EQ(Run({"create", "Demo"}), 0);
  const auto file = [this](const std::string& archive) {
    return "    {\n      \"archive\": \"" + archive +
           "\",\n      \"bytes\": " + std::to_string(ArchiveBytes(archive)) +
           ",\n      \"disks\": [\n        1\n      ]\n    }";
  };
  EXPECT_EQ(planned, "{\n  \"disks\": 1,\n  \"files\": [\n" + file("Demo.exe.zip") + ",\n" +
                         file("Trend.ocx.zip") + ",\n" + file("leer.txt.zip") + "\n  ]\n}\n");
}

TEST_F(CommandsTest, PlanListsEveryFile) {
  EXPECT_EQ(Run({"plan", "Demo"}), 0);

  EXPECT_THAT(out.str(), HasSubstr(" bytes on disk 1\n"));
  EXPECT_THAT(out.str(), HasSubstr("1 disk, 3 files, "));
}

TEST_F(CommandsTest, KitThatExceedsTheMediumDoesNotFit) {
  std::string settings = DemoSettings();
  settings.replace(settings.find("size=1"), 6, "size=0");
  world.files.AddFile("C:\\Projects\\Demo\\Demo.swz", settings);
  world.files.AddFile("C:\\TavixStudio\\SetupKit\\SETUP.EXE", std::string(1457152, 'x'));

  EXPECT_EQ(Run({"plan", "Demo"}), 4);

  EXPECT_THAT(err.str(), StartsWith("message 912: "));
  EXPECT_THAT(out.str(), HasSubstr("does not fit"));
}

TEST_F(CommandsTest, FailedPlanPrintsNoResult) {
  world.files.Vanish("C:\\Projects\\Demo\\Trend.ocx");

  EXPECT_EQ(Run({"plan", "Demo"}), 1);

  EXPECT_EQ(out.str(), "");
  EXPECT_THAT(err.str(), StartsWith("message 1709: "));
}

TEST_F(CommandsTest, FailedPlanAsJsonHoldsItsMessages) {
  world.files.Vanish("C:\\Projects\\Demo\\Trend.ocx");

  EXPECT_EQ(Run({"plan", "Demo", "--json"}), 1);

  EXPECT_THAT(out.str(), StartsWith("{\n"
                                    "  \"result\": false,\n"
                                    "  \"messages\": [\n"
                                    "    {\n"
                                    "      \"id\": 1709,\n"));
}

// --- verify

TEST_F(CommandsTest, VerifyFindsASoundInstallation) {
  ASSERT_EQ(Run({"create", "Demo"}), 0);
  out.str("");

  EXPECT_EQ(Run({"verify", "C:\\Projects\\Demo\\Setup"}), 0);

  EXPECT_THAT(out.str(), StartsWith("sound: 1 disk, 3 files, "));
  EXPECT_EQ(err.str(), "");
}

TEST_F(CommandsTest, VerifyTakesAPathOfTheHostAndNeedsNoStudio) {
  ASSERT_EQ(Run({"create", "Demo"}), 0);
  world.registry.RemoveKey(Hive::kLocalMachine, kVendorKey);

  EXPECT_EQ(Run({"verify", "./Setup"}), 0);
}

TEST_F(CommandsTest, VerifyListsEachDamageOnItsLine) {
  ASSERT_EQ(Run({"create", "Demo"}), 0);
  world.files.Vanish("C:\\Projects\\Demo\\Setup\\DISK1\\DISK1");
  world.files.Vanish("C:\\Projects\\Demo\\Setup\\DISK1\\Trend.ocx.zip");
  out.str("");

  EXPECT_EQ(Run({"verify", "C:\\Projects\\Demo\\Setup"}), 5);

  EXPECT_EQ(out.str(),
            "DISK1\\DISK1: the label file is missing\n"
            "DISK1\\Trend.ocx.zip: the archive is missing\n");
}

TEST_F(CommandsTest, VerifyAsJson) {
  ASSERT_EQ(Run({"create", "Demo"}), 0);
  const std::uint64_t bytes = ArchiveBytes("Demo.exe.zip") + ArchiveBytes("leer.txt.zip");
  world.files.Vanish("C:\\Projects\\Demo\\Setup\\DISK1\\Trend.ocx.zip");
  out.str("");

  EXPECT_EQ(Run({"verify", "C:\\Projects\\Demo\\Setup", "--json"}), 5);

  EXPECT_EQ(out.str(),
            "{\n"
            "  \"sound\": false,\n"
            "  \"disks\": 1,\n"
            "  \"files\": 3,\n"
            "  \"bytes\": " +
                std::to_string(bytes) +
                ",\n"
                "  \"damages\": [\n"
                "    {\n"
                "      \"where\": \"DISK1\\\\Trend.ocx.zip\",\n"
                "      \"what\": \"the archive is missing\"\n"
                "    }\n"
                "  ]\n"
                "}\n");
}

TEST_F(CommandsTest, VerifyOfADirectoryThatDoesNotExistFails) {
  EXPECT_EQ(Run({"verify", "C:\\Nowhere"}), 1);

  EXPECT_EQ(out.str(), "");
  EXPECT_THAT(err.str(), HasSubstr("(76)"));
}

TEST_F(CommandsTest, VerifyOfADirectoryThatDoesNotExistFailsAsJsonToo) {
  EXPECT_EQ(Run({"verify", "C:\\Nowhere", "--json"}), 1);

  EXPECT_THAT(out.str(), StartsWith("{\n"
                                    "  \"result\": false,\n"
                                    "  \"messages\": [\n"
                                    "    {\n"
                                    "      \"id\": 0,\n"
                                    "      \"text\": \"C:\\\\Nowhere"));
}

// --- scan

struct ScanCommand : CommandsTest {
  ScanCommand() {
    world.files.AddFile("C:\\Projects\\Demo\\Demo.txs",
                        "[Global]\r\nDesigner=Visual Basic 6.0\r\nDesignerProject=Demo.vbp\r\n");
    world.files.AddFile("C:\\Projects\\Demo\\Demo.vbp",
                        "Type=Exe\r\nExeName32=\"Demo.exe\"\r\n"
                        "Object={1}#1.10#0; Lost.ocx\r\n");
    world.registry.Write(Hive::kCurrentUser, kWizardKey, "UseRuntimeSetup", std::uint32_t{0});
  }
  void RegisterTheObject() {
    world.registry.Write(Hive::kClassesRoot, "TypeLib\\{1}\\1.A\\0\\win32", "",
                         std::string("C:\\Projects\\Demo\\Panel.ocx"));
    world.files.AddFile("C:\\Projects\\Demo\\Panel.ocx", "panel");
    world.files.AddFile("C:\\Projects\\Demo\\Panel.dep",
                        "[Panel.ocx]\r\nRegister=$(DLLSelfRegister)\r\nUses1=Lost.dll\r\n"
                        "I1=SetVar(Panel|1)\r\n");
  }
  std::string Settings() { return world.files.Contents("C:\\Projects\\Demo\\Demo.swz"); }
};

TEST_F(ScanCommand, ListsFilesAndToDoLinesAndNamesWhatIsMissingWithItsChain) {
  RegisterTheObject();

  EXPECT_EQ(Run({"scan", "Demo"}), 3);

  EXPECT_THAT(out.str(), HasSubstr("<ProjectDir>\\Demo.txs"));
  EXPECT_THAT(out.str(), HasSubstr("to do: SetVar(Panel|1)\n"));
  EXPECT_THAT(out.str(),
              HasSubstr("missing: Demo.vbp \xE2\x86\x92 Panel.ocx \xE2\x86\x92 Lost.dll\n"));
  EXPECT_THAT(out.str(), HasSubstr(" 1 missing\n"));
}

TEST_F(ScanCommand, EndsWithExitCode0WhenNothingIsMissing) {
  RegisterTheObject();
  world.files.AddFile("C:\\Projects\\Demo\\Lost.dll", "");

  EXPECT_EQ(Run({"scan", "Demo"}), 0);

  EXPECT_EQ(err.str(), "");
}

TEST_F(ScanCommand, PrintsOneJsonObject) {
  EXPECT_EQ(Run({"scan", "Demo", "--json"}), 3);

  EXPECT_THAT(out.str(), StartsWith("{\n  \"result\": true,\n  \"program\": \"Demo.exe\","));
  EXPECT_THAT(out.str(), HasSubstr("\"source\": \"<ProjectDir>\\\\Trend.ocx\",\n"
                                   "      \"destination\": \"<WinSysDir>\",\n"
                                   "      \"register\": \"1\""));
  EXPECT_THAT(out.str(), HasSubstr("\"name\": \"{1} 1.A (Lost.ocx)\",\n      \"chain\": [\n"
                                   "        \"Demo.vbp\",\n"));
  EXPECT_THAT(out.str(), HasSubstr("\"id\": 914"));
  EXPECT_THAT(out.str(), HasSubstr("Projects\\\\Demo|Path|<ProjectDir>|1)"));
  EXPECT_THAT(err.str(), HasSubstr("message 914: "));
}

TEST_F(ScanCommand, LeavesTheSettingsFileAloneUnlessToldToSave) {
  const std::string before = Settings();

  EXPECT_EQ(Run({"scan", "Demo"}), 3);
  EXPECT_EQ(Settings(), before);

  EXPECT_EQ(Run({"scan", "Demo", "--save"}), 3);
  EXPECT_THAT(Settings(), HasSubstr("04=<ProjectDir>\\Demo.txs,<ProjectDir>,0\r\n"));
}

TEST_F(ScanCommand, FailsAndSavesNothingWhenTheProgramWasNotBuilt) {
  world.files.Vanish("C:\\Projects\\Demo\\Demo.exe");
  const std::string before = Settings();

  EXPECT_EQ(Run({"scan", "Demo", "--save"}), 1);

  EXPECT_THAT(err.str(), HasSubstr("message 1711: "));
  EXPECT_EQ(Settings(), before);
}

TEST_F(ScanCommand, FailsWhenTheSettingsFileCannotBeWritten) {
  world.files.FailPath("C:\\Projects\\Demo\\Demo.swz", "ReplaceWhole",
                       ErrorNumber::kPermissionDenied);

  EXPECT_EQ(Run({"scan", "Demo", "--save"}), 1);

  EXPECT_THAT(err.str(), HasSubstr("message 911: "));
}

TEST_F(ScanCommand, FailsForAProjectThatDoesNotExist) {
  EXPECT_EQ(Run({"scan", "Nowhere", "--json"}), 1);

  EXPECT_THAT(out.str(), HasSubstr("\"result\": false"));
  EXPECT_THAT(err.str(), HasSubstr("message 901: "));
}

TEST_F(ScanCommand, CreateScansFirstSoThatTheScriptIsComplete) {
  RegisterTheObject();

  EXPECT_EQ(Run({"create", "Demo", "--scan"}), 3);

  const std::string script = world.files.Contents("C:\\Projects\\Demo\\Setup\\DISK1\\SETUP.STP");
  EXPECT_THAT(script, HasSubstr("SetVar(Panel|1)"));
  EXPECT_THAT(script, HasSubstr("Projects\\Demo|Path|"));
  EXPECT_THAT(script, HasSubstr("Demo.txs"));
  EXPECT_THAT(err.str(),
              HasSubstr("missing: Demo.vbp \xE2\x86\x92 Panel.ocx \xE2\x86\x92 Lost.dll\n"));
}

TEST_F(ScanCommand, CreateBuildsWithoutWhatTheScanMissedAndSaysSoByItsExitCode) {
  EXPECT_EQ(Run({"create", "Demo", "--scan"}), 3);

  EXPECT_TRUE(world.files.Has("C:\\Projects\\Demo\\Setup\\DISK1\\SETUP.STP"));
}

TEST_F(ScanCommand, CreateReportsWhatTheScanMissedInItsJson) {
  EXPECT_EQ(Run({"create", "Demo", "--scan", "--json"}), 3);

  EXPECT_THAT(out.str(),
              HasSubstr("\"missing\": [\n    {\n      \"name\": \"{1} 1.A (Lost.ocx)\""));
}

TEST_F(ScanCommand, CreateBuildsNothingAfterAFailedScan) {
  world.files.Vanish("C:\\Projects\\Demo\\Demo.vbp");

  EXPECT_EQ(Run({"create", "Demo", "--scan"}), 1);

  EXPECT_FALSE(world.files.Has("C:\\Projects\\Demo\\Setup"));
}

}  // namespace
}  // namespace txs
