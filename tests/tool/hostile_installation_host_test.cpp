// Hostile installations with what only a disk of Linux holds: symbolic links and pipes.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "tool/hostile_installations.h"

namespace txs {
namespace {

using ::testing::Contains;
using ::testing::Field;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

namespace fs = std::filesystem;

TEST_F(HostileInstallationOnDisk, LinksAreDamagesAndNotFollowed) {
  const std::string archive = Archive("x.txt", "abcdef");
  WriteHostFile(Outside("x.zip"), archive);
  WriteHostFile(Outside("SETUP.STP"), Script({}));
  const std::vector<std::pair<std::string, std::function<void()>>> links = {
      {"DISK1\\x.zip", [&] { fs::create_symlink(Outside("x.zip"), Setup("DISK1\\x.zip")); }},
      {"DISK1\\x.zip", [&] { fs::create_symlink("../../Secret/x.zip", Setup("DISK1\\x.zip")); }},
      {"DISK1\\x.zip", [&] { fs::create_symlink("/dev/zero", Setup("DISK1\\x.zip")); }},
      {"DISK1\\x.zip", [&] { fs::create_symlink("x.zip", Setup("DISK1\\x.zip")); }},
      {"DISK1\\SETUP.STP",
       [&] {
         fs::remove(Setup("DISK1\\SETUP.STP"));
         fs::create_symlink(Outside("SETUP.STP"), Setup("DISK1\\SETUP.STP"));
       }},
      {"DISK1\\DISK1",
       [&] {
         fs::remove(Setup("DISK1\\DISK1"));
         fs::create_symlink(Outside("DISK2"), Setup("DISK1\\DISK1"));
       }},
      {"DISK2", [&] { fs::create_directory_symlink(Outside(""), Setup("DISK2")); }},
      {"DISK2", [&] { fs::create_directory_symlink("/", Setup("DISK2")); }},
      {"DISK1\\more", [&] { fs::create_directory_symlink("..", Setup("DISK1\\more")); }},
  };
  for (const auto& [where, link] : links) {
    SCOPED_TRACE(where);
    fs::remove_all(Setup(""));
    Lay(OneDisk({{"x.zip", "<ProjectDir>\\x.txt", "6", "1"}}));
    link();

    const VerifyResult result = VerifyWatched();

    EXPECT_THAT(result.damages, Contains(Damage{where, "is a link and not followed"}));
  }
}

// Listing passes over what no Windows path can name, so they went unseen.
TEST_F(HostileInstallationOnDisk, EntriesThatNoPathCanNameAreDamages) {
  Lay({{"DISK1\\DISK1", " 1 "}, {"DISK1\\SETUP.STP", Script({})}});
  ASSERT_THAT(VerifyWatched().damages, IsEmpty());
  for (const char* name : {"a:b.zip", "x\\y.zip", "gr\xFCn.zip", "a\nb", "*.dat"}) {
    WriteHostFile(Setup("DISK1") / name, "foreign");
  }
  fs::create_directories(Setup("") / "DISK9\xFC");
  fs::create_directories(Setup("") / "disk2:");
  fs::create_directories(Setup("") / "other:");  // beside the disks there may be anything

  const std::string what = "has a name that no setup can use";
  EXPECT_THAT(VerifyWatched().damages,
              UnorderedElementsAre(
                  Damage{"DISK9\\xFC", what}, Damage{"disk2:", what}, Damage{"DISK1\\*.dat", what},
                  Damage{"DISK1\\a:b.zip", what}, Damage{"DISK1\\x\\y.zip", what},
                  Damage{"DISK1\\gr\\xFCn.zip", what}, Damage{"DISK1\\a\\x0Ab", what}));
}

TEST_F(HostileInstallationOnDisk, PipesAreDamagesAndDoNotHoldItUp) {
  Lay(OneDisk({{"x.zip", "<ProjectDir>\\x.txt", "6", "1"}}));
  ASSERT_EQ(mkfifo(Setup("DISK1\\x.zip").c_str(), S_IRWXU), 0);

  EXPECT_THAT(VerifyWatched().damages,
              Contains(Field(&Damage::where, std::string("DISK1\\x.zip"))));

  fs::remove(Setup("DISK1\\SETUP.STP"));
  ASSERT_EQ(mkfifo(Setup("DISK1\\SETUP.STP").c_str(), S_IRWXU), 0);

  EXPECT_THAT(VerifyWatched().damages,
              Contains(Field(&Damage::where, std::string("DISK1\\SETUP.STP"))));
}

TEST_F(HostileInstallationOnDisk, TheDirectoryItselfMayBeALink) {
  fs::remove_all(Setup(""));
  fs::create_directory_symlink(disk_.Host("Secret"), disk_.Host("Setup"));
  fs::remove(Outside("DISK2"));
  Installation sound = OneDisk({{"x.zip", "<ProjectDir>\\x.txt", "6", "1"}},
                               {{"DISK1\\x.zip", Archive("x.txt", "abcdef")}});
  std::string& script = sound["DISK1\\SETUP.STP"];
  script.replace(script.find("MaxBytes=0"), 10, "MaxBytes=6");
  Lay(sound);

  EXPECT_THAT(VerifyWatched().damages, IsEmpty());
}

}  // namespace
}  // namespace txs
