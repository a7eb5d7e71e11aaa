// The state window of Scan.
#pragma once

#include <wx/dialog.h>

#include "document/application.h"
#include "ui/state_windows.h"

namespace txs {

// Hidden until Begin. Stands in front of `parent`, which the main form disables meanwhile.
class FStateScan : public wxDialog, public ScanStateWindow {
 public:
  FStateScan(wxWindow* parent, Application& application);
};

}  // namespace txs
