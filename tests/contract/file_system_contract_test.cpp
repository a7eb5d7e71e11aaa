// What every file system must do, whatever it stands on.

#include "environment/file_system.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>

#include "contract/real_worlds.h"
#include "environment/runtime_error.h"
#include "fakes/memory_file_system.h"

namespace txs {
namespace {

struct MemoryWorld {
  MemoryFileSystem files;

  MemoryWorld() { files.AddFolder("C:\\Demo"); }
  void SetReadOnly(const std::string& path) { files.SetReadOnly(path, /*read_only=*/true); }
};

template <typename World>
class FileSystemContract : public testing::Test {
 protected:
  World world;
  FileSystem& files = world.files;

  void Write(const std::string& path, std::string_view bytes) {
    const auto file = files.CreateForWriting(path);
    file->Write(std::as_bytes(std::span(bytes)));
    file->Close();
  }

  template <typename Operation>
  int ErrorOf(const Operation& operation) {
    try {
      operation();
    } catch (const RuntimeError& error) {
      EXPECT_FALSE(error.Description().empty());
      return static_cast<int>(error.Number());
    }
    return 0;
  }

  std::vector<std::string> Names(const std::string& folder, const std::string& pattern) {
    std::vector<std::string> names;
    for (const FileEntry& entry : files.List(folder, pattern)) {
      names.push_back(entry.name + (entry.is_folder ? "\\" : ""));
    }
    return names;
  }
};

using Worlds = testing::Types<MemoryWorld, RealFileSystemWorld>;
TYPED_TEST_SUITE(FileSystemContract, Worlds);

TYPED_TEST(FileSystemContract, AFileIsReadBackAsItWasWritten) {
  const std::string bytes("a\0\r\n\xFF", 5);

  this->Write("C:\\Demo\\x.bin", bytes);

  EXPECT_EQ(this->files.ReadWhole("C:\\Demo\\x.bin"), bytes);
  EXPECT_EQ(this->files.Length("C:\\Demo\\x.bin"), 5u);
}

TYPED_TEST(FileSystemContract, APlaceHasOneFinalPathUnderAllItsNames) {
  this->files.MakeFolder("C:\\Demo\\sub");
  this->Write("C:\\Demo\\sub\\x.bin", "x");

  const std::string folder = this->files.FinalPath("C:\\Demo\\sub");
  EXPECT_EQ(this->files.FinalPath("c:/demo\\\\SUB\\..\\Sub\\"), folder);
  EXPECT_EQ(this->files.FinalPath("C:\\demo\\sub\\X.BIN"), folder + "\\x.bin");
  EXPECT_NE(this->files.FinalPath("C:\\Demo"), folder);
  EXPECT_EQ(this->files.FinalPath("C:\\Demo\\nothing\\here"), "C:\\Demo\\nothing\\here");
}

TYPED_TEST(FileSystemContract, EmptyAndLargeFilesAreReadWhole) {
  const std::string large(3 * 1024 * 1024 + 1, 'x');
  this->Write("C:\\Demo\\empty", "");
  this->Write("C:\\Demo\\large", large);

  EXPECT_EQ(this->files.ReadWhole("C:\\Demo\\empty"), "");
  EXPECT_EQ(this->files.ReadWhole("C:\\Demo\\large"), large);
}

TYPED_TEST(FileSystemContract, NamesAreFoundWithoutRegardToCase) {
  this->Write("C:\\Demo\\Größe Ä.txt", "1");

  EXPECT_TRUE(this->files.FileExists("c:\\dEMO\\GRÖßE ä.TXT"));
  EXPECT_EQ(this->files.ReadWhole("c:\\demo\\größe Ä.TXT"), "1");
}

TYPED_TEST(FileSystemContract, AnExistingNameKeepsItsSpellingWhenWritten) {
  this->Write("C:\\Demo\\Read.Me", "old");

  this->Write("C:\\Demo\\READ.ME", "new");
  this->files.ReplaceWhole("C:\\Demo\\read.me", "newer");

  EXPECT_EQ(this->Names("C:\\Demo", "*"), std::vector<std::string>{"Read.Me"});
  EXPECT_EQ(this->files.ReadWhole("C:\\Demo\\Read.Me"), "newer");
}

TYPED_TEST(FileSystemContract, DoubledAndForwardSeparatorsAreAccepted) {
  this->Write("C:\\Demo\\\\x.txt", "1");

  EXPECT_TRUE(this->files.FileExists("C:/Demo/x.txt"));
  EXPECT_TRUE(this->files.FolderExists("C:\\Demo\\"));
  EXPECT_TRUE(this->files.FolderExists("C:\\\\Demo\\\\"));
}

TYPED_TEST(FileSystemContract, ADriveIsAFolderWithAndWithoutBackslash) {
  EXPECT_TRUE(this->files.FolderExists("C:"));
  EXPECT_TRUE(this->files.FolderExists("c:\\"));
  EXPECT_FALSE(this->files.FolderExists("Q:\\"));
  EXPECT_FALSE(this->files.FileExists("C:\\"));
}

TYPED_TEST(FileSystemContract, QuestionsAboutNothingAreAnsweredWithNo) {
  for (const char* path :
       {"", "C:\\Demo\\none", "C:\\none\\none", "Q:\\x", "C:\\Demo", "?", "\\\\a\\b"}) {
    EXPECT_FALSE(this->files.FileExists(path)) << path;
    EXPECT_FALSE(this->files.Stamp(path).has_value()) << path;
  }
  EXPECT_FALSE(this->files.FolderExists(""));
}

TYPED_TEST(FileSystemContract, ReadingWhatIsMissingNamesFileOrPath) {
  EXPECT_EQ(this->ErrorOf([&] { (void)this->files.ReadWhole("C:\\Demo\\none"); }), 53);
  EXPECT_EQ(this->ErrorOf([&] { (void)this->files.ReadWhole("C:\\none\\x"); }), 76);
  EXPECT_EQ(this->ErrorOf([&] { (void)this->files.ReadWhole("C:\\Demo"); }), 75);
  EXPECT_EQ(this->ErrorOf([&] { (void)this->files.Length("C:\\Demo\\none"); }), 53);
  EXPECT_EQ(this->ErrorOf([&] { (void)this->files.LastWriteTime("C:\\Demo\\none"); }), 53);
}

TYPED_TEST(FileSystemContract, WritingWhereNoFileCanBeIsRefused) {
  EXPECT_EQ(this->ErrorOf([&] { this->Write("C:\\none\\x", ""); }), 76);
  EXPECT_EQ(this->ErrorOf([&] { this->Write("C:\\Demo", ""); }), 75);
  EXPECT_EQ(this->ErrorOf([&] { this->files.ReplaceWhole("C:\\Demo", ""); }), 75);
  EXPECT_EQ(this->ErrorOf([&] { this->files.ReplaceWhole("C:\\none\\x", ""); }), 76);
  EXPECT_EQ(this->ErrorOf([&] { this->Write("C:\\Demo\\" + std::string(300, 'x'), ""); }), 52);
}

TYPED_TEST(FileSystemContract, AReadOnlyFileIsNeitherWrittenNorRemoved) {
  this->Write("C:\\Demo\\fixed.txt", "old");
  this->world.SetReadOnly("C:\\Demo\\fixed.txt");

  EXPECT_EQ(this->ErrorOf([&] { this->Write("C:\\Demo\\fixed.txt", "new"); }), 75);
  EXPECT_EQ(this->ErrorOf([&] { this->files.ReplaceWhole("C:\\Demo\\fixed.txt", "new"); }), 75);
  EXPECT_EQ(this->ErrorOf([&] { (void)this->files.OpenForAppending("C:\\Demo\\FIXED.txt"); }), 75);
  EXPECT_EQ(this->ErrorOf([&] { this->files.RemoveFile("C:\\Demo\\fixed.txt"); }), 75);
  EXPECT_EQ(this->files.ReadWhole("C:\\Demo\\fixed.txt"), "old");
}

TYPED_TEST(FileSystemContract, AppendingCreatesAndThenExtends) {
  for (const std::string_view text : {"one", "two"}) {
    const auto file = this->files.OpenForAppending("C:\\Demo\\log");
    file->Write(std::as_bytes(std::span(text)));
    file->Close();
  }

  EXPECT_EQ(this->files.ReadWhole("C:\\Demo\\log"), "onetwo");
}

TYPED_TEST(FileSystemContract, WriteAtChangesWhatIsThereAndWriteGoesOnAtTheEnd) {
  const auto file = this->files.CreateForWriting("C:\\Demo\\x");
  const std::string_view text = "abcdef";
  file->Write(std::as_bytes(std::span(text)));

  file->WriteAt(1, std::as_bytes(std::span(std::string_view("XY"))));
  file->Write(std::as_bytes(std::span(std::string_view("g"))));
  file->Close();

  EXPECT_EQ(this->files.ReadWhole("C:\\Demo\\x"), "aXYdefg");
}

TYPED_TEST(FileSystemContract, WriteAtBeyondTheEndIsRefused) {
  const auto file = this->files.CreateForWriting("C:\\Demo\\x");

  EXPECT_EQ(
      this->ErrorOf([&] { file->WriteAt(1, std::as_bytes(std::span(std::string_view("X")))); }), 5);
}

TYPED_TEST(FileSystemContract, ReadingGoesOnWhereItStoppedAndSeekMovesIt) {
  this->Write("C:\\Demo\\x", "abcdef");
  const auto file = this->files.OpenForReading("C:\\Demo\\x");
  std::array<std::byte, 4> buffer{};

  EXPECT_EQ(file->Length(), 6u);
  EXPECT_EQ(file->Read(buffer), 4u);
  EXPECT_EQ(file->Read(buffer), 2u);
  EXPECT_EQ(file->Read(buffer), 0u);
  file->Seek(5);
  EXPECT_EQ(file->Read(buffer), 1u);
  EXPECT_EQ(buffer[0], std::byte{'f'});
  file->Seek(100);
  EXPECT_EQ(file->Read(buffer), 0u);
}

TYPED_TEST(FileSystemContract, CopyingKeepsContentsAndTimeAndOverwrites) {
  this->Write("C:\\Demo\\a", "contents");
  this->Write("C:\\Demo\\b", "something longer than that");
  const FileTime time = this->files.LastWriteTime("C:\\Demo\\a");

  this->files.CopyWhole("C:\\Demo\\A", "C:\\Demo\\b");

  EXPECT_EQ(this->files.ReadWhole("C:\\Demo\\b"), "contents");
  EXPECT_EQ(this->files.LastWriteTime("C:\\Demo\\b"), time);
  EXPECT_EQ(this->files.ReadWhole("C:\\Demo\\a"), "contents");
}

TYPED_TEST(FileSystemContract, TheCopyOfAReadOnlyFileCanBeWrittenAndRemoved) {
  this->Write("C:\\Demo\\a", "1");
  this->world.SetReadOnly("C:\\Demo\\a");

  this->files.CopyWhole("C:\\Demo\\a", "C:\\Demo\\b");

  this->Write("C:\\Demo\\b", "2");
  this->files.RemoveFile("C:\\Demo\\b");
  EXPECT_FALSE(this->files.FileExists("C:\\Demo\\b"));
}

TYPED_TEST(FileSystemContract, CopyingWhatIsMissingFails) {
  EXPECT_EQ(this->ErrorOf([&] { this->files.CopyWhole("C:\\Demo\\none", "C:\\Demo\\b"); }), 53);
  EXPECT_EQ(this->ErrorOf([&] { this->files.CopyWhole("C:\\Demo", "C:\\Demo\\b"); }), 75);
  EXPECT_FALSE(this->files.FileExists("C:\\Demo\\b"));
}

TYPED_TEST(FileSystemContract, CopyingAFileOntoItselfLosesNothing) {
  this->Write("C:\\Demo\\a", "contents");

  EXPECT_EQ(this->ErrorOf([&] { this->files.CopyWhole("C:\\Demo\\a", "C:\\Demo\\A"); }), 75);

  EXPECT_EQ(this->files.ReadWhole("C:\\Demo\\a"), "contents");
}

TYPED_TEST(FileSystemContract, MovingOverwritesAndLeavesNoSource) {
  this->Write("C:\\Demo\\a", "contents");
  this->Write("C:\\Demo\\b", "old");

  this->files.MoveWhole("C:\\Demo\\a", "C:\\Demo\\b");

  EXPECT_EQ(this->files.ReadWhole("C:\\Demo\\b"), "contents");
  EXPECT_FALSE(this->files.FileExists("C:\\Demo\\a"));
  EXPECT_EQ(this->ErrorOf([&] { this->files.MoveWhole("C:\\Demo\\a", "C:\\Demo\\b"); }), 53);
}

TYPED_TEST(FileSystemContract, AMoveThatCannotSucceedLeavesTheSource) {
  this->Write("C:\\Demo\\a", "contents");

  EXPECT_EQ(this->ErrorOf([&] { this->files.MoveWhole("C:\\Demo\\a", "C:\\none\\b"); }), 76);

  EXPECT_EQ(this->files.ReadWhole("C:\\Demo\\a"), "contents");
}

TYPED_TEST(FileSystemContract, RemovingAFileThatIsMissingFails) {
  EXPECT_EQ(this->ErrorOf([&] { this->files.RemoveFile("C:\\Demo\\none"); }), 53);
  EXPECT_EQ(this->ErrorOf([&] { this->files.RemoveFile("C:\\Demo"); }), 75);
}

TYPED_TEST(FileSystemContract, ATreeGoesWithEverythingInIt) {
  this->files.MakeFolder("C:\\Demo\\DISK1\\deep\\deeper");
  this->Write("C:\\Demo\\DISK1\\deep\\x", "1");
  this->Write("C:\\Demo\\DISK1\\fixed", "1");
  this->world.SetReadOnly("C:\\Demo\\DISK1\\fixed");
  this->Write("C:\\Demo\\DISK10", "a file beside it");

  this->files.RemoveTree("C:\\Demo\\disk1");

  EXPECT_EQ(this->Names("C:\\Demo", "*"), std::vector<std::string>{"DISK10"});
}

TYPED_TEST(FileSystemContract, RemovingATreeThatIsMissingDoesNothingAndAFileIsNoTree) {
  this->Write("C:\\Demo\\x", "1");

  this->files.RemoveTree("C:\\Demo\\none");

  EXPECT_EQ(this->ErrorOf([&] { this->files.RemoveTree("C:\\Demo\\x"); }), 75);
  EXPECT_TRUE(this->files.FileExists("C:\\Demo\\x"));
}

TYPED_TEST(FileSystemContract, AWholeDriveIsNeverRemoved) {
  EXPECT_EQ(this->ErrorOf([&] { this->files.RemoveTree("C:\\"); }), 75);
  EXPECT_EQ(this->ErrorOf([&] { this->files.RemoveTree("C:\\Demo\\.."); }), 75);

  EXPECT_TRUE(this->files.FolderExists("C:\\Demo"));
}

TYPED_TEST(FileSystemContract, AFolderIsMadeWithItsParentsAndOnce) {
  this->files.MakeFolder("C:\\Demo\\a\\b");
  this->files.MakeFolder("C:\\DEMO\\A\\b\\");

  EXPECT_EQ(this->Names("C:\\Demo", "*"), std::vector<std::string>{"a\\"});
  EXPECT_EQ(this->Names("C:\\Demo\\a", "*"), std::vector<std::string>{"b\\"});
}

TYPED_TEST(FileSystemContract, AFolderCannotBeMadeOfAFileOrOnAMissingDrive) {
  this->Write("C:\\Demo\\x", "1");

  EXPECT_EQ(this->ErrorOf([&] { this->files.MakeFolder("C:\\Demo\\x"); }), 75);
  EXPECT_EQ(this->ErrorOf([&] { this->files.MakeFolder("Q:\\Demo"); }), 76);
}

TYPED_TEST(FileSystemContract, ListingMatchesWildcardsInTheOrderOfFoldedNames) {
  for (const char* name : {"b.RCT", "a.rct", "Z.rct", "ä.rct", "x.txt", "rct"}) {
    this->Write(std::string("C:\\Demo\\") + name, "");
  }
  this->files.MakeFolder("C:\\Demo\\folder.rct");

  EXPECT_EQ(this->Names("C:\\Demo", "*.rct"),
            (std::vector<std::string>{"a.rct", "b.RCT", "folder.rct\\", "Z.rct", "ä.rct"}));
  EXPECT_EQ(this->Names("C:\\Demo", "?.txt"), std::vector<std::string>{"x.txt"});
  EXPECT_EQ(this->Names("C:\\Demo", "none*"), std::vector<std::string>{});
  EXPECT_EQ(this->ErrorOf([&] { (void)this->files.List("C:\\none", "*"); }), 76);
  EXPECT_EQ(this->ErrorOf([&] { (void)this->files.List("C:\\Demo\\x.txt", "*"); }), 76);
}

TYPED_TEST(FileSystemContract, AFolderOfOrdinaryNamesHasNoUnusableEntries) {
  this->Write("C:\\Demo\\ä b.txt", "");
  this->files.MakeFolder("C:\\Demo\\folder");

  EXPECT_TRUE(this->files.UnusableEntries("C:\\Demo\\").empty());
  EXPECT_EQ(this->ErrorOf([&] { (void)this->files.UnusableEntries("C:\\none"); }), 76);
  EXPECT_EQ(this->ErrorOf([&] { (void)this->files.UnusableEntries("C:\\Demo\\ä b.txt"); }), 76);
}

TYPED_TEST(FileSystemContract, TheStampTellsLengthAndTime) {
  this->Write("C:\\Demo\\x", "12345");

  const auto stamp = this->files.Stamp("C:\\Demo\\X");

  ASSERT_TRUE(stamp.has_value());
  EXPECT_EQ(stamp->length_bytes, 5u);
  EXPECT_EQ(stamp->last_write, this->files.LastWriteTime("C:\\Demo\\x"));
  EXPECT_GT(stamp->last_write, FileTime(std::chrono::sys_days(std::chrono::year(2020) / 1 / 1)));
}

TYPED_TEST(FileSystemContract, DriveCIsListedAndHasFreeSpace) {
  const std::vector<std::string> drives = this->files.Drives();

  EXPECT_NE(std::ranges::find(drives, "C:"), drives.end());
  EXPECT_GT(this->files.FreeSpaceBytes("C:\\Demo\\not there yet"), 0u);
}

TYPED_TEST(FileSystemContract, ThousandsOfFilesInOneFolderKeepTheirSpelling) {
  for (int i = 0; i < 2000; ++i) this->Write("C:\\Demo\\File" + std::to_string(i), "x");
  for (int i = 0; i < 2000; i += 2) this->files.RemoveFile("C:\\Demo\\FILE" + std::to_string(i));

  EXPECT_EQ(this->files.List("C:\\Demo", "*").size(), 1000u);
  EXPECT_TRUE(this->files.FileExists("C:\\demo\\fILE1999"));
  EXPECT_FALSE(this->files.FileExists("C:\\demo\\fILE1998"));
}

TYPED_TEST(FileSystemContract, DotsInAPathAreResolvedAndNothingClimbsAboveTheDrive) {
  this->Write("C:\\Demo\\x", "1");

  EXPECT_EQ(this->files.ReadWhole("C:\\Demo\\none\\..\\.\\x"), "1");
  EXPECT_EQ(this->files.ReadWhole("C:\\..\\..\\Demo\\x"), "1");
  EXPECT_TRUE(this->files.FolderExists("C:\\Demo\\.."));
}

TYPED_TEST(FileSystemContract, NamesThatWindowsCannotHaveAreRefused) {
  for (const std::string& path :
       {std::string("C:\\Demo\\a\0b", 10), std::string("C:\\Demo\\a\"b"),
        std::string("C:\\Demo\\a*"), std::string("C:\\Demo\\a\nb"), std::string("C:\\Demo\\a:b"),
        std::string("C:\\Demo\\\xFF"), std::string()}) {
    EXPECT_EQ(this->ErrorOf([&] { (void)this->files.OpenForReading(path); }), 52) << path;
    EXPECT_EQ(this->ErrorOf([&] { this->Write(path, "1"); }), 52) << path;
    EXPECT_EQ(this->ErrorOf([&] { this->files.ReplaceWhole(path, "1"); }), 52) << path;
    EXPECT_EQ(this->ErrorOf([&] { this->files.MakeFolder(path); }), 52) << path;
    EXPECT_FALSE(this->files.FileExists(path)) << path;
    EXPECT_FALSE(this->files.FolderExists(path)) << path;
  }
  EXPECT_EQ(this->Names("C:\\Demo", "*"), std::vector<std::string>{});
}

TYPED_TEST(FileSystemContract, NetworkPathsAreNotFound) {
  EXPECT_EQ(this->ErrorOf([&] { (void)this->files.ReadWhole("\\\\server\\share\\x"); }), 76);
  EXPECT_EQ(this->ErrorOf([&] { this->Write("\\\\server\\share\\x", ""); }), 76);
  EXPECT_EQ(this->ErrorOf([&] { this->files.MakeFolder("\\\\server\\share\\x"); }), 76);
}

TYPED_TEST(FileSystemContract, WhatLiesBelowAFileIsNotFound) {
  this->Write("C:\\Demo\\x", "1");

  EXPECT_EQ(this->ErrorOf([&] { (void)this->files.ReadWhole("C:\\Demo\\x\\y"); }), 76);
  EXPECT_EQ(this->ErrorOf([&] { this->Write("C:\\Demo\\x\\y", ""); }), 76);
  EXPECT_EQ(this->ErrorOf([&] { this->files.MakeFolder("C:\\Demo\\x\\y"); }), 75);
  this->files.RemoveTree("C:\\Demo\\x\\y");
  EXPECT_EQ(this->files.ReadWhole("C:\\Demo\\x"), "1");
}

TYPED_TEST(FileSystemContract, WriteAtChangesAnAppendedFileInPlaceToo) {
  this->Write("C:\\Demo\\x", "abcdef");
  const auto file = this->files.OpenForAppending("C:\\Demo\\x");

  file->WriteAt(1, std::as_bytes(std::span(std::string_view("XY"))));
  file->Write(std::as_bytes(std::span(std::string_view("g"))));
  file->Close();

  EXPECT_EQ(this->files.ReadWhole("C:\\Demo\\x"), "aXYdefg");
}

TYPED_TEST(FileSystemContract, AReadOnlyTargetIsNeitherCopiedNorMovedOver) {
  this->Write("C:\\Demo\\new", "new");
  this->Write("C:\\Demo\\fixed", "old");
  this->world.SetReadOnly("C:\\Demo\\fixed");

  EXPECT_EQ(this->ErrorOf([&] { this->files.CopyWhole("C:\\Demo\\new", "C:\\Demo\\fixed"); }), 75);
  EXPECT_EQ(this->ErrorOf([&] { this->files.MoveWhole("C:\\Demo\\new", "C:\\Demo\\fixed"); }), 75);

  EXPECT_EQ(this->files.ReadWhole("C:\\Demo\\new"), "new");
  EXPECT_EQ(this->files.ReadWhole("C:\\Demo\\fixed"), "old");
}

TYPED_TEST(FileSystemContract, AFileIsNeitherCopiedNorMovedOverAFolder) {
  this->Write("C:\\Demo\\x", "1");
  this->files.MakeFolder("C:\\Demo\\folder");

  EXPECT_EQ(this->ErrorOf([&] { this->files.CopyWhole("C:\\Demo\\x", "C:\\Demo\\folder"); }), 75);
  EXPECT_EQ(this->ErrorOf([&] { this->files.MoveWhole("C:\\Demo\\x", "C:\\Demo\\folder"); }), 75);
  EXPECT_EQ(this->ErrorOf([&] { this->files.MoveWhole("C:\\Demo\\folder", "C:\\Demo\\y"); }), 75);

  EXPECT_EQ(this->Names("C:\\Demo", "*"), (std::vector<std::string>{"folder\\", "x"}));
}

TYPED_TEST(FileSystemContract, AReadOnlyFileCanBeMovedAndStaysReadOnly) {
  this->Write("C:\\Demo\\fixed", "1");
  this->world.SetReadOnly("C:\\Demo\\fixed");

  this->files.MoveWhole("C:\\Demo\\fixed", "C:\\Demo\\moved");

  EXPECT_EQ(this->Names("C:\\Demo", "*"), std::vector<std::string>{"moved"});
  EXPECT_EQ(this->ErrorOf([&] { this->Write("C:\\Demo\\moved", "2"); }), 75);
}

TYPED_TEST(FileSystemContract, MovingAFileOntoItselfKeepsIt) {
  this->Write("C:\\Demo\\a", "contents");

  this->files.MoveWhole("C:\\Demo\\a", "C:\\Demo\\A");

  EXPECT_EQ(this->files.ReadWhole("C:\\Demo\\a"), "contents");
}

TYPED_TEST(FileSystemContract, ADriveThatIsMissingHasNoFreeSpace) {
  EXPECT_EQ(this->ErrorOf([&] { (void)this->files.FreeSpaceBytes("Q:\\x"); }), 76);
}

// Each process that was killed while it saved left one more for good.
TEST(RealFileSystem, TemporaryFilesThatNobodyWritesAnyMoreGoWithTheNextReplacement) {
  RealFileSystemWorld world;
  const std::string abandoned = "C:\\Demo\\" + RealFileSystemWorld::TemporaryName('a');
  const std::string being_written = "C:\\Demo\\" + RealFileSystemWorld::TemporaryName('b');
  const std::string of_others = "C:\\Demo\\" + RealFileSystemWorld::TemporaryName('c') + "x";
  for (const std::string& path : {abandoned, being_written, of_others}) {
    world.files.CreateForWriting(path)->Close();
  }
  const std::shared_ptr<void> writer = world.HoldAsWriter(being_written);

  world.files.ReplaceWhole("C:\\Demo\\x", "new");

  EXPECT_FALSE(world.files.FileExists(abandoned));
  EXPECT_TRUE(world.files.FileExists(being_written));
  EXPECT_TRUE(world.files.FileExists(of_others));
  EXPECT_EQ(world.files.ReadWhole("C:\\Demo\\x"), "new");
}

}  // namespace
}  // namespace txs
