// Step 3: the optional runtime functions that the project uses.
#pragma once

#include <wx/panel.h>

#include "ui/form_parts.h"

namespace txs {

class StepFunctionsPage : public wxPanel {
 public:
  StepFunctionsPage(wxWindow* parent, FormParts& parts);

  // Null where nothing can be set.
  [[nodiscard]] wxWindow* FirstControl() const;

  // Shows the frames that apply to the project's form designer, enabled as its type allows.
  void ShowDocument();

 private:
  FormParts& parts_;
  wxStaticText* choose_;   // text 1301
  wxStaticText* nothing_;  // text 1302
  wxStaticBox* dao_frame_;
  wxCheckBox* jet_;
  wxCheckBox* odbc_;
  wxCheckBox* ado_;
};

}  // namespace txs
