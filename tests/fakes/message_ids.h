// Which rows of the string table are messages: what a box, the log or the console shows, as against
// captions. A number of this program's own (1900 to 1999) counts as a message until it stands here
// as a caption.
#pragma once

#include <algorithm>
#include <array>
#include <vector>

#include "strings/string_table.h"

namespace txs {

inline bool IsMessage(long id) {
  constexpr std::array kOwnCaptions = {1912L, 1914L, 1920L, 1921L, 1922L, 1923L, 1924L,
                                       1926L, 1940L, 1941L, 1945L, 1946L, 1960L, 1961L,
                                       1962L, 1963L, 1964L, 1978L, 1979L};
  if (std::ranges::find(kOwnCaptions, id) != kOwnCaptions.end()) return false;
  return (id >= 91 && id <= 94) || (id >= 901 && id <= 999) || (id >= 1701 && id <= 1799) ||
         (id >= 1900 && id <= 1999);
}

// In ascending order.
inline std::vector<long> MessageIds() {
  std::vector<long> ids;
  for (const StringTableRow& row : StringTableRows()) {
    if (IsMessage(row.id)) ids.push_back(row.id);
  }
  return ids;
}

}  // namespace txs
