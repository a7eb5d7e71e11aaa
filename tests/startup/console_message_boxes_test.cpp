#include "startup/console_message_boxes.h"

#include <gtest/gtest.h>

#include <sstream>

namespace txs {
namespace {

TEST(ConsoleMessageBoxes, WriteTitleAndPromptWithLineFeeds) {
  std::ostringstream stream;
  ConsoleMessageBoxes boxes(stream, "Application");

  const MessageResult answer = boxes.Show("a\r\nb\nc\rd", kButtonsOk | kIconCritical, "Title",
                                          /*help_file=*/"", /*help_context=*/0);

  EXPECT_EQ(stream.str(), "Title\na\nb\nc\rd\n");
  EXPECT_EQ(answer, MessageResult::kOk);
}

TEST(ConsoleMessageBoxes, ShowTheApplicationTitleForAnEmptyOne) {
  std::ostringstream stream;
  ConsoleMessageBoxes boxes(stream, "Application");

  static_cast<void>(boxes.Show("a", kButtonsOk, "", /*help_file=*/"", /*help_context=*/0));

  EXPECT_EQ(stream.str(), "Application\na\n");
}

TEST(ConsoleMessageBoxes, AnswerCancelWhereThereIsSuchAButtonElseNoElseOk) {
  EXPECT_EQ(AnswerOfNobody(kButtonsYesNoCancel | kIconQuestion), MessageResult::kCancel);
  EXPECT_EQ(AnswerOfNobody(kButtonsYesNo | kIconExclamation), MessageResult::kNo);
  EXPECT_EQ(AnswerOfNobody(kButtonsOk | kButtonHelp | kIconInformation), MessageResult::kOk);
}

}  // namespace
}  // namespace txs
