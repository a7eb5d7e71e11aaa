// The Search-File dialog.
#pragma once

#include <wx/dialog.h>

#include "document/application.h"
#include "scan/search_file_dialog.h"
#include "scan/search_file_model.h"
#include "ui/help.h"

namespace txs {

class FSearchFile : public wxDialog {
 public:
  // `model` holds the answer when the dialog has closed.
  FSearchFile(wxWindow* parent, Application& application, HelpViewer& help, SearchFileModel& model);
};

// Opens the dialog for every question of a Scan: the first time in the project directory, then
// where the last file was found.
class SearchFileForms : public SearchFileDialog {
 public:
  // `parent` is asked for at every question: a state window may be in front by then.
  SearchFileForms(Application& application, HelpViewer& help)
      : application_(application), help_(help) {}

  void SetParent(wxWindow* parent) { parent_ = parent; }

  [[nodiscard]] SearchFileAnswer Search(const SearchFileRequest& request) override;

 private:
  Application& application_;
  HelpViewer& help_;
  wxWindow* parent_ = nullptr;
  std::string directory_;
};

}  // namespace txs
