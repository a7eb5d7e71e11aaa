// The state window of Create.
#pragma once

#include <wx/dialog.h>

#include "document/application.h"
#include "ui/help.h"
#include "ui/state_windows.h"

namespace txs {

// Hidden until Begin. Stands in front of `parent`, which the main form disables meanwhile.
class FStateCreate : public wxDialog, public CreateStateWindow {
 public:
  FStateCreate(wxWindow* parent, Application& application, HelpViewer& help);
};

}  // namespace txs
