#include "strings/m_text.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <string>
#include <vector>

#include "strings/string_table.h"

namespace txs {
namespace {

using MText::ExpandTemplate;
using MText::GetText;
using MText::LanguageOffset;

const std::vector<std::string> kNone;

TEST(MText, WithoutALanguageIdTextsAreGerman) {
  EXPECT_EQ(LanguageOffset(0), 0);
  EXPECT_EQ(GetText(0, 11), "Abbrechen");
}

TEST(MText, Language1031IsGerman) {
  EXPECT_EQ(LanguageOffset(1031), 0);
  EXPECT_EQ(GetText(1031, 11), "Abbrechen");
}

TEST(MText, Language1033IsEnglish) {
  EXPECT_EQ(LanguageOffset(1033), 10000);
  EXPECT_EQ(GetText(1033, 11), "Cancel");
}

TEST(MText, Language1034HasNoTextsAndFallsBackToGerman) {
  EXPECT_EQ(LanguageOffset(1034), 20000);
  EXPECT_EQ(GetText(1034, 11), "Abbrechen");
}

TEST(MText, EveryOtherLanguageIsGerman) {
  EXPECT_EQ(LanguageOffset(1036), 0);
  EXPECT_EQ(GetText(1036, 11), "Abbrechen");
  EXPECT_EQ(GetText(-1, 11), "Abbrechen");
}

TEST(MText, WithLanguage1036EveryTextIsGerman) {
  for (const StringTableRow& row : StringTableRows()) {
    EXPECT_EQ(GetText(1036, row.id), GetText(1031, row.id)) << row.id;
    if (row.english == nullptr || std::string_view(row.english) == row.german) continue;
    EXPECT_NE(GetText(1036, row.id), GetText(1033, row.id)) << row.id;
  }
}

TEST(MText, Message91IsGermanInEnglishToo) {
  EXPECT_EQ(GetText(1033, 91), GetText(1031, 91));
  EXPECT_TRUE(GetText(1033, 91).starts_with("Das Tavix-Verzeichnis ist nicht registriert!\r\n"));
}

TEST(MText, AnIdThatDoesNotExistShowsItsNumberAndAnAtSign) {
  EXPECT_EQ(GetText(1031, 5000), "5000@");
  EXPECT_EQ(GetText(1033, 5000), "5000@");
}

TEST(MText, AnIdAtTheEndOfTheRangeShowsItsNumberInEveryLanguage) {
  constexpr long kLast = std::numeric_limits<long>::max();
  constexpr long kFirst = std::numeric_limits<long>::min();

  for (const long language_id : {1031L, 1033L, 1034L}) {
    EXPECT_EQ(GetText(language_id, kLast), std::to_string(kLast) + "@");
    EXPECT_EQ(GetText(language_id, kFirst), std::to_string(kFirst) + "@");
  }
}

TEST(MText, TwoStoredBackslashesGiveOne) { EXPECT_EQ(ExpandTemplate("a\\\\b", kNone), "a\\b"); }

TEST(MText, ABackslashBeforeAnotherCharacterIsDropped) {
  EXPECT_EQ(ExpandTemplate("a\\qb", kNone), "aqb");
}

TEST(MText, ABackslashBeforeAnAtSignGivesAPlainAtSign) {
  EXPECT_EQ(ExpandTemplate("a\\@1\\@b", std::vector<std::string>{"X"}), "a@1@b");
}

TEST(MText, LineFeedAndTabAreEscapesInBothCases) {
  EXPECT_EQ(ExpandTemplate("\\n\\N\\t\\T", kNone), "\n\n\t\t");
}

TEST(MText, ABackslashAtTheEndIsDropped) { EXPECT_EQ(ExpandTemplate("a\\", kNone), "a"); }

TEST(MText, ABackslashAtTheEndDoesNotReachBeyondTheTemplate) {
  const std::string_view buffer = "a\\n";

  EXPECT_EQ(ExpandTemplate(buffer.substr(0, 2), kNone), "a");
}

TEST(MText, PlaceholdersTakeTheParametersOfTheirNumbers) {
  EXPECT_EQ(ExpandTemplate("@2@-@1@-@2@", std::vector<std::string>{"a", "b"}), "b-a-b");
}

TEST(MText, APlaceholderBeyondTheListTakesTheValueBeforeIt) {
  EXPECT_EQ(ExpandTemplate("@1@ and @2@", std::vector<std::string>{"X"}), "X and X");
}

TEST(MText, APlaceholderBeyondTheListIsEmptyWhenNothingWasReplacedBefore) {
  EXPECT_EQ(ExpandTemplate("[@2@] @1@ [@0@]", std::vector<std::string>{"X"}), "[] X [X]");
}

TEST(MText, BackslashesAndAtSignsInAParameterStay) {
  EXPECT_EQ(ExpandTemplate("<@1@>", std::vector<std::string>{"C:\\new\\@2@"}), "<C:\\new\\@2@>");
}

TEST(MText, ALoneAtSignIsLost) {
  EXPECT_EQ(ExpandTemplate("user@host", kNone), "userhost");
  EXPECT_EQ(ExpandTemplate("@", kNone), "");
}

TEST(MText, ALoneAtSignBeforeAnEscapeIsLostAndTheEscapeResolved) {
  EXPECT_EQ(ExpandTemplate("\\\\@\\n", kNone), "\\\n");
}

TEST(MText, TheNumberOfAPlaceholderIsWhatItsTextBeginsWith) {
  EXPECT_EQ(ExpandTemplate("@1x@", std::vector<std::string>{"X"}), "X");
  EXPECT_EQ(ExpandTemplate("[@x@][@@]", std::vector<std::string>{"X"}), "[][]");
  EXPECT_EQ(ExpandTemplate("@99999999999999999999999@", std::vector<std::string>{"X"}), "");
}

// 2^32 + 1 and 2^64 + 1 would be parameter 1 if the number wrapped around.
TEST(MText, ANumberTooLongForAnyTypeIsBeyondTheList) {
  EXPECT_EQ(ExpandTemplate("[@4294967297@]", std::vector<std::string>{"X"}), "[]");
  EXPECT_EQ(ExpandTemplate("[@18446744073709551617@]", std::vector<std::string>{"X"}), "[]");
}

TEST(MText, TheValueOfOneCallIsNotRememberedForTheNext) {
  EXPECT_EQ(ExpandTemplate("@1@", std::vector<std::string>{"X"}), "X");

  EXPECT_EQ(ExpandTemplate("[@1@]", kNone), "[]");
}

TEST(MText, TheDoubledBackslashOfTheCommandLineHelpShowsAsOne) {
  EXPECT_EQ(GetText(1033, 913),
            "The following commands may be used at the command line:\r\n"
            "[ProjectPath\\]ProjectName[.txs|.swz]\r\n/c=[ProjectPath\\]ProjectName[.txs|.swz]");
}

// Whatever a template holds, expanding ends, and without specials nothing changes.
TEST(MText, RandomTemplatesAreExpandedWithoutHarm) {
  std::mt19937 random(7);
  const std::string alphabet = "@@@\\\\12x n";
  for (int round = 0; round < 20000; ++round) {
    std::string text;
    for (std::size_t length = random() % 30; length > 0; --length) {
      text += alphabet[random() % alphabet.size()];
    }
    const std::string expanded = ExpandTemplate(text, std::vector<std::string>{"<one>", "<two>"});
    EXPECT_LE(expanded.size(), text.size() * 5) << text;
    if (text.find_first_of("@\\") == std::string::npos) {
      EXPECT_EQ(expanded, text);
    }
  }
}

TEST(MText, RandomTextsWithTheirSpecialsEscapedComeOutAsTheyWere) {
  std::mt19937 random(11);
  const std::string alphabet = "@\\12nNtTxq \r\n\xC3\xBC";
  for (int round = 0; round < 20000; ++round) {
    std::string plain;
    std::string escaped;
    for (std::size_t length = random() % 30; length > 0; --length) {
      const char c = alphabet[random() % alphabet.size()];
      plain += c;
      if (c == '@' || c == '\\') escaped += '\\';
      escaped += c;
    }
    EXPECT_EQ(ExpandTemplate(escaped, std::vector<std::string>{"<one>"}), plain);
  }
}

TEST(MText, ALongTemplateOfAtSignsCostsNoMoreThanItsLength) {
  const std::string text(1'000'000, '@');

  EXPECT_EQ(ExpandTemplate(text, kNone), "");
  EXPECT_EQ(ExpandTemplate("@" + std::string(1'000'000, '\\'), kNone), std::string(500'000, '\\'));
}

}  // namespace
}  // namespace txs
