// Step 4: the list of the files to install.
#pragma once

#include <wx/panel.h>

#include <string>
#include <vector>

#include "ui/file_grid.h"
#include "ui/form_parts.h"

namespace txs {

class StepFilesPage : public wxPanel {
 public:
  StepFilesPage(wxWindow* parent, FormParts& parts);

  // Scan while the list is empty, then the list.
  [[nodiscard]] wxWindow* FirstControl() const;
  [[nodiscard]] FileGrid& Grid() { return *grid_; }

  void ShowDocument();     // nothing stays selected
  void RefreshFileList();  // what is still there stays selected

  // F5 scans, Ins adds files. Del belongs to the list.
  bool TakeKey(int key_code);

 private:
  void EnableButtons();
  void DeleteSelected();
  void AddDropped(const std::vector<std::string>& host_paths);

  FormParts& parts_;
  wxButton* scan_ = nullptr;
  wxButton* add_ = nullptr;
  wxButton* delete_ = nullptr;
  FileGrid* grid_ = nullptr;
  wxStaticText* hint_ = nullptr;  // shown while the list is empty
};

}  // namespace txs
