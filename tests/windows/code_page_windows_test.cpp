// Code page and folding against the system's tables.

#include <gtest/gtest.h>

#include <windows.h>

#include <string>
#include <vector>

#include "environment/code_page.h"
#include "environment/code_page_table.h"
#include "environment/code_page_win32.h"
#include "environment/windows_calls_win32.h"

namespace txs {
namespace {

constexpr UINT kSingleByteCodePages[] = {874, 1250, 1251, 1252, 1253, 1254, 1255, 1256, 1257, 1258};

// The characters of a code page, in the order of their bytes.
std::wstring CharactersOf(UINT code_page) {
  std::wstring characters;
  for (int i = 0; i < 256; ++i) {
    const char byte = static_cast<char>(i);
    wchar_t character = 0;
    if (MultiByteToWideChar(code_page, 0, &byte, 1, &character, 1) == 1) characters += character;
  }
  return characters;
}

bool SystemFindsEqual(wchar_t left, wchar_t right) {
  return CompareStringW(LOCALE_INVARIANT, NORM_IGNORECASE, &left, 1, &right, 1) == CSTR_EQUAL;
}

// How the file system compares names.
bool FileSystemFindsEqual(wchar_t left, wchar_t right) {
  return CompareStringOrdinal(&left, 1, &right, 1, TRUE) == CSTR_EQUAL;
}

TEST(CodePageOnWindows, Utf8AndThoseOfEastAsiaAreNoneOfSingleBytes) {
  for (const UINT code_page : kSingleByteCodePages) EXPECT_TRUE(IsSingleByteCodePage(code_page));
  for (const UINT code_page : {932U, 936U, 949U, 950U, 65001U}) {
    EXPECT_FALSE(IsSingleByteCodePage(code_page)) << code_page;
  }
}

TEST(CodePageOnWindows, EveryByteGoesThroughItsCharacterAndBack) {
  std::string bytes;
  for (int i = 0; i < 256; ++i) bytes += static_cast<char>(i);

  EXPECT_EQ(Utf8ToAnsi(AnsiToUtf8(bytes)), bytes);
}

TEST(CodePageOnWindows, TheTableIsTheSystemsOne) {
  const std::wstring characters = CharactersOf(CP_ACP);
  ASSERT_EQ(characters.size(), 256U) << "run where the system's code page is of single bytes";

  for (std::size_t i = 0; i < 256; ++i) {
    EXPECT_EQ(static_cast<unsigned>(SystemCodePage()[i]), static_cast<unsigned>(characters[i]))
        << i;
  }
}

TEST(FoldingOnWindows, NamesAreTheSameForUsExactlyWhenTheyAreForTheFileSystem) {
  for (const UINT code_page : kSingleByteCodePages) {
    const std::wstring characters = CharactersOf(code_page);
    ASSERT_GE(characters.size(), 200U) << code_page;
    for (const wchar_t left : characters) {
      const std::string left_text = ToUtf8({&left, 1});
      for (const wchar_t right : characters) {
        EXPECT_EQ(EqualNoCase(left_text, ToUtf8({&right, 1})), FileSystemFindsEqual(left, right))
            << "code page " << code_page << std::hex << ": U+" << static_cast<unsigned>(left)
            << " and U+" << static_cast<unsigned>(right);
      }
    }
  }
}

// CompareString is made for sorting: it also takes for equal what is no letter at all (control
// characters), and forms of one letter. Of two letters that differ in their case only both must say
// the same, but for the small sigma at the end of a word, whose capital to the file system is none.
TEST(FoldingOnWindows, PairsOfCapitalAndSmallLettersAreThoseOfCompareString) {
  for (const UINT code_page : kSingleByteCodePages) {
    const std::wstring characters = CharactersOf(code_page);
    for (const wchar_t left : characters) {
      for (const wchar_t right : characters) {
        constexpr wchar_t kFinalSigma = 0x3C2;
        const bool is_pair = IsCharUpperW(left) && IsCharLowerW(right);
        if (!is_pair || right == kFinalSigma) continue;
        EXPECT_EQ(EqualNoCase(ToUtf8({&left, 1}), ToUtf8({&right, 1})),
                  SystemFindsEqual(left, right))
            << "code page " << code_page << std::hex << ": U+" << static_cast<unsigned>(left)
            << " and U+" << static_cast<unsigned>(right);
      }
    }
  }
}

// CompareString may take it for a small sigma; a disk holds files of both names.
TEST(FoldingOnWindows, TheSmallSigmaAtTheEndOfAWordIsALetterOfItsOwn) {
  EXPECT_TRUE(EqualNoCase("\u03A3", "\u03C3"));
  EXPECT_FALSE(EqualNoCase("\u03A3", "\u03C2"));
  EXPECT_FALSE(EqualNoCase("\u03C3", "\u03C2"));
  EXPECT_FALSE(FileSystemFindsEqual(L'\u03A3', L'\u03C2'));
  EXPECT_FALSE(FileSystemFindsEqual(L'\u03C3', L'\u03C2'));
}

}  // namespace
}  // namespace txs
