// Create on a real disk.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <string>

#include "create/create_disk_world.h"
#include "create/setup_control_file.h"
#include "document/medium.h"
#include "environment/code_page.h"
#include "fakes/unpacked_archive.h"

namespace txs {
namespace {

using ::testing::ElementsAre;

namespace fs = std::filesystem;

// Every file below `folder` with its bytes.
std::map<fs::path, std::string> ReadHostTree(const fs::path& folder) {
  std::map<fs::path, std::string> files;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
    if (entry.is_regular_file()) files[entry.path()] = ReadHostFile(entry.path());
  }
  return files;
}

TEST_F(CreateRunOnDisk, AnotherLibraryReadsWhatTheDisksHold) {
  const CreateResult result = Run();

  ASSERT_TRUE(result.succeeded) << (messages_.shown.empty() ? "" : messages_.shown[0].prompt);
  EXPECT_EQ(result.disks, 3u);
  for (const FileRow& row : application_.document.files.Rows()) {
    SCOPED_TRACE(row.compressed_name);
    for (std::uint64_t disk = 1; disk <= result.disks; ++disk) {
      const std::string number = std::to_string(disk);
      const bool named = (row.disk + "|").find("|" + number + "|") != row.disk.npos;
      EXPECT_EQ(fs::exists(Output("DISK" + number + "\\" + row.compressed_name)), named)
          << row.disk;
    }
    const std::string name = FileName(row.source);
    const Unpacked unpacked = Unpack(Archive(row, result.disks));
    EXPECT_TRUE(unpacked.sound);
    EXPECT_EQ(unpacked.name, name);
    EXPECT_EQ(unpacked.bytes, ReadHostFile(disk_.Host("Demo\\" + name)));
  }
  for (std::uint64_t disk = 1; disk <= result.disks; ++disk) {
    const std::string label = "DISK" + std::to_string(disk);
    EXPECT_EQ(ReadHostFile(Output(label + "\\" + label)), " " + std::to_string(disk) + " ");
    std::uint64_t used = 0;
    for (const fs::directory_entry& entry : fs::directory_iterator(Output(label))) {
      if (entry.path().filename() != label) used += entry.file_size();
    }
    EXPECT_LE(used, kDisketteBytes);
  }
  EXPECT_EQ(ReadHostFile(Output("DISK1\\SETUP.EXE")), Noise(5000));
  EXPECT_FALSE(fs::exists(disk_.Host("Demo\\~TEMP")));
}

TEST_F(CreateRunOnDisk, TwoRunsGiveTheSameBytes) {
  ASSERT_TRUE(Run().succeeded);
  const std::map<fs::path, std::string> first = ReadHostTree(Output(""));

  ASSERT_TRUE(Run().succeeded);

  EXPECT_EQ(ReadHostTree(Output("")), first);
}

TEST_F(CreateRunOnDisk, OldDisksGoWhateverTheyHoldAndFilesNamedLikeDisksStay) {
  WriteHostFile(Output("disk7\\deep\\read only"), "old");
  fs::permissions(Output("disk7\\deep\\read only"), fs::perms::owner_read);
  WriteHostFile(Output("DISK.TXT"), "stays");

  ASSERT_TRUE(Run().succeeded);

  EXPECT_FALSE(fs::exists(Output("disk7")));
  EXPECT_EQ(ReadHostFile(Output("DISK.TXT")), "stays");
}

TEST_F(CreateRunOnDisk, AFileInThePlaceOfTheFirstDiskIsMessage906) {
  WriteHostFile(Output("DISK1"), "a file");

  EXPECT_FALSE(Run().succeeded);

  EXPECT_THAT(messages_.Ids(), ElementsAre(906));
  EXPECT_EQ(ReadHostFile(Output("DISK1")), "a file");
}

TEST_F(CreateRunOnDisk, AnOutputDirectoryThatIsAFileIsMessage906) {
  WriteHostFile(disk_.Host("Demo\\Setup"), "a file");

  EXPECT_FALSE(Run().succeeded);

  EXPECT_THAT(messages_.Ids(), ElementsAre(906));
  EXPECT_EQ(ReadHostFile(disk_.Host("Demo\\Setup")), "a file");
}

TEST_F(CreateRunOnDisk, AFileInThePlaceOfTheTemporaryDirectoryIsMessage905) {
  WriteHostFile(disk_.Host("Demo\\~TEMP"), "a file");

  EXPECT_FALSE(Run().succeeded);

  EXPECT_THAT(messages_.Ids(), ElementsAre(905));
}

TEST_F(CreateRunOnDisk, TheScriptIsTheOneOfTheDocument) {
  ASSERT_TRUE(Run().succeeded);

  const std::string script = ReadHostFile(Output("DISK1\\SETUP.STP"));
  EXPECT_TRUE(script.starts_with("[Params]\r\nDefLang=0\r\n"));
  EXPECT_NE(script.find("Gr\xFCn & 'quer'.dat.zip|<ProjectDir>\\Gr\xFCn & 'quer'.dat|19|"),
            std::string::npos);
  EXPECT_EQ(script.size(), Utf8ToAnsi(SetupControlText(application_)).size());
}

}  // namespace
}  // namespace txs
