// The platform on Windows, over a registry of its own.

#include <gtest/gtest.h>

#include <memory>

#include "environment/installation.h"
#include "environment/platform.h"
#include "environment/windows_calls_win32.h"
#include "fakes/scratch_registry_win32.h"
#include "fakes/scripted_message_boxes.h"
#include "fakes/temp_folder.h"

namespace txs {
namespace {

class WindowsPlatformTest : public testing::Test {
 protected:
  [[nodiscard]] std::string At(const std::string& name) const {
    return ToUtf8(folder.Path().native()) + "\\" + name;
  }

  ScratchRegistry scratch;
  TempFolder folder;
  ScriptedMessageBoxes message_boxes;
  std::unique_ptr<OwnedPlatform> owned = MakeHostPlatform(message_boxes);
  Platform& platform = owned->Get();
};

TEST_F(WindowsPlatformTest, WhereTheStudioNamesNoComponentTheProjectFileIsRead) {
  platform.files.ReplaceWhole(At("Demo.txs"), "[Global]\r\nVersion=7\r\n");

  const auto configurator = platform.make_configurator();

  ASSERT_NE(configurator, nullptr);
  EXPECT_EQ(configurator->OpenProject(At("Demo.txs")), "7");
}

TEST_F(WindowsPlatformTest, AComponentThatIsNamedAndCannotBeCreatedIsNone) {
  platform.registry.Write(Hive::kLocalMachine, kStudioKey, kConfiguratorValue, "No.Such.Class");

  EXPECT_EQ(platform.make_configurator(), nullptr);
}

TEST_F(WindowsPlatformTest, WithoutTheProductsLibraryAFileIsPackedAllTheSame) {
  platform.files.ReplaceWhole(At("a.dll"), "contents");

  EXPECT_EQ(platform.archiver.Compress(At("a.dll.zip"), At("a.dll")), ArchiveResult::kSuccess);

  EXPECT_TRUE(platform.files.ReadWhole(At("a.dll.zip")).starts_with("PK"));
}

TEST_F(WindowsPlatformTest, TheTimeOfAFileIsThatOfTheClock) {
  const FileTime before = platform.clock.Now() - std::chrono::seconds(5);
  platform.files.ReplaceWhole(At("a"), "");

  EXPECT_GE(platform.files.LastWriteTime(At("a")), before);
}

}  // namespace
}  // namespace txs
