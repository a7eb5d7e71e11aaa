#include "environment/profile_document.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "environment/code_page.h"
#include "environment/runtime_error.h"
#include "environment/system_tools.h"

namespace txs {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Entries = std::vector<ProfileEntry>;

TEST(ProfileDocument, AnEmptyFileHasNothing) {
  const ProfileDocument document("");

  EXPECT_EQ(document.Value("a", "b"), std::nullopt);
  EXPECT_THAT(document.Section("a"), IsEmpty());
  EXPECT_THAT(document.SectionNames(), IsEmpty());
  EXPECT_EQ(document.Bytes(), "");
}

TEST(ProfileDocument, AKeyIsFoundInItsSection) {
  const ProfileDocument document("[one]\r\nkey=1\r\n[two]\r\nkey=2\r\n");

  EXPECT_EQ(document.Value("one", "key"), "1");
  EXPECT_EQ(document.Value("two", "key"), "2");
  EXPECT_EQ(document.Value("three", "key"), std::nullopt);
  EXPECT_EQ(document.Value("one", "other"), std::nullopt);
}

TEST(ProfileDocument, NamesAreComparedWithoutRegardToCase) {
  const ProfileDocument document(
      "[Gr\xF6\xDF"
      "e]\r\n\xC4rger=1\r\n");

  EXPECT_EQ(document.Value("GR\u00D6\u00DFE", "äRGER"), "1");
}

TEST(ProfileDocument, NamesAreTrimmedOnBothSides) {
  const ProfileDocument document("  [ one ]  \r\n\t key \t=1\r\n");

  EXPECT_EQ(document.Value("one", "key"), "1");
  EXPECT_EQ(document.Value(" one ", "\tkey "), "1");
  EXPECT_THAT(document.SectionNames(), ElementsAre("one"));
}

TEST(ProfileDocument, TextBehindTheClosingBracketDoesNotCount) {
  const ProfileDocument document("[one] ; see [two]\r\nkey=1\r\n");

  EXPECT_EQ(document.Value("one", "key"), "1");
}

TEST(ProfileDocument, ABracketThatIsNeverClosedIsNoSectionAndNoKey) {
  const ProfileDocument document("[one]\r\na=1\r\n[two\r\n[x=3\r\nb=2\r\n");

  EXPECT_EQ(document.Value("one", "b"), "2");
  EXPECT_THAT(document.Section("one"), ElementsAre(ProfileEntry{"a", "1"}, ProfileEntry{"b", "2"}));
}

TEST(ProfileDocument, ASectionMayHaveAnEmptyName) {
  const ProfileDocument document("[]\r\nkey=1\r\n");

  EXPECT_EQ(document.Value("", "key"), "1");
}

TEST(ProfileDocument, KeysBeforeTheFirstSectionBelongToNone) {
  const ProfileDocument document("key=1\r\n[one]\r\n");

  EXPECT_EQ(document.Value("", "key"), std::nullopt);
  EXPECT_EQ(document.Value("one", "key"), std::nullopt);
}

TEST(ProfileDocument, FirstSectionOfANameWins) {
  const ProfileDocument document("[one]\r\na=1\r\n[ONE]\r\na=2\r\nb=2\r\n");

  EXPECT_EQ(document.Value("one", "a"), "1");
  EXPECT_EQ(document.Value("one", "b"), std::nullopt);
  EXPECT_THAT(document.SectionNames(), ElementsAre("one"));
}

TEST(ProfileDocument, FirstKeyOfANameWins) {
  const ProfileDocument document("[one]\r\na=1\r\nA=2\r\nb=3\r\n");

  EXPECT_EQ(document.Value("one", "a"), "1");
  EXPECT_THAT(document.Section("one"), ElementsAre(ProfileEntry{"a", "1"}, ProfileEntry{"b", "3"}));
}

TEST(ProfileDocument, LinesWithoutAnEqualsSignAreNoEntries) {
  const ProfileDocument document("[one]\r\nkey\r\nkey=1\r\n=2\r\n = 3\r\n");

  EXPECT_THAT(document.Section("one"), ElementsAre(ProfileEntry{"key", "1"}));
}

TEST(ProfileDocument, LinesThatBeginWithASemicolonAreComments) {
  const ProfileDocument document("[one]\r\n;a=1\r\n  ;b=2\r\nc;d=3\r\ne=4;f\r\n");

  EXPECT_THAT(document.Section("one"),
              ElementsAre(ProfileEntry{"c;d", "3"}, ProfileEntry{"e", "4;f"}));
}

TEST(ProfileDocument, BlanksAroundAValueDoNotCount) {
  const ProfileDocument document("[one]\r\na =  x y \t\r\nb=\r\nc=  \r\n");

  EXPECT_EQ(document.Value("one", "a"), "x y");
  EXPECT_EQ(document.Value("one", "b"), "");
  EXPECT_EQ(document.Value("one", "c"), "");
}

TEST(ProfileDocument, TheFirstEqualsSignEndsTheKey) {
  const ProfileDocument document("[one]\r\na=b=c\r\n");

  EXPECT_EQ(document.Value("one", "a"), "b=c");
}

struct QuotedValue {
  const char* written;
  const char* read;
};

class ProfileQuotesTest : public testing::TestWithParam<QuotedValue> {};

TEST_P(ProfileQuotesTest, OnePairOfQuotesIsRemoved) {
  const std::string bytes = std::string("[s]\r\nk=") + GetParam().written + "\r\n";

  EXPECT_EQ(ProfileDocument(bytes).Value("s", "k"), GetParam().read);
}

INSTANTIATE_TEST_SUITE_P(Values, ProfileQuotesTest,
                         testing::Values(QuotedValue{"\"a\"", "a"}, QuotedValue{"'a'", "a"},
                                         QuotedValue{" \" a \" ", " a "},
                                         QuotedValue{"\"\"a\"\"", "\"a\""}, QuotedValue{"\"\"", ""},
                                         QuotedValue{"\"", "\""}, QuotedValue{"\"a'", "\"a'"},
                                         QuotedValue{"'a", "'a"}, QuotedValue{"a\"b\"", "a\"b\""},
                                         QuotedValue{"\"a\" b", "\"a\" b"}));

TEST(ProfileDocument, AllKindsOfLineEndsAreReadAndKept) {
  const std::string bytes = "[one]\ra=1\rb=2\n[two]\nc=3\r\nd=4\r\n\r\r\n";
  const ProfileDocument document(bytes);

  EXPECT_EQ(document.Value("one", "a"), "1");
  EXPECT_EQ(document.Value("one", "b"), "2");
  EXPECT_EQ(document.Value("two", "c"), "3");
  EXPECT_EQ(document.Value("two", "d"), "4");
  EXPECT_EQ(document.Bytes(), bytes);
}

TEST(ProfileDocument, ANewLineInAFileOfMixedLineEndsSwallowsNoBlankLine) {
  ProfileDocument document("[a]\r[d]\rG\r\n\n[e]\n");

  document.Set("d", "k", "v");

  EXPECT_EQ(document.Bytes(), "[a]\r[d]\rG\r\nk=v\r\n\n[e]\n");
}

TEST(ProfileDocument, TheLastLineNeedsNoLineEnd) {
  const ProfileDocument document("[one]\r\na=1\r\nb=2");

  EXPECT_EQ(document.Value("one", "b"), "2");
  EXPECT_EQ(document.Bytes(), "[one]\r\na=1\r\nb=2");
}

TEST(ProfileDocument, ACtrlZAtTheEndDoesNotCount) {
  const ProfileDocument document("[one]\r\na=1\r\nb=2\x1A");

  EXPECT_EQ(document.Value("one", "b"), "2");
}

TEST(ProfileDocument, ZeroBytesAndBinaryJunkAreHarmless) {
  std::string bytes = "[one]\r\na=1\r\n";
  for (int i = 0; i < 4096; ++i) bytes += static_cast<char>(i * 7 + i / 256);
  bytes += std::string("\r\n[two]\r\nb=") + '\0' + "x\r\n" + '\0' + "\r\nc=3\r\n";

  const ProfileDocument document(bytes);

  EXPECT_EQ(document.Value("one", "a"), "1");
  EXPECT_EQ(document.Value("two", "b"), std::string("\0x", 2));
  EXPECT_EQ(document.Value("two", "c"), "3");
  EXPECT_EQ(document.Bytes(), bytes);
}

TEST(ProfileDocument, ValuesComeInTheAnsiCodePage) {
  ProfileDocument document("[s]\r\nk=\xC4\x80\r\n");

  EXPECT_EQ(document.Value("s", "k"), "Ä€");
  document.Set("s", "k", "Öl");
  EXPECT_EQ(document.Bytes(), "[s]\r\nk=\xD6l\r\n");
}

TEST(ProfileDocument, AByteOrderMarkIsPassedOverAndKept) {
  ProfileDocument document("\xEF\xBB\xBF[s]\r\nk=1\r\n");

  EXPECT_EQ(document.Value("s", "k"), "1");
  document.Set("s", "k", "2");
  EXPECT_EQ(document.Bytes(), "\xEF\xBB\xBF[s]\r\nk=2\r\n");
}

TEST(ProfileDocument, AFileMarkedAsUtf8IsUtf8) {
  ProfileDocument document("\xEF\xBB\xBF[s]\r\nk=Ä\r\n");

  EXPECT_EQ(document.Value("s", "k"), "Ä");
  document.Set("s", "l", "Čapek");
  EXPECT_EQ(document.Bytes(), "\xEF\xBB\xBF[s]\r\nk=Ä\r\nl=Čapek\r\n");
}

TEST(ProfileDocument, AFileMarkedAsUtf8ThatIsNotIsAnsi) {
  const ProfileDocument document("\xEF\xBB\xBF[s]\r\nk=\xC4\r\n");

  EXPECT_EQ(document.Value("s", "k"), "Ä");
}

// The texts of such a file became others with the change.
TEST(ProfileDocument, AFileMarkedAsUtf8ThatWasAnsiIsUtf8WhenAChangeMakesItSo) {
  ProfileDocument document("\xEF\xBB\xBF[s]\r\nk=\xC4\r\nl=\xC3\xBC\r\n");
  ASSERT_EQ(document.Value("s", "l"), "Ã¼");

  document.Set("s", "k", "x");

  EXPECT_EQ(ProfileDocument(document.Bytes()).Value("s", "l"), "Ã¼");
  EXPECT_EQ(document.Bytes(), "\xEF\xBB\xBF[s]\r\nk=x\r\nl=Ã¼\r\n");
}

// As the Windows editor saves it as "Unicode", and as the Windows profile functions read it.
TEST(ProfileDocument, AFileInUtf16StaysInUtf16) {
  const auto utf16 = [](std::string_view text) { return "\xFF\xFE" + Utf8ToUtf16(text); };
  ProfileDocument document(utf16("[s]\r\n; Č\r\nk=Ä\r\n"));

  EXPECT_EQ(document.Value("S", "K"), "Ä");
  document.Set("s", "l", "Čapek 😀");

  EXPECT_EQ(document.Bytes(), utf16("[s]\r\n; Č\r\nk=Ä\r\nl=Čapek 😀\r\n"));
}

// Found by fuzzing: such a file was taken for ANSI, and for UTF-16 as soon as a change had made its
// length even, so that nothing of it was found again.
TEST(ProfileDocument, AFileInUtf16CutOffWithinACharacterStaysInUtf16WhenItIsChanged) {
  const std::string bytes = "\xFF\xFE" + Utf8ToUtf16("[a]\r\nb=1\r\n") + "c";
  ProfileDocument document(bytes);

  document.Set("a", "d", "2");
  document.Set("e", "f", "ü");

  const ProfileDocument again(document.Bytes());
  EXPECT_EQ(again.Value("a", "b"), "1");
  EXPECT_EQ(again.Value("a", "d"), "2");
  EXPECT_EQ(again.Value("e", "f"), "ü");
  EXPECT_EQ(again.Bytes(), "\xFF\xFE" + Utf8ToUtf16("[a]\r\nb=1\r\nd=2\r\n[e]\r\nf=ü\r\n") + "c");
}

TEST(ProfileDocument, ADamagedFileInUtf16KeepsItsBytes) {
  using namespace std::string_literals;
  for (const std::string& bytes : {"\xFF\xFE"s, "\xFF\xFE["s, "\xFF\xFE[\0s\0]\0\x00\xD8"s,
                                   "\xFF\xFE\x00\xDC=\0\x00\xD8"s, "\xFF\xFE\0\0\0\0"s}) {
    EXPECT_EQ(ProfileDocument(bytes).Bytes(), bytes);
  }
}

TEST(ProfileDocument, SettingAKeyLeavesEveryOtherLineAlone) {
  ProfileDocument document(
      "; head\r\n\r\n [One] \r\n;c\r\nA = 1\r\njunk\r\n b =\t2 \r\n\r\n[two]\r\na=9\r\n");

  document.Set("one", "B", "3");

  EXPECT_EQ(document.Bytes(),
            "; head\r\n\r\n [One] \r\n;c\r\nA = 1\r\njunk\r\n b =\t3\r\n\r\n[two]\r\na=9\r\n");
}

TEST(ProfileDocument, SettingAKeyToWhatItIsChangesNothing) {
  const std::string bytes = "[one]\na =  '1'  \n";
  ProfileDocument document(bytes);

  document.Set("one", "a", "1");

  EXPECT_EQ(document.Bytes(), bytes);
}

TEST(ProfileDocument, ANewKeyGoesBehindTheLastEntryOfItsSection) {
  ProfileDocument document("[one]\r\na=1\r\n; tail\r\n\r\n[two]\r\n");

  document.Set("one", "b", "2");

  EXPECT_EQ(document.Bytes(), "[one]\r\na=1\r\nb=2\r\n; tail\r\n\r\n[two]\r\n");
}

TEST(ProfileDocument, ANewKeyOfAnEmptySectionGoesBehindItsComments) {
  ProfileDocument document("[one]\r\n; about one\r\n\r\n[two]\r\n");

  document.Set("one", "a", "1");

  EXPECT_EQ(document.Bytes(), "[one]\r\n; about one\r\na=1\r\n\r\n[two]\r\n");
}

TEST(ProfileDocument, AMissingSectionIsAppended) {
  ProfileDocument document("[one]\r\na=1\r\n");

  document.Set("two", "b", "2");

  EXPECT_EQ(document.Bytes(), "[one]\r\na=1\r\n[two]\r\nb=2\r\n");
  EXPECT_EQ(document.Value("TWO", "B"), "2");
}

TEST(ProfileDocument, AppendingCompletesALastLineWithoutLineEnd) {
  ProfileDocument with_key("[one]\na=1");
  ProfileDocument with_section("[one]\na=1");

  with_key.Set("one", "b", "2");
  with_section.Set("two", "b", "2");

  EXPECT_EQ(with_key.Bytes(), "[one]\na=1\nb=2\n");
  EXPECT_EQ(with_section.Bytes(), "[one]\na=1\n[two]\nb=2\n");
}

TEST(ProfileDocument, NewLinesEndAsTheFirstLineOfTheFileDoes) {
  ProfileDocument unix_file("[one]\n");
  ProfileDocument empty("");

  unix_file.Set("one", "a", "1");
  empty.Set("one", "a", "1");

  EXPECT_EQ(unix_file.Bytes(), "[one]\na=1\n");
  EXPECT_EQ(empty.Bytes(), "[one]\r\na=1\r\n");
}

TEST(ProfileDocument, AValueThatReadingWouldChangeIsQuoted) {
  ProfileDocument document("");
  const std::vector<std::string> values = {" a", "a ", "\ta",   "\"a\"", "'a'", "\"\"",
                                           "''", "\"", "\" \"", " ",     "",    "a\"b"};

  for (std::size_t i = 0; i < values.size(); ++i) {
    document.Set("s", NumberedKey(i + 1, 2), values[i]);
  }

  const ProfileDocument read(document.Bytes());
  for (std::size_t i = 0; i < values.size(); ++i) {
    EXPECT_EQ(document.Value("s", NumberedKey(i + 1, 2)), values[i]);
    EXPECT_EQ(read.Value("s", NumberedKey(i + 1, 2)), values[i]);
  }
}

TEST(ProfileDocument, ALineBreakInKeyOrValueIsRefused) {
  const std::string bytes = "[s]\r\nk=1\r\n";
  ProfileDocument document(bytes);

  for (const char* text : {"a\nb", "a\rb", "a\r\n"}) {
    EXPECT_THROW(document.Set("s", "k", text), RuntimeError);
    EXPECT_THROW(document.Set("s", text, "1"), RuntimeError);
    EXPECT_THROW(document.Set(text, "k", "1"), RuntimeError);
    EXPECT_THROW(document.ReplaceSection("s", {{"k", "2"}, {"l", text}}), RuntimeError);
  }

  EXPECT_EQ(document.Bytes(), bytes);
}

TEST(ProfileDocument, NamesThatTheFormatCannotHoldAreRefused) {
  ProfileDocument document("");

  for (const char* key : {"", "  ", ";k", " ;k", "[k", "k=l"}) {
    try {
      document.Set("s", key, "1");
      ADD_FAILURE() << key;
    } catch (const RuntimeError& error) {
      EXPECT_EQ(error.Number(), ErrorNumber::kInvalidCall);
    }
  }
  EXPECT_THROW(document.Set("a]b", "k", "1"), RuntimeError);
  EXPECT_EQ(document.Bytes(), "");
}

TEST(ProfileDocument, ACharacterThatTheCodePageLacksIsRefused) {
  const std::string bytes = "[s]\r\nk=1\r\n";
  ProfileDocument document(bytes);

  EXPECT_THROW(document.Set("s", "k", "Čapek"), RuntimeError);
  EXPECT_THROW(document.Set("Č", "k", "1"), RuntimeError);
  EXPECT_THROW(document.ReplaceSection("s", {{"a", "1"}, {"b", "Č"}}), RuntimeError);

  EXPECT_EQ(document.Bytes(), bytes);
}

TEST(ProfileDocument, ReplacingASectionKeepsItsPlaceAndItsComments) {
  ProfileDocument document(
      "[one]\r\n[list]\r\n; first\r\n01=a\r\n; second\r\n02=b\r\n03=c\r\n\r\n[three]\r\nx=1\r\n");

  document.ReplaceSection("LIST", {{"01", "p"}, {"02", "q"}});

  EXPECT_EQ(document.Bytes(),
            "[one]\r\n[list]\r\n; first\r\n01=p\r\n; second\r\n02=q\r\n\r\n[three]\r\nx=1\r\n");
  EXPECT_EQ(document.Value("list", "03"), std::nullopt);
}

TEST(ProfileDocument, ReplacingASectionByMoreEntriesAppendsBehindTheLast) {
  ProfileDocument document("[list]\r\n01=a\r\n; tail\r\n[three]\r\n");

  document.ReplaceSection("list", {{"01", "a"}, {"02", "b"}, {"03", "c"}});

  EXPECT_EQ(document.Bytes(), "[list]\r\n01=a\r\n02=b\r\n03=c\r\n; tail\r\n[three]\r\n");
}

TEST(ProfileDocument, AnEntryThatStaysKeepsItsLineAsItWasWritten) {
  ProfileDocument document("[list]\r\n01 = a \r\n02 = 'b'\r\n03 = c");

  document.ReplaceSection("list", {{"03", "c"}, {"02", "b"}});

  EXPECT_EQ(document.Bytes(), "[list]\r\n03 = c\r\n02 = 'b'\r\n");
}

TEST(ProfileDocument, ReplacingASectionByNothingKeepsHeaderAndComments) {
  ProfileDocument document("[list]\r\n; c\r\n01=a\r\n[x]\r\n");

  document.ReplaceSection("list", {});

  EXPECT_EQ(document.Bytes(), "[list]\r\n; c\r\n[x]\r\n");
  EXPECT_THAT(document.Section("list"), IsEmpty());
}

TEST(ProfileDocument, ReplacingAMissingSectionAppendsIt) {
  ProfileDocument document("[one]\r\n");

  document.ReplaceSection("list", {{"01", "a"}});

  EXPECT_EQ(document.Bytes(), "[one]\r\n[list]\r\n01=a\r\n");
}

TEST(ProfileDocument, RemovingASectionTakesHeaderKeysAndComments) {
  ProfileDocument document("; head\r\n[one]\r\na=1\r\n; c\r\n[two]\r\nb=2\r\n");

  document.RemoveSection("ONE");
  document.RemoveSection("never there");

  EXPECT_EQ(document.Bytes(), "; head\r\n[two]\r\nb=2\r\n");
  EXPECT_EQ(document.Value("one", "a"), std::nullopt);
  EXPECT_THAT(document.SectionNames(), ElementsAre("two"));
}

TEST(ProfileDocument, RemovingTheFirstOfThreeSectionsOfANameShowsTheNext) {
  ProfileDocument document("[s]\r\na=1\r\n[s]\r\na=2\r\n[x]\r\n[S]\r\na=3\r\n");

  document.RemoveSection("s");
  EXPECT_EQ(document.Value("s", "a"), "2");
  document.RemoveSection("s");
  EXPECT_EQ(document.Value("s", "a"), "3");
  document.RemoveSection("s");
  EXPECT_EQ(document.Value("s", "a"), std::nullopt);

  EXPECT_EQ(document.Bytes(), "[x]\r\n");
}

TEST(ProfileDocument, ASectionRemovedAndSetAgainStandsAtTheEnd) {
  ProfileDocument document("[path]\r\n1=x\r\n[file]\r\n01=y\r\n");

  document.RemoveSection("path");
  document.Set("path", "tavix", "C:\\T");

  EXPECT_EQ(document.Bytes(), "[file]\r\n01=y\r\n[path]\r\ntavix=C:\\T\r\n");
}

// --- Properties over random documents.

class RandomProfile {
 public:
  explicit RandomProfile(unsigned seed) : random_(seed) {}

  std::size_t Below(std::size_t limit) { return random_() % limit; }

  std::string Pick(const std::vector<std::string>& from) { return from[Below(from.size())]; }

  std::string Name() {
    return Pick({"a", "B", "Key", "01", "02", "k e y", "\u00C4", "ä", "x;y", "z]"});
  }
  std::string SectionName() { return Pick({"one", "Two", "three 3", "VIER", "\u00DCber", ""}); }
  std::string Value() {
    std::string value;
    for (std::size_t i = Below(5); i > 0; --i) {
      value += Pick({"x", " ", "\"", "'", ";", "=", "[", "]", "\t", "Ö", "€", ",", "C:\\Demo"});
    }
    return value;
  }

  std::string AnsiBytes() {
    std::string bytes;
    for (std::size_t line = Below(30); line > 0; --line) {
      switch (Below(7)) {
        case 0:
          bytes += Pick({"[", " [ "}) + Utf8ToAnsi(SectionName()) + Pick({"]", " ] x"});
          break;
        case 1:
          bytes += Pick({"; comment = 1", "  ;", "", "   ", "no entry", "=x", "[open"});
          break;
        case 2:
          for (std::size_t i = Below(6); i > 0; --i) {
            const char c = static_cast<char>(random_());
            // A lone CR or LF would join with its neighbour when lines are taken out.
            if (c != '\r' && c != '\n') bytes += c;
          }
          break;
        default:
          bytes += Pick({"", " "}) + Utf8ToAnsi(Name()) + Pick({"=", " = "}) + Utf8ToAnsi(Value());
      }
      if (line > 1 || Below(2) == 0) bytes += Below(8) == 0 ? "\n" : "\r\n";
    }
    return bytes;
  }

  Entries DistinctEntries(std::size_t most) {
    Entries entries;
    std::set<std::string> names;
    for (std::size_t i = Below(most + 1); i > 0; --i) {
      const std::string name = Name();
      if (names.insert(FoldCase(name)).second) entries.push_back({name, Value()});
    }
    return entries;
  }

 private:
  std::mt19937 random_;
};

// What a reader sees of a document.
std::vector<std::pair<std::string, Entries>> Contents(const ProfileDocument& document) {
  std::vector<std::pair<std::string, Entries>> contents;
  for (const std::string& name : document.SectionNames()) {
    contents.emplace_back(name, document.Section(name));
  }
  return contents;
}

std::multiset<std::string> LinesOf(const std::string& bytes) {
  std::multiset<std::string> lines;
  std::string line;
  for (const char c : bytes) {
    if (c == '\n' || c == '\r') {
      if (!line.empty()) lines.insert(line);
      line.clear();
    } else {
      line += c;
    }
  }
  if (!line.empty()) lines.insert(line);
  return lines;
}

// Lines of `before` that `after` lacks.
std::size_t LostLines(const std::string& before, const std::string& after) {
  const std::multiset<std::string> old_lines = LinesOf(before);
  const std::multiset<std::string> new_lines = LinesOf(after);
  std::vector<std::string> lost;
  std::set_difference(old_lines.begin(), old_lines.end(), new_lines.begin(), new_lines.end(),
                      std::back_inserter(lost));
  return lost.size();
}

TEST(ProfileDocumentProperty, AnUntouchedDocumentIsItsFileByteForByte) {
  for (unsigned seed = 0; seed < 500; ++seed) {
    const std::string bytes = RandomProfile(seed).AnsiBytes();

    ASSERT_EQ(ProfileDocument(bytes).Bytes(), bytes) << seed;
  }
}

TEST(ProfileDocumentProperty, WhatIsSetIsReadBackAndNothingElseChanges) {
  for (unsigned seed = 0; seed < 2000; ++seed) {
    RandomProfile random(seed);
    const std::string bytes = random.AnsiBytes();
    ProfileDocument document(bytes);
    const std::string section = random.SectionName();
    const std::string key = random.Name();
    const std::string value = random.Value();

    document.Set(section, key, value);

    const std::string written = document.Bytes();
    const ProfileDocument read(written);
    ASSERT_EQ(document.Value(section, key), value) << seed;
    ASSERT_EQ(read.Value(section, key), value) << seed << '\n' << written;
    ASSERT_EQ(Contents(read), Contents(document)) << seed;
    ASSERT_LE(LostLines(bytes, written), 1u) << seed;
    // Setting it back to what it was restores every entry.
    const ProfileDocument before(bytes);
    if (const auto old = before.Value(section, key)) {
      document.Set(section, key, *old);
      ASSERT_EQ(Contents(document), Contents(before)) << seed;
    }
  }
}

TEST(ProfileDocumentProperty, AReplacedSectionHoldsExactlyItsEntries) {
  for (unsigned seed = 0; seed < 2000; ++seed) {
    RandomProfile random(seed);
    const std::string bytes = random.AnsiBytes();
    ProfileDocument document(bytes);
    const ProfileDocument before(bytes);
    const std::string section = random.SectionName();
    const Entries entries = random.DistinctEntries(8);

    document.ReplaceSection(section, entries);

    const ProfileDocument read(document.Bytes());
    ASSERT_EQ(document.Section(section), entries) << seed;
    ASSERT_EQ(read.Section(section), entries) << seed << '\n' << document.Bytes();
    ASSERT_EQ(Contents(read), Contents(document)) << seed;
    for (const std::string& other : before.SectionNames()) {
      if (EqualNoCase(other, section)) continue;
      ASSERT_EQ(read.Section(other), before.Section(other)) << seed;
    }
    const std::string once = document.Bytes();
    document.ReplaceSection(section, entries);
    ASSERT_EQ(document.Bytes(), once) << seed;
  }
}

TEST(ProfileDocumentProperty, ALongChainOfEditsIsReadBackAfterEachStep) {
  for (unsigned seed = 0; seed < 100; ++seed) {
    RandomProfile random(seed);
    ProfileDocument document(random.AnsiBytes());
    for (int step = 0; step < 30; ++step) {
      const std::string section = random.SectionName();
      switch (random.Below(4)) {
        case 0:
          document.RemoveSection(section);
          break;
        case 1:
          document.ReplaceSection(section, random.DistinctEntries(5));
          break;
        default:
          document.Set(section, random.Name(), random.Value());
      }

      ASSERT_EQ(Contents(ProfileDocument(document.Bytes())), Contents(document))
          << seed << " step " << step << '\n'
          << document.Bytes();
    }
  }
}

// --- Size. What grows with the square of the entries takes minutes here instead of a moment.

constexpr std::size_t kManyKeys = 100'000;

Entries ManyEntries() {
  Entries entries;
  for (std::size_t i = 1; i <= kManyKeys; ++i) {
    entries.push_back({NumberedKey(i, 2), "<ProjectDir>\\File" + std::to_string(i) + ".dll,,0"});
  }
  return entries;
}

TEST(ProfileDocumentSize, ASectionOfAHundredThousandKeysIsWrittenAndRead) {
  const Entries entries = ManyEntries();

  ProfileDocument document("[file]\r\n; c\r\n");
  document.ReplaceSection("file", entries);
  document.ReplaceSection("file", entries);
  const ProfileDocument read(document.Bytes());

  EXPECT_EQ(read.Section("file"), entries);
}

TEST(ProfileDocumentSize, AHundredThousandKeysAreSetOneByOne) {
  const Entries entries = ManyEntries();

  ProfileDocument document("[file]\r\n\r\n[tail]\r\n");
  for (const ProfileEntry& entry : entries) document.Set("file", entry.name, entry.value);

  EXPECT_EQ(document.Section("file"), entries);
}

TEST(ProfileDocumentSize, AHundredThousandSectionsAreSetAndRemoved) {
  ProfileDocument document;
  for (std::size_t i = 0; i < kManyKeys; ++i) document.Set(std::to_string(i), "k", "v");
  for (std::size_t i = 0; i < kManyKeys; ++i) document.RemoveSection(std::to_string(i));

  EXPECT_EQ(document.Bytes(), "");
}

TEST(ProfileDocumentSize, AHundredThousandSectionsOfOneNameAreReadAndRemoved) {
  std::string bytes;
  for (std::size_t i = 0; i < kManyKeys; ++i) bytes += "[s]\r\nk=" + std::to_string(i) + "\r\n";

  ProfileDocument document(bytes);
  for (std::size_t i = 0; i + 1 < kManyKeys; ++i) document.RemoveSection("s");

  EXPECT_EQ(document.Value("s", "k"), std::to_string(kManyKeys - 1));
}

}  // namespace
}  // namespace txs
