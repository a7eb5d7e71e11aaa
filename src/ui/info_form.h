// The Info dialog: versions of the studio and of the wizard.
#pragma once

#include <wx/dialog.h>

#include "document/application.h"
#include "ui/help.h"

namespace txs {

class FInfo : public wxDialog {
 public:
  // Without `help` F1 does nothing.
  FInfo(wxWindow* parent, Application& application, HelpViewer* help = nullptr);
};

}  // namespace txs
