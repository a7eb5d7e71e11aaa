#include "startup/message_routing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "fakes/memory_platform.h"

namespace txs {
namespace {

using ::testing::HasSubstr;

Message MessageOf(const std::string& prompt) {
  Message message;
  message.id = 909;
  message.prompt = prompt;
  message.title = "title";
  message.buttons = kButtonsYesNo | kIconCritical;
  message.help_file = "help.chm";
  message.help_context = 7;
  return message;
}

struct RoutedMessagesTest : ::testing::Test {
  MemoryPlatform world;
  std::ostringstream last_resort;
  RoutedMessages messages{world.Get(), last_resort};
};

TEST_F(RoutedMessagesTest, AreBoxesInInteractiveMode) {
  world.message_boxes.answers = {MessageResult::kYes};

  const MessageResult answer = messages.ShowMessage(MessageOf("prompt"));

  EXPECT_EQ(answer, MessageResult::kYes);
  ASSERT_EQ(world.message_boxes.shown.size(), 1u);
  EXPECT_EQ(world.message_boxes.shown[0].prompt, "prompt");
  EXPECT_EQ(world.message_boxes.shown[0].buttons, kButtonsYesNo | kIconCritical);
  EXPECT_EQ(world.message_boxes.shown[0].title, "title");
  EXPECT_EQ(world.message_boxes.shown[0].help_file, "help.chm");
  EXPECT_EQ(world.message_boxes.shown[0].help_context, 7);
  EXPECT_TRUE(world.files.AllFiles().empty());
}

TEST_F(RoutedMessagesTest, UnattendedWriteThreeLinesPerEntryAndShowNothing) {
  world.files.AddFolder("C:\\P");
  messages.GoUnattended("C:\\P\\");

  const MessageResult answer = messages.ShowMessage(MessageOf("prompt"));

  EXPECT_EQ(answer, MessageResult::kNone);
  EXPECT_EQ(world.files.Contents("C:\\P\\TXSetupWizard.log"),
            "21.11.2026 07:11:45\r\nprompt\r\n\r\n");
  EXPECT_TRUE(world.message_boxes.shown.empty());
  EXPECT_EQ(last_resort.str(), "");
}

TEST_F(RoutedMessagesTest, TwoMessagesAreTwoEntriesBehindWhatTheLogHeld) {
  world.files.AddFile("C:\\P\\TXSetupWizard.log", "earlier\r\n");
  messages.GoUnattended("C:\\P\\");

  messages.ShowMessage(MessageOf("one"));
  messages.ShowMessage(MessageOf("two"));

  EXPECT_EQ(world.files.Contents("C:\\P\\TXSetupWizard.log"),
            "earlier\r\n"
            "21.11.2026 07:11:45\r\none\r\n\r\n"
            "21.11.2026 07:11:45\r\ntwo\r\n\r\n");
}

TEST_F(RoutedMessagesTest, OpenAndCloseTheLogForEveryMessage) {
  world.files.AddFolder("C:\\P");
  messages.GoUnattended("C:\\P\\");

  messages.ShowMessage(MessageOf("one"));
  messages.ShowMessage(MessageOf("two"));

  EXPECT_EQ(world.files.Times("OpenForAppending"), 2u);
  EXPECT_EQ(world.files.Times("Close"), 2u);
}

TEST_F(RoutedMessagesTest, PromptKeepsItsLineBreaks) {
  world.files.AddFolder("C:\\P");
  messages.GoUnattended("C:\\P\\");

  messages.ShowMessage(MessageOf("one\r\ntwo"));

  EXPECT_EQ(world.files.Contents("C:\\P\\TXSetupWizard.log"),
            "21.11.2026 07:11:45\r\none\r\ntwo\r\n\r\n");
}

TEST_F(RoutedMessagesTest, DirectoryWithoutTrailingBackslashPutsTheLogBesideIt) {
  world.files.AddFolder("C:\\P");
  messages.GoUnattended("C:\\P");

  messages.ShowMessage(MessageOf("prompt"));

  EXPECT_TRUE(world.files.Has("C:\\PTXSetupWizard.log"));
  EXPECT_FALSE(world.files.Has("C:\\P\\TXSetupWizard.log"));
}

TEST_F(RoutedMessagesTest, LogIsInTheAnsiCodePage) {
  world.files.AddFolder("C:\\P");
  messages.GoUnattended("C:\\P\\");

  messages.ShowMessage(MessageOf("Größe"));

  EXPECT_EQ(world.files.Contents("C:\\P\\TXSetupWizard.log"),
            "21.11.2026 07:11:45\r\nGr\xF6\xDF\x65\r\n\r\n");
}

TEST_F(RoutedMessagesTest, CharacterThatTheCodePageLacksStandsByItsNumber) {
  world.files.AddFolder("C:\\P");
  messages.GoUnattended("C:\\P\\");

  messages.ShowMessage(MessageOf("Č ü 😀 \xFF"));

  EXPECT_EQ(world.files.Contents("C:\\P\\TXSetupWizard.log"),
            "21.11.2026 07:11:45\r\n<U+010C> \xFC <U+01F600> <byte FF>\r\n\r\n");
}

TEST_F(RoutedMessagesTest, LogThatCannotBeWrittenLosesNoMessage) {
  messages.GoUnattended("C:\\Gone\\");

  const MessageResult answer = messages.ShowMessage(MessageOf("one\r\ntwo"));

  EXPECT_EQ(answer, MessageResult::kNone);
  EXPECT_EQ(last_resort.str().substr(0, 8), "one\ntwo\n");
  EXPECT_NE(last_resort.str().find("TXSetupWizard.log"), std::string::npos);
  EXPECT_TRUE(world.message_boxes.shown.empty());
}

TEST_F(RoutedMessagesTest, FullDiskLosesNoMessageAndNoEarlierEntry) {
  world.files.AddFile("C:\\P\\TXSetupWizard.log", "earlier\r\n");
  world.files.SetFreeSpace(0);
  messages.GoUnattended("C:\\P\\");

  messages.ShowMessage(MessageOf("prompt"));

  EXPECT_EQ(last_resort.str().substr(0, 7), "prompt\n");
  EXPECT_EQ(world.files.Contents("C:\\P\\TXSetupWizard.log").substr(0, 9), "earlier\r\n");
}

// --- Where nobody sees the last resort, as in a program of Windows without a console

// The root of a drive is closed to plain users, and a directory stored without its trailing
// backslash there would put the log into it.
TEST_F(RoutedMessagesTest, LogThatCannotStandBesideTheDirectoryStandsInIt) {
  world.files.AddFolder("C:\\P");
  world.files.FailPath("C:\\PTXSetupWizard.log", "OpenForAppending",
                       ErrorNumber::kPermissionDenied);
  messages.GoUnattended("C:\\P");

  messages.ShowMessage(MessageOf("prompt"));

  EXPECT_EQ(world.files.Contents("C:\\P\\TXSetupWizard.log"),
            "21.11.2026 07:11:45\r\nprompt\r\n\r\n");
  EXPECT_EQ(last_resort.str().substr(0, 7), "prompt\n");
}

TEST_F(RoutedMessagesTest, LogThatCannotBeWrittenStandsInTheSpareDirectory) {
  world.files.AddFolder("C:\\Temp");
  RoutedMessages with_spare(world.Get(), last_resort, "C:\\Temp");
  for (const char* const directory : {"X:\\Gone\\", "X:\\Gone"}) {
    with_spare.GoUnattended(directory);

    with_spare.ShowMessage(MessageOf("prompt"));

    EXPECT_EQ(world.files.Contents("C:\\Temp\\TXSetupWizard.log"),
              "21.11.2026 07:11:45\r\nprompt\r\n\r\n")
        << directory;
    EXPECT_THAT(last_resort.str(), HasSubstr("prompt\n")) << directory;
    world.files.Vanish("C:\\Temp\\TXSetupWizard.log");
    last_resort.str("");
  }
}

}  // namespace
}  // namespace txs
