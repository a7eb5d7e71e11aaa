// Installations that somebody made to do harm: `verify` tells what is wrong with them, writes
// nothing and opens nothing outside the directory that it was given. Each is tried in memory, where
// the diary tells what was asked for, and on the real disk.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "environment/windows_path.h"
#include "fakes/memory_file_system.h"
#include "tool/hostile_installations.h"

namespace txs {
namespace {

using ::testing::Contains;
using ::testing::Field;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;
using ::testing::UnorderedElementsAre;

namespace fs = std::filesystem;

constexpr char kSetup[] = "C:\\Setup";
constexpr char kSecret[] = "C:\\Secret\\secret.zip";

TEST(HostileInstallationInMemory, IsToldOfWithoutWritingAndWithoutLeavingItsDirectory) {
  for (const Hostile& hostile : HostileInstallations()) {
    SCOPED_TRACE(hostile.name);
    MemoryFileSystem files;
    files.AddFile(kSecret, "secret");
    for (const auto& [path, bytes] : hostile.installation) {
      files.AddFile(JoinPath(kSetup, path), bytes);
    }
    const std::vector<std::string> before = files.AllFiles();
    files.diary.clear();

    const VerifyResult result = VerifyInstallation(files, kSetup);

    EXPECT_THAT(result.damages, Contains(Field(&Damage::what, HasSubstr(hostile.fault))));
    EXPECT_LE(result.damages.size(), 10'001u);
    EXPECT_EQ(files.AllFiles(), before);
    for (const auto& [operation, path] : files.diary) {
      EXPECT_THAT((std::vector<std::string>{"FolderExists", "List", "Stamp", "OpenForReading",
                                            "Read", "Seek"}),
                  Contains(operation));
      EXPECT_THAT(path, StartsWith(kSetup));
      EXPECT_THAT(path, Not(HasSubstr("..")));
    }
    EXPECT_LE(files.diary.size(), 1000u);
  }
}

TEST_F(HostileInstallationOnDisk, IsToldOfWithoutWritingAndWithoutLeavingItsDirectory) {
  for (const Hostile& hostile : HostileInstallations()) {
    SCOPED_TRACE(hostile.name);
    fs::remove_all(Setup(""));
    Lay(hostile.installation);

    const VerifyResult result = VerifyWatched();

    EXPECT_THAT(result.damages, Contains(Field(&Damage::what, HasSubstr(hostile.fault))));
  }
}

TEST(HostileInstallationInMemory, EntriesThatNoPathCanNameAreDamages) {
  MemoryFileSystem files;
  files.AddFile(JoinPath(kSetup, "DISK1\\DISK1"), " 1 ");
  files.AddFile(JoinPath(kSetup, "DISK1\\SETUP.STP"), Script({}));
  files.AddUnusableEntry(JoinPath(kSetup, "DISK1"), {"a:b.zip"});
  files.AddUnusableEntry(kSetup, {"DISK9\xFC", /*is_folder=*/true});

  const std::string what = "has a name that no setup can use";
  EXPECT_THAT(VerifyInstallation(files, kSetup).damages,
              UnorderedElementsAre(Damage{"DISK9\\xFC", what}, Damage{"DISK1\\a:b.zip", what}));
}

// Names that only another program can have given, and that a back-end may list all the same.
class OddNames : public FileReader {
 public:
  std::vector<std::string> names;
  mutable std::vector<std::string> asked;

  [[nodiscard]] bool FileExists(std::string_view) const override { return false; }
  [[nodiscard]] bool FolderExists(std::string_view) const override { return true; }
  [[nodiscard]] std::optional<FileStamp> Stamp(std::string_view path) const override {
    asked.emplace_back(path);
    return std::nullopt;
  }
  [[nodiscard]] std::unique_ptr<InputFile> OpenForReading(std::string_view path) const override {
    asked.emplace_back(path);
    throw RuntimeError(ErrorNumber::kFileNotFound, std::string(path));
  }
  [[nodiscard]] std::vector<FileEntry> List(std::string_view folder,
                                            std::string_view) const override {
    if (FileName(folder) != "DISK1") return {{"DISK1", /*is_folder=*/true}};
    std::vector<FileEntry> entries;
    for (const std::string& name : names) entries.push_back({name, /*is_folder=*/false});
    return entries;
  }
  [[nodiscard]] std::vector<FileEntry> UnusableEntries(std::string_view) const override {
    return {};
  }
};

TEST(HostileInstallation, AFileWhoseNameLeadsElsewhereIsNotLookedAt) {
  OddNames disk;
  disk.names = {"..\\..\\secret.zip", "..", "NUL", "COM1.zip", "C:\\x.zip", "x.zip:stream", "a/b"};

  const VerifyResult result = VerifyInstallation(disk, kSetup);

  EXPECT_THAT(disk.asked, IsEmpty());
  for (const std::string& name : disk.names) {
    EXPECT_THAT(result.damages,
                Contains(Damage{"DISK1\\" + name, "has a name that no setup can use"}));
  }
}

}  // namespace
}  // namespace txs
