#include "create/compression.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "create/create_world.h"

namespace txs {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;

// --- Names of archives

CompressedNames NamesBeside(const std::vector<std::string>& taken) {
  static std::vector<FileRow> rows;
  rows.clear();
  rows.resize(taken.size());
  std::vector<FileRow*> pointers;
  for (std::size_t i = 0; i < taken.size(); ++i) {
    rows[i].compressed_name = taken[i];
    pointers.push_back(&rows[i]);
  }
  return CompressedNames(pointers);
}

TEST(CompressedNames, TheNameIsThatOfTheFileAndZip) {
  CompressedNames names = NamesBeside({});

  EXPECT_EQ(names.Next("C:\\Demo\\x.dll"), "x.dll.zip");
  EXPECT_EQ(names.Next("C:\\Demo\\without extension"), "without extension.zip");
}

TEST(CompressedNames, FilesOfOneNameAreNumberedFrom1) {
  CompressedNames names = NamesBeside({});

  EXPECT_EQ(names.Next("C:\\A\\x.dll"), "x.dll.zip");
  EXPECT_EQ(names.Next("C:\\B\\x.dll"), "x.dll.1.zip");
  EXPECT_EQ(names.Next("C:\\C\\x.dll"), "x.dll.2.zip");
}

TEST(CompressedNames, CaseDoesNotMakeANameAnother) {
  CompressedNames names = NamesBeside({"X.DLL.ZIP"});

  EXPECT_EQ(names.Next("C:\\A\\x.dll"), "x.dll.1.zip");
  EXPECT_EQ(names.Next("C:\\A\\ÄRGER.dll"), "ÄRGER.dll.zip");
  EXPECT_EQ(names.Next("C:\\A\\ärger.dll"), "ärger.dll.1.zip");
}

TEST(CompressedNames, NamesThatRowsCarryAreLeftOut) {
  CompressedNames names = NamesBeside({"x.dll.1.zip", "x.dll.zip", "x.dll.2.zip", ""});

  EXPECT_EQ(names.Next("C:\\A\\x.dll"), "x.dll.3.zip");
}

TEST(CompressedNames, AFileMayBeNamedLikeAnotherFilesNumberedArchive) {
  CompressedNames names = NamesBeside({});

  EXPECT_EQ(names.Next("C:\\A\\x.dll.1"), "x.dll.1.zip");
  EXPECT_EQ(names.Next("C:\\A\\x.dll"), "x.dll.zip");
  EXPECT_EQ(names.Next("C:\\B\\x.dll"), "x.dll.2.zip");
}

TEST(CompressedNames, AHundredThousandFilesOfOneNameAreNumberedInNoTime) {
  CompressedNames names = NamesBeside({});

  std::string last;
  for (int i = 0; i < 100'000; ++i) last = names.Next("C:\\A\\x.dll");

  EXPECT_EQ(last, "x.dll.99999.zip");
}

// --- The stage

class Compression : public testing::Test {
 protected:
  bool Compress() { return CompressFiles(world_.application, world_.view, world_.MakeState()); }
  [[nodiscard]] std::vector<std::string> Archives() const {
    return world_.files.AllFilesIn(kTemporary);
  }

  CreateWorld world_;
};

TEST_F(Compression, EveryRowOfBothListsGetsItsArchive) {
  world_.Add("<ProjectDir>\\Demo.exe", "program");
  world_.AddHidden("C:\\Other\\demo.exe", "another");

  EXPECT_TRUE(Compress());

  EXPECT_THAT(Archives(),
              ElementsAre("C:\\Demo\\~TEMP\\demo.exe.1.zip", "C:\\Demo\\~TEMP\\Demo.exe.zip"));
  EXPECT_EQ(world_.application.document.files.Row(1).compressed_name, "Demo.exe.zip");
  EXPECT_EQ(world_.application.document.hidden_files.Row(1).compressed_name, "demo.exe.1.zip");
  EXPECT_THAT(world_.messages.shown, IsEmpty());
}

TEST_F(Compression, ANameThatARowHasIsKept) {
  world_.Add("<ProjectDir>\\Demo.exe", "program").compressed_name = "old.zip";

  EXPECT_TRUE(Compress());

  EXPECT_THAT(Archives(), ElementsAre("C:\\Demo\\~TEMP\\old.zip"));
  EXPECT_EQ(world_.application.document.files.Row(1).compressed_name, "old.zip");
}

TEST_F(Compression, TheViewSeesTheActionTheFileAndTheProgress) {
  world_.Add("<ProjectDir>\\a.dat", std::string(30, 'a')).length_bytes = 30;
  world_.Add("<ProjectDir>\\b.dat", std::string(10, 'b')).length_bytes = 10;

  EXPECT_TRUE(Compress());

  EXPECT_THAT(world_.view.diary,
              ElementsAre("action Compressing", "progress 0 / 2, 0 %", "busy",
                          "file C:\\Demo\\a.dat", "progress 1 / 2, 75 %", "file C:\\Demo\\b.dat",
                          "progress 2 / 2, 100 %", "not busy"));
}

TEST_F(Compression, AnEmptyListHasNothingToDo) {
  EXPECT_TRUE(Compress());

  EXPECT_THAT(world_.view.diary,
              ElementsAre("action Compressing", "progress 0 / 0, 0 %", "busy", "not busy"));
}

TEST_F(Compression, AnEmptyFileHasAnArchiveToo) {
  world_.Add("<ProjectDir>\\empty.dat", "");

  EXPECT_TRUE(Compress());

  EXPECT_GT(world_.files.Contents("C:\\Demo\\~TEMP\\empty.dat.zip").size(), 0u);
}

TEST_F(Compression, AResultCodeIsShownBehindTheSourcesName) {
  world_.Add("<ProjectDir>\\a.dat", "a");
  world_.Add("<ProjectDir>\\b.dat", "b");
  world_.Add("<ProjectDir>\\c.dat", "c");
  world_.platform.archiver.FailFor("C:\\Demo\\b.dat", ArchiveResult::kDiskFull);

  EXPECT_FALSE(Compress());

  ASSERT_EQ(world_.messages.shown.size(), 1u);
  EXPECT_EQ(world_.messages.shown[0].prompt,
            "Error compressing the file 'C:\\Demo\\b.dat'!\r\n(4)");
  EXPECT_EQ(world_.messages.shown[0].title, "TavixStudio - Setup-Wizard   (Message 902)");
  EXPECT_THAT(Archives(), ElementsAre("C:\\Demo\\~TEMP\\a.dat.zip"));
  EXPECT_FALSE(world_.view.busy);
}

// A bare "(4)" does not tell which disk is full.
TEST_F(Compression, TheSystemsWordsStandBelowTheResultCode) {
  world_.Add("<ProjectDir>\\a.dat", "a");
  world_.files.FailPath("C:\\Demo\\~TEMP\\a.dat.zip", "Write", ErrorNumber::kDiskFull);

  EXPECT_FALSE(Compress());

  ASSERT_EQ(world_.messages.shown.size(), 1u);
  EXPECT_THAT(world_.messages.shown[0].prompt,
              StartsWith("Error compressing the file 'C:\\Demo\\a.dat'!\r\n(4)\r\n"
                         "C:\\Demo\\~TEMP\\a.dat.zip: "));
}

// The setup engine would find another length than the script says.
TEST_F(Compression, AFileThatHasGrownSinceTheCheckIsRefused) {
  FileRow& row = world_.Add("<ProjectDir>\\a.dat", "a");
  row.length_bytes = 1;
  world_.files.AddFile("C:\\Demo\\a.dat", "a and more");

  EXPECT_FALSE(Compress());

  ASSERT_EQ(world_.messages.shown.size(), 1u);
  EXPECT_EQ(world_.messages.shown[0].prompt,
            "Error compressing the file 'C:\\Demo\\a.dat'!\r\n(6)\r\n"
            "C:\\Demo\\a.dat: The file has changed during the run");
}

TEST_F(Compression, AFileThatGrowsWhileItIsCompressedIsRefused) {
  FileRow& row = world_.Add("<ProjectDir>\\a.dat", "a");
  row.length_bytes = 1;
  world_.platform.archiver.before = [&](std::string_view, std::string_view source) {
    world_.files.AddFile(source, "a and more");
  };

  EXPECT_FALSE(Compress());

  EXPECT_THAT(world_.messages.Ids(), ElementsAre(902));
}

TEST_F(Compression, AnArchiveThatIsNotThereAfterwardsIsAnErrorNamedAfterTheArchive) {
  world_.Add("<ProjectDir>\\a.dat", "a");
  world_.platform.archiver.FailFor("C:\\Demo\\a.dat", ArchiveResult::kSuccess);

  EXPECT_FALSE(Compress());

  ASSERT_EQ(world_.messages.shown.size(), 1u);
  EXPECT_EQ(world_.messages.shown[0].prompt, "Error compressing the file 'a.dat.zip'!");
}

TEST_F(Compression, AnEmptyArchiveIsAnErrorNamedAfterTheArchive) {
  world_.Add("<ProjectDir>\\a.dat", "a");
  world_.SetArchiveSize("C:\\Demo\\a.dat", 0);

  EXPECT_FALSE(Compress());

  ASSERT_EQ(world_.messages.shown.size(), 1u);
  EXPECT_EQ(world_.messages.shown[0].prompt, "Error compressing the file 'a.dat.zip'!");
}

TEST_F(Compression, CancelEndsTheStageAfterTheCurrentFile) {
  world_.Add("<ProjectDir>\\a.dat", "a");
  world_.Add("<ProjectDir>\\b.dat", "b");
  world_.Add("<ProjectDir>\\c.dat", "c");
  world_.view.on_events = [](RecordingCreateView& view) {
    if (view.files.size() == 2) view.PressCancel();
  };

  EXPECT_FALSE(Compress());

  EXPECT_THAT(Archives(), ElementsAre("C:\\Demo\\~TEMP\\a.dat.zip", "C:\\Demo\\~TEMP\\b.dat.zip"));
  EXPECT_THAT(world_.messages.shown, IsEmpty());
}

TEST_F(Compression, AnythingThrownIsShownWithTheFileBeingCompressed) {
  world_.Add("<ProjectDir>\\a.dat", "a");
  world_.platform.archiver.before = [](std::string_view, std::string_view) {
    throw std::bad_alloc();
  };

  EXPECT_FALSE(Compress());

  ASSERT_EQ(world_.messages.shown.size(), 1u);
  EXPECT_EQ(world_.messages.shown[0].prompt,
            "Error compressing the file 'C:\\Demo\\a.dat'!\r\n(7: Out of memory)");
  EXPECT_FALSE(world_.view.busy);
}

}  // namespace
}  // namespace txs
