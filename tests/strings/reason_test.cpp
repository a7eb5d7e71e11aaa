#include "strings/reason.h"

#include <gtest/gtest.h>

#include "strings/string_table.h"

namespace txs {
namespace {

class ReasonTest : public testing::Test {
 protected:
  ~ReasonTest() override { SetReasonLanguage(1033); }
};

TEST_F(ReasonTest, IsEnglishUntilSomethingElseIsSaid) {
  EXPECT_EQ(Words(Reason::kIsAFolder), "Is a directory");
}

TEST_F(ReasonTest, ComesInTheLanguageOfTheProcess) {
  SetReasonLanguage(1031);
  EXPECT_EQ(Words(Reason::kNoCompletePath, {"Setup"}),
            "\"Setup\" ist kein vollständiger Pfad eines Verzeichnisses");

  SetReasonLanguage(1033);
  EXPECT_EQ(Words(Reason::kNoCompletePath, {"Setup"}),
            "\"Setup\" is no complete path of a directory");
}

// They stand in parentheses behind a path.
TEST_F(ReasonTest, IsOneLineWithoutAFullStopInBothLanguages) {
  int reasons = 0;
  for (const StringTableRow& row : StringTableRows()) {
    if (row.id < 1800 || row.id > 1899) continue;
    ++reasons;
    for (const std::string_view text : {row.german, row.english}) {
      EXPECT_EQ(text.find_first_of("\r\n"), std::string_view::npos) << text;
      EXPECT_NE(text.back(), '.') << text;
    }
  }

  EXPECT_GT(reasons, 0);
}

}  // namespace
}  // namespace txs
