// What the registry of a Linux host can say about the platform's directories.

#include "environment/special_folders_host.h"

#include <gtest/gtest.h>

#include <string>

#include "fakes/memory_registry.h"

namespace txs {
namespace {

constexpr std::string_view kWindowsKey = "Software\\Microsoft\\Windows\\CurrentVersion";
constexpr std::string_view kNtKey = "Software\\Microsoft\\Windows NT\\CurrentVersion";

class HostSpecialFoldersTest : public testing::Test {
 protected:
  void Set(std::string_view key, std::string_view name, const RegistryValue& value) {
    registry.Write(Hive::kLocalMachine, key, name, value);
  }
  MemoryRegistry registry;
  HostSpecialFolders folders{registry};
};

TEST_F(HostSpecialFoldersTest, TheRegistryNamesOthers) {
  Set(kNtKey, "SystemRoot", "D:\\WINNT\\");
  Set(kWindowsKey, "ProgramFilesDir", "E:\\Programme");
  Set(kWindowsKey, "CommonFilesDir", "E:\\Gemeinsam\\");

  EXPECT_EQ(folders.Folder(SpecialFolder::kWindows), "D:\\WINNT");
  EXPECT_EQ(folders.Folder(SpecialFolder::kSystem), "D:\\WINNT\\System32");
  EXPECT_EQ(folders.Folder(SpecialFolder::kFonts), "D:\\WINNT\\Fonts");
  EXPECT_EQ(folders.Folder(SpecialFolder::kProgramFiles), "E:\\Programme");
  EXPECT_EQ(folders.Folder(SpecialFolder::kCommonFiles), "E:\\Gemeinsam");
}

TEST_F(HostSpecialFoldersTest, TheUsualVariablesAreExpanded) {
  Set(kNtKey, "SystemRoot", "D:\\WINNT");
  Set(kWindowsKey, "ProgramFilesDir", "%systemdrive%\\Programs");
  Set(kWindowsKey, "CommonFilesDir", "%ProgramFiles%\\Common");

  EXPECT_EQ(folders.Folder(SpecialFolder::kProgramFiles), "D:\\Programs");
  EXPECT_EQ(folders.Folder(SpecialFolder::kCommonFiles), "D:\\Programs\\Common");

  Set(kWindowsKey, "ProgramFilesDir", "%SystemRoot%\\p");
  Set(kWindowsKey, "CommonFilesDir", "%windir%\\100%");

  EXPECT_EQ(folders.Folder(SpecialFolder::kProgramFiles), "D:\\WINNT\\p");
  EXPECT_EQ(folders.Folder(SpecialFolder::kCommonFiles), "D:\\WINNT\\100%");
}

TEST_F(HostSpecialFoldersTest, CommonFilesFollowTheProgramFiles) {
  Set(kWindowsKey, "ProgramFilesDir", "E:\\Programs");

  EXPECT_EQ(folders.Folder(SpecialFolder::kCommonFiles), "E:\\Programs\\Common Files");
}

TEST_F(HostSpecialFoldersTest, AValueThatIsNoAbsolutePathDoesNotCount) {
  Set(kNtKey, "SystemRoot", "%SystemRoot%");
  Set(kWindowsKey, "ProgramFilesDir", "");
  Set(kWindowsKey, "CommonFilesDir", std::uint32_t{1});

  EXPECT_EQ(folders.Folder(SpecialFolder::kWindows), "C:\\Windows");
  EXPECT_EQ(folders.Folder(SpecialFolder::kProgramFiles), "C:\\Program Files");
  EXPECT_EQ(folders.Folder(SpecialFolder::kCommonFiles), "C:\\Program Files\\Common Files");
}

}  // namespace
}  // namespace txs
