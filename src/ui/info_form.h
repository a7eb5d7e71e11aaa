// The Info dialog: versions of the studio and of the wizard.
#pragma once

#include <wx/dialog.h>

#include "document/application.h"

namespace txs {

class FInfo : public wxDialog {
 public:
  FInfo(wxWindow* parent, Application& application);
};

}  // namespace txs
