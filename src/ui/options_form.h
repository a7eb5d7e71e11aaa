// The Options dialog.
#pragma once

#include <wx/dialog.h>

#include "document/application.h"
#include "ui/help.h"

namespace txs {

class FOptions : public wxDialog {
 public:
  // Shows the path variables of the open project. OK keeps the option in the registry; when the
  // registry refuses, it says so (message 911) and the dialog stays open.
  FOptions(wxWindow* parent, Application& application, HelpViewer& help);
};

}  // namespace txs
