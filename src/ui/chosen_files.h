// What the open-file dialog answers, and what that of Windows writes into its buffer.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "document/application.h"

namespace txs {

struct OpenFilesAnswer {
  std::vector<std::string> host_paths;  // empty when the dialog was cancelled
  bool too_many = false;  // for the buffer that Windows has the chosen names written to
};

// The paths of the answer; none, after message 1701, when they were too many: those that did find
// room in the buffer are not what the user chose.
[[nodiscard]] std::vector<std::string> ChosenPaths(Application& application,
                                                   const OpenFilesAnswer& answer);

// Full paths of the chosen files. `buffer` is UTF-8: a single path, or the folder followed by the
// names in it, each ended by a zero; a second zero ends the list, and what is behind it is no part
// of it.
[[nodiscard]] std::vector<std::string> SplitChosenFiles(std::string_view buffer);

}  // namespace txs
