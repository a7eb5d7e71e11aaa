// The Scan run, and adding a single file by hand.
#pragma once

#include <string_view>
#include <vector>

#include "document/application.h"
#include "scan/missing_item.h"
#include "scan/scan_view.h"
#include "scan/search_file_dialog.h"

namespace txs {

// How a run ended.
struct ScanResult {
  bool succeeded = false;  // every stage succeeded and nobody cancelled
  bool cancelled = false;
  std::vector<MissingItem> missing;  // in the order in which they were missed
};

// Fills the file list and the extra to-do lines from the current project: the studio project first,
// then the Visual Basic project or group that its forms were designed with. Every failure shows its
// own message; an unsupported designer is a message (1713) and no failure. Never throws. What was
// added stays, whatever the outcome. The path variables must be built before.
[[nodiscard]] ScanResult RunScan(Application& application, ScanView& view,
                                 SearchFileDialog& dialog);

// Adds a file that the user chose, once more if it is listed already, and what it needs. `path` is
// a full path. False after a message (907).
[[nodiscard]] bool AddFileByHand(Application& application, ScanView& view, SearchFileDialog& dialog,
                                 std::string_view path);

}  // namespace txs
