#include "document/application.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "document/document_world.h"
#include "environment/message_boxes.h"

namespace txs {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr char kDependencyFile[] = "C:\\TavixStudio\\SetupKit\\TXDependencies.ini";

TEST(CurrentProject, NamesItsFiles) {
  const CurrentProject project{"Kläranlage", "C:\\Projekte", /*type=*/2, "Kläranlage"};

  EXPECT_EQ(project.StudioProjectFile(), "C:\\Projekte\\Kläranlage.txs");
  EXPECT_EQ(project.SettingsFile(), "C:\\Projekte\\Kläranlage.swz");
  EXPECT_EQ(project.TemporaryDirectory(), "C:\\Projekte\\~TEMP");
}

TEST(CurrentProject, NamesItsFilesWhateverTheProjectFileIs) {
  const CurrentProject project{"Demo", "C:\\Demo", /*type=*/2, "D:\\Fremd\\Fremd.vbg"};

  EXPECT_EQ(project.StudioProjectFile(), "C:\\Demo\\Demo.txs");
}

// --- Loading the main form

TEST(MainFormState, UsesTheRuntimeSetupWhenTheOptionIsNotStored) {
  DocumentWorld world;
  world.application.use_runtime_setup = false;
  world.application.hide_mdac_hint = true;

  LoadMainFormState(world.application);

  EXPECT_TRUE(world.application.use_runtime_setup);
  EXPECT_FALSE(world.application.hide_mdac_hint);
}

TEST(MainFormState, TakesTheStoredOptions) {
  DocumentWorld world;
  world.Memory().registry.Write(Hive::kCurrentUser, kWizardKey, "UseRuntimeSetup",
                                std::uint32_t{0});
  world.Memory().registry.Write(Hive::kCurrentUser, kWizardKey, "HideMdacHint", std::uint32_t{1});

  LoadMainFormState(world.application);

  EXPECT_FALSE(world.application.use_runtime_setup);
  EXPECT_TRUE(world.application.hide_mdac_hint);
}

TEST(MainFormState, TakesOptionsStoredAsText) {
  DocumentWorld world;
  world.Memory().registry.Write(Hive::kCurrentUser, kWizardKey, "UseRuntimeSetup",
                                std::string("0"));

  LoadMainFormState(world.application);

  EXPECT_FALSE(world.application.use_runtime_setup);
}

TEST(MainFormState, GivesBackAnOptionThatWasStored) {
  DocumentWorld world;
  for (const bool use : {false, true}) {
    StoreUseRuntimeSetup(world.application, use);
    EXPECT_EQ(world.application.use_runtime_setup, use);
    world.application.use_runtime_setup = !use;

    LoadMainFormState(world.application);

    EXPECT_EQ(world.application.use_runtime_setup, use);
    EXPECT_EQ(world.Memory().registry.Read(Hive::kCurrentUser, kWizardKey, "UseRuntimeSetup"),
              RegistryValue(std::uint32_t{use ? 1u : 0u}));
  }
}

TEST(MainFormState, KeepsTheOptionWhenTheRegistryRefuses) {
  DocumentWorld world;
  world.Memory().registry.refuse_changes = ErrorNumber::kPermissionDenied;

  EXPECT_EQ(world.NumberOfErrorFrom([&] { StoreUseRuntimeSetup(world.application, false); }),
            ErrorNumber::kPermissionDenied);

  EXPECT_TRUE(world.application.use_runtime_setup);
}

TEST(MainFormState, ReadsTheExcludedFilesUpToTheFirstGap) {
  DocumentWorld world;
  world.Put(kDependencyFile, "[exclude]\r\n1=kernel32.dll\r\n2=Übel.dll\r\n4=nicht.dll\r\n");
  world.application.document.system_files = {{"old"}, {"old"}};

  LoadMainFormState(world.application);

  EXPECT_THAT(world.application.document.system_files.resolved, IsEmpty());
  EXPECT_THAT(world.application.document.system_files.excluded,
              ElementsAre("kernel32.dll", "Übel.dll"));
}

TEST(MainFormState, HasNoExcludedFilesWithoutADependencyFile) {
  DocumentWorld world;

  LoadMainFormState(world.application);

  EXPECT_THAT(world.application.document.system_files.excluded, IsEmpty());
}

TEST(MainFormState, CountsAnUnreadableDependencyFileAsEmpty) {
  DocumentWorld world;
  world.Put(kDependencyFile, "[Exclude]\r\n1=kernel32.dll\r\n");
  world.Files().FailPath(kDependencyFile, "OpenForReading", ErrorNumber::kPermissionDenied);

  LoadMainFormState(world.application);

  EXPECT_THAT(world.application.document.system_files.excluded, IsEmpty());
  EXPECT_THAT(world.MessageIds(), IsEmpty());
}

// --- Messages

TEST(Messages, WarningHasItsNumberInTheTitleAndTheExclamationIcon) {
  DocumentWorld world;

  ShowWarning(world.application, 1707, {"C:\\Bild.bmp"});

  ASSERT_THAT(world.MessageIds(), ElementsAre(1707));
  const Message& message = world.Messages().front();
  EXPECT_EQ(message.buttons, kIconExclamation);
  EXPECT_THAT(message.title, HasSubstr("1707"));
  EXPECT_THAT(message.prompt, HasSubstr("'C:\\Bild.bmp'"));
}

TEST(Messages, ErrorAppendsNumberAndDescription) {
  DocumentWorld world;

  ShowError(world.application, 909, {"x.dll"},
            RuntimeError(ErrorNumber::kDiskFull, "C:\\x.dll: No space left"));

  ASSERT_THAT(world.MessageIds(), ElementsAre(909));
  const Message& message = world.Messages().front();
  EXPECT_EQ(message.buttons, kIconExclamation);
  EXPECT_THAT(message.title, HasSubstr("909"));
  EXPECT_THAT(message.prompt, HasSubstr("'x.dll'"));
  EXPECT_THAT(message.prompt, testing::EndsWith("\r\n(61: C:\\x.dll: No space left)"));
}

}  // namespace
}  // namespace txs
