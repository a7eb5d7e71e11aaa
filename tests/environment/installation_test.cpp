#include "environment/installation.h"

#include <gtest/gtest.h>

#include "environment/runtime_error.h"
#include "fakes/fixed_special_folders.h"
#include "fakes/memory_file_system.h"
#include "fakes/memory_registry.h"

namespace txs {
namespace {

constexpr char kShellFolders[] =
    "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";

// Counts what is written.
class WatchedRegistry : public MemoryRegistry {
 public:
  void Write(Hive hive, std::string_view key, std::string_view name,
             const RegistryValue& value) override {
    ++writes;
    MemoryRegistry::Write(hive, key, name, value);
  }

  int writes = 0;
};

class InstallationTest : public testing::Test {
 protected:
  InstallationTest() {
    Set(Hive::kLocalMachine, kStudioKey, "LCID", std::uint32_t{1033});
    Set(Hive::kLocalMachine, kStudioKey, "Path", "C:\\TavixStudio\\Studio");
    Set(Hive::kLocalMachine, kStudioKey, "Version", "4.0.12");
    Set(Hive::kLocalMachine, kVendorKey, "MainDir", "C:\\TavixStudio");
    Set(Hive::kLocalMachine, kVendorKey, "Common", "C:\\TavixStudio\\Common");
    Set(Hive::kCurrentUser, kShellFolders, "Personal", "C:\\Users\\me\\Documents");
    files_.AddFolder("C:\\TavixStudio\\Studio");
    files_.AddFolder("C:\\Users\\me\\Documents");
  }

  void Set(Hive hive, const char* key, const char* name, const RegistryValue& value) {
    registry_.Write(hive, key, name, value);
    registry_.writes = 0;
  }

  std::string RegisteredProjectsPath() {
    return tools_.RegistryText(Hive::kCurrentUser, kStudioKey, "DefaultProjectsPath", "");
  }

  EnvironmentCheck Check() { return CheckEnvironment(tools_, files_); }

  WatchedRegistry registry_;
  MemoryFileSystem files_;
  ProfileFiles profiles_{files_};
  FixedSpecialFolders folders_;
  SystemTools tools_{registry_, files_, profiles_, folders_};
};

TEST_F(InstallationTest, AllSettingsComeFromTheRegistry) {
  Set(Hive::kCurrentUser, kStudioKey, "DefaultProjectsPath", "C:\\Projects");
  Set(Hive::kCurrentUser, kStudioKey, "TemplatesPath", "C:\\Templates");

  const EnvironmentCheck check = Check();

  EXPECT_FALSE(check.fault);
  EXPECT_EQ(check.settings.language_id, 1033);
  EXPECT_EQ(check.settings.studio_directory, "C:\\TavixStudio\\Studio");
  EXPECT_EQ(check.settings.main_directory, "C:\\TavixStudio");
  EXPECT_EQ(check.settings.common_directory, "C:\\TavixStudio\\Common");
  EXPECT_EQ(check.settings.version, "4.0.12");
  EXPECT_EQ(check.settings.projects_directory, "C:\\Projects");
  EXPECT_EQ(check.settings.templates_directory, "C:\\Templates");
  EXPECT_EQ(check.settings.SetupKitDirectory(), "C:\\TavixStudio\\SetupKit");
  EXPECT_EQ(check.settings.HelpFile(), "C:\\TavixStudio\\Common\\HelpFiles\\Projektmanagement.chm");
}

TEST_F(InstallationTest, TheLanguageMayBeRegisteredAsText) {
  Set(Hive::kLocalMachine, kStudioKey, "LCID", "1031");

  EXPECT_EQ(Check().settings.language_id, 1031);
}

TEST_F(InstallationTest, WithoutARegisteredLanguageItIsZero) {
  registry_.RemoveKey(Hive::kLocalMachine, kStudioKey);
  Set(Hive::kLocalMachine, kStudioKey, "Path", "C:\\TavixStudio\\Studio");

  EXPECT_EQ(Check().settings.language_id, 0);
}

TEST_F(InstallationTest, ALanguageThatIsNoNumberOrNoLanguageIdIsZero) {
  for (const char* text : {"deutsch", "", "-1", "99999999999"}) {
    Set(Hive::kLocalMachine, kStudioKey, "LCID", text);

    EXPECT_EQ(Check().settings.language_id, 0) << text;
  }
}

TEST_F(InstallationTest, WithoutAStudioDirectoryTheProgramMustEnd) {
  registry_.RemoveKey(Hive::kLocalMachine, kStudioKey);
  Set(Hive::kLocalMachine, kStudioKey, "LCID", std::uint32_t{1033});

  const EnvironmentCheck check = Check();

  ASSERT_TRUE(check.fault);
  EXPECT_EQ(check.fault->message_id, 91);
  EXPECT_EQ(check.fault->parameter, "");
  EXPECT_EQ(check.settings.language_id, 1033);
}

TEST_F(InstallationTest, AStudioDirectoryThatWasDeletedIsNamedAndTheProgramMustEnd) {
  Set(Hive::kLocalMachine, kStudioKey, "Path", "C:\\Gone");

  const EnvironmentCheck check = Check();

  ASSERT_TRUE(check.fault);
  EXPECT_EQ(check.fault->message_id, 92);
  EXPECT_EQ(check.fault->parameter, "C:\\Gone");
  EXPECT_EQ(check.settings.studio_directory, "");
  EXPECT_EQ(check.settings.language_id, 1033);
}

TEST_F(InstallationTest, AnUnusableStudioCreatesAndRegistersNothing) {
  Set(Hive::kLocalMachine, kStudioKey, "Path", "C:\\Gone");

  (void)Check();

  EXPECT_EQ(registry_.writes, 0);
  EXPECT_FALSE(files_.FolderExists("C:\\Users\\me\\Documents\\TavixStudio"));
}

TEST_F(InstallationTest, AMissingProjectsPathIsCreatedInTheDocumentsAndRegisteredOnce) {
  const EnvironmentCheck first = Check();
  const EnvironmentCheck second = Check();

  EXPECT_EQ(first.settings.projects_directory, "C:\\Users\\me\\Documents\\TavixStudio\\Projects");
  EXPECT_EQ(second.settings.projects_directory, first.settings.projects_directory);
  EXPECT_TRUE(files_.FolderExists("C:\\Users\\me\\Documents\\TavixStudio\\Projects"));
  EXPECT_EQ(RegisteredProjectsPath(), "C:\\Users\\me\\Documents\\TavixStudio\\Projects");
  EXPECT_EQ(registry_.writes, 1);
}

TEST_F(InstallationTest, ARegisteredProjectsFolderThatIsMissingIsCreated) {
  Set(Hive::kCurrentUser, kStudioKey, "DefaultProjectsPath", "C:\\Work\\Projects");

  EXPECT_EQ(Check().settings.projects_directory, "C:\\Work\\Projects");
  EXPECT_TRUE(files_.FolderExists("C:\\Work\\Projects"));
  EXPECT_EQ(registry_.writes, 0);
}

TEST_F(InstallationTest, ARegisteredProjectsFolderThatCannotBeCreatedLeavesTheDirectoryEmpty) {
  files_.AddFile("C:\\Users\\file", "in the way");
  Set(Hive::kCurrentUser, kStudioKey, "DefaultProjectsPath", "C:\\Users\\file\\Projects");

  const EnvironmentCheck check = Check();

  EXPECT_FALSE(check.fault);
  EXPECT_EQ(check.settings.projects_directory, "");
  EXPECT_EQ(RegisteredProjectsPath(), "C:\\Users\\file\\Projects");
}

TEST_F(InstallationTest, ADefaultProjectsFolderThatCannotBeCreatedIsNotRegistered) {
  files_.AddFile("C:\\Users\\me\\Documents\\TavixStudio", "in the way");

  const EnvironmentCheck check = Check();

  EXPECT_FALSE(check.fault);
  EXPECT_EQ(check.settings.projects_directory, "");
  EXPECT_EQ(registry_.writes, 0);
}

TEST_F(InstallationTest, ARegistryThatCannotBeWrittenDoesNotStopTheStart) {
  registry_.refuse_changes = ErrorNumber::kPermissionDenied;

  const EnvironmentCheck check = Check();

  EXPECT_FALSE(check.fault);
  EXPECT_EQ(check.settings.projects_directory, "C:\\Users\\me\\Documents\\TavixStudio\\Projects");
}

TEST_F(InstallationTest, TheDefaultTemplatesFolderIsNeitherCreatedNorRegistered) {
  EXPECT_EQ(Check().settings.templates_directory,
            "C:\\Users\\me\\Documents\\TavixStudio\\Templates");

  EXPECT_FALSE(files_.FolderExists("C:\\Users\\me\\Documents\\TavixStudio\\Templates"));
  EXPECT_EQ(tools_.RegistryText(Hive::kCurrentUser, kStudioKey, "TemplatesPath", "none"), "none");
}

TEST_F(InstallationTest, WithoutADocumentsFolderNothingIsCreatedAtTheRootOfADrive) {
  registry_.RemoveKey(Hive::kCurrentUser, kShellFolders);

  const EnvironmentCheck check = Check();

  EXPECT_FALSE(check.fault);
  EXPECT_EQ(check.settings.projects_directory, "");
  EXPECT_EQ(check.settings.templates_directory, "");
  EXPECT_EQ(registry_.writes, 0);
}

}  // namespace
}  // namespace txs
