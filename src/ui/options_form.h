// The Options dialog.
#pragma once

#include <wx/checkbox.h>
#include <wx/dialog.h>
#include <wx/listctrl.h>
#include <wx/textctrl.h>

#include "document/application.h"
#include "ui/help.h"

namespace txs {

class FOptions : public wxDialog {
 public:
  // Shows the path variables of the open project. OK keeps the option in the registry; when the
  // registry refuses, it says so (message 1942) and the dialog stays open.
  FOptions(wxWindow* parent, Application& application, HelpViewer& help);

  int ShowModal() override;

 private:
  void FillVariables();
  void BindEvents();
  void HandleListKey(wxKeyEvent& event);
  // False after a message when the registry refuses.
  bool StoreOption();
  void CopyValue();

  Application& application_;
  wxListView* variables_ = nullptr;          // lvwVariables
  wxTextCtrl* variable_ = nullptr;           // txtVariable
  wxCheckBox* use_runtime_setup_ = nullptr;  // chkUseRuntimeSetup
};

}  // namespace txs
