#include "environment/registry_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <map>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "environment/code_page.h"
#include "environment/runtime_error.h"

namespace txs {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr std::string_view kHeader = "Windows Registry Editor Version 5.00\r\n\r\n";
constexpr std::string_view kDemo = "HKEY_LOCAL_MACHINE\\Software\\Demo";

std::string Version5(std::string_view text) { return std::string(kHeader) + std::string(text); }

// Version 5.00 with the key kDemo.
std::string Demo(std::string_view lines) {
  return Version5("[" + std::string(kDemo) + "]\r\n" + std::string(lines));
}

// ASCII and Latin-1 only.
std::string Utf16(std::string_view latin1) {
  std::string bytes = "\xFF\xFE";
  for (const char c : latin1) {
    bytes += c;
    bytes += '\0';
  }
  return bytes;
}

std::string Text(const RegistryFile& file, std::string_view key, std::string_view name) {
  const auto value = file.Value(key, name);
  if (!value) return "(missing)";
  const auto* text = std::get_if<std::string>(&*value);
  return text == nullptr ? "(a number)" : *text;
}

ErrorNumber NumberThrownFor(std::string_view bytes) {
  try {
    const RegistryFile file(bytes);
  } catch (const RuntimeError& error) {
    return error.Number();
  }
  return ErrorNumber{};
}

template <typename Action>
ErrorNumber NumberThrownBy(const Action& action) {
  try {
    action();
  } catch (const RuntimeError& error) {
    return error.Number();
  }
  return ErrorNumber{};
}

TEST(RegistryFile, TextsAndNumbersAreRead) {
  const RegistryFile file(Demo("\"Path\"=\"C:\\\\Demo\"\r\n\"LCID\"=dword:00000407\r\n"));

  EXPECT_EQ(file.Value(kDemo, "Path"), RegistryValue("C:\\Demo"));
  EXPECT_EQ(file.Value(kDemo, "LCID"), RegistryValue(std::uint32_t{1031}));
}

TEST(RegistryFile, QuotesInNamesAndTextsAreEscaped) {
  const RegistryFile file(Demo("\"a \\\"b\\\" = \\\\\"=\"say \\\"no\\\"=\\\\\"\r\n"));

  EXPECT_EQ(Text(file, kDemo, "a \"b\" = \\"), "say \"no\"=\\");
}

TEST(RegistryFile, ABackslashThatEscapesNothingIsItself) {
  const RegistryFile file(Demo("\"Path\"=\"C:\\Demo\\new\"\r\n"));

  EXPECT_EQ(Text(file, kDemo, "Path"), "C:\\Demo\\new");
}

TEST(RegistryFile, TheDefaultValueHasTheNameNothing) {
  const RegistryFile file(Demo("@=\"server\"\r\n"));

  EXPECT_EQ(Text(file, kDemo, ""), "server");
}

TEST(RegistryFile, KeysAndNamesAreFoundInAnyCase) {
  const RegistryFile file(
      Version5("[HKEY_LOCAL_MACHINE\\SOFTWARE\\M\xC3\x9CLLER]\r\n\"Pfad\"=\"x\"\r\n"));

  EXPECT_EQ(Text(file, "hkey_local_machine\\Software\\m\xC3\xBCller", "PFAD"), "x");
}

TEST(RegistryFile, BlanksAroundTheEqualsSignAndCommentsBehindAValueDoNotCount) {
  const RegistryFile file(
      Demo("  \"a\" = \"x\" ; why\r\n\t\"b\"= dword:0F;why\r\n\"c\"=- ; why\r\n"));

  EXPECT_EQ(Text(file, kDemo, "a"), "x");
  EXPECT_EQ(file.Value(kDemo, "b"), RegistryValue(std::uint32_t{15}));
}

TEST(RegistryFile, AnExpandableTextIsReadUnexpanded) {
  const RegistryFile file(Demo("\"p\"=hex(2):25,00,54,00,25,00,\\\r\n  e4,00,00,00\r\n"));

  EXPECT_EQ(Text(file, kDemo, "p"), "%T%\xC3\xA4");
}

TEST(RegistryFile, AnExpandableTextOfRegedit4IsAnsi) {
  const RegistryFile file(
      "REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\x]\r\n\"p\"=hex(2):25,54,25,e4,00\r\n");

  EXPECT_EQ(Text(file, "HKEY_CURRENT_USER\\x", "p"), "%T%\xC3\xA4");
}

TEST(RegistryFile, AnExpandableTextOfHalfCharactersIsNoText) {
  const std::string bytes = Demo("\"p\"=hex(2):25,00,54\r\n\"q\"=hex(2):00,d8,41,00\r\n");
  const RegistryFile file(bytes);

  EXPECT_FALSE(file.Value(kDemo, "p"));
  EXPECT_FALSE(file.Value(kDemo, "q"));
  EXPECT_EQ(file.Bytes(), bytes);
}

TEST(RegistryFile, OtherTypesAreNotReadButKeptWithTheirContinuationLines) {
  const std::string bytes = Demo(
      "\"bin\"=hex:01,02,\\\r\n  03,04,\\\r\n  ; inside\r\n  05\r\n\"multi\"=hex(7):41,00,00,00\r\n"
      "\"a\"=\"x\"\r\n");
  RegistryFile file(bytes);

  EXPECT_FALSE(file.Value(kDemo, "bin"));
  EXPECT_FALSE(file.Value(kDemo, "multi"));
  EXPECT_EQ(Text(file, kDemo, "a"), "x");
  file.Set(kDemo, "a", "y");
  std::string changed = file.Bytes();
  EXPECT_EQ(changed.replace(changed.find("\"y\""), 3, "\"x\""), bytes);
}

TEST(RegistryFile, SettingAValueOfAnotherTypeReplacesAllItsLines) {
  RegistryFile file(Demo("\"bin\"=hex:01,02,\\\r\n  03,04\r\n\"a\"=\"x\"\r\n"));

  file.Set(kDemo, "bin", "text");

  EXPECT_EQ(file.Bytes(), Demo("\"bin\"=\"text\"\r\n\"a\"=\"x\"\r\n"));
}

TEST(RegistryFile, OfSeveralValuesTheLastWins) {
  RegistryFile file(
      Demo("\"a\"=\"1\"\r\n\"A\"=\"2\"\r\n[HKEY_LOCAL_MACHINE\\software\\demo]\r\n"
           "\"a\"=\"3\"\r\n"));

  EXPECT_EQ(Text(file, kDemo, "a"), "3");
  file.Set(kDemo, "a", "4");
  EXPECT_EQ(Text(RegistryFile(file.Bytes()), kDemo, "a"), "4");
}

TEST(RegistryFile, ADeletedValueIsGoneUntilItIsSetAgain) {
  RegistryFile file(Demo("\"a\"=\"1\"\r\n\"b\"=\"1\"\r\n\"a\"=-\r\n\"b\"=-\r\n\"b\"=\"2\"\r\n"));

  EXPECT_FALSE(file.Value(kDemo, "a"));
  EXPECT_EQ(Text(file, kDemo, "b"), "2");
  file.Set(kDemo, "a", "again");
  EXPECT_EQ(Text(RegistryFile(file.Bytes()), kDemo, "a"), "again");
}

TEST(RegistryFile, ADeletedKeyIsGoneWithItsSubkeysUntilItIsMadeAgain) {
  const std::string key(kDemo);
  RegistryFile file(Demo("\"a\"=\"1\"\r\n[" + key + "\\Sub]\r\n\"b\"=\"1\"\r\n[-" + key +
                         "]\r\n\"a\"=\"nobody's\"\r\n[" + key + "]\r\n\"c\"=\"1\"\r\n"));

  EXPECT_FALSE(file.Value(kDemo, "a"));
  EXPECT_FALSE(file.HasKey(key + "\\Sub"));
  EXPECT_EQ(Text(file, kDemo, "c"), "1");
  file.Set(kDemo, "a", "2");
  file.Set(key + "\\Sub", "b", "2");
  const RegistryFile again(file.Bytes());
  EXPECT_EQ(Text(again, kDemo, "a"), "2");
  EXPECT_EQ(Text(again, key + "\\Sub", "b"), "2");
}

TEST(RegistryFile, ADeletionOfWhatIsMissingDoesNothing) {
  const RegistryFile file(Version5("[-HKEY_CURRENT_USER\\none]\r\n") + "[" + std::string(kDemo) +
                          "]\r\n\"none\"=-\r\n\"a\"=\"1\"\r\n");

  EXPECT_EQ(Text(file, kDemo, "a"), "1");
}

TEST(RegistryFile, SubkeysAreInFileOrderEachOnceAsSpelledFirst) {
  const RegistryFile file(
      Version5("[HKEY_CURRENT_USER\\p\\Zeta]\r\n[HKEY_CURRENT_USER\\p\\alpha\\deep]\r\n"
               "[HKEY_CURRENT_USER\\P\\ZETA]\r\n[HKEY_CURRENT_USER\\p\\Beta]\r\n"));

  EXPECT_THAT(file.Subkeys("HKEY_CURRENT_USER\\p"), ElementsAre("Zeta", "alpha", "Beta"));
  EXPECT_THAT(file.Subkeys("HKEY_CURRENT_USER\\none"), IsEmpty());
}

TEST(RegistryFile, DamagedLinesAreKeptAndTheRestIsRead) {
  const std::string bytes = Demo(
      "\"open\"=\"no "
      "end\r\n\"number\"=dword:xyz\r\n\"long\"=dword:123456789\r\n\"\r\n@\r\n=\r\nfree\r\n"
      "\"trail\"=\"x\"y\r\n\"hex\"=hex:0g\r\n\"byte\"=hex:001\r\n\"kind\"=hex(2\r\n"
      "\"unknown\"=qword:1\r\n[no end\r\n\"lost\"=\"1\"\r\n[]\r\n[\\]\r\n[a\\\\b]\r\n[-\r\n[" +
      std::string(kDemo) + "]\r\n\"a\"=\"x\"\r\n");
  RegistryFile file(bytes);

  EXPECT_EQ(Text(file, kDemo, "a"), "x");
  for (const char* name :
       {"open", "number", "long", "trail", "hex", "byte", "kind", "unknown", "lost"}) {
    EXPECT_FALSE(file.Value(kDemo, name)) << name;
  }
  EXPECT_EQ(file.Bytes(), bytes);
  file.Set(kDemo, "a", "y");
  EXPECT_EQ(file.Bytes().size(), bytes.size());
}

TEST(RegistryFile, AHexValueWhoseEndGotLostDoesNotSwallowWhatFollows) {
  const std::string bytes = Demo(
      "\"b\"=hex:01,\\\r\n\"a\"=\"x\"\r\n\"c\"=hex:01,\\\r\n[HKEY_CURRENT_USER\\k]\r\n"
      "\"d\"=\"y\"\r\n\"e\"=hex:01,\\");
  RegistryFile file(bytes);

  EXPECT_EQ(Text(file, kDemo, "a"), "x");
  EXPECT_EQ(Text(file, "HKEY_CURRENT_USER\\k", "d"), "y");
  EXPECT_EQ(file.Bytes(), bytes);
  file.Set("HKEY_CURRENT_USER\\k", "f", "z");
  EXPECT_EQ(Text(RegistryFile(file.Bytes()), "HKEY_CURRENT_USER\\k", "f"), "z");
}

TEST(RegistryFile, AKeyDeeperThanWindowsAllowsMeansNothing) {
  std::string deep = "HKEY_CURRENT_USER";
  for (int i = 0; i < 100'000; ++i) deep += "\\k";
  const std::string bytes = Version5("[" + deep + "]\r\n\"a\"=\"x\"\r\n");
  RegistryFile file(bytes);

  EXPECT_FALSE(file.HasKey("HKEY_CURRENT_USER\\k"));
  EXPECT_EQ(file.Bytes(), bytes);
  EXPECT_EQ(NumberThrownBy([&] { file.Set(deep, "a", "x"); }), ErrorNumber::kInvalidCall);
}

TEST(RegistryFile, WhatIsNoExportIsRefused) {
  EXPECT_EQ(NumberThrownFor("[HKEY_CURRENT_USER\\x]\r\n"), ErrorNumber::kInvalidCall);
  EXPECT_EQ(NumberThrownFor("REGEDIT\r\n"), ErrorNumber::kInvalidCall);
  EXPECT_EQ(NumberThrownFor("Windows Registry Editor Version 6.00\r\n"), ErrorNumber::kInvalidCall);
  EXPECT_EQ(NumberThrownFor(std::string("MZ\x90\0\x03\0\0\0", 8)), ErrorNumber::kInvalidCall);
  EXPECT_EQ(NumberThrownFor(std::string(kHeader) + '\0'), ErrorNumber::kInvalidCall);
  EXPECT_EQ(NumberThrownFor(Utf16(kHeader) + "x"), ErrorNumber::kInvalidCall);
}

TEST(RegistryFile, AFileWithoutTextIsAnEmptyRegistry) {
  for (const std::string bytes :
       {"", "\r\n \r\n", "; to be filled\r\n", "\xEF\xBB\xBF", "\xFF\xFE"}) {
    RegistryFile file(bytes);

    EXPECT_FALSE(file.HasKey("HKEY_CURRENT_USER"));
    EXPECT_EQ(file.Bytes(), bytes);
    file.Set(kDemo, "a", "x");
    EXPECT_EQ(Text(RegistryFile(file.Bytes()), kDemo, "a"), "x");
  }
}

TEST(RegistryFile, TheFirstValueMakesAWholeExport) {
  RegistryFile file;

  file.Set(kDemo, "a", "x");
  file.Set(kDemo, "b", std::uint32_t{0xABCD});
  file.Set("HKEY_CURRENT_USER\\k", "", "C:\\\"");

  EXPECT_EQ(file.Bytes(), Demo("\"a\"=\"x\"\r\n\"b\"=dword:0000abcd\r\n\r\n"
                               "[HKEY_CURRENT_USER\\k]\r\n@=\"C:\\\\\\\"\"\r\n"));
}

TEST(RegistryFile, ANewValueStandsBehindTheLastOneBeforeTheBlankLine) {
  RegistryFile file(Demo("\"a\"=\"1\"\r\n; about a\r\n\r\n[HKEY_CURRENT_USER\\k]\r\n"));

  file.Set(kDemo, "b", "2");

  EXPECT_EQ(file.Bytes(),
            Demo("\"a\"=\"1\"\r\n\"b\"=\"2\"\r\n; about a\r\n\r\n[HKEY_CURRENT_USER\\k]\r\n"));
}

TEST(RegistryFile, ALastLineWithoutLineEndGetsOne) {
  RegistryFile file(Demo("\"a\"=\"1\""));

  file.Set(kDemo, "b", "2");

  EXPECT_EQ(file.Bytes(), Demo("\"a\"=\"1\"\r\n\"b\"=\"2\"\r\n"));
}

TEST(RegistryFile, NewLinesEndAsTheFirstLineDoes) {
  RegistryFile file("REGEDIT4\n\n[HKEY_CURRENT_USER\\k]\n\"a\"=\"1\"\r\n");

  file.Set("HKEY_CURRENT_USER\\k", "b", "2");

  EXPECT_EQ(file.Bytes(), "REGEDIT4\n\n[HKEY_CURRENT_USER\\k]\n\"a\"=\"1\"\r\n\"b\"=\"2\"\n");
}

TEST(RegistryFile, AValueThatIsThereAlreadyChangesNothing) {
  const std::string bytes = Demo("\"p\" = hex(2):78,00,00,00 ; x\r\n");
  RegistryFile file(bytes);

  file.Set(kDemo, "P", "x");

  EXPECT_EQ(file.Bytes(), bytes);
}

TEST(RegistryFile, ATextWithLineBreaksComesBack) {
  for (const std::string header : {"REGEDIT4", "Windows Registry Editor Version 5.00"}) {
    RegistryFile file(header + "\r\n");

    file.Set(kDemo, "a", "one\r\ntwo \xC3\xA4");

    EXPECT_EQ(Text(RegistryFile(file.Bytes()), kDemo, "a"), "one\r\ntwo \xC3\xA4") << header;
  }
}

TEST(RegistryFile, RemovingAKeyTakesItsSubkeysAndLeavesItsNeighbours) {
  RegistryFile file(
      Version5("[HKEY_CURRENT_USER\\p\\a]\r\n\"x\"=\"1\"\r\n\r\n[HKEY_CURRENT_USER\\p\\a\\sub]\r\n"
               "\"y\"=hex:01,\\\r\n  02\r\n\r\n; about ab\r\n[HKEY_CURRENT_USER\\p\\ab]\r\n"
               "\"z\"=\"1\"\r\n\r\n[HKEY_CURRENT_USER\\P\\A]\r\n\"w\"=\"1\"\r\n"));

  EXPECT_TRUE(file.RemoveKey("HKEY_CURRENT_USER\\P\\a"));

  EXPECT_EQ(file.Bytes(),
            Version5("; about ab\r\n[HKEY_CURRENT_USER\\p\\ab]\r\n\"z\"=\"1\"\r\n\r\n"));
  EXPECT_THAT(file.Subkeys("HKEY_CURRENT_USER\\p"), ElementsAre("ab"));
  EXPECT_FALSE(file.RemoveKey("HKEY_CURRENT_USER\\p\\a"));
}

TEST(RegistryFile, RemovingAnOnlySubkeyLeavesItsParentInItsPlace) {
  RegistryFile file(
      Version5("[HKEY_CURRENT_USER\\p\\q\\a]\r\n\"x\"=\"1\"\r\n\r\n"
               "[HKEY_CURRENT_USER\\p\\r]\r\n"));

  file.RemoveKey("HKEY_CURRENT_USER\\p\\q\\a");

  const RegistryFile again(file.Bytes());
  EXPECT_TRUE(again.HasKey("HKEY_CURRENT_USER\\p\\q"));
  EXPECT_THAT(again.Subkeys("HKEY_CURRENT_USER\\p"), ElementsAre("q", "r"));
  EXPECT_THAT(again.Subkeys("HKEY_CURRENT_USER\\p\\q"), IsEmpty());
}

TEST(RegistryFile, ARemovedKeyCanBeMadeAgain) {
  RegistryFile file(Demo("\"a\"=\"1\"\r\n"));

  file.RemoveKey(kDemo);
  file.Set(kDemo, "b", "2");

  const RegistryFile again(file.Bytes());
  EXPECT_FALSE(again.Value(kDemo, "a"));
  EXPECT_EQ(Text(again, kDemo, "b"), "2");
}

TEST(RegistryFile, NamesThatTheFormatCannotHoldAreRefusedAndChangeNothing) {
  const std::string bytes = Demo("\"a\"=\"1\"\r\n");
  RegistryFile file(bytes);
  const auto refused = [&](std::string_view key, std::string_view name,
                           const RegistryValue& value) {
    return NumberThrownBy([&] { file.Set(key, name, value); }) == ErrorNumber::kInvalidCall;
  };

  EXPECT_TRUE(refused("", "a", "x"));
  EXPECT_TRUE(refused("HKEY_CURRENT_USER\\", "a", "x"));
  EXPECT_TRUE(refused("HKEY_CURRENT_USER\\\\k", "a", "x"));
  EXPECT_TRUE(refused("-HKEY_CURRENT_USER\\k", "a", "x"));
  EXPECT_TRUE(refused("HKEY_CURRENT_USER\\k\r\n[x]", "a", "x"));
  EXPECT_TRUE(refused(kDemo, "a\nb", "x"));
  EXPECT_TRUE(refused(kDemo, "b", std::string("x\0y", 3)));
  EXPECT_TRUE(refused(kDemo, "b", "\xFF"));
  EXPECT_EQ(file.Bytes(), bytes);
}

TEST(RegistryFile, AnAnsiFileRefusesACharacterThatItLacksAndIsUnchanged) {
  const std::string bytes = "REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\k]\r\n\"a\"=\"\xE4\"\r\n";
  RegistryFile file(bytes);

  EXPECT_EQ(NumberThrownBy([&] { file.Set("HKEY_CURRENT_USER\\k", "b", "\xC4\x8C"); }),
            ErrorNumber::kInvalidCall);
  EXPECT_EQ(file.Bytes(), bytes);
}

TEST(RegistryFile, AnAnsiTextThatLooksLikeUtf8ComesBack) {
  RegistryFile file("REGEDIT4\r\n");

  file.Set(kDemo, "a", "\xC3\x83\xC2\xA4");  // "Ã¤", in ANSI the bytes of a UTF-8 "ä"

  EXPECT_EQ(Text(RegistryFile(file.Bytes()), kDemo, "a"), "\xC3\x83\xC2\xA4");
}

TEST(RegistryFile, HalfSurrogatesAreKeptAndMeanNothing) {
  std::string bytes = Utf16(Demo("\"a\"=\"x?y\"\r\n\"b\"=\"ok\"\r\n"));
  const std::size_t at = bytes.find(std::string("?\0", 2));
  bytes[at] = '\x00';
  bytes[at + 1] = '\xD8';
  RegistryFile file(bytes);

  EXPECT_FALSE(file.Value(kDemo, "a"));
  EXPECT_EQ(Text(file, kDemo, "b"), "ok");
  EXPECT_EQ(file.Bytes(), bytes);
}

TEST(RegistryFile, BrokenUtf8BehindAByteOrderMarkIsKeptAndMeansNothing) {
  const std::string bytes = "\xEF\xBB\xBF" + Demo("\"a\"=\"x\xFFy\"\r\n\"b\"=\"\xC3\xA4\"\r\n");
  RegistryFile file(bytes);

  EXPECT_FALSE(file.Value(kDemo, "a"));
  EXPECT_EQ(Text(file, kDemo, "b"), "\xC3\xA4");
  EXPECT_EQ(file.Bytes(), bytes);
}

// One text in each encoding that an export may have.
struct Encoded {
  const char* name;
  std::string bytes;
  std::string ae;  // the bytes of "ä"
};

class RegistryFileEncoding : public testing::TestWithParam<Encoded> {};

TEST_P(RegistryFileEncoding, IsReadAndKept) {
  RegistryFile file(GetParam().bytes);

  EXPECT_EQ(Text(file, "HKEY_CURRENT_USER\\k\xC3\xA4", "a"), "\xC3\xA4");
  EXPECT_EQ(file.Bytes(), GetParam().bytes);
  file.Set("HKEY_CURRENT_USER\\k\xC3\xA4", "b", "\xC3\x84");
  file.Set("HKEY_CURRENT_USER\\k\xC3\xA4", "b", "\xC3\xA4");
  const std::string changed = file.Bytes();
  EXPECT_TRUE(changed.starts_with(GetParam().bytes));
  EXPECT_THAT(changed.substr(GetParam().bytes.size()), HasSubstr(GetParam().ae));
  EXPECT_EQ(Text(RegistryFile(changed), "HKEY_CURRENT_USER\\k\xC3\xA4", "b"), "\xC3\xA4");
}

std::string EncodedText(std::string_view header, std::string_view ae) {
  return std::string(header) + "\r\n\r\n[HKEY_CURRENT_USER\\k" + std::string(ae) + "]\r\n\"a\"=\"" +
         std::string(ae) + "\"\r\n";
}

constexpr std::string_view kV5 = "Windows Registry Editor Version 5.00";
INSTANTIATE_TEST_SUITE_P(
    Every, RegistryFileEncoding,
    testing::Values(Encoded{"Utf16", Utf16(EncodedText(kV5, "\xE4")), std::string("\xE4\0", 2)},
                    Encoded{"Utf16WithoutMark", Utf16(EncodedText(kV5, "\xE4")).substr(2),
                            std::string("\xE4\0", 2)},
                    Encoded{"Utf8", EncodedText(kV5, "\xC3\xA4"), "\xC3\xA4"},
                    Encoded{"Utf8WithMark", "\xEF\xBB\xBF" + EncodedText(kV5, "\xC3\xA4"),
                            "\xC3\xA4"},
                    Encoded{"Ansi", EncodedText(kV5, "\xE4"), "\xE4"},
                    Encoded{"AnsiRegedit4", EncodedText("REGEDIT4", "\xE4"), "\xE4"},
                    Encoded{"Utf8Regedit4", EncodedText("REGEDIT4", "\xC3\xA4"), "\xC3\xA4"}),
    [](const auto& encoded) { return encoded.param.name; });

TEST(RegistryFile, ACharacterOutsideTheBasicPlaneSurvivesUtf16) {
  RegistryFile file(Utf16(kHeader));

  file.Set(kDemo, "a", "\xF0\x9F\x98\x80");

  EXPECT_EQ(Text(RegistryFile(file.Bytes()), kDemo, "a"), "\xF0\x9F\x98\x80");
}

// Lines glued from the pieces that the format is made of, in no order: nothing crashes, every byte
// is kept, and a value that is set is read back from the written bytes.
TEST(RegistryFile, JunkIsKeptByteForByteAndTakesNewValues) {
  const std::vector<std::string> pieces = {"[",
                                           "]",
                                           "[-",
                                           "HKEY_CURRENT_USER",
                                           "\\",
                                           "k",
                                           "\"",
                                           "\\\"",
                                           "=",
                                           "@",
                                           "dword:",
                                           "hex:",
                                           "hex(2):",
                                           "0a",
                                           ",",
                                           "\\\r\n",
                                           "\r\n",
                                           "\n",
                                           "\r",
                                           ";",
                                           "-",
                                           "\"a\"=\"b\"\r\n",
                                           "[HKEY_CURRENT_USER\\k]\r\n",
                                           " ",
                                           "\t",
                                           "\xE4",
                                           "\xC3\xA4",
                                           "\xFF",
                                           "00000001",
                                           "\"a\"=-\r\n",
                                           "[-HKEY_CURRENT_USER\\k]\r\n",
                                           "\"h\"=hex:01,\\\r\n"};
  std::mt19937 random(20261121);
  std::uniform_int_distribution<std::size_t> any(0, pieces.size() - 1);
  std::uniform_int_distribution<int> length(0, 60);
  for (int round = 0; round < 3'000; ++round) {
    std::string bytes(kHeader);
    if (round % 3 == 1) bytes = "\xEF\xBB\xBF" + bytes;
    for (int i = length(random); i > 0; --i) bytes += pieces[any(random)];
    if (round % 3 == 2) bytes = Utf16(bytes);
    RegistryFile file(bytes);
    ASSERT_EQ(file.Bytes(), bytes);

    if (round % 2 == 0) static_cast<void>(file.RemoveKey("HKEY_CURRENT_USER\\k"));
    file.Set("HKEY_CURRENT_USER\\k", "a", "new");
    file.Set("HKEY_CURRENT_USER\\k\\sub", "", std::uint32_t{7});
    const RegistryFile again(file.Bytes());

    ASSERT_EQ(Text(again, "HKEY_CURRENT_USER\\k", "a"), "new") << bytes;
    ASSERT_EQ(again.Value("HKEY_CURRENT_USER\\k\\sub", ""), RegistryValue(std::uint32_t{7}))
        << bytes;
  }
}

TEST(RegistryFile, RandomBytesAreReadOrRefused) {
  std::mt19937 random(42);
  std::uniform_int_distribution<int> byte(0, 255);
  for (int round = 0; round < 20'000; ++round) {
    std::string bytes(round % 2 == 0 ? std::string() : Utf16(kHeader));
    for (int i = round % 50; i > 0; --i) bytes += static_cast<char>(byte(random));
    try {
      const RegistryFile file(bytes);
      ASSERT_EQ(file.Bytes(), bytes);
    } catch (const RuntimeError& error) {
      ASSERT_EQ(error.Number(), ErrorNumber::kInvalidCall);
    }
  }
}

// Against a plain map: whatever is written and removed, the written bytes say the same.
TEST(RegistryFile, RandomEditsAreReadBackLikeAMap) {
  std::mt19937 random(7);
  std::uniform_int_distribution<int> dice(0, 5);
  const std::array<std::string, 6> keys = {
      "HKEY_CURRENT_USER\\a", "HKEY_CURRENT_USER\\a\\b", "HKEY_CURRENT_USER\\a\\b\\c",
      "HKEY_CURRENT_USER\\d", "HKEY_LOCAL_MACHINE\\d",   "HKEY_LOCAL_MACHINE\\d\\e"};
  for (int round = 0; round < 40; ++round) {
    RegistryFile file(round % 2 == 0 ? Utf16(kHeader) : std::string(kHeader));
    std::map<std::pair<std::string, std::string>, RegistryValue> model;
    for (int step = 0; step < 60; ++step) {
      const std::string& key = keys[static_cast<std::size_t>(dice(random))];
      if (dice(random) == 0) {
        file.RemoveKey(key);
        std::erase_if(model, [&](const auto& entry) {
          return entry.first.first == key || entry.first.first.starts_with(key + "\\");
        });
      } else {
        const std::string name = std::to_string(dice(random));
        const RegistryValue value = dice(random) < 3
                                        ? RegistryValue("t" + std::to_string(step))
                                        : RegistryValue(static_cast<std::uint32_t>(step));
        file.Set(key, name, value);
        model[{key, name}] = value;
      }
      if (dice(random) == 0) file = RegistryFile(file.Bytes());
      for (const std::string& each : keys) {
        for (int name = 0; name <= 5; ++name) {
          const auto expected = model.find({each, std::to_string(name)});
          ASSERT_EQ(file.Value(each, std::to_string(name)),
                    expected == model.end() ? std::nullopt : std::optional(expected->second));
        }
      }
    }
  }
}

// A walk over the siblings for each key would take minutes.
TEST(RegistryFile, FiftyThousandKeysAreReadAndSearched) {
  std::string bytes(kHeader);
  for (int i = 0; i < 50'000; ++i) {
    bytes += "[HKEY_CLASSES_ROOT\\TypeLib\\" + std::to_string(i) + "]\r\n@=\"" + std::to_string(i) +
             "\"\r\n\r\n";
  }
  for (int i = 0; i < 25'000; ++i) {
    bytes += "[-HKEY_CLASSES_ROOT\\TypeLib\\" + std::to_string(i) + "]\r\n";
  }

  const RegistryFile file(bytes);
  int found = 0;
  for (int i = 0; i < 50'000; ++i) {
    found += file.HasKey("HKEY_CLASSES_ROOT\\TypeLib\\" + std::to_string(i)) ? 1 : 0;
  }

  EXPECT_EQ(found, 25'000);
  EXPECT_EQ(file.Subkeys("HKEY_CLASSES_ROOT\\TypeLib").size(), 25'000U);
}

}  // namespace
}  // namespace txs
