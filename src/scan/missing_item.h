// What a Scan could not find.
#pragma once

#include <string>
#include <vector>

namespace txs {

struct MissingItem {
  // The file's name without directory ("COMCAT.DLL"); for a type library that is not registered its
  // GUID, version and, in parentheses, what the project's line calls it; for a driver its ProgID.
  std::string name;
  // Who needs it, from the scanned project down to the item itself: "Demo.vbp", "MSCOMCTL.OCX",
  // "COMCAT.DLL". Of a very long chain the middle is left out, with "..." in its place.
  std::vector<std::string> chain;

  bool operator==(const MissingItem&) const = default;
};

// "Demo.vbp -> MSCOMCTL.OCX -> COMCAT.DLL", with arrows (U+2192).
[[nodiscard]] inline std::string ChainText(const std::vector<std::string>& chain) {
  std::string text;
  for (const std::string& link : chain) {
    if (!text.empty()) text += " \xE2\x86\x92 ";
    text += link;
  }
  return text;
}

}  // namespace txs
