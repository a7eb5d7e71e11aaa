// What the open-file dialog of Windows writes into its buffer.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace txs {

// Full paths of the chosen files. `buffer` is UTF-8: a single path, or the folder followed by the
// names in it, each ended by a zero; a second zero ends the list, and what is behind it is no part
// of it.
[[nodiscard]] std::vector<std::string> SplitChosenFiles(std::string_view buffer);

}  // namespace txs
