#include "startup/display_message_boxes.h"

#include <gtest/gtest.h>

#include "fakes/scripted_message_boxes.h"
#include "fakes/scripted_windows.h"

namespace txs {
namespace {

MessageResult ShowQuestion(MessageBoxes& boxes) {
  return boxes.Show("prompt", kButtonsYesNo, "title", "help.chm", /*help_context=*/7);
}

TEST(DisplayMessageBoxes, TouchNoWindowSystemBeforeTheFirstBox) {
  ScriptedMessageBoxes console;
  ScriptedWindows windows;

  const DisplayMessageBoxes boxes(console, windows.module);

  EXPECT_EQ(windows.opened, 0);
}

TEST(DisplayMessageBoxes, AnswerAsTheConsoleWhereThereIsNoDisplay) {
  ScriptedMessageBoxes console;
  console.answers = {MessageResult::kNo};
  ScriptedWindows windows;
  windows.fault = WindowFault::kNoDisplay;
  DisplayMessageBoxes boxes(console, windows.module);

  EXPECT_EQ(ShowQuestion(boxes), MessageResult::kNo);
}

TEST(DisplayMessageBoxes, ShowOnBothAndAnswerAsTheWindow) {
  ScriptedMessageBoxes console;
  console.answers = {MessageResult::kNo};
  ScriptedWindows windows;
  windows.message_boxes.answers = {MessageResult::kYes};
  DisplayMessageBoxes boxes(console, windows.module);

  const MessageResult answer = ShowQuestion(boxes);

  EXPECT_EQ(answer, MessageResult::kYes);
  ASSERT_EQ(console.shown.size(), 1u);
  EXPECT_EQ(console.shown[0].prompt, "prompt");
  const std::vector<ScriptedMessageBoxes::Shown>& shown = windows.message_boxes.shown;
  ASSERT_EQ(shown.size(), 1u);
  EXPECT_EQ(shown[0].prompt, "prompt");
  EXPECT_EQ(shown[0].buttons, kButtonsYesNo);
  EXPECT_EQ(shown[0].title, "title");
  EXPECT_EQ(shown[0].help_file, "help.chm");
  EXPECT_EQ(shown[0].help_context, 7);
}

TEST(DisplayMessageBoxes, TryTheDisplayOnlyOnce) {
  ScriptedMessageBoxes console;
  ScriptedWindows windows;
  windows.fault = WindowFault::kNoDisplay;
  DisplayMessageBoxes boxes(console, windows.module);

  static_cast<void>(ShowQuestion(boxes));
  static_cast<void>(ShowQuestion(boxes));

  EXPECT_EQ(windows.opened, 1);
}

}  // namespace
}  // namespace txs
