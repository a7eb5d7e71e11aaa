// The Open-Project dialog.
#pragma once

#include <wx/dialog.h>
#include <wx/listctrl.h>

#include <string>

#include "document/application.h"
#include "projects/project_registry.h"

namespace txs {

class FProjectOpen : public wxDialog {
 public:
  // Fills the list, which removes registrations whose project file has gone. `parent` may be null.
  FProjectOpen(wxWindow* parent, Application& application);

  // `ProjectName`: shows the dialog modally. The chosen name, or empty.
  [[nodiscard]] std::string ProjectName();
};

}  // namespace txs
