#include "startup/display_message_boxes.h"

#include <gtest/gtest.h>

#include "fakes/scripted_message_boxes.h"

namespace txs {
namespace {

MessageResult ShowQuestion(MessageBoxes& boxes) {
  return boxes.Show("prompt", kButtonsYesNo, "title", "help.chm", /*help_context=*/7);
}

TEST(DisplayMessageBoxes, TouchNoWindowSystemBeforeTheFirstBox) {
  ScriptedMessageBoxes console;
  int opened = 0;

  const DisplayMessageBoxes boxes(console, [&opened]() -> MessageBoxes* {
    ++opened;
    return nullptr;
  });

  EXPECT_EQ(opened, 0);
}

TEST(DisplayMessageBoxes, AnswerAsTheConsoleWhereThereIsNoDisplay) {
  ScriptedMessageBoxes console;
  console.answers = {MessageResult::kNo};
  DisplayMessageBoxes boxes(console, []() -> MessageBoxes* { return nullptr; });

  EXPECT_EQ(ShowQuestion(boxes), MessageResult::kNo);
}

TEST(DisplayMessageBoxes, ShowOnBothAndAnswerAsTheWindow) {
  ScriptedMessageBoxes console;
  console.answers = {MessageResult::kNo};
  ScriptedMessageBoxes window;
  window.answers = {MessageResult::kYes};
  DisplayMessageBoxes boxes(console, [&window] { return &window; });

  const MessageResult answer = ShowQuestion(boxes);

  EXPECT_EQ(answer, MessageResult::kYes);
  ASSERT_EQ(console.shown.size(), 1u);
  EXPECT_EQ(console.shown[0].prompt, "prompt");
  ASSERT_EQ(window.shown.size(), 1u);
  EXPECT_EQ(window.shown[0].prompt, "prompt");
  EXPECT_EQ(window.shown[0].buttons, kButtonsYesNo);
  EXPECT_EQ(window.shown[0].title, "title");
  EXPECT_EQ(window.shown[0].help_file, "help.chm");
  EXPECT_EQ(window.shown[0].help_context, 7);
}

TEST(DisplayMessageBoxes, ConnectOnlyOnce) {
  ScriptedMessageBoxes console;
  int opened = 0;
  DisplayMessageBoxes boxes(console, [&opened]() -> MessageBoxes* {
    ++opened;
    return nullptr;
  });

  static_cast<void>(ShowQuestion(boxes));
  static_cast<void>(ShowQuestion(boxes));

  EXPECT_EQ(opened, 1);
}

}  // namespace
}  // namespace txs
