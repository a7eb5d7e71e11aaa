// The tags of a form of wxWidgets, for `LoadCaptions`.
#pragma once

#include <wx/control.h>
#include <wx/toplevel.h>

#include <functional>
#include <memory>
#include <vector>

#include "text/captions.h"

namespace txs {

// Which text each control shows. Built once while the form is built; the controls must live as long
// as it is used.
class FormCaptions : public CaptionForm {
 public:
  FormCaptions(wxTopLevelWindow& form, long id);
  ~FormCaptions() override;

  // A label, button, check box, option button or frame; "&" marks the access key.
  void Add(wxControl& control, long id);
  // Anything else that shows a text: a column header, a tab, a menu.
  void Add(long id, std::function<void(const wxString& text)> show);

  [[nodiscard]] std::string Tag() const override;
  void SetCaption(const std::string& text) override;
  [[nodiscard]] std::vector<CaptionControl*> Controls() override;

 private:
  class Tagged;

  wxTopLevelWindow& form_;
  long id_;
  std::vector<std::unique_ptr<Tagged>> controls_;
};

}  // namespace txs
