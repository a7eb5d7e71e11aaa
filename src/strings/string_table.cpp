#include "strings/string_table.h"

#include <algorithm>

namespace txs {
namespace {

constexpr long kEnglishOffset = 10000;

constexpr StringTableRow kRows[] = {
#define TXS_TEXT(id, german, english) {id, german, english},
#define TXS_TEXT_GERMAN_ONLY(id, german) {id, german, nullptr},
#include "string_table.inc"
#undef TXS_TEXT
#undef TXS_TEXT_GERMAN_ONLY
};

static_assert(std::ranges::is_sorted(kRows, {}, &StringTableRow::id),
              "StoredText searches in halves");

}  // namespace

std::span<const StringTableRow> StringTableRows() { return kRows; }

std::optional<std::string_view> StoredText(long id) {
  const bool is_english = id >= kEnglishOffset;
  const long row_id = is_english ? id - kEnglishOffset : id;
  const auto* row = std::ranges::lower_bound(kRows, row_id, {}, &StringTableRow::id);
  if (row == std::end(kRows) || row->id != row_id) return std::nullopt;
  const char* text = is_english ? row->english : row->german;
  if (text == nullptr) return std::nullopt;
  return text;
}

}  // namespace txs
