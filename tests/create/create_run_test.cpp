#include "create/create_run.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "create/create_world.h"
#include "create/setup_control_file.h"
#include "document/mdac.h"
#include "document/medium.h"
#include "document/trailing_number.h"
#include "environment/runtime_error.h"

namespace txs {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

std::vector<std::string> Names(const std::map<std::string, std::string>& files) {
  std::vector<std::string> names;
  for (const auto& [name, bytes] : files) names.push_back(name);
  return names;
}

class CreateRun : public testing::Test {
 protected:
  CreateRun() {
    world_.SetKit({{"SETUP.EXE", Noise(3000)}, {"README.TXT", "read me"}});
    world_.Add("<ProjectDir>\\Demo.exe", Noise(20'000));
    world_.Add("<WinSysDir>\\x.dll", std::string(50'000, 'x'), "<WinSysDir>", "1");
  }

  CreateWorld world_;
  SetupDocument& document_ = world_.application.document;
};

// --- The whole run

TEST_F(CreateRun, ACompleteRunLeavesTheInstallationAndNothingElse) {
  const CreateResult result = world_.Run();

  EXPECT_TRUE(result.succeeded);
  EXPECT_EQ(result.output_directory, kOutput);
  EXPECT_EQ(result.disks, 1u);
  EXPECT_EQ(result.files, 2u);
  const std::map<std::string, std::string> output = world_.Output();
  EXPECT_THAT(Names(output),
              ElementsAre("DISK1\\DISK1", "DISK1\\Demo.exe.zip", "DISK1\\README.TXT",
                          "DISK1\\SETUP.EXE", "DISK1\\SETUP.STP", "DISK1\\x.dll.zip"));
  EXPECT_EQ(output.at("DISK1\\SETUP.STP"), SetupControlText(world_.application));
  EXPECT_EQ(result.archive_bytes,
            output.at("DISK1\\Demo.exe.zip").size() + output.at("DISK1\\x.dll.zip").size());
  EXPECT_FALSE(world_.files.Has(kTemporary));
  EXPECT_THAT(world_.messages.shown, IsEmpty());
}

TEST_F(CreateRun, TheScriptNamesTheFiguresOfThisRun) {
  document_.steps.disk_size_index = 0;
  world_.SetArchiveSize("C:\\Demo\\Demo.exe", 3'000'000);
  document_.files.Row(1).length_bytes = 17;
  document_.steps.total_bytes_label = "17";

  EXPECT_TRUE(world_.Run().succeeded);

  const std::string script = world_.Output().at("DISK1\\SETUP.STP");
  EXPECT_THAT(script, HasSubstr("MaxBytes=70000\r\nMaxDisk=3\r\n"));
  EXPECT_THAT(script, HasSubstr("InstallFile(Demo.exe.zip|<ProjectDir>\\Demo.exe|20000|20.02.2004||"
                                "2|0|1|2|3)\r\n"));
}

TEST_F(CreateRun, TheFiveStagesFollowEachOther) {
  EXPECT_TRUE(world_.Run().succeeded);

  EXPECT_THAT(world_.view.started,
              ElementsAre(CreateStage::kDirectories, CreateStage::kCompress, CreateStage::kSetupKit,
                          CreateStage::kDistribute, CreateStage::kControlFile));
  std::vector<std::string> marks;
  for (const std::string& entry : world_.view.diary) {
    if (entry.starts_with("stage") || entry.starts_with("begin") || entry.starts_with("end")) {
      marks.push_back(entry);
    }
  }
  EXPECT_THAT(marks,
              ElementsAre("begin", "stage 405", "stage 405 done", "stage 406", "stage 406 done",
                          "stage 407", "stage 407 done", "stage 408", "stage 408 done", "stage 409",
                          "stage 409 done", "end OK: Installation disks created!"));
}

TEST_F(CreateRun, AFailedStageIsTheLast) {
  world_.SetKitList("");

  EXPECT_FALSE(world_.Run().succeeded);

  EXPECT_THAT(world_.view.started, ElementsAre(CreateStage::kDirectories, CreateStage::kCompress,
                                               CreateStage::kSetupKit));
  EXPECT_EQ(world_.view.ended.back(), std::pair(CreateStage::kSetupKit, false));
  EXPECT_EQ(world_.view.result, false);
}

TEST_F(CreateRun, TheResultLineIsInTheUsersLanguage) {
  EXPECT_TRUE(world_.Run().succeeded);
  EXPECT_EQ(world_.view.result_line, "OK: Installation disks created!");

  world_.Speak(1031);
  EXPECT_TRUE(world_.Run().succeeded);
  EXPECT_EQ(world_.view.result_line.substr(0, 3), "OK:");
  EXPECT_NE(world_.view.result_line, "OK: Installation disks created!");

  world_.SetKitList("");
  EXPECT_FALSE(world_.Run().succeeded);
  EXPECT_EQ(world_.view.result_line.substr(0, 5), "STOP:");
  EXPECT_NE(world_.view.result_line, "STOP: Installation aborted or faulty!");

  world_.Speak(1033);
  EXPECT_FALSE(world_.Run().succeeded);
  EXPECT_EQ(world_.view.result_line, "STOP: Installation aborted or faulty!");
}

TEST_F(CreateRun, TheTakeNoteDialogFollowsASuccess) {
  world_.application.unattended = false;

  EXPECT_TRUE(world_.Run().succeeded);

  EXPECT_EQ(world_.view.take_notes, 1);
  EXPECT_EQ(world_.view.diary.back(), "take note");
}

TEST_F(CreateRun, TheTakeNoteDialogFollowsAFailureToo) {
  world_.application.unattended = false;
  world_.SetKitList("");

  EXPECT_FALSE(world_.Run().succeeded);

  EXPECT_EQ(world_.view.take_notes, 1);
}

TEST_F(CreateRun, AnUnattendedRunEndsWithoutTheTakeNoteDialog) {
  EXPECT_TRUE(world_.Run().succeeded);

  EXPECT_EQ(world_.view.take_notes, 0);
}

TEST_F(CreateRun, WithoutAProjectBinaryTheStateWindowIsNotShown) {
  document_.program_name = "";
  world_.application.unattended = false;

  EXPECT_FALSE(world_.Run().succeeded);

  EXPECT_THAT(world_.view.diary, IsEmpty());
  EXPECT_THAT(world_.messages.Ids(), ElementsAre(1711));
}

TEST_F(CreateRun, AProjectWithoutFilesMakesADiskWithTheKitAndTheScript) {
  document_.files.Clear();

  EXPECT_TRUE(world_.Run().succeeded);

  EXPECT_THAT(Names(world_.Output()), ElementsAre("DISK1\\DISK1", "DISK1\\README.TXT",
                                                  "DISK1\\SETUP.EXE", "DISK1\\SETUP.STP"));
}

TEST_F(CreateRun, HiddenRowsAreInstalledBehindTheVisibleOnes) {
  world_.AddHidden("C:\\Hidden\\demo.exe", "hidden", "<UserDir1>");

  EXPECT_TRUE(world_.Run().succeeded);

  const std::string script = world_.Output().at("DISK1\\SETUP.STP");
  EXPECT_THAT(script, HasSubstr("InstallFile(demo.exe.1.zip|<UserDir1>\\demo.exe|6|"));
  EXPECT_LT(script.find("x.dll.zip"), script.find("demo.exe.1.zip"));
  EXPECT_THAT(script, HasSubstr("MaxBytes=70006\r\n"));
}

TEST_F(CreateRun, TempDirAndUserDirectoriesResolveInSources) {
  document_.steps.user_directories = {{3, "C:\\Data"}};
  world_.files.AddFile("C:\\Data\\d.dat", "user directory");
  document_.files.Append("<UserDir3>\\d.dat", "<UserDir3>", "");

  EXPECT_TRUE(world_.Run().succeeded);

  EXPECT_TRUE(world_.Output().contains("DISK1\\d.dat.zip"));
}

TEST_F(CreateRun, SourcesAreOnlyRead) {
  const std::string before = world_.files.Contents("C:\\Demo\\Demo.exe");
  world_.files.SetReadOnly("C:\\Demo\\Demo.exe", true);

  EXPECT_TRUE(world_.Run().succeeded);

  EXPECT_EQ(world_.files.Contents("C:\\Demo\\Demo.exe"), before);
  for (const MemoryFileSystem::DiaryEntry& entry : world_.files.diary) {
    if (entry.path.ends_with("Demo.exe")) {
      EXPECT_THAT(entry.operation, ::testing::AnyOf("Stamp", "OpenForReading", "Read", "Seek"));
    }
  }
}

// --- Runs after runs

TEST_F(CreateRun, TwoRunsGiveTheSameBytes) {
  document_.steps.disk_size_index = 0;
  world_.SetArchiveSize("C:\\Demo\\Demo.exe", 3'000'000);

  EXPECT_TRUE(world_.Run().succeeded);
  const std::map<std::string, std::string> first = world_.Output();
  EXPECT_TRUE(world_.Run().succeeded);

  EXPECT_EQ(world_.Output(), first);
}

TEST_F(CreateRun, ASecondRunRemovesTheDisksOfTheFirst) {
  document_.steps.disk_size_index = 0;
  world_.SetArchiveSize("C:\\Demo\\Demo.exe", 5'000'000);
  EXPECT_TRUE(world_.Run().succeeded);
  EXPECT_TRUE(world_.files.Has("C:\\Demo\\Setup\\DISK4"));
  world_.files.AddFile("C:\\Demo\\Setup\\disk99\\old.zip", "old");
  document_.steps.disk_size_index = 1;

  EXPECT_TRUE(world_.Run().succeeded);

  EXPECT_FALSE(world_.files.Has("C:\\Demo\\Setup\\DISK2"));
  EXPECT_FALSE(world_.files.Has("C:\\Demo\\Setup\\disk99"));
  EXPECT_EQ(document_.files.Row(1).disk, "|1");
}

TEST_F(CreateRun, FilesNamedLikeDisksStay) {
  world_.files.AddFile("C:\\Demo\\Setup\\DISKETTE.TXT", "label of the box");
  world_.files.AddFile("C:\\Demo\\Setup\\Manual\\DISK9\\page", "not in the output itself");

  EXPECT_TRUE(world_.Run().succeeded);

  EXPECT_EQ(world_.files.Contents("C:\\Demo\\Setup\\DISKETTE.TXT"), "label of the box");
  EXPECT_TRUE(world_.files.Has("C:\\Demo\\Setup\\Manual\\DISK9\\page"));
}

TEST_F(CreateRun, WhatLayInTheTemporaryDirectoryIsGone) {
  world_.files.AddFile("C:\\Demo\\~TEMP\\left over.zip", "from a cancelled run");

  EXPECT_TRUE(world_.Run().succeeded);

  EXPECT_FALSE(world_.Output().contains("DISK1\\left over.zip"));
  EXPECT_FALSE(world_.files.Has(kTemporary));
}

TEST_F(CreateRun, CompressedNamesOfAnEarlierRunAreKept) {
  EXPECT_TRUE(world_.Run().succeeded);
  document_.files.DeleteRows({1});
  world_.Add("C:\\Other\\x.dll", "another");

  EXPECT_TRUE(world_.Run().succeeded);

  EXPECT_EQ(document_.files.Row(1).compressed_name, "x.dll.zip");
  EXPECT_EQ(document_.files.Row(2).compressed_name, "x.dll.1.zip");
}

// --- Minimal MDAC installation

class MinimalMdac : public CreateRun {
 protected:
  MinimalMdac() {
    world_.Add("C:\\Kits\\MDAC_TYP.exe", "full", "<TempDir>");
    world_.AddHidden("<TavixMainDir>\\SetupKit\\mdac_typ.EXE", "full", "<TempDir>");
    world_.files.AddFile("C:\\Tavix\\SetupKit\\Mdac_min.exe", "minimal");
    document_.extra_todo_lines = {"First(1)", kFullMdacEntry, "Last(1)"};
  }
};

TEST_F(MinimalMdac, WithTheOptionRowsAndEntryAreReplaced) {
  document_.steps.minimal_mdac = true;
  document_.extra_todo_lines[1] = "EXECFILE" + std::string(kFullMdacEntry).substr(8);

  EXPECT_TRUE(world_.Run().succeeded);

  EXPECT_EQ(document_.files.Row(3).source, "<TavixMainDir>\\SetupKit\\Mdac_min.exe");
  EXPECT_EQ(document_.files.Row(3).length_bytes, 7u);
  EXPECT_EQ(document_.hidden_files.Row(1).source, "<TavixMainDir>\\SetupKit\\Mdac_min.exe");
  EXPECT_THAT(document_.extra_todo_lines, ElementsAre("First(1)", kMinimalMdacEntry, "Last(1)"));
  const std::string script = world_.Output().at("DISK1\\SETUP.STP");
  EXPECT_THAT(script, HasSubstr("First(1)\r\nExecFile(<TempDir>\\Mdac_min.exe|0|/S)\r\n"
                                "DeleteFile(<TempDir>\\Mdac_min.exe)\r\nSetVar(Reboot|1)\r\nLast"));
  EXPECT_THAT(script, HasSubstr("InstallFile(Mdac_min.exe.zip|<TempDir>\\Mdac_min.exe|7|"));
  EXPECT_THAT(script, Not(HasSubstr("mdac_typ")));
}

TEST_F(MinimalMdac, WithoutTheOptionRowsAndEntryStay) {
  document_.steps.minimal_mdac = false;

  EXPECT_TRUE(world_.Run().succeeded);

  EXPECT_EQ(document_.files.Row(3).source, "C:\\Kits\\MDAC_TYP.exe");
  EXPECT_THAT(document_.extra_todo_lines, ElementsAre("First(1)", kFullMdacEntry, "Last(1)"));
}

TEST_F(MinimalMdac, AStoredArchiveNameIsKept) {
  document_.steps.minimal_mdac = true;
  document_.files.Row(3).compressed_name = "MDAC_TYP.exe.zip";

  EXPECT_TRUE(world_.Run().succeeded);

  EXPECT_EQ(document_.files.Row(3).compressed_name, "MDAC_TYP.exe.zip");
}

TEST_F(MinimalMdac, AnEntryAddedByAnotherScanIsNotRunTwice) {
  document_.steps.minimal_mdac = true;
  document_.extra_todo_lines = {kMinimalMdacEntry, kFullMdacEntry};

  EXPECT_TRUE(world_.Run().succeeded);

  EXPECT_THAT(document_.extra_todo_lines, ElementsAre(kMinimalMdacEntry));
}

// Unticked in step 5, the option still held: every further installation ran the minimal installer.
TEST_F(MinimalMdac, TheOptionCanBeTakenBack) {
  world_.Add("C:\\Tavix\\SetupKit\\mdac_typ.exe", "full", "<TempDir>");
  document_.steps.minimal_mdac = true;
  ASSERT_TRUE(world_.Run().succeeded);
  document_.steps.minimal_mdac = false;

  EXPECT_TRUE(world_.Run().succeeded);

  EXPECT_EQ(document_.files.Row(3).source, "<TavixMainDir>\\SetupKit\\mdac_typ.exe");
  EXPECT_THAT(document_.extra_todo_lines, ElementsAre("First(1)", kFullMdacEntry, "Last(1)"));
  const std::string script = world_.Output().at("DISK1\\SETUP.STP");
  EXPECT_THAT(script, HasSubstr("InstallFile(mdac_typ.exe.zip|<TempDir>\\mdac_typ.exe|4|"));
  EXPECT_THAT(script, Not(HasSubstr("Mdac_min")));
}

TEST_F(MinimalMdac, AnotherFileOfThatNameStaysWithoutTheOption) {
  world_.Add("C:\\Kits\\Mdac_min.exe", "mine", "<TempDir>");
  world_.Add("C:\\Tavix\\SetupKit\\Mdac_min.exe", "minimal", "<ProjectDir>");
  const std::size_t last = document_.files.RowCount();
  const std::vector<std::string> sources = {document_.files.Row(last - 1).source,
                                            document_.files.Row(last).source};

  EXPECT_TRUE(world_.Run().succeeded);

  EXPECT_EQ(document_.files.Row(last - 1).source, sources[0]);
  EXPECT_EQ(document_.files.Row(last).source, sources[1]);
}

TEST_F(MinimalMdac, AMissingMinimalInstallerIsMessage1709) {
  document_.steps.minimal_mdac = true;
  world_.files.Vanish("C:\\Tavix\\SetupKit\\Mdac_min.exe");

  EXPECT_FALSE(world_.Run().succeeded);

  EXPECT_THAT(world_.messages.Ids(), ElementsAre(1709));
  EXPECT_TRUE(document_.files.Row(3).marked);
}

// --- Characters

// The script comes last: the old disks were gone by then, and the new ones without it.
TEST_F(CreateRun, ACharacterThatTheScriptCannotHoldIsSaidBeforeTheOldDisksGo) {
  StepSettings& steps = document_.steps;
  const StepSettings sound = steps;
  const auto expect_refused = [this] {
    world_.files.AddFile("C:\\Projects\\Demo\\Setup\\DISK1\\old.txt", "old");
    world_.messages.shown.clear();

    EXPECT_FALSE(world_.Run().succeeded);

    EXPECT_THAT(world_.messages.Ids(), ElementsAre(904));
    EXPECT_THAT(world_.messages.shown[0].prompt, HasSubstr("U+2192"));
    EXPECT_TRUE(world_.files.Has("C:\\Projects\\Demo\\Setup\\DISK1\\old.txt"));
  };
  for (std::string* text :
       {&steps.info.german[0], &steps.info.english[2], &steps.startmenu_folder.german,
        &steps.startmenu_link.english, &steps.tavix_directory, &steps.project_directory}) {
    *text += "\\A → B";
    expect_refused();
    steps = sound;
  }
  steps.user_directories = {{1, "D:\\→"}};
  expect_refused();
  steps = sound;
  document_.extra_todo_lines = {"A(→)"};
  expect_refused();
  document_.extra_todo_lines.clear();
  document_.files.Row(1).destination += "\\→";
  expect_refused();
}

// --- Directories

TEST_F(CreateRun, TheOutputDirectoryIsTidiedAndMadeWithItsParents) {
  document_.steps.setup_directory = " <ProjectDir>/New//Setup\\ ";

  const CreateResult result = world_.Run();

  EXPECT_TRUE(result.succeeded);
  EXPECT_EQ(result.output_directory, "C:\\Demo\\New\\Setup");
  EXPECT_TRUE(world_.files.Has("C:\\Demo\\New\\Setup\\DISK1\\SETUP.STP"));
}

TEST_F(CreateRun, TheRootOfADriveIsAnOutputDirectory) {
  world_.files.AddDrive('D');
  document_.steps.setup_directory = "D:\\";

  EXPECT_TRUE(world_.Run().succeeded);

  EXPECT_TRUE(world_.files.Has("D:\\DISK1\\SETUP.STP"));
}

class UnusableOutput : public CreateRun, public testing::WithParamInterface<const char*> {};

TEST_P(UnusableOutput, IsMessage906) {
  world_.files.AddFile("C:\\Demo\\a file", "");
  world_.files.AddFile("C:\\Demo\\taken\\DISK1", "a file in the place of the disk");
  document_.steps.setup_directory = GetParam();

  EXPECT_FALSE(world_.Run().succeeded);

  ASSERT_EQ(world_.messages.shown.size(), 1u);
  EXPECT_THAT(world_.messages.shown[0].prompt,
              StartsWith("Error creating the directory for generating the installation!\r\n("));
  EXPECT_THAT(world_.view.started, ElementsAre(CreateStage::kDirectories));
}

INSTANTIATE_TEST_SUITE_P(Directories, UnusableOutput,
                         testing::Values("", "   ", "Setup", "\\Setup", "<Unknown>\\Setup",
                                         "C:\\Demo\\a file", "C:\\Demo\\taken", "X:\\Setup",
                                         "<TempDir>", "<ProjectDir>\\~temp\\Setup"));

TEST_F(CreateRun, AnOldDiskThatCannotBeRemovedIsMessage906) {
  world_.files.AddFile("C:\\Demo\\Setup\\DISK3\\old.zip", "in use");
  world_.files.FailPath("C:\\Demo\\Setup\\DISK3", "RemoveTree", ErrorNumber::kPermissionDenied);

  EXPECT_FALSE(world_.Run().succeeded);

  ASSERT_EQ(world_.messages.shown.size(), 1u);
  EXPECT_THAT(world_.messages.shown[0].prompt, HasSubstr("\r\n(70: "));
  EXPECT_EQ(world_.messages.shown[0].id, 906);
}

TEST_F(CreateRun, AProjectInAFolderNamedLikeADiskIsNotDeleted) {
  world_.application.project.directory = "C:\\Projects\\DiskMonitor";
  world_.files.AddFile("C:\\Projects\\DiskMonitor\\Monitor.txs", "the project");
  document_.steps.setup_directory = "C:\\Projects";

  EXPECT_FALSE(world_.Run().succeeded);

  EXPECT_THAT(world_.messages.Ids(), ElementsAre(906));
  EXPECT_TRUE(world_.files.Has("C:\\Projects\\DiskMonitor\\Monitor.txs"));
}

TEST_F(CreateRun, AListedFileInAFolderNamedLikeADiskIsNotDeleted) {
  world_.Add("C:\\Demo\\SETUP\\disks for x\\driver.sys", "driver");

  EXPECT_FALSE(world_.Run().succeeded);

  EXPECT_THAT(world_.messages.Ids(), ElementsAre(906));
  EXPECT_TRUE(world_.files.Has("C:\\Demo\\Setup\\disks for x\\driver.sys"));
}

TEST_F(CreateRun, AProjectInAFolderNamedLikeADiskIsNotDeletedByTheNameOfItsParentEither) {
  world_.application.project.directory = "C:\\Projects\\DiskMonitor";
  world_.files.AddFile("C:\\Projects\\DiskMonitor\\Monitor.txs", "the project");
  document_.steps.setup_directory = "C:\\Projects\\DiskMonitor\\..";

  EXPECT_FALSE(world_.Run().succeeded);

  EXPECT_THAT(world_.messages.Ids(), ElementsAre(906));
  EXPECT_TRUE(world_.files.Has("C:\\Projects\\DiskMonitor\\Monitor.txs"));
}

TEST_F(CreateRun, AListedFileThatGoesThroughItsParentIsNotDeletedEither) {
  world_.Add("C:\\Demo\\Setup\\..\\Setup\\disks for x\\driver.sys", "driver");

  EXPECT_FALSE(world_.Run().succeeded);

  EXPECT_THAT(world_.messages.Ids(), ElementsAre(906));
  EXPECT_TRUE(world_.files.Has("C:\\Demo\\Setup\\disks for x\\driver.sys"));
}

TEST_F(CreateRun, ABackgroundPictureInAFolderNamedLikeADiskIsNotDeleted) {
  document_.steps.background_picture.english = "<ProjectDir>\\Setup\\DiskMonitor\\x.bmp";
  world_.files.AddFile("C:\\Demo\\Setup\\DiskMonitor\\x.bmp", "picture");

  EXPECT_FALSE(world_.Run().succeeded);

  EXPECT_THAT(world_.messages.Ids(), ElementsAre(906));
  EXPECT_TRUE(world_.files.Has("C:\\Demo\\Setup\\DiskMonitor\\x.bmp"));
}

TEST_F(CreateRun, AListedFileInTheTemporaryDirectoryIsMessage905AndNotDeleted) {
  world_.files.AddFile("C:\\Demo\\~TEMP\\b.dat", "listed");
  document_.files.Append("<TempDir>\\b.dat", "<ProjectDir>", "");

  EXPECT_FALSE(world_.Run().succeeded);

  EXPECT_THAT(world_.messages.Ids(), ElementsAre(905));
  EXPECT_TRUE(world_.files.Has("C:\\Demo\\~TEMP\\b.dat"));
  EXPECT_FALSE(PlanCreate(world_.application, world_.view));
  EXPECT_TRUE(world_.files.Has("C:\\Demo\\~TEMP\\b.dat"));
}

TEST_F(CreateRun, AnOutputDirectoryInTheTemporaryDirectoryIsRefusedBeforeItIsEmptied) {
  world_.files.AddFile("C:\\Demo\\~TEMP\\Setup\\DISK1\\old.zip", "of an earlier run");
  document_.steps.setup_directory = "<ProjectDir>\\~TEMP\\Setup";

  EXPECT_FALSE(world_.Run().succeeded);

  EXPECT_THAT(world_.messages.Ids(), ElementsAre(906));
  EXPECT_TRUE(world_.files.Has("C:\\Demo\\~TEMP\\Setup\\DISK1\\old.zip"));
}

// Else the run would end well and take the installation away with ~TEMP.
TEST_F(CreateRun, AnOutputDirectoryInATemporaryDirectoryThatIsStillToBeMadeIsRefusedToo) {
  document_.steps.setup_directory = "<ProjectDir>\\New\\..\\~TEMP\\Setup";

  EXPECT_FALSE(world_.Run().succeeded);

  EXPECT_THAT(world_.messages.Ids(), ElementsAre(906));
}

TEST_F(CreateRun, ASourceWithABackslashAtItsEndIsTheFileInTheScriptToo) {
  world_.files.AddFile("C:\\Demo\\a.txt", "listed");
  document_.files.Append("<ProjectDir>\\a.txt\\", "<ProjectDir>", "");

  EXPECT_TRUE(world_.Run().succeeded);

  EXPECT_THAT(world_.Output().at("DISK1\\SETUP.STP"),
              HasSubstr("InstallFile(a.txt.zip|<ProjectDir>\\a.txt|6|"));
}

TEST_F(CreateRun, ATemporaryDirectoryThatCannotBeEmptiedIsMessage905) {
  world_.files.AddFile("C:\\Demo\\~TEMP\\old.zip", "in use");
  world_.files.FailPath(kTemporary, "RemoveTree", ErrorNumber::kPermissionDenied);

  EXPECT_FALSE(world_.Run().succeeded);

  ASSERT_EQ(world_.messages.shown.size(), 1u);
  EXPECT_THAT(world_.messages.shown[0].prompt,
              StartsWith("Error creating the temporary directory for compressing files!\r\n(70: "));
}

TEST_F(CreateRun, AFileInThePlaceOfTheTemporaryDirectoryIsMessage905) {
  world_.files.AddFile(kTemporary, "a file");

  EXPECT_FALSE(world_.Run().succeeded);

  EXPECT_THAT(world_.messages.Ids(), ElementsAre(905));
  EXPECT_EQ(world_.files.Contents(kTemporary), "a file");
}

TEST_F(CreateRun, AProjectWithoutADirectoryIsMessage905) {
  world_.application.project.directory = "";
  document_.steps.setup_directory = "C:\\Out";

  EXPECT_FALSE(world_.Run().succeeded);

  EXPECT_THAT(world_.messages.Ids(), ElementsAre(905));
}

TEST_F(CreateRun, ATemporaryDirectoryThatCannotBeRemovedAfterwardsHarmsNothing) {
  world_.view.on_events = [this](RecordingCreateView& view) {
    if (view.ActiveStage() == CreateStage::kControlFile) {
      world_.files.FailPath(kTemporary, "RemoveTree", ErrorNumber::kPermissionDenied);
    }
  };

  EXPECT_TRUE(world_.Run().succeeded);

  EXPECT_THAT(world_.messages.shown, IsEmpty());
}

TEST_F(CreateRun, AKitTooLargeForTheMediumEndsTheRunBeforeAnythingIsDistributed) {
  document_.steps.disk_size_index = 0;
  world_.SetKit({{"SETUP.EXE", Noise(kDisketteBytes - 32'000 + 1)}});

  EXPECT_FALSE(world_.Run().succeeded);

  EXPECT_THAT(world_.messages.Ids(), ElementsAre(912));
  EXPECT_THAT(world_.files.AllFilesIn(kTemporary),
              ElementsAre("C:\\Demo\\~TEMP\\Demo.exe.zip", "C:\\Demo\\~TEMP\\x.dll.zip"));
  EXPECT_THAT(Names(world_.Output()), ElementsAre("DISK1\\SETUP.EXE", "DISK1\\SETUP.STP"));
}

// The rows of a larger project make a script that no longer fits into the room kept for it.
TEST_F(CreateRun, AScriptThatOverfillsAFullDisk1IsToldOnceAndTheInstallationIsComplete) {
  document_.steps.disk_size_index = 0;
  for (int i = 0; i < 500; ++i) {
    world_.Add("<ProjectDir>\\Meldungen " + std::to_string(i) + ".dat", "x");
  }
  world_.Add("<ProjectDir>\\Archiv.dat", "x");
  world_.SetArchiveSize("C:\\Demo\\Archiv.dat", 2 * kDisketteBytes);

  EXPECT_TRUE(world_.Run().succeeded);

  const std::size_t script = world_.files.Contents("C:\\Demo\\Setup\\DISK1\\SETUP.STP").size();
  ASSERT_GT(script, 32'000u);
  EXPECT_THAT(world_.messages.Ids(), ElementsAre(1932));
  EXPECT_THAT(world_.messages.shown[0].prompt,
              HasSubstr(" " + std::to_string(script - 32'000) + " bytes more than the medium"));
}

// --- Progress

TEST_F(CreateRun, ProgressNeverFallsWithinAStageAndEndsComplete) {
  document_.steps.disk_size_index = 0;
  world_.SetArchiveSize("C:\\Demo\\Demo.exe", 4'000'000);

  EXPECT_TRUE(world_.Run().succeeded);

  std::map<CreateStage, std::vector<CreateProgress>> by_stage;
  for (const RecordingCreateView::ProgressShown& shown : world_.view.progress) {
    ASSERT_TRUE(shown.stage.has_value());
    by_stage[*shown.stage].push_back(shown.progress);
  }
  EXPECT_EQ(by_stage.size(), 3u) << "compression, kit and distribution show progress";
  for (const auto& [stage, all] : by_stage) {
    EXPECT_EQ(all.front().count_done, 0u);
    EXPECT_EQ(all.front().size_text, "0 %");
    EXPECT_EQ(all.back().count_done, all.back().count_total);
    EXPECT_EQ(all.back().size_text, "100 %");
    for (std::size_t i = 1; i < all.size(); ++i) {
      EXPECT_GE(all[i].bytes_done, all[i - 1].bytes_done);
      EXPECT_GE(all[i].count_done, all[i - 1].count_done);
      EXPECT_EQ(all[i].size_text == "100 %", all[i].bytes_done == all[i].bytes_total);
      EXPECT_EQ(all[i].size_text == "0 %", all[i].bytes_done == 0);
    }
  }
}

// --- Cancel

class CancelInStage : public CreateRun, public testing::WithParamInterface<CreateStage> {};

TEST_P(CancelInStage, StopsTheRunThere) {
  const CreateStage stage = GetParam();
  world_.view.on_events = [stage](RecordingCreateView& view) {
    if (view.ActiveStage() == stage) view.PressCancel();
  };

  EXPECT_FALSE(world_.Run().succeeded);

  EXPECT_EQ(world_.view.started.back(), stage);
  EXPECT_EQ(world_.view.ended.back(), std::pair(stage, false));
  EXPECT_EQ(world_.view.result, false);
  EXPECT_EQ(world_.view.result_line, "STOP: Installation aborted or faulty!");
  EXPECT_THAT(world_.messages.shown, IsEmpty());
  EXPECT_FALSE(world_.view.busy);
}

INSTANTIATE_TEST_SUITE_P(Stages, CancelInStage,
                         testing::Values(CreateStage::kDirectories, CreateStage::kCompress,
                                         CreateStage::kSetupKit, CreateStage::kDistribute,
                                         CreateStage::kControlFile));

TEST_F(CreateRun, CancelDuringCompressionLeavesTheFilesSoFarInTheTemporaryDirectory) {
  world_.view.on_events = [](RecordingCreateView& view) {
    if (view.ActiveStage() == CreateStage::kCompress) view.PressCancel();
  };

  EXPECT_FALSE(world_.Run().succeeded);

  EXPECT_THAT(world_.files.AllFilesIn(kTemporary), ElementsAre("C:\\Demo\\~TEMP\\Demo.exe.zip"));
}

TEST_F(CreateRun, CancelInTheFirstStageTouchesNoOldDisk) {
  world_.files.AddFile("C:\\Demo\\Setup\\DISK1\\old.zip", "old");
  world_.view.on_events = [](RecordingCreateView& view) { view.PressCancel(); };

  EXPECT_FALSE(world_.Run().succeeded);

  EXPECT_TRUE(world_.files.Has("C:\\Demo\\Setup\\DISK1\\old.zip"));
}

// --- Messages: every one that a run can show, in both languages

struct MessageCase {
  const char* name;
  long id;
  std::function<void(CreateWorld&)> arrange;
  const char* english;
  const char* german;
};

void PrintTo(const MessageCase& message, std::ostream* out) { *out << message.name; }

class CreateMessage : public CreateRun, public testing::WithParamInterface<MessageCase> {};

TEST_P(CreateMessage, IsShownInEnglish) {
  GetParam().arrange(world_);

  EXPECT_FALSE(world_.Run().succeeded);

  ASSERT_EQ(world_.messages.shown.size(), 1u);
  const Message& message = world_.messages.shown[0];
  EXPECT_THAT(message.prompt, StartsWith(GetParam().english));
  EXPECT_EQ(message.title,
            "TavixStudio - Setup-Wizard   (Message " + std::to_string(GetParam().id) + ")");
  EXPECT_EQ(message.id, GetParam().id);
  EXPECT_EQ(message.buttons, kButtonsOk | kIconExclamation);
}

TEST_P(CreateMessage, IsShownInGerman) {
  world_.Speak(1031);
  GetParam().arrange(world_);

  EXPECT_FALSE(world_.Run().succeeded);

  ASSERT_EQ(world_.messages.shown.size(), 1u);
  const Message& message = world_.messages.shown[0];
  EXPECT_THAT(message.prompt, StartsWith(GetParam().german));
  EXPECT_EQ(message.title,
            "TavixStudio - Setup-Assistent   (Meldung " + std::to_string(GetParam().id) + ")");
}

INSTANTIATE_TEST_SUITE_P(
    All, CreateMessage,
    testing::Values(
        MessageCase{"Compressing", 902,
                    [](CreateWorld& world) {
                      world.platform.archiver.FailFor("C:\\Demo\\Demo.exe",
                                                      ArchiveResult::kSourceUnreadable);
                    },
                    "Error compressing the file 'C:\\Demo\\Demo.exe'!\r\n(2)",
                    "Fehler beim Komprimieren der Datei 'C:\\Demo\\Demo.exe'!\r\n(2)"},
        MessageCase{"Distributing", 903,
                    [](CreateWorld& world) {
                      world.files.FailPath("C:\\Demo\\~TEMP\\x.dll.zip", "MoveWhole",
                                           ErrorNumber::kDiskFull);
                    },
                    "Error distributing the compressed file 'x.dll.zip' in the installation "
                    "directory!\r\n(61: ",
                    "Fehler beim Verteilen der komprimierten Datei 'x.dll.zip' auf die "
                    "Installationsverzeichnisse!\r\n(61: "},
        MessageCase{"ControlFile", 904,
                    [](CreateWorld& world) {
                      world.view.on_events = [&world](RecordingCreateView& view) {
                        if (view.ActiveStage() == CreateStage::kControlFile) {
                          world.files.Vanish("C:\\Demo\\Demo.exe");
                        }
                      };
                    },
                    "Error writing the setup control file!\r\n(53: ",
                    "Fehler beim Erstellen der Setup-Steuerdatei!\r\n(53: "},
        MessageCase{"TemporaryDirectory", 905,
                    [](CreateWorld& world) {
                      world.files.FailPath(kTemporary, "MakeFolder", ErrorNumber::kPathFileAccess);
                    },
                    "Error creating the temporary directory for compressing files!\r\n(75: ",
                    "Fehler beim Anlegen eines temporären Verzeichnisses für die komprimierten "
                    "Dateien!\r\n(75: "},
        MessageCase{"OutputDirectory", 906,
                    [](CreateWorld& world) {
                      world.files.FailPath("C:\\Demo\\Setup\\DISK1", "MakeFolder",
                                           ErrorNumber::kPermissionDenied);
                    },
                    "Error creating the directory for generating the installation!\r\n(70: ",
                    "Fehler beim Anlegen des Verzeichnisses für die Installationserstellung!"
                    "\r\n(70: "},
        MessageCase{
            "CopyingKit", 909,
            [](CreateWorld& world) { world.files.Vanish("C:\\Tavix\\SetupKit\\README.TXT"); },
            "Error copying the file 'README.TXT'!\r\n(53: ",
            "Fehler beim Kopieren der Datei 'README.TXT'!\r\n(53: "},
        MessageCase{"KitList", 910, [](CreateWorld& world) { world.SetKitList("[SetupFiles]"); },
                    "Error reading the file 'TXSTPKIT.INI'!\r\n(13: ",
                    "Fehler beim Einlesen der 'TXSTPKIT.INI'-Datei!\r\n(13: "},
        MessageCase{"Placeholder", 911,
                    [](CreateWorld& world) {
                      world.files.FailPath("C:\\Demo\\Setup\\DISK1\\SETUP.STP", "CreateForWriting",
                                           ErrorNumber::kDiskFull);
                    },
                    "Error on writing the file 'setup.stp'!\r\n(61: ",
                    "Fehler beim Schreiben der Datei 'setup.stp'!\r\n(61: "},
        MessageCase{"KitTooLarge", 912,
                    [](CreateWorld& world) {
                      world.application.document.steps.disk_size_index = 0;
                      world.SetKit({{"SETUP.EXE", Noise(1'457'152)}});
                    },
                    "The size of the system files exceed the size of the medium!\r\nSelect a "
                    "larger medium format!",
                    "Die Größe der Systemdateien überschreitet die Größe des Mediums!\r\nWählen "
                    "Sie ein größeres Medienformat!"},
        MessageCase{"Picture", 1707,
                    [](CreateWorld& world) {
                      world.application.document.steps.background_picture.english = "C:\\no.bmp";
                    },
                    "The background picture file 'C:\\no.bmp' does not exist!",
                    "Die Hintergrundbilddatei 'C:\\no.bmp' existiert nicht!"},
        MessageCase{
            "Destinations", 1708,
            [](CreateWorld& world) { world.application.document.steps.tavix_directory = ""; },
            "The names of the TavixStudio or Project destination directories are missing!",
            "Die Angabe des TavixStudio- oder Projektzielverzeichnisses fehlt!"},
        MessageCase{"MissingFiles", 1709,
                    [](CreateWorld& world) { world.files.Vanish("C:\\Demo\\Demo.exe"); },
                    "The marked files do not exist!\r\nDelete the entries from the list and add "
                    "the correct files!",
                    "Die markierten Dateien existieren nicht!\r\nLöschen Sie die Einträge aus der "
                    "Liste und fügen Sie die richtigen Dateien hinzu!"},
        MessageCase{
            "RowDestination", 1710,
            [](CreateWorld& world) { world.application.document.files.Row(1).destination = ""; },
            "The destination directories of the marked files are missing!",
            "Für die markierten Dateien fehlen noch Zielverzeichniseinstellungen!"},
        MessageCase{"Program", 1711,
                    [](CreateWorld& world) { world.application.document.program_name = ""; },
                    "The binary file of the Visual Basic project is missing!\r\nPlease make an "
                    "EXE/DLL file in Visual Basic",
                    "Die Binärdatei des Visual Basic Projektes liegt nicht vor!\r\nErstellen Sie "
                    "in Visual Basic die Programmdatei (EXE/DLL)"},
        MessageCase{"DirectoryName", 1712,
                    [](CreateWorld& world) {
                      world.application.document.steps.project_directory = "Anlage";
                    },
                    "The input 'Anlage' is not a valid directory name ('DriveLetter:\\[Name]')!",
                    "Die Eingabe 'Anlage' ist kein gültiger Verzeichnisname"}),
    [](const testing::TestParamInfo<MessageCase>& test) { return std::string(test.param.name); });

// --- Two at once

TEST_F(CreateRun, IsRefusedWhileAnotherProcessWorksInTheProjectDirectory) {
  ASSERT_TRUE(world_.Run().succeeded);
  const std::map<std::string, std::string> output = world_.Output();
  world_.messages.shown.clear();
  world_.view.diary.clear();
  const auto other = world_.platform.locks.TryTake(world_.application.project.LockFile());

  EXPECT_FALSE(world_.Run().succeeded);
  EXPECT_FALSE(PlanCreate(world_.application, world_.view).has_value());

  ASSERT_THAT(world_.messages.Ids(), ElementsAre(1930, 1930));
  EXPECT_THAT(world_.messages.shown[0].prompt,
              StartsWith("Another Setup Wizard or TXSetupTool is working in the project directory "
                         "'C:\\Demo'!\r\nWait until"));
  EXPECT_THAT(world_.view.diary, IsEmpty());
  EXPECT_EQ(world_.Output(), output);
}

TEST_F(CreateRun, HoldsTheLockFromItsBeginningToItsEnd) {
  std::vector<bool> held;
  world_.platform.archiver.before = [&](std::string_view, std::string_view) {
    held.push_back(world_.platform.locks.IsHeld("C:\\Demo\\~TXSetup.lock"));
  };

  ASSERT_TRUE(world_.Run().succeeded);

  EXPECT_THAT(held, ElementsAre(true, true));
  EXPECT_FALSE(world_.platform.locks.IsHeld("C:\\Demo\\~TXSetup.lock"));
}

// The note may stand on the screen over night, and a build server's run must not wait for it.
TEST_F(CreateRun, HoldsNoLockWhileTheTakeNoteDialogIsShown) {
  world_.application.unattended = false;
  std::optional<bool> held;
  world_.view.on_take_note = [&] {
    held = world_.platform.locks.IsHeld("C:\\Demo\\~TXSetup.lock");
  };

  ASSERT_TRUE(world_.Run().succeeded);

  EXPECT_EQ(held, false);
}

TEST_F(CreateRun, NeedsNoLocksWhereThereAreNone) {
  world_.platform.locks.available = false;

  EXPECT_TRUE(world_.Run().succeeded);
}

// --- Planning

TEST_F(CreateRun, APlanSaysWhereEveryFileWouldGoAndTouchesNoOutput) {
  document_.steps.disk_size_index = 0;
  world_.SetArchiveSize("C:\\Demo\\Demo.exe", 2'000'000);
  world_.files.AddFile("C:\\Demo\\Setup\\DISK1\\old.zip", "old");

  const std::optional<CreatePlan> plan = PlanCreate(world_.application, world_.view);

  ASSERT_TRUE(plan.has_value());
  EXPECT_TRUE(plan->fits);
  EXPECT_EQ(plan->disks, 2u);
  ASSERT_EQ(plan->files.size(), 2u);
  EXPECT_EQ(plan->files[0].archive, "Demo.exe.zip");
  EXPECT_EQ(plan->files[0].archive_bytes, 2'000'000u);
  EXPECT_THAT(plan->files[0].disks, ElementsAre(1, 2));
  EXPECT_THAT(plan->files[1].disks, ElementsAre(2));
  EXPECT_EQ(plan->archive_bytes, 2'000'000u + plan->files[1].archive_bytes);
  EXPECT_THAT(Names(world_.Output()), ElementsAre("DISK1\\old.zip"));
  EXPECT_FALSE(world_.files.Has(kTemporary));
  EXPECT_THAT(world_.messages.shown, IsEmpty());
}

TEST_F(CreateRun, APlanRefusesTheOutputDirectoriesThatTheRunWouldRefuse) {
  world_.files.AddFile("C:\\Demo\\~TEMP\\Setup\\DISK1\\old.zip", "of an earlier run");
  for (const char* directory : {"<ProjectDir>\\~TEMP\\Setup", "Setup"}) {
    document_.steps.setup_directory = directory;

    EXPECT_FALSE(PlanCreate(world_.application, world_.view).has_value()) << directory;
  }

  EXPECT_THAT(world_.messages.Ids(), ElementsAre(906, 906));
  EXPECT_TRUE(world_.files.Has("C:\\Demo\\~TEMP\\Setup\\DISK1\\old.zip"));
}

TEST_F(CreateRun, APlanIsWhatTheRunThenDoes) {
  document_.steps.disk_size_index = 0;
  world_.SetArchiveSize("C:\\Demo\\Demo.exe", 2'000'000);

  const std::optional<CreatePlan> plan = PlanCreate(world_.application, world_.view);
  const CreateResult result = world_.Run();

  ASSERT_TRUE(plan.has_value());
  EXPECT_EQ(plan->disks, result.disks);
  EXPECT_EQ(plan->archive_bytes, result.archive_bytes);
  for (std::size_t i = 0; i < plan->files.size(); ++i) {
    EXPECT_EQ(plan->files[i].archive, document_.files.Row(i + 1).compressed_name);
    std::string disks;
    for (const std::uint64_t disk : plan->files[i].disks) disks += "|" + std::to_string(disk);
    EXPECT_EQ(disks, document_.files.Row(i + 1).disk);
  }
}

TEST_F(CreateRun, APlanWhoseKitDoesNotFitSaysSo) {
  document_.steps.disk_size_index = 0;
  world_.SetKit({{"SETUP.EXE", Noise(kDisketteBytes)}});

  const std::optional<CreatePlan> plan = PlanCreate(world_.application, world_.view);

  ASSERT_TRUE(plan.has_value());
  EXPECT_FALSE(plan->fits);
  EXPECT_THAT(world_.messages.Ids(), ElementsAre(912));
  EXPECT_FALSE(world_.files.Has(kTemporary));
}

TEST_F(CreateRun, APlanThatFailsLeavesNoTemporaryDirectory) {
  world_.platform.archiver.FailFor("C:\\Windows\\System32\\x.dll", ArchiveResult::kWriteError);

  EXPECT_FALSE(PlanCreate(world_.application, world_.view).has_value());

  EXPECT_THAT(world_.messages.Ids(), ElementsAre(902));
  EXPECT_FALSE(world_.files.Has(kTemporary));
}

TEST_F(CreateRun, APlanCanBeCancelled) {
  world_.view.on_events = [](RecordingCreateView& view) {
    if (view.ActiveStage() == CreateStage::kCompress) view.PressCancel();
  };

  EXPECT_FALSE(PlanCreate(world_.application, world_.view).has_value());

  EXPECT_FALSE(world_.files.Has(kTemporary));
  EXPECT_THAT(world_.messages.shown, IsEmpty());
}

TEST_F(CreateRun, AProjectWithoutABinaryHasNoPlan) {
  document_.program_name = "";

  EXPECT_FALSE(PlanCreate(world_.application, world_.view).has_value());

  EXPECT_THAT(world_.messages.Ids(), ElementsAre(1711));
}

}  // namespace
}  // namespace txs
