#include "tool/tool_messages.h"

#include <gtest/gtest.h>

#include <sstream>

namespace txs {
namespace {

TEST(ProgressLine, WritesOverItselfOnATerminal) {
  std::ostringstream stream;
  ProgressLine line(stream, /*is_terminal=*/true);

  line.Show("one");
  line.Show("one");
  line.Show("two");
  line.Clear();
  line.Clear();

  EXPECT_EQ(stream.str(), "\r\x1B[Kone\r\x1B[Ktwo\r\x1B[K");
}

TEST(ProgressLine, LeavesATerminalCleanWhenItGoes) {
  std::ostringstream stream;

  { ProgressLine(stream, /*is_terminal=*/true).Show("one"); }

  EXPECT_EQ(stream.str(), "\r\x1B[Kone\r\x1B[K");
}

TEST(ProgressLine, WritesNothingElsewhere) {
  std::ostringstream stream;
  ProgressLine line(stream, /*is_terminal=*/false);

  line.Show("one");
  line.Clear();

  EXPECT_EQ(stream.str(), "");
}

TEST(ToolMessages, AreWrittenWithLineFeedsBehindTheProgressLineAndKept) {
  std::ostringstream stream;
  ProgressLine line(stream, /*is_terminal=*/true);
  ToolMessages messages(stream, line);
  line.Show("one");
  Message message;
  message.id = 909;
  message.prompt = "a\r\nb";
  message.buttons = kButtonsYesNo;

  const MessageResult answer = messages.ShowMessage(message);

  EXPECT_EQ(stream.str(), "\r\x1B[Kone\r\x1B[Kmessage 909: a\nb\n");
  EXPECT_EQ(answer, MessageResult::kNo);
  ASSERT_EQ(messages.Shown().size(), 1u);
  EXPECT_EQ(messages.Shown()[0].prompt, "a\r\nb");
}

TEST(ProgressLineView, ShowsStageCountAndPercentage) {
  std::ostringstream stream;
  ProgressLine line(stream, /*is_terminal=*/true);
  const TextService texts(1033);
  ProgressLineView view(line, texts);

  view.StageStarted(CreateStage::kCompress);
  view.ShowProgress(MakeCreateProgress(3, 17, 42, 100));
  view.End(true, "done");

  EXPECT_EQ(stream.str(),
            "\r\x1B[KCompressing files\r\x1B[KCompressing files: 3 / 17, 42 %\r\x1B[K");
}

TEST(ScanLineView, ShowsStageAndCount) {
  std::ostringstream stream;
  ProgressLine line(stream, /*is_terminal=*/true);
  const TextService texts(1033);
  ScanLineView view(line, texts);

  view.StageStarted(ScanStage::kStudioProject);
  view.ShowCount(3);
  view.End(true, "done");

  EXPECT_EQ(stream.str(),
            "\r\x1B[KScan TavixStudio Project\r\x1B[KScan TavixStudio Project: 3\r\x1B[K");
}

}  // namespace
}  // namespace txs
