// What only the file system of a Linux host has: drives that are folders, names that differ in
// case, links, and other processes.

#include "environment/file_system_host.h"

#include <dirent.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/fsuid.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "environment/runtime_error.h"
#include "fakes/temp_folder.h"

namespace txs {
namespace {

namespace fs = std::filesystem;

class HostFileSystemTest : public testing::Test {
 protected:
  HostFileSystemTest() { fs::create_directories(root_.Path() / "drive_c" / "Demo"); }

  // As another process would.
  void Put(const std::string& host_path, const std::string& bytes) {
    std::ofstream(root_.Path() / host_path, std::ios::binary) << bytes;
  }
  std::string Host(const std::string& host_path) const {
    return (root_.Path() / host_path).string();
  }

  TempFolder root_;
  HostFileSystem files_{root_.Path().string()};
};

TEST_F(HostFileSystemTest, ADriveIsAFolderOfTheRoot) {
  EXPECT_EQ(files_.HostPath("C:\\Demo\\x.txt"), Host("drive_c/Demo/x.txt"));
  EXPECT_EQ(files_.HostPath("C:\\"), Host("drive_c"));
  EXPECT_EQ(files_.Drives(), (std::vector<std::string>{"C:", "Z:"}));
}

TEST_F(HostFileSystemTest, ADriveMayBeALink) {
  fs::create_directory(root_.Path() / "elsewhere");
  fs::create_directory_symlink(root_.Path() / "elsewhere", root_.Path() / "drive_d");
  Put("elsewhere/x", "1");

  EXPECT_EQ(files_.ReadWhole("D:\\X"), "1");
  EXPECT_EQ(files_.WindowsPath(Host("elsewhere/x")), "D:\\x");
}

TEST_F(HostFileSystemTest, DriveZIsTheRootOfTheHost) {
  Put("drive_c/Demo/x", "1");

  const std::string path = "Z:" + Host("drive_c/Demo/x");

  EXPECT_EQ(files_.ReadWhole(path), "1");
  EXPECT_EQ(files_.WindowsPath("/usr/bin"), "Z:\\usr\\bin");
  EXPECT_EQ(files_.WindowsPath("/"), "Z:\\");
}

TEST_F(HostFileSystemTest, AHostPathOnADriveHasTheDrivesName) {
  EXPECT_EQ(files_.WindowsPath(Host("drive_c/Demo/a b.txt")), "C:\\Demo\\a b.txt");
  EXPECT_EQ(files_.WindowsPath(Host("drive_c/Demo/../x/./y")), "C:\\x\\y");
  EXPECT_EQ(files_.WindowsPath(Host("drive_c")), "C:\\");
}

TEST_F(HostFileSystemTest, ARelativePathIsTakenFromTheCurrentDirectory) {
  const fs::path before = fs::current_path();
  fs::current_path(root_.Path() / "drive_c" / "Demo");
  Put("drive_c/Demo/x", "1");

  EXPECT_EQ(files_.ReadWhole("x"), "1");
  EXPECT_EQ(files_.ReadWhole("\\demo\\x"), "1");
  EXPECT_EQ(files_.WindowsPath("x"), "C:\\Demo\\x");

  fs::current_path(before);
}

TEST_F(HostFileSystemTest, NothingClimbsAboveTheDrive) {
  EXPECT_EQ(files_.HostPath("C:\\..\\..\\etc\\passwd"), Host("drive_c/etc/passwd"));
  EXPECT_EQ(files_.HostPath("C:\\Demo\\..\\x"), Host("drive_c/x"));
}

TEST_F(HostFileSystemTest, TheExactSpellingComesFirstElseTheFirstInByteOrder) {
  Put("drive_c/Demo/read.me", "lower");
  Put("drive_c/Demo/Read.me", "mixed");

  EXPECT_EQ(files_.ReadWhole("C:\\Demo\\read.me"), "lower");
  EXPECT_EQ(files_.ReadWhole("C:\\Demo\\Read.me"), "mixed");
  EXPECT_EQ(files_.ReadWhole("C:\\Demo\\READ.ME"), "mixed");
}

TEST_F(HostFileSystemTest, FoldersAreFoundWithoutRegardToCaseToo) {
  fs::create_directories(root_.Path() / "drive_c" / "Program Files" / "Öl");
  Put("drive_c/Program Files/Öl/x", "1");

  EXPECT_EQ(files_.ReadWhole("C:\\PROGRAM FILES\\öl\\X"), "1");
  EXPECT_EQ(files_.HostPath("C:\\program files\\ÖL\\new"), Host("drive_c/Program Files/Öl/new"));
}

TEST_F(HostFileSystemTest, FilesThatAnotherProcessMakesAndRemovesAreSeen) {
  EXPECT_FALSE(files_.FileExists("C:\\demo\\LATER"));
  Put("drive_c/Demo/later", "1");
  EXPECT_TRUE(files_.FileExists("C:\\demo\\LATER"));

  fs::remove(root_.Path() / "drive_c/Demo/later");
  EXPECT_FALSE(files_.FileExists("C:\\demo\\LATER"));
  EXPECT_FALSE(files_.FileExists("C:\\Demo\\later"));
}

TEST_F(HostFileSystemTest, AFolderThatIsReplacedIsReadAnew) {
  EXPECT_FALSE(files_.FileExists("C:\\DEMO\\x"));
  fs::remove_all(root_.Path() / "drive_c/Demo");
  fs::create_directories(root_.Path() / "drive_c/demo");
  Put("drive_c/demo/x", "1");

  EXPECT_TRUE(files_.FileExists("C:\\DEMO\\X"));
}

// Every file whose name was ".txs-" and six characters was taken for a temporary one and deleted.
TEST_F(HostFileSystemTest, ReplacingDeletesNoFileThatAUserMayHaveNamed) {
  const std::vector<std::string> names = {
      ".txs-backup",
      ".txs-old_01",
      "~TXSetup-abc123",
      "~TXSetup-abc123.tm",
      "~TXSetup-abc12.tmp",
      "~TXSetup-abc1234.tmp",
      "~TXSetup-abc 12.tmp",
      "~TXSetup-abc_12.tmp",
      "~txsetup-abc123.tmp",
      "x~TXSetup-abc123.tmp",
      "~TXSetup.lock",
      "~TXSetup-\xC3\xBC\xC3\xBC\xC3\xBC.tmp",
      "~TXSetup-abc123.tmp.bak",
  };
  for (const std::string& name : names) Put("drive_c/Demo/" + name, "of somebody");
  fs::create_directory(Host("drive_c/Demo/~TXSetup-folder.tmp"));
  fs::create_symlink("elsewhere", Host("drive_c/Demo/~TXSetup-linked.tmp"));

  files_.ReplaceWhole("C:\\Demo\\x", "new");

  for (const std::string& name : names)
    EXPECT_TRUE(fs::exists(Host("drive_c/Demo/" + name))) << name;
  EXPECT_TRUE(fs::is_directory(Host("drive_c/Demo/~TXSetup-folder.tmp")));
  EXPECT_TRUE(fs::is_symlink(Host("drive_c/Demo/~TXSetup-linked.tmp")));
}

TEST_F(HostFileSystemTest, ReplacingALinkReplacesWhatItPointsTo) {
  Put("target.reg", "old");
  fs::create_symlink(root_.Path() / "target.reg", root_.Path() / "drive_c/Demo/link.reg");

  files_.ReplaceWhole("C:\\Demo\\link.reg", "new");

  EXPECT_TRUE(fs::is_symlink(root_.Path() / "drive_c/Demo/link.reg"));
  EXPECT_EQ(files_.ReadWhole("Z:" + Host("target.reg")), "new");
}

TEST_F(HostFileSystemTest, ReplacingKeepsPermissionsAndLeavesNothingBeside) {
  Put("drive_c/Demo/x", "old");
  fs::permissions(root_.Path() / "drive_c/Demo/x", fs::perms(0640));

  files_.ReplaceWhole("C:\\Demo\\x", "new");

  EXPECT_EQ(fs::status(root_.Path() / "drive_c/Demo/x").permissions(), fs::perms(0640));
  EXPECT_EQ(files_.List("C:\\Demo", "*").size(), 1u);
}

TEST_F(HostFileSystemTest, RemovingATreeRemovesLinksAndNotWhatTheyPointTo) {
  fs::create_directories(root_.Path() / "precious");
  Put("precious/x", "1");
  fs::create_directories(root_.Path() / "drive_c/Demo/DISK1");
  fs::create_directory_symlink(root_.Path() / "precious", root_.Path() / "drive_c/Demo/DISK1/in");
  fs::create_directory_symlink(root_.Path() / "precious", root_.Path() / "drive_c/Demo/DISK2");

  files_.RemoveTree("C:\\Demo\\DISK1");
  files_.RemoveTree("C:\\Demo\\DISK2");

  EXPECT_TRUE(files_.List("C:\\Demo", "*").empty());
  EXPECT_TRUE(fs::exists(root_.Path() / "precious/x"));
}

TEST_F(HostFileSystemTest, ADanglingLinkIsNoFile) {
  fs::create_symlink(root_.Path() / "nowhere", root_.Path() / "drive_c/Demo/x");

  EXPECT_FALSE(files_.FileExists("C:\\Demo\\x"));
  EXPECT_THROW(static_cast<void>(files_.ReadWhole("C:\\Demo\\x")), RuntimeError);
}

TEST_F(HostFileSystemTest, APipeDoesNotHoldTheProgramUp) {
  ASSERT_EQ(mkfifo(Host("drive_c/Demo/pipe").c_str(), 0600), 0);

  try {
    static_cast<void>(files_.ReadWhole("C:\\Demo\\pipe"));
    ADD_FAILURE();
  } catch (const RuntimeError& error) {
    EXPECT_EQ(error.Number(), ErrorNumber::kPathFileAccess);
  }
}

TEST_F(HostFileSystemTest, AFullDeviceIsADiskThatIsFull) {
  fs::create_symlink("/dev/full", root_.Path() / "drive_c/Demo/full");
  const auto file = files_.OpenForAppending("C:\\Demo\\full");
  const std::string bytes(100, 'x');

  try {
    file->Write(std::as_bytes(std::span(bytes)));
    ADD_FAILURE();
  } catch (const RuntimeError& error) {
    EXPECT_EQ(error.Number(), ErrorNumber::kDiskFull);
  }
}

TEST_F(HostFileSystemTest, APathOf300CharactersWorks) {
  std::string folder = "C:\\Demo";
  for (int i = 0; i < 6; ++i) folder += "\\" + std::string(50, static_cast<char>('a' + i));

  files_.MakeFolder(folder);
  files_.ReplaceWhole(folder + "\\x", "1");

  EXPECT_GT(folder.size(), 300u);
  EXPECT_EQ(files_.ReadWhole(folder + "\\X"), "1");
}

TEST_F(HostFileSystemTest, AMissingRootHasNoDriveC) {
  HostFileSystem nowhere("/nowhere/at/all");

  EXPECT_FALSE(nowhere.FolderExists("C:\\"));
  EXPECT_EQ(nowhere.Drives(), std::vector<std::string>{"Z:"});
}

TEST_F(HostFileSystemTest, MovingBetweenVolumesCopiesAndDeletes) {
  struct stat here;
  struct stat there;
  if (stat("/dev/shm", &there) != 0 || stat(root_.Path().c_str(), &here) != 0 ||
      here.st_dev == there.st_dev) {
    GTEST_SKIP() << "only one volume on this computer";
  }
  Put("drive_c/Demo/x", "contents");
  const std::string target = "Z:\\dev\\shm\\txs-move-" + std::to_string(getpid());

  files_.MoveWhole("C:\\Demo\\x", target);

  EXPECT_EQ(files_.ReadWhole(target), "contents");
  EXPECT_FALSE(files_.FileExists("C:\\Demo\\x"));
  files_.RemoveFile(target);
}

TEST_F(HostFileSystemTest, MovingAReadOnlyFileBetweenVolumesLeavesNoSource) {
  struct stat here;
  struct stat there;
  if (stat("/dev/shm", &there) != 0 || stat(root_.Path().c_str(), &here) != 0 ||
      here.st_dev == there.st_dev) {
    GTEST_SKIP() << "only one volume on this computer";
  }
  Put("drive_c/Demo/x", "contents");
  fs::permissions(root_.Path() / "drive_c/Demo/x", fs::perms::owner_read);
  const std::string target = "Z:\\dev\\shm\\txs-move-fixed-" + std::to_string(getpid());

  files_.MoveWhole("C:\\Demo\\x", target);

  EXPECT_EQ(files_.ReadWhole(target), "contents");
  EXPECT_FALSE(files_.FileExists("C:\\Demo\\x"));
  files_.RemoveFile(target);
}

TEST_F(HostFileSystemTest, MovingAFileOverAnotherNameOfItselfLeavesOneName) {
  Put("drive_c/Demo/a", "contents");
  fs::create_hard_link(root_.Path() / "drive_c/Demo/a", root_.Path() / "drive_c/Demo/b");

  files_.MoveWhole("C:\\Demo\\a", "C:\\Demo\\b");

  EXPECT_EQ(files_.ReadWhole("C:\\Demo\\b"), "contents");
  EXPECT_FALSE(files_.FileExists("C:\\Demo\\a"));
}

TEST_F(HostFileSystemTest, MovingAFileOntoItselfUnderAnotherPathKeepsIt) {
  Put("drive_c/Demo/a", "contents");
  fs::create_directory_symlink(root_.Path() / "drive_c/Demo", root_.Path() / "drive_c/link");

  files_.MoveWhole("C:\\Demo\\a", "Z:" + Host("drive_c/Demo/a"));
  files_.MoveWhole("C:\\Demo\\a", "C:\\link\\a");

  EXPECT_EQ(files_.ReadWhole("C:\\Demo\\a"), "contents");
}

TEST_F(HostFileSystemTest, MovingAFileOntoItselfUnderAnotherPathKeepsItWhenItHasAnotherNameToo) {
  Put("drive_c/Demo/a", "contents");
  fs::create_directory_symlink(root_.Path() / "drive_c/Demo", root_.Path() / "drive_c/link");
  fs::create_hard_link(root_.Path() / "drive_c/Demo/a", root_.Path() / "drive_c/Demo/b");

  files_.MoveWhole("C:\\Demo\\a", "C:\\link\\a");

  EXPECT_TRUE(files_.FileExists("C:\\Demo\\a"));
  EXPECT_TRUE(files_.FileExists("C:\\Demo\\b"));
}

// The program may run as root: renaming over a device would take it from the whole computer.
TEST_F(HostFileSystemTest, WhatIsNoOrdinaryFileIsNeitherReplacedNorMovedOver) {
  ASSERT_EQ(mkfifo(Host("drive_c/Demo/pipe").c_str(), 0600), 0);
  Put("drive_c/Demo/x", "1");
  const auto number_of = [&](const auto& operation) {
    try {
      operation();
    } catch (const RuntimeError& error) {
      return error.Number();
    }
    return ErrorNumber{};
  };

  EXPECT_EQ(number_of([&] { files_.ReplaceWhole("C:\\Demo\\pipe", "1"); }),
            ErrorNumber::kPathFileAccess);
  EXPECT_EQ(number_of([&] { files_.MoveWhole("C:\\Demo\\x", "C:\\Demo\\pipe"); }),
            ErrorNumber::kPathFileAccess);
  EXPECT_EQ(number_of([&] { files_.CopyWhole("C:\\Demo\\x", "C:\\Demo\\pipe"); }),
            ErrorNumber::kPathFileAccess);
  EXPECT_EQ(number_of([&] { static_cast<void>(files_.CreateForWriting("C:\\Demo\\pipe")); }),
            ErrorNumber::kPathFileAccess);
  EXPECT_TRUE(fs::is_fifo(root_.Path() / "drive_c/Demo/pipe"));
  EXPECT_EQ(files_.ReadWhole("C:\\Demo\\x"), "1");
}

TEST_F(HostFileSystemTest, ReplacingALinkToNothingMakesWhatItPointsTo) {
  fs::create_symlink("../made", root_.Path() / "drive_c/Demo/link");

  files_.ReplaceWhole("C:\\Demo\\link", "new");

  EXPECT_TRUE(fs::is_symlink(root_.Path() / "drive_c/Demo/link"));
  EXPECT_EQ(files_.ReadWhole("C:\\made"), "new");
}

TEST_F(HostFileSystemTest, ReplacingALinkInACircleFailsAndKeepsIt) {
  fs::create_symlink("b", root_.Path() / "drive_c/Demo/a");
  fs::create_symlink("a", root_.Path() / "drive_c/Demo/b");

  EXPECT_THROW(files_.ReplaceWhole("C:\\Demo\\a", "new"), RuntimeError);

  EXPECT_TRUE(fs::is_symlink(root_.Path() / "drive_c/Demo/a"));
}

// A limit on the size of files stands for the full disk.
TEST_F(HostFileSystemTest, ReplacingOnAFullDiskLeavesTheOldFileAndNothingBeside) {
  Put("drive_c/Demo/x", "old");
  rlimit before = {};
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
  const auto old_handler = std::signal(SIGXFSZ, SIG_IGN);
  const rlimit small = {1000, before.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);

  ErrorNumber number = {};
  try {
    files_.ReplaceWhole("C:\\Demo\\x", std::string(5000, 'n'));
  } catch (const RuntimeError& error) {
    number = error.Number();
  }

  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &before), 0);
  std::signal(SIGXFSZ, old_handler);
  EXPECT_EQ(number, ErrorNumber::kDiskFull);
  EXPECT_EQ(files_.ReadWhole("C:\\Demo\\x"), "old");
  EXPECT_EQ(std::distance(fs::directory_iterator(root_.Path() / "drive_c/Demo"), {}), 1);
}

TEST_F(HostFileSystemTest, ADriveThatIsMissingHasNoHostPath) {
  try {
    static_cast<void>(files_.HostPath("Q:\\x"));
    ADD_FAILURE();
  } catch (const RuntimeError& error) {
    EXPECT_EQ(error.Number(), ErrorNumber::kPathNotFound);
  }
}

TEST_F(HostFileSystemTest, WhereDriveZIsAFolderTheRestOfTheHostHasNoName) {
  fs::create_directory(root_.Path() / "drive_z");
  Put("drive_z/x", "1");

  EXPECT_EQ(files_.ReadWhole("Z:\\X"), "1");
  EXPECT_EQ(files_.WindowsPath(Host("drive_z/x")), "Z:\\x");
  try {
    static_cast<void>(files_.WindowsPath("/usr/bin"));
    ADD_FAILURE();
  } catch (const RuntimeError& error) {
    EXPECT_EQ(error.Number(), ErrorNumber::kPathNotFound);
  }
}

// Folder times move in steps: what another process does within the step in which the folder was
// read leaves no trace in its time. The time set here stands for that, whatever steps this computer
// takes.
TEST_F(HostFileSystemTest, AChangeThatTheTimeOfTheFolderDoesNotTellIsSeen) {
  const fs::path folder = root_.Path() / "drive_c/Demo";
  const auto same_step = fs::file_time_type::clock::now() + std::chrono::seconds(1);
  fs::last_write_time(folder, same_step);
  EXPECT_FALSE(files_.FileExists("C:\\Demo\\LATER"));

  Put("drive_c/Demo/later", "1");
  fs::last_write_time(folder, same_step);

  EXPECT_TRUE(files_.FileExists("C:\\Demo\\LATER"));
}

TEST_F(HostFileSystemTest, NamesThatWindowsCannotHaveAreNotListed) {
  Put("drive_c/Demo/good", "1");
  Put("drive_c/Demo/a:b", "1");
  Put("drive_c/Demo/\xFF", "1");

  const std::vector<FileEntry> entries = files_.List("C:\\Demo", "*");

  ASSERT_EQ(entries.size(), 1u);
  EXPECT_EQ(entries[0].name, "good");
}

// Whoever runs the tests, the folder cannot be listed meanwhile: the kernel asks root for no
// permission as long as root's own number is used.
TEST_F(HostFileSystemTest, AFolderThatCanBePassedButNotListedIsNoObstacle) {
  constexpr uid_t kSomebodyElse = 65534;
  const fs::path closed = root_.Path() / "drive_c/Demo";
  fs::create_directory(closed / "Inside");
  ASSERT_EQ(chmod((closed / "Inside").c_str(), 0777), 0);
  ASSERT_EQ(chmod(root_.Path().c_str(), 0711), 0);
  ASSERT_EQ(chmod(closed.c_str(), 0311), 0);
  if (geteuid() == 0) setfsuid(kSomebodyElse);

  const bool can_be_listed = opendir(closed.c_str()) != nullptr;
  std::string read;
  try {
    files_.CreateForWriting("C:\\Demo\\Inside\\new")->Close();
    read = files_.ReadWhole("C:\\Demo\\Inside\\NEW") + "nothing";
  } catch (const RuntimeError& error) {
    read = error.what();
  }

  setfsuid(geteuid());
  ASSERT_EQ(chmod(closed.c_str(), 0755), 0);
  EXPECT_FALSE(can_be_listed);
  EXPECT_EQ(read, "nothing");
}

}  // namespace
}  // namespace txs
