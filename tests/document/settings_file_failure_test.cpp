// Hazard: a failing disk, share or reader in the middle of reading or saving. Whatever fails, the
// settings file keeps the old contents or has the new ones, and the error is the one that happened.
#include <gtest/gtest.h>

#include <string>

#include "document/document_world.h"
#include "document/settings_file.h"

namespace txs {
namespace {

constexpr char kOld[] =
    "; by hand\r\n[setup]\r\ntext1=old\r\n[file]\r\n01=a.dll,<WinSysDir>,1\r\n"
    "[HiddenFile]\r\n01=h.dll,<WinSysDir>,1\r\n";

// A project whose settings were read and then changed, so that there is something to save.
struct ChangedProject {
  DocumentWorld world;

  ChangedProject() {
    world.Put(kSettingsPath, kOld);
    ReadSettings(world.application);
    world.application.document.steps.info.german[0] = "new";
    world.application.document.files.Append("b.dll", "<WinSysDir>", "2");
    world.application.document.changed = true;
  }
};

std::string NewSettings() {
  ChangedProject project;
  WriteSettings(project.world.application);
  return project.world.Get(kSettingsPath);
}

TEST(SettingsFileFailures, NoFailingOperationOfASaveHarmsTheFile) {
  const std::string new_settings = NewSettings();
  bool saved_undisturbed = false;
  for (std::uint64_t n = 1; !saved_undisturbed; ++n) {
    ASSERT_LT(n, 100u);
    ChangedProject project;
    MemoryFileSystem& files = project.world.Files();
    const std::uint64_t before = files.OperationCount();
    files.FailOperation(n, ErrorNumber::kDeviceIo);

    bool saved = true;
    try {
      WriteSettings(project.world.application);
    } catch (const RuntimeError& error) {
      saved = false;
      EXPECT_EQ(error.Number(), ErrorNumber::kDeviceIo) << "operation " << n;
    }

    EXPECT_EQ(project.world.Get(kSettingsPath), saved ? new_settings : kOld) << "operation " << n;
    EXPECT_EQ(project.world.application.document.changed, !saved) << "operation " << n;
    saved_undisturbed = files.OperationCount() - before < n;
    EXPECT_TRUE(saved || !saved_undisturbed);
  }
}

TEST(SettingsFileFailures, SaveThatFailedSucceedsWhenTriedAgain) {
  const std::string new_settings = NewSettings();
  ChangedProject project;
  project.world.Files().FailPath(kSettingsPath, "ReplaceWhole", ErrorNumber::kPermissionDenied);
  EXPECT_EQ(project.world.NumberOfErrorFrom([&] { WriteSettings(project.world.application); }),
            ErrorNumber::kPermissionDenied);
  project.world.Files().StopFailing();

  WriteSettings(project.world.application);

  EXPECT_EQ(project.world.Get(kSettingsPath), new_settings);
}

TEST(SettingsFileFailures, FullDiskLeavesTheOldFile) {
  ChangedProject project;
  project.world.Files().SetFreeSpace(0);

  EXPECT_EQ(project.world.NumberOfErrorFrom([&] { WriteSettings(project.world.application); }),
            ErrorNumber::kDiskFull);

  EXPECT_EQ(project.world.Get(kSettingsPath), kOld);
  EXPECT_TRUE(project.world.application.document.changed);
}

TEST(SettingsFileFailures, WriteProtectedFileStays) {
  ChangedProject project;
  project.world.Files().SetReadOnly(kSettingsPath, true);

  EXPECT_EQ(project.world.NumberOfErrorFrom([&] { WriteSettings(project.world.application); }),
            ErrorNumber::kPathFileAccess);

  EXPECT_EQ(project.world.Get(kSettingsPath), kOld);
}

TEST(SettingsFileFailures, SaveOverAFileThatCannotBeReadWritesNothing) {
  DocumentWorld world;
  world.Put(kSettingsPath, kOld);
  world.application.document.changed = true;
  world.Files().FailPath(kSettingsPath, "OpenForReading", ErrorNumber::kPermissionDenied);

  EXPECT_EQ(world.NumberOfErrorFrom([&] { WriteSettings(world.application); }),
            ErrorNumber::kPermissionDenied);

  EXPECT_EQ(world.Get(kSettingsPath), kOld);
}

TEST(SettingsFileFailures, SaveWritesOnceAndOnlyTheSettingsFile) {
  ChangedProject project;
  project.world.Files().diary.clear();

  WriteSettings(project.world.application);

  std::size_t writing = 0;
  for (const MemoryFileSystem::DiaryEntry& entry : project.world.Files().diary) {
    if (entry.operation == "Stamp" || entry.operation == "OpenForReading" ||
        entry.operation == "Read") {
      continue;
    }
    ++writing;
    EXPECT_EQ(entry, (MemoryFileSystem::DiaryEntry{"ReplaceWhole", kSettingsPath}));
  }
  EXPECT_EQ(writing, 1u);
}

TEST(SettingsFileFailures, UnreadableFileThrowsAndLeavesTheDefaults) {
  DocumentWorld world;
  world.Put(kSettingsPath, kOld);
  Application& application = world.application;
  application.document.files.Append("of another project", "", "");
  application.document.steps.user_directories = {{1, "D:\\Alt"}};
  world.Files().FailPath(kSettingsPath, "OpenForReading", ErrorNumber::kPermissionDenied);

  EXPECT_EQ(world.NumberOfErrorFrom([&] { ReadSettings(application); }),
            ErrorNumber::kPermissionDenied);

  EXPECT_EQ(application.document.files.RowCount(), 0u);
  EXPECT_EQ(application.document.hidden_files.RowCount(), 0u);
  EXPECT_TRUE(application.document.steps.user_directories.empty());
  EXPECT_EQ(application.document.steps.info.german[0], "");
  EXPECT_EQ(application.document.steps.tavix_directory, "C:\\TavixStudio");
}

TEST(SettingsFileFailures, FolderInPlaceOfTheFileCannotBeRead) {
  DocumentWorld world;
  world.Files().AddFolder(kSettingsPath);

  EXPECT_EQ(world.NumberOfErrorFrom([&] { ReadSettings(world.application); }),
            ErrorNumber::kPathFileAccess);
}

class FailingConfigurator : public ProjectConfigurator {
 public:
  std::string OpenProject(std::string_view /*project_file*/) override {
    throw RuntimeError(ErrorNumber::kInternal, "the component does not answer");
  }
};

TEST(SettingsFileFailures, FailingConfiguratorLeavesTheDefaults) {
  DocumentWorld world;
  world.Put(kSettingsPath, kOld);
  world.application.configurator = std::make_unique<FailingConfigurator>();

  EXPECT_EQ(world.NumberOfErrorFrom([&] { ReadSettings(world.application); }),
            ErrorNumber::kInternal);

  EXPECT_EQ(world.application.document.files.RowCount(), 0u);
  EXPECT_EQ(world.application.document.steps.info.german[0], "");
}

TEST(SettingsFileFailures, NoFailingOperationOfAReadLeavesHalfADocument) {
  bool read_undisturbed = false;
  for (std::uint64_t n = 1; !read_undisturbed; ++n) {
    ASSERT_LT(n, 100u);
    DocumentWorld world;
    world.Put(kSettingsPath, kOld);
    const std::uint64_t before = world.Files().OperationCount();
    world.Files().FailOperation(n, ErrorNumber::kDeviceIo);

    bool read = true;
    try {
      ReadSettings(world.application);
    } catch (const RuntimeError& error) {
      read = false;
      EXPECT_EQ(error.Number(), ErrorNumber::kDeviceIo) << "operation " << n;
    }

    const SetupDocument& document = world.application.document;
    EXPECT_EQ(document.files.RowCount(), read ? 1u : 0u) << "operation " << n;
    EXPECT_EQ(document.hidden_files.RowCount(), read ? 1u : 0u) << "operation " << n;
    EXPECT_EQ(document.steps.info.german[0], read ? "old" : "") << "operation " << n;
    read_undisturbed = world.Files().OperationCount() - before < n;
  }
}

}  // namespace
}  // namespace txs
