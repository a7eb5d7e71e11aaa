// The Open-Project dialog.
#pragma once

#include <wx/button.h>
#include <wx/dialog.h>
#include <wx/listctrl.h>
#include <wx/stattext.h>

#include <string>

#include "document/application.h"
#include "projects/project_registry.h"
#include "ui/help.h"

namespace txs {

class FProjectOpen : public wxDialog {
 public:
  // Fills the list, which removes registrations whose project file has gone. `parent` may be null.
  // Without `help` F1 does nothing.
  FProjectOpen(wxWindow* parent, Application& application, HelpViewer* help = nullptr);

  // `ProjectName`: shows the dialog modally. The chosen name, or empty.
  [[nodiscard]] std::string ProjectName();

 private:
  void MakeControls();
  void FillList();
  void BindEvents();
  // Without a selected row an arrow key selects the one that has the focus, not the one beyond it.
  void HandleListKey(wxKeyEvent& event);
  // A row selected by the keys counts as clicked.
  void TakeSelection();

  Application& application_;
  ProjectListModel projects_;
  ProjectChoice choice_;
  wxListView* list_ = nullptr;    // lvwRegisteredProjects
  wxStaticText* hint_ = nullptr;  // lblNoProjects, in the empty list
  wxStaticText* away_ = nullptr;  // lblUnreachable, below the list
  wxButton* open_ = nullptr;      // cmdOpen
  wxButton* cancel_ = nullptr;    // cmdCancel
};

}  // namespace txs
