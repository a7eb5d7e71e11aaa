#include "scan/studio_project_scan.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "scan/scan_world.h"

namespace txs {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr char kLineStart[] =
    "WriteRegistry(HKEY_LOCAL_MACHINE|Software\\ORBEKA GmbH\\Tavix\\4.0\\";

class StudioScan : public testing::Test {
 protected:
  bool Scan() { return ScanStudioProject(world.Session(), world.Resolver()); }
  void AddSetup(const std::string& name, const std::string& description) {
    world.files.AddFile("C:\\Tavix\\SetupKit\\" + name + ".exe", "setup");
    world.files.AddFile("C:\\Tavix\\SetupKit\\" + name + ".ini", description);
  }
  void AddBothSetups() {
    world.application.use_runtime_setup = true;
    AddSetup("TXSRuntimeServerSetup", "[Files]\n1=data.dll\n");
    AddSetup("TXSRuntimeClientSetup", "[Files]\n1=view.dll\n");
  }
  static std::string Line(const std::string& rest) { return kLineStart + rest; }

  ResolutionWorld world;
};

TEST_F(StudioScan, AddsTheProjectFileAndItsRegistration) {
  world.platform.registry.Write(Hive::kLocalMachine,
                                "Software\\ORBEKA GmbH\\Tavix\\4.0\\Projects\\Demo", "TavixVersion",
                                std::string("4.0.112"));

  EXPECT_TRUE(Scan());

  EXPECT_THAT(world.Sources(), ElementsAre("<ProjectDir>\\Demo.txs"));
  EXPECT_THAT(world.ToDo(), ElementsAre(Line("Projects\\Demo|Path|<ProjectDir>|1)"),
                                        Line("Projects\\Demo|TavixVersion|4.0.112|1)"),
                                        Line("Projects\\Demo|ProjectType|Single|1)")));
}

TEST_F(StudioScan, LeavesEachLineOnceWhenScanningTwice) {
  world.RegisterDriver("Drv.Device", "C:\\Tavix\\drv.exe", "Driver");
  world.files.AddFile("C:\\Tavix\\drv.exe", "");
  world.SetStudioProject({"[device1]", "ProgID=Drv.Device"});
  EXPECT_TRUE(Scan());
  const std::vector<std::string> lines = world.ToDo();
  const std::vector<std::string> sources = world.Sources();

  EXPECT_TRUE(Scan());

  EXPECT_EQ(lines.size(), 5u);
  EXPECT_EQ(world.ToDo(), lines);
  EXPECT_EQ(world.Sources(), sources);
}

TEST_F(StudioScan, AddsTheDatabaseWhereThereIsOne) {
  world.files.AddFile("C:\\Demo\\demo.DBF", "");

  EXPECT_TRUE(Scan());

  EXPECT_THAT(world.Sources(), ElementsAre("<ProjectDir>\\Demo.txs", "<ProjectDir>\\Demo.dbf"));
}

TEST_F(StudioScan, GivesAClientItsRuntimeButNoServerComponentsAndNoRctFiles) {
  world.application.project.type = 4;
  AddBothSetups();
  world.AddSystemFile("client.dll");
  world.AddSystemFile("server.dll");
  world.SetProductFile({"[Tavix4 Client]", "Uses1=client.dll", "[Tavix4]", "Uses1=server.dll"});
  world.SetStudioProject({"[ServerComponents]", "1=server.dll"});
  world.files.AddFile("C:\\Demo\\a.rct", "");

  EXPECT_TRUE(Scan());

  EXPECT_THAT(world.Kinds(),
              ElementsAre("TXSRuntimeClientSetup.exe 0", "client.dll 0", "Demo.txs 0"));
}

TEST_F(StudioScan, GivesASingleStationBothRuntimes) {
  AddBothSetups();

  EXPECT_TRUE(Scan());

  EXPECT_THAT(world.Kinds(), ElementsAre("TXSRuntimeServerSetup.exe 0",
                                         "TXSRuntimeClientSetup.exe 0", "Demo.txs 0"));
}

TEST_F(StudioScan, GivesAServerOnlyItsOwnRuntime) {
  world.application.project.type = 2;
  AddBothSetups();

  EXPECT_TRUE(Scan());

  EXPECT_THAT(world.Kinds(), ElementsAre("TXSRuntimeServerSetup.exe 0", "Demo.txs 0"));
  EXPECT_EQ(world.application.document.program_name, "TXEManager.exe");
}

TEST_F(StudioScan, GivesTerminalsAndGroupsNoRuntime) {
  for (const long type : {8L, 16L, 32L}) {
    ResolutionWorld one;
    one.application.project.type = type;
    one.application.use_runtime_setup = true;
    one.AddSystemFile("server.dll");
    one.SetProductFile({"[Tavix4]", "Uses1=server.dll", "[Tavix4 Client]", "Uses1=server.dll"});

    EXPECT_TRUE(ScanStudioProject(one.Session(), one.Resolver()));

    EXPECT_THAT(one.Kinds(), ElementsAre("Demo.txs 0")) << type;
  }
}

TEST_F(StudioScan, AddsNoSetupProgramButThePseudoFilesWithTheOptionOff) {
  AddBothSetups();
  world.application.use_runtime_setup = false;
  world.AddSystemFile("data.dll");
  world.SetProductFile({"[Tavix4]", "Uses1=data.dll", "I1=line"});

  EXPECT_TRUE(Scan());

  EXPECT_THAT(world.Kinds(), ElementsAre("data.dll 0", "Demo.txs 0"));
  EXPECT_THAT(world.ToDo(), Contains("line"));
}

TEST_F(StudioScan, LeavesOutWhatThePredefinedSetupsInstall) {
  AddBothSetups();
  for (const char* name : {"data.dll", "view.dll", "more.dll"}) world.AddSystemFile(name);
  world.SetProductFile({"[Tavix4]", "Uses1=data.dll", "Uses2=view.dll", "Uses3=more.dll"});

  EXPECT_TRUE(Scan());

  EXPECT_THAT(world.Kinds(), Not(Contains("data.dll 0")));
  EXPECT_THAT(world.Kinds(), Not(Contains("view.dll 0")));
  EXPECT_THAT(world.Kinds(), Contains("more.dll 0"));
}

TEST_F(StudioScan, LeavesNothingOutForASetupThatIsNotThere) {
  AddBothSetups();
  world.files.Vanish("C:\\Tavix\\SetupKit\\TXSRuntimeServerSetup.exe");
  world.AddSystemFile("data.dll");
  world.SetProductFile({"[Tavix4]", "Uses1=data.dll"});

  EXPECT_TRUE(Scan());

  EXPECT_THAT(world.Kinds(), Contains("data.dll 0"));
  EXPECT_THAT(world.Session().TakeMissing(),
              ElementsAre(MissingItem{"TXSRuntimeServerSetup.exe",
                                      {"Demo.txs", "TXSRuntimeServerSetup.exe"}}));
}

TEST_F(StudioScan, AddsServerComponentsFromTheProductFile) {
  world.files.AddFile("C:\\Demo\\Srv\\comp.dll", "");
  world.AddSystemFile("need.dll");
  world.SetProductFile({"[comp.dll]", "Register=$(DLLSelfRegister)", "Uses1=need.dll"});
  world.SetStudioProject({"[ServerComponents]", "1=C:\\Demo\\Srv\\comp.dll", "2=", "x=need.dll"});

  EXPECT_TRUE(Scan());

  EXPECT_THAT(world.Kinds(), ElementsAre("Demo.txs 0", "comp.dll 1", "need.dll 0"));
  EXPECT_THAT(world.view.captions,
              ElementsAre("TavixStudio", "TXS-Datei", "Server-Komponenten", "Treiberprogramme"));
}

TEST_F(StudioScan, AddsADriverWithItsRegistration) {
  world.RegisterDriver("Drv.Device", "C:\\Tavix\\Common\\drv.exe", "Fieldbus");
  world.files.AddFile("C:\\Tavix\\Common\\drv.exe", "");
  world.AddSystemFile("need.dll");
  world.SetProductFile({"[drv.exe]", "Register=$(EXESelfRegister)", "Uses1=need.dll"});
  world.SetStudioProject(
      {"[device1]", "ProgID=Drv.Device", "[device2]", "OPCServer=0", "ProgID=Drv.Device"});

  EXPECT_TRUE(Scan());

  EXPECT_THAT(world.Kinds(), ElementsAre("Demo.txs 0", "drv.exe 2", "need.dll 0"));
  EXPECT_TRUE(world.HasToDo(Line("Drivers\\Drv.Device|Path|<TavixCommonDir>\\drv.exe|1)")));
  EXPECT_TRUE(world.HasToDo(Line("Drivers\\Drv.Device|Name|Fieldbus|1)")));
}

// The registration of a driver that was not packaged was written all the same.
TEST_F(StudioScan, DoesNotRegisterADriverThatWasLeftOut) {
  for (const SearchFileResult answer : {SearchFileResult::kIgnore, SearchFileResult::kCancel}) {
    ResolutionWorld left_out;
    left_out.RegisterDriver("Drv.Device", "C:\\Gone\\drv.exe", "Fieldbus");
    left_out.SetStudioProject({"[device1]", "ProgID=Drv.Device"});
    left_out.dialog.answers = {{answer, {}}};

    EXPECT_TRUE(ScanStudioProject(left_out.Session(), left_out.Resolver()));

    EXPECT_THAT(left_out.Kinds(), ElementsAre("Demo.txs 0"));
    EXPECT_FALSE(left_out.HasToDo(Line("Drivers\\Drv.Device|Path|C:\\Gone\\drv.exe|1)")));
    EXPECT_FALSE(left_out.HasToDo(Line("Drivers\\Drv.Device|Name|Fieldbus|1)")));
  }
}

TEST_F(StudioScan, RegistersADriverWhereTheUserFindsIt) {
  world.RegisterDriver("Drv.Device", "C:\\Gone\\drv.exe", "Fieldbus");
  world.files.AddFile("C:\\Tavix\\Old\\drv.exe", "");
  world.SetStudioProject({"[device1]", "ProgID=Drv.Device"});
  world.dialog.answers = {{SearchFileResult::kOk, "C:\\Tavix\\Old"}};

  EXPECT_TRUE(Scan());

  EXPECT_TRUE(world.HasToDo(Line("Drivers\\Drv.Device|Path|<TavixMainDir>\\Old\\drv.exe|1)")));
}

TEST_F(StudioScan, RegistersADriverThatTheTargetComputerHasAnyway) {
  world.RegisterDriver("Drv.System", "C:\\Gone\\system.exe", "System");
  world.RegisterDriver("Drv.Covered", "C:\\Gone\\covered.exe", "Covered");
  world.application.document.system_files.excluded = {"system.exe"};
  world.application.use_runtime_setup = true;
  for (const char* name : {"TXSRuntimeServerSetup.exe", "TXSRuntimeClientSetup.exe"}) {
    world.files.AddFile(std::string("C:\\Tavix\\SetupKit\\") + name, "");
  }
  world.files.AddFile("C:\\Tavix\\SetupKit\\TXSRuntimeServerSetup.ini",
                      Lines({"[Files]", "1=covered.exe"}));
  world.SetStudioProject({"[device1]", "ProgID=Drv.System", "[device2]", "ProgID=Drv.Covered"});

  EXPECT_TRUE(Scan());

  EXPECT_TRUE(world.HasToDo(Line("Drivers\\Drv.System|Name|System|1)")));
  EXPECT_TRUE(world.HasToDo(Line("Drivers\\Drv.Covered|Name|Covered|1)")));
  EXPECT_THAT(world.dialog.requests, IsEmpty());
}

TEST_F(StudioScan, PackagesTheDriversOfTheFirstFiveDevicesOnly) {
  std::vector<std::string> lines;
  for (int i = 1; i <= 7; ++i) {
    const std::string name = "drv" + std::to_string(i);
    world.RegisterDriver(name, "C:\\Tavix\\" + name + ".exe", name);
    world.files.AddFile("C:\\Tavix\\" + name + ".exe", "");
    lines.push_back("[device" + std::to_string(i) + "]");
    lines.push_back("ProgID=" + name);
  }
  world.SetStudioProject(lines);

  EXPECT_TRUE(Scan());

  EXPECT_THAT(world.Kinds(), ElementsAre("Demo.txs 0", "drv1.exe 0", "drv2.exe 0", "drv3.exe 0",
                                         "drv4.exe 0", "drv5.exe 0"));
}

TEST_F(StudioScan, AddsNothingForAnOpcServer) {
  world.RegisterDriver("Opc.1", "C:\\Tavix\\opc.exe", "OPC");
  world.files.AddFile("C:\\Tavix\\opc.exe", "");
  world.SetStudioProject({"[device1]", "OPCServer=1", "ProgID=Opc.1"});

  EXPECT_TRUE(Scan());

  EXPECT_THAT(world.Kinds(), ElementsAre("Demo.txs 0"));
  EXPECT_EQ(world.ToDo().size(), 3u);
}

TEST_F(StudioScan, PassesOverADeviceWithoutProgId) {
  world.SetStudioProject({"[device1]", "Name=x", "[device2]", "ProgID="});

  EXPECT_TRUE(Scan());

  EXPECT_THAT(world.messages.shown, IsEmpty());
}

TEST_F(StudioScan, NamesADriverThatIsNotRegisteredAndGoesOn) {
  world.RegisterDriver("Drv.Device", "C:\\Tavix\\drv.exe", "Driver");
  world.files.AddFile("C:\\Tavix\\drv.exe", "");
  world.SetStudioProject({"[device1]", "ProgID=Lost.Device", "[device2]", "ProgID=Drv.Device"});

  EXPECT_TRUE(Scan());

  ASSERT_THAT(world.messages.Ids(), ElementsAre(915));
  EXPECT_THAT(world.messages.shown[0].prompt, HasSubstr("'Lost.Device'"));
  EXPECT_THAT(world.Kinds(), ElementsAre("Demo.txs 0", "drv.exe 0"));
  EXPECT_THAT(world.Session().TakeMissing(),
              ElementsAre(MissingItem{"Lost.Device", {"Demo.txs", "device1", "Lost.Device"}}));
}

TEST_F(StudioScan, SaysOnceThatTheDriverOfTwoDevicesIsNotRegistered) {
  world.SetStudioProject({"[device1]", "ProgID=Lost.Device", "[device2]", "ProgID=LOST.Device"});

  EXPECT_TRUE(Scan());

  EXPECT_THAT(world.messages.Ids(), ElementsAre(915));
}

TEST_F(StudioScan, AddsRctFilesInTheOrderOfTheListing) {
  for (const char* name : {"b.rct", "A.RCT", "c.rctx"}) {
    world.files.AddFile(std::string("C:\\Demo\\") + name, "");
  }
  world.files.AddFolder("C:\\Demo\\folder.rct");

  EXPECT_TRUE(Scan());

  EXPECT_THAT(world.Kinds(), ElementsAre("Demo.txs 0", "A.RCT 0", "b.rct 0"));
}

TEST(StudioScanMessages, ComeInBothLanguages) {
  for (const long language : {1031L, 1033L}) {
    ResolutionWorld world;
    world.Speak(language);
    world.SetStudioProject({"[device1]", "ProgID=Lost"});
    static_cast<void>(ScanStudioProject(world.Session(), world.Resolver()));
    world.files.FailPath("C:\\Demo", "List", ErrorNumber::kDeviceIo);
    EXPECT_FALSE(ScanStudioProject(world.Session(), world.Resolver()));

    const TextService texts(language);
    ASSERT_THAT(world.messages.Ids(), ElementsAre(915, 915, 908));
    EXPECT_EQ(world.messages.shown[0].prompt, texts.GetText(915, {"Lost"}));
    EXPECT_THAT(world.messages.shown[2].prompt,
                testing::StartsWith(texts.GetText(908, {"C:\\Demo\\Demo.txs"})));
  }
}

TEST_F(StudioScan, EndsWithFalseWhenCancelIsPressed) {
  world.files.AddFile("C:\\Demo\\a.rct", "");
  world.view.on_events = [&](RecordingScanView& view) {
    if (view.count == 1) view.PressCancel();
  };

  EXPECT_FALSE(Scan());

  EXPECT_THAT(world.Kinds(), ElementsAre("Demo.txs 0"));
  EXPECT_THAT(world.view.diary, Contains("stage 704 failed"));
}

TEST_F(StudioScan, EndsInAMessageWithoutAProjectDirectory) {
  world.application.project.directory.clear();

  EXPECT_FALSE(Scan());

  EXPECT_THAT(world.messages.Ids(), ElementsAre(908));
}

}  // namespace
}  // namespace txs
