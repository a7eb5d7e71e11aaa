#include "ui/run_report.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "fakes/recording_messages.h"

namespace txs {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const TextService kInGerman(1031);
const TextService kInEnglish(1033);

TEST(RunReport, IsEmptyWithoutMessagesAndMissingFiles) {
  EXPECT_TRUE(RunReport().IsEmpty());
  EXPECT_FALSE((RunReport{{"a message"}, {}}).IsEmpty());
  EXPECT_FALSE((RunReport{{}, {{"a.dll", {}}}}).IsEmpty());
}

TEST(ReportText, OfNothingIsEmpty) { EXPECT_EQ(ReportText(RunReport(), kInGerman), ""); }

TEST(ReportText, PutsEachMessageOnOneLine) {
  const RunReport report{{"First line!\r\nSecond line.\r\n(53: C:\\x.dll)", "One\nline\r\n\r\n"},
                         {}};

  EXPECT_EQ(ReportText(report, kInEnglish),
            "First line! Second line. (53: C:\\x.dll)\n"
            "One line\n");
}

TEST(ReportText, ListsMissingFilesWithTheirChainsUnderAHeading) {
  const RunReport report{{"A message"},
                         {{"COMCAT.DLL", {"Demo.vbp", "MSCOMCTL.OCX", "COMCAT.DLL"}},
                          {"Treiber.Süd", {"Demo.txs", "treiber.SÜD"}}}};

  EXPECT_EQ(ReportText(report, kInEnglish),
            "A message\n"
            "Missing files:\n"
            "COMCAT.DLL (Demo.vbp \u2192 MSCOMCTL.OCX)\n"
            "Treiber.Süd (Demo.txs)\n");
}

TEST(ReportText, HasItsHeadingInGermanToo) {
  EXPECT_EQ(ReportText({{}, {{"a.dll", {"Demo.vbp", "a.dll"}}}}, kInGerman),
            "Fehlende Dateien:\n"
            "a.dll (Demo.vbp)\n");
}

TEST(ReportText, NamesOnlyTheItemThatNobodyNeeds) {
  EXPECT_EQ(ReportText({{}, {{"a.dll", {}}, {"b.dll", {"b.dll"}}}}, kInEnglish),
            "Missing files:\n"
            "a.dll\n"
            "b.dll\n");
}

TEST(ReportText, ShowsTheWholeChainWhenItEndsInAnotherName) {
  EXPECT_EQ(ReportText({{}, {{"a.dll", {"Demo.vbp", "b.ocx"}}}}, kInEnglish),
            "Missing files:\n"
            "a.dll (Demo.vbp \u2192 b.ocx)\n");
}

TEST(ReportText, KeepsALineALineWhateverAFileIsCalled) {
  EXPECT_EQ(ReportText({{}, {{"a\nb.dll", {"Demo\r\n.vbp", "a\nb.dll"}}}}, kInEnglish),
            "Missing files:\n"
            "a b.dll (Demo .vbp)\n");
}

class Collecting : public testing::Test {
 public:
  void Say(const std::string& prompt) {
    Message message;
    message.prompt = prompt;
    messages.ShowMessage(message);
  }

  RecordingMessages messages;
};

TEST_F(Collecting, NotesPromptsInTheirOrderWhileItLives) {
  Say("before");
  std::vector<std::string> prompts;
  {
    const MessageCollector collector(messages);
    Say("first");
    Say("second");
    prompts = collector.Prompts();
  }
  Say("after");

  EXPECT_THAT(prompts, ElementsAre("first", "second"));
}

TEST_F(Collecting, WithoutMessagesHasNone) {
  const MessageCollector collector(messages);

  EXPECT_THAT(collector.Prompts(), IsEmpty());
}

TEST_F(Collecting, LetsWhoeverListenedBeforeHearThemToo) {
  std::vector<std::string> heard;
  messages.SetListener([&heard](const Message& message) { heard.push_back(message.prompt); });
  {
    const MessageCollector collector(messages);
    Say("during");
  }
  Say("after");

  EXPECT_THAT(heard, ElementsAre("during", "after"));
}

TEST_F(Collecting, CanBeNested) {
  const MessageCollector outer(messages);
  {
    const MessageCollector inner(messages);
    Say("both");
    EXPECT_THAT(inner.Prompts(), ElementsAre("both"));
  }
  Say("outer");

  EXPECT_THAT(outer.Prompts(), ElementsAre("both", "outer"));
}

}  // namespace
}  // namespace txs
