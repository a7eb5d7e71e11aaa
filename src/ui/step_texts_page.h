// Step 1: the texts that the installation shows, once per language.
#pragma once

#include <wx/notebook.h>
#include <wx/panel.h>

#include <array>

#include "ui/form_parts.h"

namespace txs {

class StepTextsPage : public wxPanel {
 public:
  StepTextsPage(wxWindow* parent, FormParts& parts);

  [[nodiscard]] wxWindow* FirstControl() const;

  // Shows the page of `tabLanguage` that `control` is on.
  void ShowPageOf(wxWindow& control);
  // Whether Alt and this character choose a page of `tabLanguage`; the page is then chosen.
  bool TakeAccessKey(wxChar character);

 private:
  void AddLanguage(FormParts& parts, int language, long caption);

  wxNotebook* tab_language_;
  std::array<wxWindow*, 2> first_boxes_{};
  std::array<wxChar, 2> access_keys_{};
};

}  // namespace txs
