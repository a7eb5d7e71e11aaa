#include "strings/string_table.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "environment/code_page.h"

namespace txs {
namespace {

std::vector<long> Ids(std::initializer_list<std::pair<long, long>> ranges) {
  std::vector<long> ids;
  for (const auto& [first, last] : ranges) {
    for (long id = first; id <= last; ++id) ids.push_back(id);
  }
  return ids;
}

// Every number that a form, a menu or a message of the system uses.
const std::vector<long> kAllIds =
    Ids({{10, 13},     {90, 94},     {99, 99},     {200, 205},   {250, 251},   {300, 304},
         {400, 409},   {422, 422},   {424, 428},   {500, 506},   {600, 600},   {610, 612},
         {700, 705},   {724, 725},   {730, 731},   {800, 803},   {810, 811},   {900, 917},
         {1000, 1001}, {1010, 1013}, {1020, 1022}, {1030, 1032}, {1100, 1108}, {1200, 1207},
         {1210, 1211}, {1300, 1306}, {1400, 1406}, {1410, 1416}, {1500, 1514}, {1600, 1605},
         {1701, 1715}, {1800, 1851}, {1900, 1900}, {1910, 1914}, {1920, 1927}, {1930, 1937},
         {1940, 1942}, {1945, 1946}, {1960, 1964}, {1974, 1979}});

std::multiset<std::string> Placeholders(std::string_view text) {
  std::multiset<std::string> found;
  for (std::size_t i = 0; i + 2 < text.size(); ++i) {
    if (text[i] == '@' && std::isdigit(static_cast<unsigned char>(text[i + 1])) != 0 &&
        text[i + 2] == '@') {
      found.insert(std::string(text.substr(i, 3)));
    }
  }
  return found;
}

TEST(StringTable, HoldsEachIdOnce) {
  std::set<long> seen;
  for (const StringTableRow& row : StringTableRows()) {
    EXPECT_TRUE(seen.insert(row.id).second) << row.id;
  }
}

TEST(StringTable, HoldsEveryIdThatTheSystemUsesAndNoOther) {
  std::vector<long> ids;
  for (const StringTableRow& row : StringTableRows()) ids.push_back(row.id);

  EXPECT_EQ(ids, kAllIds);
}

TEST(StringTable, OnlyTheMessagesOfTheStartChecksLackEnglish) {
  std::vector<long> german_only;
  for (const StringTableRow& row : StringTableRows()) {
    ASSERT_NE(row.german, nullptr) << row.id;
    EXPECT_FALSE(std::string_view(row.german).empty()) << row.id;
    if (row.english == nullptr) german_only.push_back(row.id);
  }

  EXPECT_EQ(german_only, (std::vector<long>{91, 92, 93, 94}));
}

TEST(StringTable, BothLanguagesHaveTheSamePlaceholders) {
  for (const StringTableRow& row : StringTableRows()) {
    if (row.english == nullptr) continue;
    EXPECT_EQ(Placeholders(row.german), Placeholders(row.english)) << row.id;
  }
}

// The texts of a row, German first.
std::vector<std::string_view> TextsOf(const StringTableRow& row) {
  if (row.english == nullptr) return {row.german};
  return {row.german, row.english};
}

TEST(StringTable, EveryAtSignBelongsToAPlaceholder) {
  for (const StringTableRow& row : StringTableRows()) {
    for (const std::string_view text : TextsOf(row)) {
      EXPECT_EQ(std::ranges::count(text, '@'), 2 * std::ssize(Placeholders(text))) << row.id;
    }
  }
}

TEST(StringTable, PlaceholdersAreNumberedFromOneWithoutGaps) {
  for (const StringTableRow& row : StringTableRows()) {
    const std::multiset<std::string> found = Placeholders(row.german);
    const std::set<std::string> different(found.begin(), found.end());
    std::size_t number = 0;
    for (const std::string& placeholder : different) {
      EXPECT_EQ(placeholder, "@" + std::to_string(++number) + "@") << row.id;
    }
  }
}

TEST(StringTable, HoldsNoControlCharactersButWholeLineEnds) {
  for (const StringTableRow& row : StringTableRows()) {
    for (const std::string_view text : TextsOf(row)) {
      for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if (byte >= 0x20 && byte != 0x7F) continue;
        const bool is_line_end = (text[i] == '\r' && text.substr(i, 2) == "\r\n") ||
                                 (text[i] == '\n' && i > 0 && text[i - 1] == '\r');
        EXPECT_TRUE(is_line_end) << row.id << " has character " << int{byte} << " at " << i;
      }
    }
  }
}

// The German 1712 has a single backslash on purpose.
TEST(StringTable, EveryBackslashButOneIsStoredTwice) {
  for (const StringTableRow& row : StringTableRows()) {
    for (const std::string_view text : TextsOf(row)) {
      if (text == StoredText(1712)) continue;
      for (std::size_t i = text.find('\\'); i != std::string_view::npos;
           i = text.find('\\', i + 2)) {
        EXPECT_EQ(text.substr(i, 2), "\\\\") << row.id;
      }
    }
  }
}

TEST(StringTable, BothLanguagesHaveTheSameLineBreaks) {
  for (const StringTableRow& row : StringTableRows()) {
    if (row.english == nullptr) continue;
    const std::string_view german = row.german;
    const std::string_view english = row.english;
    EXPECT_EQ(std::ranges::count(german, '\n'), std::ranges::count(english, '\n')) << row.id;
    EXPECT_EQ(std::ranges::count(german, '\n'), std::ranges::count(german, '\r')) << row.id;
    EXPECT_EQ(std::ranges::count(english, '\n'), std::ranges::count(english, '\r')) << row.id;
  }
}

TEST(StringTable, EveryTextIsUtf8ThatTheAnsiCodePageHolds) {
  for (const StringTableRow& row : StringTableRows()) {
    EXPECT_NO_THROW(static_cast<void>(Utf8ToAnsi(row.german))) << row.id;
    if (row.english != nullptr) {
      EXPECT_NO_THROW(static_cast<void>(Utf8ToAnsi(row.english))) << row.id;
    }
  }
}

TEST(StringTable, GermanStandsUnderTheIdAndEnglishUnderItPlus10000) {
  EXPECT_EQ(StoredText(1404), "Durchsuchen");
  EXPECT_EQ(StoredText(11404), "Scan");
  EXPECT_EQ(StoredText(10091), std::nullopt);
  EXPECT_EQ(StoredText(14), std::nullopt);
  EXPECT_EQ(StoredText(20011), std::nullopt);
  EXPECT_EQ(StoredText(-5), std::nullopt);
}

TEST(StringTable, KeepsTheSystemsOwnWordings) {
  EXPECT_EQ(StoredText(10400), "TavixStudio - Setup-Assistent: State of 'Create'");
  EXPECT_EQ(StoredText(10600), "TavixStudio - Setup Wizard:  Open Project");
  EXPECT_EQ(StoredText(10501), "The file could not be not found!");
  EXPECT_EQ(StoredText(10725), "OK: Project succesfully scanned!");
  EXPECT_EQ(StoredText(1031), "&Optionen ...");
  EXPECT_EQ(StoredText(11012), "&Save");
  EXPECT_EQ(StoredText(11032), "Clear &Settings");
  EXPECT_EQ(StoredText(11107), "Ger&man");
  EXPECT_EQ(StoredText(11108), "E&nglish");
  EXPECT_EQ(StoredText(11304), "&ADO (currently not implemented)");
  EXPECT_EQ(StoredText(11504), "A&ll");
  // The single backslash is dropped when the text is shown; the English text has two.
  EXPECT_NE(StoredText(1712)->find("('Laufwerksbuchstabe:\\[Name]')"), std::string_view::npos);
  EXPECT_NE(StoredText(11712)->find("('DriveLetter:\\\\[Name]')"), std::string_view::npos);
}

// The letter behind a single "&"; 0 without one.
char AccessKey(std::string_view text) {
  const std::size_t mark = text.find('&');
  if (mark == std::string_view::npos || mark + 1 >= text.size()) return 0;
  return FoldCase(text.substr(mark + 1, 1))[0];
}

struct Form {
  const char* name;
  std::vector<long> ids;  // what can be reached at the same time
};

// Pages of a tab control are never visible together, but the menu bar and the tabs always are.
const std::vector<Form> kForms = {
    {"menu bar", {1010, 1020, 1030}},
    {"File menu", {1011, 1012, 1013}},
    {"Help menu", {1021, 1022}},
    {"Extras menu", {1031, 1032}},
    {"step 1", {1010, 1020, 1030, 1101, 1103, 1104, 1105, 1106, 1107, 1108}},
    {"step 2", {1010, 1020, 1030, 1202, 1203, 1204, 1205, 1206, 1207}},
    {"step 3", {1010, 1020, 1030, 1304, 1305, 1306}},
    {"step 4", {1010, 1020, 1030, 1404, 1405, 1406}},
    {"step 5", {1010, 1020, 1030, 1502, 1503, 1504, 1511, 1513, 1514}},
    {"Search-File dialog", {10, 11, 12, 503, 504, 505, 506}},
    {"Open-Project dialog", {11, 13}},
    {"Options dialog", {10, 11, 12, 803}},
    {"Take-note dialog", {10, 12}},
    {"state windows", {10, 11, 1960, 1961}},
    {"message box", {10, 11, 12, 1978, 1979}},
};

TEST(StringTable, AccessKeysAreUniqueWithinEveryFormInBothLanguages) {
  for (const long offset : {0L, 10000L}) {
    for (const Form& form : kForms) {
      std::map<char, long> used;
      for (const long id : form.ids) {
        const char key = AccessKey(StoredText(id + offset).value_or(""));
        if (key == 0) continue;
        const auto [place, is_new] = used.try_emplace(key, id);
        EXPECT_TRUE(is_new) << form.name << ": " << id + offset << " and " << place->second + offset
                            << " both have '" << key << "'";
      }
    }
  }
}

TEST(StringTable, EveryTextWithAnAccessKeyBelongsToAForm) {
  std::set<long> placed;
  for (const Form& form : kForms) placed.insert(form.ids.begin(), form.ids.end());

  for (const StringTableRow& row : StringTableRows()) {
    for (const std::string_view text : TextsOf(row)) {
      if (AccessKey(text) == 0) continue;
      EXPECT_TRUE(placed.contains(row.id)) << row.id;
    }
  }
}

TEST(StringTable, BothLanguagesHaveAccessKeysAtTheSameControls) {
  for (const StringTableRow& row : StringTableRows()) {
    if (row.english == nullptr) continue;
    EXPECT_EQ(AccessKey(row.german) != 0, AccessKey(row.english) != 0) << row.id;
  }
}

TEST(StringTable, AnAccessKeyIsAlwaysALetter) {
  for (const StringTableRow& row : StringTableRows()) {
    for (const std::string_view text : TextsOf(row)) {
      if (text.find('&') == std::string_view::npos) continue;
      EXPECT_NE(std::isalpha(static_cast<unsigned char>(AccessKey(text))), 0) << row.id;
    }
  }
}

}  // namespace
}  // namespace txs
