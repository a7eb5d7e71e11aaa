// The Take-note dialog: how a generated setup must and must not be tested.
#pragma once

#include <wx/dialog.h>

#include "document/application.h"
#include "ui/help.h"

namespace txs {

class FTakeNote : public wxDialog {
 public:
  FTakeNote(wxWindow* parent, Application& application, HelpViewer& help);
};

}  // namespace txs
