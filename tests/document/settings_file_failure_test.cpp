// Hazard: a failing disk, share or reader in the middle of reading or saving. Whatever fails, the
// settings file keeps the old contents or has the new ones, and the error is the one that happened.
// Every operation of a save and of an opening fails in tests/reliability/fault_series_test.cpp.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "document/document_world.h"
#include "document/settings_file.h"
#include "strings/reason.h"

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

// The user's lists were lost when a file that was locked at the opening had become readable again:
// the defaults that were shown instead were written over it.
TEST(SettingsFileFailures, SettingsThatWereNotReadAreNotReplacedByTheDefaults) {
  DocumentWorld world;
  world.Put(kSettingsPath, kOld);
  Application& application = world.application;
  world.Files().FailPath(kSettingsPath, "OpenForReading", ErrorNumber::kPermissionDenied);
  EXPECT_EQ(world.NumberOfErrorFrom([&] { ReadSettings(application); }),
            ErrorNumber::kPermissionDenied);
  world.Files().StopFailing();
  application.document.steps.info.german[0] = "typed into the defaults";
  application.document.changed = true;

  EXPECT_FALSE(SaveSettings(application));

  EXPECT_EQ(world.Get(kSettingsPath), kOld);
  EXPECT_TRUE(application.document.changed);
  EXPECT_EQ(world.MessageIds(), (std::vector<long>{1931}));
  EXPECT_NE(
      world.Prompts()[0].find("The file 'C:\\Demo\\Demo.swz' was not read when the project was "
                              "opened"),
      std::string::npos);
  EXPECT_EQ(world.NumberOfErrorFrom([&] { WriteSettings(application); }),
            ErrorNumber::kAlreadyExists);
  EXPECT_EQ(world.Get(kSettingsPath), kOld);
}

TEST(SettingsFileFailures, SettingsInAnEncodingThatCannotBeReadStayAsTheyAre) {
  for (const bool big_endian : {true, false}) {
    DocumentWorld world;
    std::string bytes = big_endian ? "\xFE\xFF" : "";
    for (const char* c = kOld; *c != '\0'; ++c) {
      bytes += big_endian ? std::string{'\0', *c} : std::string{*c, '\0'};
    }
    world.Files().AddFile(kSettingsPath, bytes);
    EXPECT_EQ(world.NumberOfErrorFrom([&] { ReadSettings(world.application); }),
              ErrorNumber::kInvalidCall);
    world.application.document.changed = true;

    EXPECT_FALSE(SaveSettings(world.application));

    EXPECT_EQ(world.Files().Contents(kSettingsPath), bytes);
    EXPECT_EQ(world.MessageIds(), (std::vector<long>{1931}));
  }
}

TEST(SettingsFileFailures, SettingsThatAreReadInTheEndCanBeSaved) {
  DocumentWorld world;
  world.Put(kSettingsPath, kOld);
  Application& application = world.application;
  world.Files().FailPath(kSettingsPath, "OpenForReading", ErrorNumber::kPermissionDenied);
  EXPECT_EQ(world.NumberOfErrorFrom([&] { ReadSettings(application); }),
            ErrorNumber::kPermissionDenied);
  world.Files().StopFailing();

  ReadSettings(application);
  application.document.steps.info.german[0] = "new";

  EXPECT_TRUE(SaveSettings(application));
  EXPECT_NE(world.Get(kSettingsPath).find("text1=new"), std::string::npos);
  EXPECT_NE(world.Get(kSettingsPath).find("01=a.dll"), std::string::npos);
}

TEST(SettingsFileFailures, SettingsThatWereNotReadMayBeReplacedWhenTheUserClearsThem) {
  DocumentWorld world;
  world.Put(kSettingsPath, kOld);
  world.Files().FailPath(kSettingsPath, "OpenForReading", ErrorNumber::kPermissionDenied);
  EXPECT_EQ(world.NumberOfErrorFrom([&] { ReadSettings(world.application); }),
            ErrorNumber::kPermissionDenied);
  world.Files().StopFailing();

  ClearSettings(world.application);

  EXPECT_TRUE(SaveSettings(world.application));
  EXPECT_EQ(world.Get(kSettingsPath).find("01=a.dll"), std::string::npos);
}

// "\Demo.swz" of whatever drive was current was read, and written by a save.
TEST(SettingsFileFailures, ProjectWithoutADirectoryHasNoSettingsInTheRootOfTheDrive) {
  constexpr char kInTheRoot[] = "\\Demo.swz";
  DocumentWorld world;
  Application& application = world.application;
  application.project.directory.clear();
  world.Put(kInTheRoot, kOld);

  ReadSettings(application);
  EXPECT_EQ(application.document.files.RowCount(), 0u);
  EXPECT_EQ(application.document.steps.info.german[0], "");

  EXPECT_FALSE(SaveSettings(application));
  ClearSettings(application);
  EXPECT_FALSE(SaveSettings(application));
  EXPECT_EQ(world.NumberOfErrorFrom([&] { WriteSettings(application); }),
            ErrorNumber::kPathNotFound);

  EXPECT_EQ(world.Get(kInTheRoot), kOld);
  EXPECT_EQ(world.MessageIds(), (std::vector<long>{901, 901}));
  EXPECT_NE(world.Prompts()[0].find("'Demo'"), std::string::npos);
}

// What is wrong, and what to do, is said below the message, of a row by its number.
TEST(SettingsFileFailures, RowThatTheFileCannotHoldIsNamedWithWhatToDo) {
  struct Case {
    const char* source;
    const char* reason;
  };
  for (const Case& one :
       {Case{"C:\\a,b",
             "(5: Dateiliste, Zeile 1, \"C:\\a,b\": Ein Komma trennt die Felder der "
             "Einstellungsdatei; benennen Sie"},
        Case{"C:\\a\nb", "Entfernen Sie den Zeilenumbruch"},
        Case{" C:\\a", "Entfernen Sie die Leerzeichen"}}) {
    DocumentWorld world;
    SetReasonLanguage(1031);
    world.application.document.files.Append(one.source, "<WinSysDir>", "0");

    EXPECT_FALSE(SaveSettings(world.application));

    ASSERT_EQ(world.MessageIds(), (std::vector<long>{911}));
    EXPECT_NE(world.Prompts()[0].find(one.reason), std::string::npos) << world.Prompts()[0];
  }
}

// As when the share with the project was away while it was opened.
TEST(SettingsFileFailures, FileThatAppearedSinceTheOpeningIsNotReplaced) {
  DocumentWorld world;
  ReadSettings(world.application);
  world.Put(kSettingsPath, kOld);

  EXPECT_FALSE(SaveSettings(world.application));

  EXPECT_EQ(world.Get(kSettingsPath), kOld);
  EXPECT_EQ(world.MessageIds(), (std::vector<long>{1931}));
}

// A Scan that ran for long, or a wizard left open, undid without a word what another program had
// written into the file meanwhile.
TEST(SettingsFileFailures, WhatAnotherProgramHasWrittenMeanwhileIsNotReplaced) {
  for (const auto& [from, to] : std::vector<std::pair<std::string, std::string>>{
           {"text1=old", "text1=new text"},
           {"text1=old", "text1=odd"},  // of the same length
           {"[file]\r\n01=a.dll,<WinSysDir>,1\r\n", ""},
           {"[file]\r\n", "[file]\r\n02=b.dll,<WinSysDir>,1\r\n"},
           {"[file]\r\n", "[ini]\r\n01=b.ini\r\n[file]\r\n"},
           {"[file]\r\n", "[path]\r\n1=D:\\b\r\n[file]\r\n"},
           {"[file]\r\n", "[destination]\r\nMDAC=1\r\n[file]\r\n"},
           {"[file]\r\n", "[function]\r\nVB5dbUseJet=1\r\n[file]\r\n"},
           {"[file]\r\n", "[program]\r\nname=b.exe\r\n[file]\r\n"},
       }) {
    ChangedProject project;
    std::string foreign = kOld;
    foreign.replace(foreign.find(from), from.size(), to);
    project.world.Put(kSettingsPath, foreign);

    EXPECT_FALSE(SaveSettings(project.world.application));

    EXPECT_EQ(project.world.Get(kSettingsPath), foreign);
    EXPECT_TRUE(project.world.application.document.changed);
    ASSERT_EQ(project.world.MessageIds(), (std::vector<long>{1933}));
    EXPECT_NE(project.world.Prompts()[0].find(
                  "The file 'C:\\Demo\\Demo.swz' has been changed by another program"),
              std::string::npos);
    EXPECT_EQ(project.world.NumberOfErrorFrom([&] { WriteSettings(project.world.application); }),
              ErrorNumber::kAlreadyExists);
    EXPECT_EQ(project.world.Get(kSettingsPath), foreign);
  }
}

// Some file systems count time in steps of two seconds.
TEST(SettingsFileFailures, ChangeThatLeavesLengthAndTimeAsTheyWereIsSeen) {
  ChangedProject project;
  const FileStamp before = *project.world.Files().Stamp(kSettingsPath);
  std::string foreign = kOld;
  foreign.replace(foreign.find("old"), 3, "odd");
  project.world.Files().AddFile(kSettingsPath, foreign, before.last_write);
  ASSERT_EQ(project.world.Files().Stamp(kSettingsPath), before);

  EXPECT_FALSE(SaveSettings(project.world.application));
  EXPECT_EQ(project.world.Get(kSettingsPath), foreign);

  ReadSettings(project.world.application);
  EXPECT_EQ(project.world.application.document.steps.info.german[0], "odd");
}

TEST(SettingsFileFailures, ChangeOfWhatASaveLeavesAloneIsNoObstacle) {
  ChangedProject project;
  std::string foreign = std::string("; another comment\r\n") + kOld;
  foreign += "02=i.dll,<WinSysDir>,1\r\n[Destination]\r\nServicePack=1\r\n";
  project.world.Put(kSettingsPath, foreign);

  EXPECT_TRUE(SaveSettings(project.world.application));

  const std::string saved = project.world.Get(kSettingsPath);
  EXPECT_NE(saved.find("; another comment\r\n"), std::string::npos);
  EXPECT_NE(saved.find("02=i.dll,<WinSysDir>,1"), std::string::npos);
  EXPECT_NE(saved.find("ServicePack=1"), std::string::npos);
  EXPECT_NE(saved.find("text1=new"), std::string::npos);
  EXPECT_TRUE(project.world.MessageIds().empty());
}

TEST(SettingsFileFailures, AnotherProgramsSettingsMayBeReplacedWhenTheUserClearsThem) {
  ChangedProject project;
  project.world.Put(kSettingsPath, "[file]\r\n01=b.dll,<WinSysDir>,1\r\n");

  ClearSettings(project.world.application);

  EXPECT_TRUE(SaveSettings(project.world.application));
  EXPECT_EQ(project.world.Get(kSettingsPath).find("b.dll"), std::string::npos);
}

TEST(SettingsFileFailures, AfterASaveItIsTheSavedFileThatAnotherProgramChanges) {
  ChangedProject project;
  ASSERT_TRUE(SaveSettings(project.world.application));
  project.world.application.document.steps.info.german[0] = "newer";
  ASSERT_TRUE(SaveSettings(project.world.application));
  project.world.Put(kSettingsPath, kOld);

  EXPECT_FALSE(SaveSettings(project.world.application));

  EXPECT_EQ(project.world.Get(kSettingsPath), kOld);
  EXPECT_EQ(project.world.MessageIds(), (std::vector<long>{1933}));
}

TEST(SettingsFileFailures, FileThatVanishedIsWrittenAnew) {
  ChangedProject project;
  project.world.Files().Vanish(kSettingsPath);

  EXPECT_TRUE(SaveSettings(project.world.application));

  EXPECT_NE(project.world.Get(kSettingsPath).find("02=b.dll,<WinSysDir>,2"), std::string::npos);
  EXPECT_TRUE(project.world.MessageIds().empty());
}

TEST(SettingsFileFailures, ProjectWithoutSettingsFileIsSavedAgainAndAgain) {
  DocumentWorld world;
  ReadSettings(world.application);

  EXPECT_TRUE(SaveSettings(world.application));
  EXPECT_TRUE(SaveSettings(world.application));

  EXPECT_TRUE(world.Has(kSettingsPath));
  EXPECT_TRUE(world.MessageIds().empty());
}

TEST(SettingsFileFailures, NothingIsSavedWhileAnotherProcessWorksOnTheProject) {
  ChangedProject project;
  const auto other = project.world.Memory().locks.TryTake("C:\\Demo\\~TXSetup.lock");

  EXPECT_FALSE(SaveSettings(project.world.application));

  EXPECT_EQ(project.world.Get(kSettingsPath), kOld);
  EXPECT_TRUE(project.world.application.document.changed);
  EXPECT_EQ(project.world.MessageIds(), (std::vector<long>{1930}));
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

}  // namespace
}  // namespace txs
