#include "environment/code_page.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "environment/code_page_table.h"
#include "environment/runtime_error.h"

namespace txs {
namespace {

std::string AllBytes() {
  std::string bytes;
  for (int byte = 0; byte < 256; ++byte) bytes += static_cast<char>(byte);
  return bytes;
}

TEST(CodePage, EveryByteSurvivesTheWayThereAndBack) {
  const std::string bytes = AllBytes();

  const std::string utf8 = AnsiToUtf8(bytes);

  EXPECT_EQ(Utf8ToAnsi(utf8), bytes);
}

TEST(CodePage, WesternLettersAndSignsHaveTheirCharacters) {
  EXPECT_EQ(AnsiToUtf8("\xC4\xE4\xDF \x80 \x8A\x9A \x96"), "Ää\u00DF € Šš –");
}

TEST(CodePage, UnassignedBytesStandForControlCharacters) {
  EXPECT_EQ(AnsiToUtf8("\x81\x8D\x8F\x90\x9D"), "\u0081\u008D\u008F\u0090\u009D");
}

TEST(CodePage, NoTwoBytesShareACharacter) {
  const CodePageTable& table = SystemCodePage();

  for (std::size_t left = 0; left < table.size(); ++left) {
    for (std::size_t right = left + 1; right < table.size(); ++right) {
      EXPECT_NE(table[left], table[right]) << left << " and " << right;
    }
  }
}

TEST(CodePage, ACharacterThatTheCodePageLacksIsAnErrorThatNamesIt) {
  try {
    (void)Utf8ToAnsi("Čapek.dll");
    FAIL() << "no error";
  } catch (const RuntimeError& error) {
    EXPECT_EQ(error.Number(), ErrorNumber::kInvalidCall);
    EXPECT_EQ(error.Description(), "U+010C 'Č' in \"Čapek.dll\"");
  }
}

TEST(CodePage, ACharacterBeyondTheBasicPlaneIsAnError) {
  EXPECT_THROW((void)Utf8ToAnsi("a\U0001F600"), RuntimeError);
}

TEST(CodePage, TheErrorQuotesOnlyTheLineAroundTheCharacter) {
  const std::string text = std::string(5000, 'x') + "\r\nname=Ł\r\n" + std::string(5000, 'y');

  try {
    (void)Utf8ToAnsi(text);
    FAIL() << "no error";
  } catch (const RuntimeError& error) {
    EXPECT_EQ(error.Description(), "U+0141 'Ł' in \"name=Ł\"");
  }
}

TEST(CodePage, MalformedUtf8IsAnErrorWithAValidDescription) {
  for (const std::string text : {"a\xE4z", "\xC3", "\xE2\x82", "\xC0\xAF", "\xED\xA0\x80",
                                 "\xF4\x90\x80\x80", "\x80", "\xFF"}) {
    try {
      (void)Utf8ToAnsi(text);
      ADD_FAILURE() << "no error";
    } catch (const RuntimeError& error) {
      EXPECT_EQ(error.Number(), ErrorNumber::kInvalidCall);
      for (const char c : error.Description()) EXPECT_LT(static_cast<unsigned char>(c), 0x80u);
    }
  }
}

TEST(CodePage, Utf8IsToldFromOtherBytes) {
  for (const char* text : {"", "abc", "Ä€", "\U0001F600", "\xED\x9F\xBF"}) {
    EXPECT_TRUE(IsUtf8(text)) << text;
  }
  for (const char* bytes : {"\xC4", "a\x80", "\xC0\xAF", "\xE0\x80\xAF", "\xED\xA0\x80",
                            "\xF5\x80\x80\x80", "\xE2\x82"}) {
    EXPECT_FALSE(IsUtf8(bytes)) << bytes;
  }
}

TEST(FoldCase, LettersOfTheCodePagesFold) {
  EXPECT_EQ(FoldCase("ÄÖÜ ŠŽŒŸ ÀÇÑÞ"), "äöü šžœÿ àçñþ");
  EXPECT_EQ(FoldCase("ĄĆĘŁŃŚŹŻ ČĎĚŇŘŤŮ ŐŰ"), "ąćęłńśźż čďěňřťů őű");
  EXPECT_EQ(FoldCase("ΑΒΓΩ ΆΈΉΊΌΎΏ ΪΫ"), "αβγω άέήίόύώ ϊϋ");
  EXPECT_EQ(FoldCase("АБВЯ ЁЂЏ Ґ"), "абвя ёђџ ґ");
}

TEST(FoldCase, WhatHasNoOtherCaseStays) {
  const std::string text = "abc 123 \\/[]{}@`^_ \u00D7\u00F7\u00DF €„“ ıİ ς 漢字";

  EXPECT_EQ(FoldCase(text), text);
}

TEST(FoldCase, BytesThatAreNoUtf8Stay) {
  const std::string bytes = "\xC4Z\xFF\x84\xC3";

  EXPECT_EQ(FoldCase(bytes), "\xC4z\xFF\x84\xC3");
}

TEST(FoldCase, FoldingTwiceIsFoldingOnce) {
  for (char32_t code = 0x80; code < 0x800; ++code) {
    std::string text = {static_cast<char>(0xC0 | (code >> 6)),
                        static_cast<char>(0x80 | (code & 0x3F))};
    const std::string folded = FoldCase(text);

    EXPECT_EQ(FoldCase(folded), folded) << std::hex << static_cast<unsigned>(code);
    EXPECT_EQ(folded.size(), text.size());
  }
}

TEST(EqualNoCase, ComparesAsciiWithoutRegardToCase) {
  EXPECT_TRUE(EqualNoCase("", ""));
  EXPECT_TRUE(
      EqualNoCase("C:\\Windows\\System32\\MSVBVM60.DLL", "c:\\windows\\system32\\msvbvm60.dll"));
  EXPECT_FALSE(
      EqualNoCase("C:\\Windows\\System32\\MSVBVM60.DLL", "c:\\windows\\system32\\msvbvm50.dll"));
  EXPECT_FALSE(EqualNoCase("abc", "abcd"));
}

TEST(EqualNoCase, SignsThatDifferByTheCaseBitAreNotEqual) {
  EXPECT_FALSE(EqualNoCase("@[\\]^_`{", "`{|}~\x7F@["));
  EXPECT_FALSE(EqualNoCase("1234567@", "1234567`"));
  EXPECT_FALSE(EqualNoCase("1234567[", "1234567{"));
}

TEST(EqualNoCase, ALetterOfTwoBytesAcrossAWordBorderIsFolded) {
  for (std::size_t before = 0; before < 20; ++before) {
    const std::string prefix(before, 'x');

    EXPECT_TRUE(EqualNoCase(prefix + "Ärger.DLL and more", prefix + "äRGER.dll AND MORE"));
    EXPECT_FALSE(EqualNoCase(prefix + "Ärger.DLL and more", prefix + "öRGER.dll AND MORE"));
  }
}

TEST(EqualNoCase, AgreesWithFoldCaseOnRandomTexts) {
  std::mt19937 random(7);
  const std::vector<std::string> pieces = {"a", "A", "Z",    "z",    "@",    "`",    "Ä",   "ä",
                                           "Š", "š", "\xC3", "\x84", "\xA4", "漢",   "[",   "{",
                                           "Ÿ", "ÿ", "я",    "Я",    "0",    "\xE2", "abc", "ABC"};
  std::uniform_int_distribution<std::size_t> pick(0, pieces.size() - 1);
  std::uniform_int_distribution<int> length(0, 12);
  int equal = 0;
  for (int round = 0; round < 20000; ++round) {
    std::string left;
    std::string right;
    for (int i = length(random); i > 0; --i) {
      const std::size_t piece = pick(random);
      left += pieces[piece];
      // Mostly the same piece or its partner in the other case, so that many texts are equal.
      right += pieces[random() % 8 == 0 ? pick(random) : (random() % 2 == 0 ? piece : piece ^ 1)];
    }

    const bool same = FoldCase(left) == FoldCase(right);

    ASSERT_EQ(EqualNoCase(left, right), same) << left << " and " << right;
    if (same) ++equal;
  }
  EXPECT_GT(equal, 1000);
}

TEST(FindNoCase, FindsTheFirstOccurrenceFromAPosition) {
  std::size_t length = 0;

  EXPECT_EQ(FindNoCase("Über den BÜCHERN, über", "ÜBER", 0, &length), 0u);
  EXPECT_EQ(length, 5u);
  EXPECT_EQ(FindNoCase("Über den BÜCHERN, über", "ÜBER", 1, &length), 20u);
  EXPECT_EQ(FindNoCase("abc", "d", 0, nullptr), std::string_view::npos);
}

TEST(FindNoCase, AnEmptyTextIsFoundEverywhereUpToTheEnd) {
  std::size_t length = 99;

  EXPECT_EQ(FindNoCase("abc", "", 3, &length), 3u);
  EXPECT_EQ(length, 0u);
  EXPECT_EQ(FindNoCase("abc", "", 4, &length), std::string_view::npos);
}

TEST(TrimBlanks, RemovesBlanksAndTabsAtBothEndsOnly) {
  EXPECT_EQ(TrimBlanks(" \t a b\t "), "a b");
  EXPECT_EQ(TrimBlanks(" \t "), "");
  EXPECT_EQ(TrimBlanks(""), "");
  EXPECT_EQ(TrimBlanks("\r\nx"), "\r\nx");
}

}  // namespace
}  // namespace txs
