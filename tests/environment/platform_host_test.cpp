#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <optional>
#include <string>

#include "environment/platform.h"
#include "environment/runtime_error.h"
#include "fakes/scripted_message_boxes.h"
#include "fakes/temp_folder.h"

namespace txs {
namespace {

// The variables that say where the studio's computer lies, as they are at the end of a test again.
class HostPlatformTest : public testing::Test {
 protected:
  void SetUp() override {
    for (std::size_t i = 0; i < std::size(kNames); ++i) {
      if (const char* const value = std::getenv(kNames[i])) kept_[i] = value;
      unsetenv(kNames[i]);
    }
  }
  void TearDown() override {
    for (std::size_t i = 0; i < std::size(kNames); ++i) {
      unsetenv(kNames[i]);
      if (kept_[i]) setenv(kNames[i], kept_[i]->c_str(), /*replace=*/1);
    }
  }

  // Makes a computer below the temporary folder whose registry tells its name.
  void MakeComputer(const std::string& where, const std::string& name) const {
    const std::filesystem::path root = folder.Path() / where;
    std::filesystem::create_directories(root / "drive_c");
    std::ofstream(root / "registry.reg")
        << "REGEDIT4\n\n[HKEY_CURRENT_USER\\Software]\n\"Name\"=\"" << name << "\"\n";
    std::ofstream(root / "drive_c" / "name.txt") << name;
  }
  void Point(const char* variable, const std::string& where) const {
    setenv(variable, (folder.Path() / where).c_str(), /*replace=*/1);
  }
  // The name of the computer that the platform is on.
  [[nodiscard]] std::string Name() {
    const std::unique_ptr<OwnedPlatform> platform = MakeHostPlatform(message_boxes);
    const auto name = platform->Get().registry.Read(Hive::kCurrentUser, "Software", "Name");
    if (!name) return "(none)";
    EXPECT_EQ(RegistryValue(platform->Get().files.ReadWhole("C:\\name.txt")), *name);
    return std::get<std::string>(*name);
  }

  TempFolder folder;
  ScriptedMessageBoxes message_boxes;

 private:
  static constexpr const char* kNames[] = {"TAVIX_ROOT", "XDG_DATA_HOME", "HOME"};
  std::optional<std::string> kept_[std::size(kNames)];
};

TEST_F(HostPlatformTest, TavixRootNamesTheComputer) {
  MakeComputer("root", "named");
  MakeComputer("data/TavixStudio", "data");
  Point("TAVIX_ROOT", "root");
  Point("XDG_DATA_HOME", "data");

  EXPECT_EQ(Name(), "named");
}

TEST_F(HostPlatformTest, AnEmptyTavixRootIsNone) {
  MakeComputer("data/TavixStudio", "data");
  setenv("TAVIX_ROOT", "", /*replace=*/1);
  Point("XDG_DATA_HOME", "data");

  EXPECT_EQ(Name(), "data");
}

TEST_F(HostPlatformTest, WithoutAnythingTheComputerIsInTheUsersHome) {
  MakeComputer("home/.local/share/TavixStudio", "home");
  Point("HOME", "home");

  EXPECT_EQ(Name(), "home");
}

TEST_F(HostPlatformTest, ARelativeDataFolderIsIgnored) {
  MakeComputer("home/.local/share/TavixStudio", "home");
  setenv("XDG_DATA_HOME", "data", /*replace=*/1);
  Point("HOME", "home");

  EXPECT_EQ(Name(), "home");
}

TEST_F(HostPlatformTest, AMissingFolderIsAnEmptyComputer) {
  Point("TAVIX_ROOT", "none");

  EXPECT_EQ(Name(), "(none)");
}

TEST_F(HostPlatformTest, ARegistryFileThatCannotBeReadIsAnError) {
  MakeComputer("root", "named");
  std::ofstream(folder.Path() / "root" / "registry.reg") << "junk";
  Point("TAVIX_ROOT", "root");

  try {
    static_cast<void>(MakeHostPlatform(message_boxes));
    ADD_FAILURE() << "no error";
  } catch (const RuntimeError& error) {
    EXPECT_EQ(error.Number(), ErrorNumber::kInvalidCall);
  }
}

TEST_F(HostPlatformTest, TheConfiguratorIsTheBuiltInOne) {
  MakeComputer("root", "named");
  std::ofstream(folder.Path() / "root" / "drive_c" / "Demo.txs") << "[Global]\r\nVersion=7\r\n";
  Point("TAVIX_ROOT", "root");
  const std::unique_ptr<OwnedPlatform> platform = MakeHostPlatform(message_boxes);

  const auto configurator = platform->Get().make_configurator();

  ASSERT_NE(configurator, nullptr);
  EXPECT_EQ(configurator->OpenProject("C:\\Demo.txs"), "7");
}

}  // namespace
}  // namespace txs
