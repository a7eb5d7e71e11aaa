#include "strings/m_text.h"

#include <algorithm>
#include <limits>

#include "strings/string_table.h"

namespace txs::MText {
namespace {

constexpr long kEnglish = 1033;
constexpr long kSpanish = 1034;

// The stored text under `id` + `offset`; empty without one, so also where the sum is beyond any id.
std::string_view StoredTextAt(long id, long offset) {
  if (id > std::numeric_limits<long>::max() - offset) return {};
  return StoredText(id + offset).value_or("");
}

std::string_view Escaped(char letter) {
  switch (letter) {
    case '\\':
      return "\\";
    case '@':
      return "@";
    case 'n':
    case 'N':
      return "\n";
    case 't':
    case 'T':
      return "\t";
    default:
      return {};
  }
}

// Leading digits as a number; 0 for none. Numbers beyond `limit` are all the same to the caller.
std::size_t LeadingNumber(std::string_view text, std::size_t limit) {
  std::size_t number = 0;
  for (const char c : text) {
    if (c < '0' || c > '9') break;
    number = std::min(number * 10 + static_cast<std::size_t>(c - '0'), limit + 1);
  }
  return number;
}

}  // namespace

long LanguageOffset(long language_id) {
  if (language_id == kEnglish) return 10000;
  if (language_id == kSpanish) return 20000;
  return 0;
}

std::string GetText(long language_id, long id, std::span<const std::string> parameters) {
  std::string_view text = StoredTextAt(id, LanguageOffset(language_id));
  if (text.empty()) text = StoredTextAt(id, /*offset=*/0);
  if (text.empty()) return ExpandTemplate(std::to_string(id) + "\\@", parameters);
  return ExpandTemplate(text, parameters);
}

std::string ExpandTemplate(std::string_view text, std::span<const std::string> parameters) {
  std::string result;
  result.reserve(text.size());
  std::string_view last_value;
  std::size_t cursor = 0;
  while (cursor < text.size()) {
    const std::size_t special = text.find_first_of("@\\", cursor);
    result.append(text.substr(cursor, special - cursor));
    if (special == std::string_view::npos) break;
    cursor = special + 1;

    if (text[special] == '\\') {
      if (cursor == text.size()) break;
      const std::string_view escaped = Escaped(text[cursor]);
      // Of an unknown escape only the backslash goes; its character stays as ordinary text.
      result.append(escaped.empty() ? text.substr(cursor, 1) : escaped);
      ++cursor;
      continue;
    }
    const std::size_t end = text.find('@', cursor);
    if (end == std::string_view::npos) continue;
    const std::size_t number = LeadingNumber(text.substr(cursor, end - cursor), parameters.size());
    if (number >= 1 && number <= parameters.size()) last_value = parameters[number - 1];
    result.append(last_value);
    cursor = end + 1;
  }
  return result;
}

}  // namespace txs::MText
