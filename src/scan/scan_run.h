// The Scan run, and adding files by hand.
#pragma once

#include <memory>
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

// Adds the files that the user chose, one by one, each with what it needs. However many they are,
// the list is looked through once, and the user is asked for a missing file once. Until this goes
// nobody else may change the file list. `application`, `view` and `dialog` must outlive it.
class AddingByHand {
 public:
  AddingByHand(Application& application, ScanView& view, SearchFileDialog& dialog);
  ~AddingByHand();
  AddingByHand(const AddingByHand&) = delete;
  AddingByHand& operator=(const AddingByHand&) = delete;

  // Whether a row names the file, in whatever spelling. `path` is a full path.
  [[nodiscard]] bool IsListed(std::string_view path);

  // Adds a file, once more if it is listed already. `path` is a full path. False after a message
  // (907); what was added until then stays. Never throws.
  [[nodiscard]] bool Add(std::string_view path);

 private:
  struct Session;
  Session& Open();

  Application& application_;
  ScanView& view_;
  SearchFileDialog& dialog_;
  std::unique_ptr<Session> session_;
};

// Adds a single file: AddingByHand::Add.
[[nodiscard]] bool AddFileByHand(Application& application, ScanView& view, SearchFileDialog& dialog,
                                 std::string_view path);

}  // namespace txs
