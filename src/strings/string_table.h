// The string table: every text that a user sees, in German and English. The rows stand side by side
// in resources/string_table.inc.
#pragma once

#include <optional>
#include <span>
#include <string_view>

namespace txs {

// The stored text of message N: German under N, English under N + 10000. Nothing for an id that the
// table lacks; the ids 91 to 94 have no English text. UTF-8, escapes and placeholders unresolved.
[[nodiscard]] std::optional<std::string_view> StoredText(long id);

// One row as it stands in the table.
struct StringTableRow {
  long id = 0;
  const char* german = nullptr;
  const char* english = nullptr;  // null where none exists
};

// All rows in ascending order of their ids.
[[nodiscard]] std::span<const StringTableRow> StringTableRows();

}  // namespace txs
