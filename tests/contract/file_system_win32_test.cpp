// What only the file system of Windows has: long paths, files that others hold, junctions, devices.

#include "environment/file_system_win32.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <windows.h>

#include <chrono>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "contract/junction_win32.h"
#include "environment/runtime_error.h"
#include "environment/windows_calls_win32.h"
#include "fakes/temp_folder.h"

namespace txs {
namespace {

using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

class WindowsFileSystemTest : public testing::Test {
 protected:
  [[nodiscard]] std::string At(std::string_view name) const {
    return ToUtf8(root.Path().native()) + "\\" + std::string(name);
  }
  void Put(std::string_view name, std::string_view bytes) { files.ReplaceWhole(At(name), bytes); }
  void SetAttributes(std::string_view name, DWORD attributes) const {
    ASSERT_TRUE(SetFileAttributesW(ToWide(At(name)).c_str(), attributes));
  }
  [[nodiscard]] DWORD Attributes(std::string_view name) const {
    return GetFileAttributesW(ToWide(At(name)).c_str());
  }
  // As a virus scanner holds it: nobody else may do anything with it.
  [[nodiscard]] KernelHandle Hold(std::string_view name, DWORD sharing = 0) const {
    return KernelHandle(CreateFileW(ToWide(At(name)).c_str(), GENERIC_READ, sharing, nullptr,
                                    OPEN_EXISTING, 0, nullptr));
  }
  template <typename Operation>
  ErrorNumber NumberOf(const Operation& operation) {
    try {
      operation();
    } catch (const RuntimeError& error) {
      EXPECT_FALSE(error.Description().empty());
      return error.Number();
    }
    return ErrorNumber{};
  }
  [[nodiscard]] std::vector<std::string> Names(std::string_view folder) const {
    std::vector<std::string> names;
    for (const FileEntry& entry : files.List(At(folder), "*")) names.push_back(entry.name);
    return names;
  }

  TempFolder root;
  // Patient enough to be seen waiting, not more.
  WindowsFileSystem files{RetryPauses::Limits{
      .first = milliseconds(5), .longest = milliseconds(20), .total = milliseconds(150)}};
};

TEST_F(WindowsFileSystemTest, PathsOfMoreThan260CharactersWorkInEveryOperation) {
  std::string folder = "deep";
  for (int i = 0; i < 12; ++i) folder += "\\" + std::string(50, static_cast<char>('a' + i));
  ASSERT_GT(At(folder).size(), 600U);

  files.MakeFolder(At(folder));
  Put(folder + "\\new.txt", "1");
  Put(folder + "\\NEW.txt", "2");
  files.CopyWhole(At(folder + "\\new.txt"), At(folder + "\\copy.txt"));
  files.MoveWhole(At(folder + "\\copy.txt"), At(folder + "\\moved.txt"));
  files.OpenForAppending(At(folder + "\\moved.txt"))->Close();

  EXPECT_TRUE(files.FolderExists(At(folder)));
  EXPECT_EQ(files.ReadWhole(At(folder + "\\moved.txt")), "2");
  EXPECT_EQ(files.Length(At(folder + "\\.\\..\\" + std::string(50, 'l') + "\\new.txt")), 1U);
  EXPECT_THAT(Names(folder), ElementsAre("moved.txt", "new.txt"));
  EXPECT_GT(files.FreeSpaceBytes(At(folder)), 0U);
  EXPECT_EQ(files.HostPath(At(folder + "\\NEW.txt")), At(folder + "\\new.txt"));
  files.RemoveFile(At(folder + "\\moved.txt"));
  files.RemoveTree(At("deep"));
  EXPECT_THAT(Names(""), IsEmpty());
}

TEST_F(WindowsFileSystemTest, ALongPathMayBeGivenInTheFormOfTheSystem) {
  Put("x", "1");

  EXPECT_EQ(files.ReadWhole("\\\\?\\" + At("x")), "1");
}

TEST_F(WindowsFileSystemTest, WhatAnotherProgramHoldsForAMomentIsTriedAgain) {
  for (const char* name : {"read", "written", "appended", "replaced", "removed", "from", "to"}) {
    Put(name, "old");
  }
  // On a busy computer a moment may take long.
  WindowsFileSystem patient(RetryPauses::Limits{
      .first = milliseconds(5), .longest = milliseconds(20), .total = milliseconds(60'000)});
  const auto operations = std::vector<std::pair<std::string, std::function<void()>>>{
      {"read", [&] { static_cast<void>(patient.ReadWhole(At("read"))); }},
      {"written", [&] { patient.CreateForWriting(At("written"))->Close(); }},
      {"appended", [&] { patient.OpenForAppending(At("appended"))->Close(); }},
      {"replaced", [&] { patient.ReplaceWhole(At("replaced"), "new"); }},
      {"removed", [&] { patient.RemoveFile(At("removed")); }},
      {"from", [&] { patient.CopyWhole(At("from"), At("copy")); }},
      {"to", [&] { patient.MoveWhole(At("copy"), At("to")); }}};

  for (const auto& [name, operation] : operations) {
    KernelHandle held = Hold(name);
    ASSERT_TRUE(held.IsOpen()) << name;

    std::thread scanner([&held] {
      std::this_thread::sleep_for(milliseconds(40));
      held = KernelHandle();
    });
    EXPECT_NO_THROW(operation()) << name;
    scanner.join();
  }
}

TEST_F(WindowsFileSystemTest, WhatAnotherProgramKeepsIsAnErrorAfterABoundedTime) {
  Put("x", "old");
  const KernelHandle held = Hold("x");
  const auto begin = std::chrono::steady_clock::now();

  EXPECT_EQ(NumberOf([&] { static_cast<void>(files.ReadWhole(At("x"))); }),
            ErrorNumber::kPermissionDenied);
  const auto waited = std::chrono::steady_clock::now() - begin;

  // It did wait. That it did not wait for ever is seen by being here.
  EXPECT_GE(waited, milliseconds(150));
}

TEST_F(WindowsFileSystemTest, AFailedReplacementLeavesTheOldFileAndNothingBeside) {
  Put("x", "old");
  {
    const KernelHandle held = Hold("x", FILE_SHARE_READ);
    EXPECT_EQ(NumberOf([&] { files.ReplaceWhole(At("x"), "new"); }),
              ErrorNumber::kPermissionDenied);
  }

  EXPECT_EQ(files.ReadWhole(At("x")), "old");
  EXPECT_THAT(Names(""), ElementsAre("x"));
}

TEST_F(WindowsFileSystemTest, AReplacementThatCannotBeWrittenLeavesTheOldFileAndNothingBeside) {
  Put("x", "old");
  // Bytes that the system cannot read fail as a full disk does: with the new file open.
  constexpr std::size_t kSize = 4096;
  void* const unreadable = VirtualAlloc(nullptr, kSize, MEM_RESERVE | MEM_COMMIT, PAGE_NOACCESS);
  ASSERT_NE(unreadable, nullptr);

  EXPECT_NE(NumberOf([&] {
              files.ReplaceWhole(At("x"), {static_cast<const char*>(unreadable), kSize});
            }),
            ErrorNumber{});

  EXPECT_EQ(files.ReadWhole(At("x")), "old");
  EXPECT_THAT(Names(""), ElementsAre("x"));
  VirtualFree(unreadable, 0, MEM_RELEASE);
}

TEST_F(WindowsFileSystemTest, WhatIsBeingDeletedMayBeMadeAnewSoon) {
  WindowsFileSystem patient(RetryPauses::Limits{
      .first = milliseconds(5), .longest = milliseconds(20), .total = milliseconds(60'000)});
  const auto operations = std::vector<std::pair<std::string, std::function<void()>>>{
      {"replaced", [&] { patient.ReplaceWhole(At("replaced"), "new"); }},
      {"folder", [&] { patient.MakeFolder(At("folder\\inside")); }}};
  Put("replaced", "old");
  files.MakeFolder(At("folder"));

  for (const auto& [name, operation] : operations) {
    KernelHandle held(CreateFileW(ToWide(At(name)).c_str(), GENERIC_READ, kShareAll, nullptr,
                                  OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    ASSERT_TRUE(held.IsOpen()) << name;
    const std::wstring path = ToWide(At(name));
    ASSERT_TRUE(name == "folder" ? RemoveDirectoryW(path.c_str()) : DeleteFileW(path.c_str()));

    std::thread indexer([&held] {
      std::this_thread::sleep_for(milliseconds(40));
      held = KernelHandle();
    });
    EXPECT_NO_THROW(operation()) << name;
    indexer.join();
  }

  EXPECT_EQ(files.ReadWhole(At("replaced")), "new");
  EXPECT_TRUE(files.FolderExists(At("folder\\inside")));
}

TEST_F(WindowsFileSystemTest, AHiddenFileIsCopiedAsAnOrdinaryOneAndCopiedOver) {
  Put("from", "contents");
  Put("to", "something longer than that");
  for (const DWORD attributes : {FILE_ATTRIBUTE_HIDDEN, FILE_ATTRIBUTE_SYSTEM}) {
    SetAttributes("from", attributes);
    SetAttributes("to", attributes);

    files.CopyWhole(At("from"), At("to"));
    files.CopyWhole(At("from"), At("new"));

    for (const char* name : {"to", "new"}) {
      EXPECT_EQ(files.ReadWhole(At(name)), "contents");
      EXPECT_EQ(Attributes(name) & (FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM), 0U) << name;
    }
    EXPECT_NE(Attributes("from") & attributes, 0U);
    files.RemoveFile(At("new"));
  }
}

TEST_F(WindowsFileSystemTest, AHiddenFileIsReplacedWrittenAndStaysHidden) {
  Put("x", "old");
  SetAttributes("x", FILE_ATTRIBUTE_HIDDEN);

  files.ReplaceWhole(At("x"), "new");
  EXPECT_NE(Attributes("x") & FILE_ATTRIBUTE_HIDDEN, 0U);
  files.CreateForWriting(At("x"))->Close();

  EXPECT_EQ(files.Length(At("x")), 0U);
  EXPECT_NE(Attributes("x") & FILE_ATTRIBUTE_HIDDEN, 0U);
}

TEST_F(WindowsFileSystemTest, WhileAFileIsWrittenOthersMayReadItAndNotWrite) {
  const auto writer = files.CreateForWriting(At("x"));
  const std::string text = "so far";
  writer->Write(std::as_bytes(std::span(text)));

  EXPECT_EQ(files.ReadWhole(At("x")), "so far");
  EXPECT_EQ(NumberOf([&] { static_cast<void>(files.OpenForAppending(At("x"))); }),
            ErrorNumber::kPermissionDenied);
}

TEST_F(WindowsFileSystemTest, ATreeGoesWithReadOnlyFilesAndFolders) {
  files.MakeFolder(At("tree\\inside"));
  Put("tree\\inside\\fixed", "1");
  Put("tree\\hidden", "1");
  SetAttributes("tree\\inside\\fixed", FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_SYSTEM);
  SetAttributes("tree\\hidden", FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_READONLY);
  SetAttributes("tree\\inside", FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DIRECTORY);

  files.RemoveTree(At("tree"));

  EXPECT_THAT(Names(""), IsEmpty());
}

TEST_F(WindowsFileSystemTest, ATreeGoesWithNamesThatMeanSomethingElseToWindows) {
  const std::wstring tree = ToWide("\\\\?\\" + At("tree"));
  const std::vector<std::wstring> folders = {tree, tree + L"\\nul", tree + L"\\dot.",
                                             tree + L"\\dot.\\blank "};
  const std::vector<std::wstring> inside = {tree + L"\\aux", tree + L"\\com1.txt",
                                            tree + L"\\nul\\x.", tree + L"\\dot.\\x "};
  for (const std::wstring& path : folders) {
    ASSERT_TRUE(CreateDirectoryW(path.c_str(), nullptr)) << ToUtf8(path);
  }
  for (const std::wstring& path : inside) {
    const KernelHandle file(
        CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr));
    ASSERT_TRUE(file.IsOpen()) << ToUtf8(path);
  }

  EXPECT_EQ(NumberOf([&] { files.RemoveTree(At("tree")); }), ErrorNumber{});

  EXPECT_THAT(Names(""), IsEmpty());
  // What tidies after a test does not know these names, and would not end.
  for (const std::wstring& path : inside) DeleteFileW(path.c_str());
  for (auto path = folders.rbegin(); path != folders.rend(); ++path)
    RemoveDirectoryW(path->c_str());
}

TEST_F(WindowsFileSystemTest, AFileInUseKeepsItsTreeAndNothingElse) {
  files.MakeFolder(At("tree\\a"));
  files.MakeFolder(At("tree\\z"));
  Put("tree\\a\\x", "1");
  Put("tree\\held", "1");
  Put("tree\\z\\x", "1");
  {
    const KernelHandle held = Hold("tree\\held", FILE_SHARE_READ);
    EXPECT_EQ(NumberOf([&] { files.RemoveTree(At("tree")); }), ErrorNumber::kPermissionDenied);
  }

  EXPECT_THAT(Names("tree"), ElementsAre("held"));
}

TEST_F(WindowsFileSystemTest, WhatAJunctionPointsToIsNeverDeleted) {
  files.MakeFolder(At("precious"));
  Put("precious\\x", "1");
  files.MakeFolder(At("tree"));
  const Junction made = MakeJunction(At("tree\\in"), At("precious"));
  ASSERT_NE(made, Junction::kNone);
  ASSERT_TRUE(files.FileExists(At("tree\\in\\x")));
  EXPECT_TRUE(files.List(At("tree"), "*").front().is_link);
  EXPECT_FALSE(files.List(At(""), "precious").front().is_link);

  const ErrorNumber number = NumberOf([&] { files.RemoveTree(At("tree")); });

  EXPECT_EQ(files.ReadWhole(At("precious\\x")), "1");
  if (made == Junction::kReal) {
    EXPECT_EQ(number, ErrorNumber{});
    EXPECT_THAT(Names(""), ElementsAre("precious"));
  } else {
    // Wine shows links of the host, and cannot remove those to folders.
    EXPECT_NE(number, ErrorNumber{});
  }
}

TEST(WindowsReparsePoints, OnlyLinksLeadElsewhere) {
  constexpr DWORD kFolder = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT;
  constexpr DWORD kTagOfACloud = 0x9000'001A;

  EXPECT_TRUE(LeadsElsewhere(kFolder, IO_REPARSE_TAG_MOUNT_POINT));
  EXPECT_TRUE(LeadsElsewhere(FILE_ATTRIBUTE_REPARSE_POINT, IO_REPARSE_TAG_SYMLINK));
  EXPECT_TRUE(LeadsElsewhere(kFolder, 0));
  EXPECT_FALSE(LeadsElsewhere(kFolder, kTagOfACloud));
  EXPECT_FALSE(LeadsElsewhere(FILE_ATTRIBUTE_DIRECTORY, 0));
}

TEST(WindowsPaths, TheFormOfTheSystemIsTakenForDrivesAndShares) {
  EXPECT_EQ(NativePath("\\\\?\\C:\\a"), L"C:\\a");
  EXPECT_EQ(NativePath("\\\\?\\UNC\\server\\share\\a"), L"\\\\server\\share\\a");
  EXPECT_EQ(NativePath("\\\\?\\unc\\server\\share\\a"), L"\\\\server\\share\\a");
  EXPECT_EQ(NativePath("//?/Unc/server/share/a"), L"\\\\server\\share\\a");
}

TEST_F(WindowsFileSystemTest, WhatLiesOnNoDriveAndNoShareIsNoPath) {
  for (const std::string& path :
       {std::string("\\\\?\\Volume{7c1e3f52-9a4b-4d77-8e21-3b0a5d6f9c10}\\x"),
        std::string("\\\\?\\GLOBALROOT\\x"), std::string("\\\\?\\x"),
        std::string("\\\\ser\0ver\\share\\x", 18), std::string("\\\\server\\sha\0re\\x", 18),
        std::string("\\\\server\\sha*re\\x")}) {
    EXPECT_EQ(NumberOf([&] { static_cast<void>(files.OpenForReading(path)); }),
              ErrorNumber::kBadFileName)
        << path;
    EXPECT_FALSE(files.FileExists(path)) << path;
  }
}

TEST_F(WindowsFileSystemTest, ADeviceIsNoFile) {
  for (const std::string& path : {std::string("NUL"), At("nul"), std::string("C:\\COM1")}) {
    EXPECT_FALSE(files.FileExists(path)) << path;
    EXPECT_EQ(NumberOf([&] { static_cast<void>(files.OpenForReading(path)); }),
              ErrorNumber::kPathFileAccess)
        << path;
    EXPECT_EQ(NumberOf([&] { static_cast<void>(files.CreateForWriting(path)); }),
              ErrorNumber::kPathFileAccess)
        << path;
  }
}

TEST_F(WindowsFileSystemTest, MovingAFileOverAnotherNameOfItselfLeavesOneName) {
  Put("a", "contents");
  ASSERT_TRUE(CreateHardLinkW(ToWide(At("b")).c_str(), ToWide(At("a")).c_str(), nullptr));

  files.MoveWhole(At("a"), At("b"));

  EXPECT_THAT(Names(""), ElementsAre("b"));
  EXPECT_EQ(files.ReadWhole(At("b")), "contents");
}

TEST_F(WindowsFileSystemTest, ARelativePathIsTakenFromTheCurrentDirectory) {
  const std::filesystem::path before = std::filesystem::current_path();
  Put("x", "1");
  std::filesystem::current_path(root.Path());

  EXPECT_EQ(files.ReadWhole("x"), "1");
  EXPECT_EQ(files.WindowsPath("sub\\..\\x"), At("x"));

  std::filesystem::current_path(before);
}

TEST_F(WindowsFileSystemTest, NamesAreShownAsTheDiskSpellsThem) {
  files.MakeFolder(At("Folder"));
  Put("Folder\\Größe.TXT", "1");

  EXPECT_EQ(files.HostPath(At("FOLDER\\größe.txt")), At("Folder\\Größe.TXT"));
  EXPECT_EQ(files.HostPath(At("folder/New/x")), At("Folder\\New\\x"));
  EXPECT_EQ(files.HostPath("C:"), "C:\\");
  EXPECT_EQ(NumberOf([&] { static_cast<void>(files.HostPath("Q:\\x")); }),
            ErrorNumber::kPathNotFound);
}

TEST_F(WindowsFileSystemTest, TheTimeIsThatOfTheSystem) {
  Put("x", "1");
  const KernelHandle file(CreateFileW(ToWide(At("x")).c_str(), FILE_WRITE_ATTRIBUTES, kShareAll,
                                      nullptr, OPEN_EXISTING, 0, nullptr));
  // 2004-03-15 12:00:00 UTC and one tick.
  const std::uint64_t ticks = 127'238'256'000'000'001;
  const FILETIME time = {static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
  ASSERT_TRUE(SetFileTime(file.Get(), nullptr, nullptr, &time));

  EXPECT_EQ(files.LastWriteTime(At("x")),
            FileTime(std::chrono::sys_days(std::chrono::year(2004) / 3 / 15)) +
                std::chrono::hours(12) + FileTicks(1));
}

// How often an operation is tried that always ends with this error.
int Attempts(DWORD error, Denied denied) {
  RetryPauses pauses(RetryPauses::Limits{
      .first = milliseconds(50), .longest = milliseconds(50), .total = milliseconds(300)});
  int attempts = 0;
  const auto operation = [&]() -> DWORD {
    ++attempts;
    return error;
  };
  EXPECT_EQ(RetryWhileBusy(pauses, operation, denied), error);
  return attempts;
}

TEST(WindowsRetry, WhatIsDeniedForGoodIsGivenUpSooner) {
  static_assert(kPatienceWithDenied == milliseconds(150));

  EXPECT_EQ(Attempts(ERROR_SHARING_VIOLATION, Denied::kMostlyForGood), 7);
  EXPECT_EQ(Attempts(ERROR_ACCESS_DENIED, Denied::kMostlyForGood), 4);
  EXPECT_EQ(Attempts(ERROR_ACCESS_DENIED, Denied::kHeld), 7);
  EXPECT_EQ(Attempts(ERROR_DISK_FULL, Denied::kHeld), 1);
}

TEST(WindowsErrors, HaveTheNumbersThatUsersKnow) {
  EXPECT_EQ(NumberOfWindowsError(ERROR_FILE_NOT_FOUND), ErrorNumber::kFileNotFound);
  EXPECT_EQ(NumberOfWindowsError(ERROR_BAD_NETPATH), ErrorNumber::kPathNotFound);
  EXPECT_EQ(NumberOfWindowsError(ERROR_SHARING_VIOLATION), ErrorNumber::kPermissionDenied);
  EXPECT_EQ(NumberOfWindowsError(ERROR_DISK_FULL), ErrorNumber::kDiskFull);
  EXPECT_EQ(NumberOfWindowsError(ERROR_HANDLE_DISK_FULL), ErrorNumber::kDiskFull);
  EXPECT_EQ(NumberOfWindowsError(ERROR_CRC), ErrorNumber::kDeviceIo);
  EXPECT_EQ(NumberOfWindowsError(ERROR_NOT_READY), ErrorNumber::kDiskNotReady);
  EXPECT_EQ(NumberOfWindowsError(ERROR_TOO_MANY_OPEN_FILES), ErrorNumber::kTooManyFiles);
  EXPECT_EQ(NumberOfWindowsError(ERROR_OUTOFMEMORY), ErrorNumber::kOutOfMemory);
  EXPECT_EQ(NumberOfWindowsError(ERROR_INVALID_NAME), ErrorNumber::kBadFileName);
  EXPECT_EQ(NumberOfWindowsError(ERROR_DIR_NOT_EMPTY), ErrorNumber::kPathFileAccess);
}

TEST(WindowsErrors, AreSaidInTheWordsOfTheSystemOrByTheirNumber) {
  const std::string words = WordsOfWindowsError(ERROR_FILE_NOT_FOUND);

  EXPECT_FALSE(words.empty());
  EXPECT_FALSE(words.ends_with('\n') || words.ends_with('.')) << words;
  EXPECT_EQ(WordsOfWindowsError(0x2FFFFFFF), "Windows error 805306367");
}

}  // namespace
}  // namespace txs
