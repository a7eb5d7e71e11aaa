// Create on folders of Linux: what it leaves in the hands of programs that know nothing of it, and
// links.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "create/create_disk_world.h"
#include "fakes/temp_folder.h"

namespace txs {
namespace {

using ::testing::ElementsAre;

namespace fs = std::filesystem;

bool Succeeds(const std::string& command) {
  return std::system((command + " >/dev/null 2>&1").c_str()) == 0;
}

TEST_F(CreateRunOnDisk, OtherProgramsReadWhatTheDisksHold) {
  const CreateResult result = Run();

  ASSERT_TRUE(result.succeeded) << (messages_.shown.empty() ? "" : messages_.shown[0].prompt);
  const TempFolder folder;
  const fs::path joined = folder.Path() / "joined.zip";
  const fs::path unpacked = folder.Path() / "unpacked";
  for (const FileRow& row : application_.document.files.Rows()) {
    SCOPED_TRACE(row.compressed_name);
    WriteHostFile(joined, Archive(row, result.disks));
    EXPECT_TRUE(Succeeds("unzip -tqq '" + joined.string() + "'"));
    EXPECT_TRUE(Succeeds("7z t '" + joined.string() + "'"));
    EXPECT_EQ(
        std::system(("unzip -p '" + joined.string() + "' > '" + unpacked.string() + "'").c_str()),
        0);
    EXPECT_EQ(ReadHostFile(unpacked), ReadHostFile(disk_.Host("Demo\\" + FileName(row.source))));
  }
}

TEST_F(CreateRunOnDisk, WhatALinkInAnOldDiskLeadsToStays) {
  WriteHostFile(disk_.Host("elsewhere\\precious"), "not ours");
  fs::create_directories(Output("disk7"));
  fs::create_directory_symlink(disk_.Host("elsewhere"), Output("disk7\\link"));

  ASSERT_TRUE(Run().succeeded);

  EXPECT_FALSE(fs::exists(Output("disk7")));
  EXPECT_EQ(ReadHostFile(disk_.Host("elsewhere\\precious")), "not ours");
}

TEST_F(CreateRunOnDisk, AProjectInAFolderNamedLikeADiskIsNotDeletedByAnotherNameOfItsParent) {
  WriteHostFile(disk_.Host("Projects\\DiskMonitor\\Monitor.txs"), "the project");
  fs::create_directory_symlink(disk_.Host("Projects"), disk_.Host("Link"));
  application_.project.directory = disk_.At("Projects\\DiskMonitor");
  application_.document.steps.setup_directory = disk_.At("Link");

  EXPECT_FALSE(Run().succeeded);

  EXPECT_THAT(messages_.Ids(), ElementsAre(906));
  EXPECT_EQ(ReadHostFile(disk_.Host("Projects\\DiskMonitor\\Monitor.txs")), "the project");
}

}  // namespace
}  // namespace txs
