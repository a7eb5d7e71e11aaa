// The contract of the Search-File dialog: the user finds a missing file by hand, or skips it.
#pragma once

#include <string>
#include <vector>

namespace txs {

struct SearchFileRequest {
  std::string file_name;           // without directory
  std::vector<std::string> chain;  // who needs it, see MissingItem
};

// The platform's numbers for the buttons. Closing the dialog in any other way is kCancel.
enum class SearchFileResult : int {
  kOk = 1,
  kCancel = 2,
  kIgnore = 5,
};

struct SearchFileAnswer {
  SearchFileResult result = SearchFileResult::kCancel;
  std::string directory;  // with kOK: where the file is said to lie
};

class SearchFileDialog {
 public:
  virtual ~SearchFileDialog() = default;

  // Shows the dialog and waits. None of the answers stops the run.
  [[nodiscard]] virtual SearchFileAnswer Search(const SearchFileRequest& request) = 0;
};

// Where nobody can be asked: every missing file is left out.
class IgnoreMissingFiles : public SearchFileDialog {
 public:
  [[nodiscard]] SearchFileAnswer Search(const SearchFileRequest&) override {
    return {SearchFileResult::kIgnore, {}};
  }
};

}  // namespace txs
