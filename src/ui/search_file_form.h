// The Search-File dialog.
#pragma once

#include <wx/button.h>
#include <wx/choice.h>
#include <wx/dialog.h>
#include <wx/listctrl.h>
#include <wx/sizer.h>
#include <wx/stattext.h>

#include <string>

#include "document/application.h"
#include "scan/search_file_dialog.h"
#include "scan/search_file_model.h"
#include "ui/form_captions.h"
#include "ui/help.h"

namespace txs {

class FSearchFile : public wxDialog {
 public:
  // `model` holds the answer when the dialog has closed.
  FSearchFile(wxWindow* parent, Application& application, HelpViewer& help, SearchFileModel& model);

  int ShowModal() override;

 private:
  wxStaticText* MakeText(const char* name);
  wxListView* MakeList(const char* name);
  wxSizer* MakeExplanation(FormCaptions& captions);
  wxSizer* MakeLists(FormCaptions& captions);
  wxStdDialogButtonSizer* MakeButtons(FormCaptions& captions);
  void BindEvents();
  void HandleFolderKey(wxKeyEvent& event);

  // Takes from the model what has changed.
  void ShowModel();
  void ChangeDrive();
  void EnterFolder(const std::string& name);
  void PressOk();
  // Another program may have put the file there or taken it away.
  void LookAgain();

  Application& application_;
  SearchFileModel& model_;
  wxStaticText* drive_label_ = nullptr;
  wxStaticText* path_label_ = nullptr;
  wxStaticText* file_label_ = nullptr;
  wxChoice* drives_ = nullptr;     // drvSearchFile
  wxListView* folders_ = nullptr;  // dirSearchFile
  wxListView* files_ = nullptr;    // filSearchFile
  wxStaticText* path_ = nullptr;   // lblFilePath
  wxButton* ok_ = nullptr;         // cmdOK
};

// Opens the dialog for every question of a Scan: the first time in the project directory, then
// where the last file was found.
class SearchFileForms : public SearchFileDialog {
 public:
  // `parent` is asked for at every question: a state window may be in front by then.
  SearchFileForms(Application& application, HelpViewer& help)
      : application_(application), help_(help) {}

  void SetParent(wxWindow* parent) { parent_ = parent; }

  // The pointer is an arrow while the dialog is open, whatever it is during the run.
  [[nodiscard]] SearchFileAnswer Search(const SearchFileRequest& request) override;

 private:
  Application& application_;
  HelpViewer& help_;
  wxWindow* parent_ = nullptr;
  std::string directory_;
};

}  // namespace txs
