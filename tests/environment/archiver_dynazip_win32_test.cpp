// The DynaZIP adapter against a library of our own (tests/windows/standin_dzip32.cpp), which checks
// every byte of the record and packs, or fails, as the environment variable TXS_DZIP_RESULT says.

#include "environment/archiver_dynazip_win32.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <windows.h>

#include <filesystem>
#include <string>

#include "environment/file_system_win32.h"
#include "environment/registry_win32.h"
#include "environment/windows_calls_win32.h"
#include "fakes/memory_platform.h"
#include "fakes/temp_folder.h"

namespace txs {
namespace {

using testing::HasSubstr;

constexpr char kMark[] = "packed by the stand-in";

// Notes what it is asked to pack.
class NotingArchiver : public Archiver {
 public:
  std::vector<std::string> sources;
  ArchiveResult result = ArchiveResult::kSuccess;
  std::string reason;

  ArchiveResult Compress(std::string_view, std::string_view source_path) override {
    sources.emplace_back(source_path);
    return result;
  }

  [[nodiscard]] std::string FailureReason() const override { return reason; }
};

// Where files are as long as wanted, and none can be removed.
class StrangeFiles : public WindowsFileSystem {
 public:
  std::uint64_t length_bytes = 0;

  [[nodiscard]] std::optional<FileStamp> Stamp(std::string_view path) const override {
    std::optional<FileStamp> stamp = WindowsFileSystem::Stamp(path);
    if (stamp) stamp->length_bytes = length_bytes;
    return stamp;
  }
  void RemoveFile(std::string_view path) override {
    ThrowAbout(ErrorNumber::kPermissionDenied, path, "in use");
  }
};

class DynaZipTest : public testing::Test {
 protected:
  void SetUp() override {
    SetEnvironmentVariableW(L"TXS_DZIP_RESULT", nullptr);
    files.ReplaceWhole(At("Grün.dll"), "contents");
  }
  void TearDown() override { SetEnvironmentVariableW(L"TXS_DZIP_RESULT", nullptr); }

  [[nodiscard]] std::string At(std::string_view name) const {
    return ToUtf8(root.Path().native()) + "\\" + std::string(name);
  }
  // Where the build put the stand-in: in a folder beside this program.
  [[nodiscard]] static std::string StandInFolder() {
    wchar_t program[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    return ToUtf8((std::filesystem::path(program).parent_path() / "dynazip").native());
  }

  TempFolder root;
  WindowsFileSystem files;
  NotingArchiver built_in;
};

TEST_F(DynaZipTest, TheLibraryPacksAndTheRecordIsRightByteByByte) {
  const auto archiver = LoadDynaZipArchiver(files, built_in, {At("none"), StandInFolder()});
  ASSERT_NE(archiver, nullptr);

  EXPECT_EQ(archiver->Compress(At("Grün.dll.zip"), At("Grün.dll")), ArchiveResult::kSuccess);

  const std::string archive = files.ReadWhole(At("Grün.dll.zip"));
  EXPECT_TRUE(archive.starts_with("PK\x03\x04"));
  EXPECT_THAT(archive, HasSubstr("contents"));
  EXPECT_TRUE(archive.ends_with(kMark));
  EXPECT_TRUE(built_in.sources.empty());
}

TEST_F(DynaZipTest, AnArchiveThatIsThereIsReplacedNotAddedTo) {
  const auto archiver = LoadDynaZipArchiver(files, built_in, {StandInFolder()});
  ASSERT_NE(archiver, nullptr);
  files.ReplaceWhole(At("a.zip"), "old");

  EXPECT_EQ(archiver->Compress(At("a.zip"), At("Grün.dll")), ArchiveResult::kSuccess);

  EXPECT_TRUE(files.ReadWhole(At("a.zip")).starts_with("PK"));
}

TEST_F(DynaZipTest, ItsResultCodesAreAnsweredAsTheyAreAndNoArchiveStays) {
  const auto archiver = LoadDynaZipArchiver(files, built_in, {StandInFolder()});
  ASSERT_NE(archiver, nullptr);
  SetEnvironmentVariableW(L"TXS_DZIP_RESULT", L"21");

  EXPECT_EQ(archiver->Compress(At("a.zip"), At("Grün.dll")), ArchiveResult{21});

  EXPECT_FALSE(files.FileExists(At("a.zip")));
}

TEST_F(DynaZipTest, WhatTheRecordCannotHoldIsPackedByTheBuiltInArchiver) {
  const auto archiver = LoadDynaZipArchiver(files, built_in, {StandInFolder()});
  ASSERT_NE(archiver, nullptr);
  const std::string long_path = At(std::string(250, 'x') + "\\" + std::string(50, 'y'));

  EXPECT_EQ(archiver->Compress(At("a.zip"), long_path), ArchiveResult::kSuccess);
  EXPECT_EQ(archiver->Compress(At("a.zip"), "C:\\\xC4\x8C.dll"), ArchiveResult::kSuccess);

  EXPECT_EQ(built_in.sources, (std::vector<std::string>{long_path, "C:\\\xC4\x8C.dll"}));
}

// What does not shrink becomes an archive that is a little longer than its source.
TEST_F(DynaZipTest, FilesAMebibyteShortOf2GiBAreTooLongForTheLibrary) {
  StrangeFiles strange;
  const auto archiver = LoadDynaZipArchiver(strange, built_in, {StandInFolder()});
  ASSERT_NE(archiver, nullptr);

  const std::uint64_t too_long = (std::uint64_t{1} << 31) - (std::uint64_t{1} << 20);
  strange.length_bytes = too_long - 1;
  EXPECT_EQ(archiver->Compress(At("a.zip"), At("Grün.dll")), ArchiveResult::kSuccess);
  EXPECT_TRUE(built_in.sources.empty());

  strange.length_bytes = too_long;
  EXPECT_EQ(archiver->Compress(At("b.zip"), At("Grün.dll")), ArchiveResult::kSuccess);
  EXPECT_EQ(built_in.sources, std::vector<std::string>{At("Grün.dll")});
}

TEST_F(DynaZipTest, TheSourceIsNeverTakenForTheArchive) {
  const auto archiver = LoadDynaZipArchiver(files, built_in, {StandInFolder()});
  ASSERT_NE(archiver, nullptr);

  EXPECT_EQ(archiver->Compress(At("GRÜN.DLL"), At("Grün.dll")), ArchiveResult::kArchiveNotCreated);

  EXPECT_EQ(archiver->FailureReason(), At("Grün.dll") + ": Cannot copy a file onto itself");
  EXPECT_EQ(files.ReadWhole(At("Grün.dll")), "contents");
}

TEST_F(DynaZipTest, ItsResultCodeIsAnsweredAlsoWhenHalfAnArchiveCannotBeRemoved) {
  StrangeFiles strange;
  const auto archiver = LoadDynaZipArchiver(strange, built_in, {StandInFolder()});
  ASSERT_NE(archiver, nullptr);
  SetEnvironmentVariableW(L"TXS_DZIP_RESULT", L"21");

  EXPECT_EQ(archiver->Compress(At("a.zip"), At("Grün.dll")), ArchiveResult{21});

  EXPECT_TRUE(files.FileExists(At("a.zip")));
}

TEST_F(DynaZipTest, WhyItFailedIsSaidUntilTheNextSuccess) {
  StrangeFiles strange;
  const auto archiver = LoadDynaZipArchiver(strange, built_in, {StandInFolder()});
  ASSERT_NE(archiver, nullptr);
  files.ReplaceWhole(At("a.zip"), "old");

  EXPECT_EQ(archiver->Compress(At("a.zip"), At("Grün.dll")), ArchiveResult::kArchiveNotCreated);
  EXPECT_EQ(archiver->FailureReason(), At("a.zip") + ": in use");

  EXPECT_EQ(archiver->Compress(At("b.zip"), At("Grün.dll")), ArchiveResult::kSuccess);
  EXPECT_EQ(archiver->FailureReason(), "");
}

TEST_F(DynaZipTest, WhyTheBuiltInArchiverFailedIsSaidWhetherOrNotThereIsALibrary) {
  built_in.result = ArchiveResult::kDiskFull;
  built_in.reason = "C:\\a.zip: full";
  const auto library = LoadDynaZipArchiver(files, built_in, {StandInFolder()});
  ASSERT_NE(library, nullptr);
  MemoryPlatform world;
  world.tools.Initialize({.directory = At("none"), .executable_name = "w", .title = "t"});
  const auto product =
      MakeProductArchiver(files, world.tools, std::make_unique<NotingArchiver>(built_in));

  EXPECT_EQ(library->Compress(At("a.zip"), "C:\\\xC4\x8C.dll"), ArchiveResult::kDiskFull);
  EXPECT_EQ(library->FailureReason(), "C:\\a.zip: full");
  EXPECT_EQ(product->Compress(At("a.zip"), At("Grün.dll")), ArchiveResult::kDiskFull);
  EXPECT_EQ(product->FailureReason(), "C:\\a.zip: full");
}

TEST_F(DynaZipTest, WhatIsNoLibraryOrLacksTheFunctionIsPassedOver) {
  files.MakeFolder(At("junk"));
  files.ReplaceWhole(At("junk\\dzip32.dll"), "MZ, but no program");
  files.MakeFolder(At("other"));
  wchar_t other[MAX_PATH] = {};
  GetModuleFileNameW(GetModuleHandleW(L"version.dll"), other, MAX_PATH);
  files.CopyWhole(ToUtf8(other), At("other\\dzip32.dll"));

  EXPECT_EQ(LoadDynaZipArchiver(files, built_in, {At("junk"), At("other"), At("none")}), nullptr);
}

TEST_F(DynaZipTest, WithoutALibraryTheBuiltInArchiverServes) {
  MemoryPlatform world;
  world.tools.Initialize({.directory = At("none"), .executable_name = "w", .title = "t"});
  auto owned = std::make_unique<NotingArchiver>();
  const NotingArchiver& noting = *owned;

  const auto archiver = MakeProductArchiver(files, world.tools, std::move(owned));

  EXPECT_EQ(archiver->Compress(At("a.zip"), At("Grün.dll")), ArchiveResult::kSuccess);
  EXPECT_EQ(noting.sources.size(), 1U);
}

TEST_F(DynaZipTest, BesideTheProgramTheLibraryIsFound) {
  MemoryPlatform world;
  world.tools.Initialize({.directory = StandInFolder(), .executable_name = "w", .title = "t"});

  const auto archiver = MakeProductArchiver(files, world.tools, std::make_unique<NotingArchiver>());

  EXPECT_EQ(archiver->Compress(At("a.zip"), At("Grün.dll")), ArchiveResult::kSuccess);
  EXPECT_TRUE(files.ReadWhole(At("a.zip")).ends_with(kMark));
}

}  // namespace
}  // namespace txs
