// What only the file system in memory has: its diary, failures on demand, a disk of any size.

#include "fakes/memory_file_system.h"

#include <gtest/gtest.h>

#include <limits>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "environment/runtime_error.h"

namespace txs {
namespace {

class MemoryFileSystemTest : public testing::Test {
 protected:
  void Write(std::string_view path, std::string_view bytes) {
    const auto file = files.CreateForWriting(path);
    file->Write(std::as_bytes(std::span(bytes)));
    file->Close();
  }

  template <typename Operation>
  ErrorNumber NumberThrownBy(const Operation& operation) {
    try {
      operation();
    } catch (const RuntimeError& error) {
      return error.Number();
    }
    return ErrorNumber{};
  }

  MemoryFileSystem files;
};

TEST_F(MemoryFileSystemTest, TheDiaryNamesEveryOperationAndSettingTheSceneIsNotInIt) {
  files.AddFile("C:\\x", "12");
  static_cast<void>(files.FileExists("c:/X"));
  static_cast<void>(files.ReadWhole("C:\\x"));

  ASSERT_GE(files.diary.size(), 3u);
  EXPECT_EQ(files.diary[0], (MemoryFileSystem::DiaryEntry{"FileExists", "c:/X"}));
  EXPECT_EQ(files.diary[1], (MemoryFileSystem::DiaryEntry{"OpenForReading", "C:\\x"}));
  EXPECT_EQ(files.diary[2], (MemoryFileSystem::DiaryEntry{"Read", "C:\\x"}));
  EXPECT_EQ(files.OperationCount(), files.diary.size());
}

TEST_F(MemoryFileSystemTest, TheNthOperationFailsAndOnlyThat) {
  static_cast<void>(files.FileExists("C:\\a"));  // from now on counts
  files.FailOperation(2, ErrorNumber::kDeviceIo);

  files.MakeFolder("C:\\a");
  EXPECT_EQ(NumberThrownBy([&] { files.MakeFolder("C:\\b"); }), ErrorNumber::kDeviceIo);
  files.MakeFolder("C:\\c");

  EXPECT_TRUE(files.Has("C:\\a"));
  EXPECT_FALSE(files.Has("C:\\b"));
  EXPECT_TRUE(files.Has("C:\\c"));
}

TEST_F(MemoryFileSystemTest, EveryOperationFromTheNthOnFailsUntilItIsStopped) {
  files.FailFrom(2, ErrorNumber::kDiskNotReady);

  files.MakeFolder("C:\\a");
  EXPECT_EQ(NumberThrownBy([&] { files.MakeFolder("C:\\b"); }), ErrorNumber::kDiskNotReady);
  EXPECT_EQ(NumberThrownBy([&] { files.MakeFolder("C:\\c"); }), ErrorNumber::kDiskNotReady);
  EXPECT_FALSE(files.FolderExists("C:\\a")) << "a question is answered with no";
  files.StopFailing();

  EXPECT_TRUE(files.FolderExists("C:\\a"));
}

TEST_F(MemoryFileSystemTest, WritesAndClosesOfAnOpenFileCountToo) {
  files.FailOperation(3, ErrorNumber::kDeviceIo);

  EXPECT_EQ(NumberThrownBy([&] { Write("C:\\x", "1"); }), ErrorNumber::kDeviceIo);

  EXPECT_EQ(files.diary.back(), (MemoryFileSystem::DiaryEntry{"Close", "C:\\x"}));
}

TEST_F(MemoryFileSystemTest, OneOperationOnOnePathFailsInAnySpelling) {
  files.AddFile("C:\\x", "1");
  files.AddFile("C:\\y", "1");
  files.FailPath("C:\\x", "RemoveFile", ErrorNumber::kPermissionDenied);

  EXPECT_EQ(NumberThrownBy([&] { files.RemoveFile("c:\\X"); }), ErrorNumber::kPermissionDenied);
  EXPECT_EQ(files.ReadWhole("C:\\x"), "1");
  files.RemoveFile("C:\\y");

  EXPECT_TRUE(files.Has("C:\\x"));
}

TEST_F(MemoryFileSystemTest, AFullDiskTakesWhatFitsAndThenRefuses) {
  files.SetFreeSpace(3);

  EXPECT_EQ(NumberThrownBy([&] { Write("C:\\x", "12345"); }), ErrorNumber::kDiskFull);

  EXPECT_EQ(files.Contents("C:\\x"), "123");
  EXPECT_EQ(files.FreeSpaceBytes("C:\\"), 0u);
}

TEST_F(MemoryFileSystemTest, ReplacingOnAFullDiskLeavesTheOldFile) {
  Write("C:\\x", "old");
  files.SetFreeSpace(3);

  EXPECT_EQ(NumberThrownBy([&] { files.ReplaceWhole("C:\\x", "12345"); }), ErrorNumber::kDiskFull);

  EXPECT_EQ(files.Contents("C:\\x"), "old");
}

TEST_F(MemoryFileSystemTest, WhateverTakesAFileAwayGivesItsSpaceBack) {
  files.SetFreeSpace(1000);
  files.MakeFolder("C:\\tree");
  Write("C:\\tree\\a", std::string(100, 'x'));
  Write("C:\\b", std::string(100, 'x'));
  Write("C:\\c", std::string(100, 'x'));
  Write("C:\\d", std::string(100, 'x'));
  ASSERT_EQ(files.FreeSpaceBytes("C:\\"), 600u);

  files.RemoveTree("C:\\tree");
  EXPECT_EQ(files.FreeSpaceBytes("C:\\"), 700u);
  files.MoveWhole("C:\\b", "C:\\c");
  EXPECT_EQ(files.FreeSpaceBytes("C:\\"), 800u);
  files.RemoveFile("C:\\c");
  EXPECT_EQ(files.FreeSpaceBytes("C:\\"), 900u);
  Write("C:\\d", "");
  EXPECT_EQ(files.FreeSpaceBytes("C:\\"), 1000u);
}

TEST_F(MemoryFileSystemTest, EveryWriteMovesTheTimeOn) {
  Write("C:\\x", "1");
  const FileTime first = files.LastWriteTime("C:\\x");
  files.ReplaceWhole("C:\\x", "2");
  const FileTime second = files.LastWriteTime("C:\\x");
  files.SetLastWriteTime("C:\\x", FileTime{});

  EXPECT_LT(first, second);
  EXPECT_EQ(files.LastWriteTime("C:\\x"), FileTime{});
}

TEST_F(MemoryFileSystemTest, AllFilesAreListedAsSpelledInFoldedOrder) {
  files.AddDrive('d');
  files.AddFile("D:\\z", "");
  files.AddFile("C:\\B\\x", "");
  files.AddFile("C:\\a", "");

  EXPECT_EQ(files.AllFiles(), (std::vector<std::string>{"C:\\a", "C:\\B\\x", "D:\\z"}));
  EXPECT_EQ(files.AllFilesIn("c:\\b"), std::vector<std::string>{"C:\\B\\x"});
  EXPECT_EQ(files.Drives(), (std::vector<std::string>{"C:", "D:"}));
}

}  // namespace
}  // namespace txs
