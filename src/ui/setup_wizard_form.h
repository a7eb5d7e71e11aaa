// The main form.
#pragma once

#include <wx/frame.h>

#include "document/application.h"
#include "ui/help.h"
#include "ui/setup_wizard_view.h"

namespace txs {

class FSetupWizard : public wxFrame, public SetupWizardView {
 public:
  // Shows the project that is open in `application`.
  FSetupWizard(Application& application, HelpViewer& help);
};

}  // namespace txs
