// Windows itself moves the focus from a label to the control that follows it, and announces a
// control by the label before it: but not those that wxWidgets draws, nor a list in a window of its
// own.
#include "ui/label_for.h"

#include <wx/access.h>
#include <wx/dataview.h>

namespace txs {
namespace {

// Answers the name, and leaves all else to what answers without it.
template <typename Accessible, typename Window>
class Named : public Accessible {
 public:
  Named(Window* window, const wxString& name) : Accessible(window), name_(name) {}

  wxAccStatus GetName(int child, wxString* name) override {
    if (child != wxACC_SELF) return Accessible::GetName(child, name);
    *name = name_;
    return wxACC_OK;
  }

 private:
  wxString name_;
};

}  // namespace

void LabelFor(wxStaticText& label, wxWindow& target) {
  SetAccessibleName(target, label.GetLabelText());
}

void SetAccessibleName(wxWindow& window, const wxString& name) {
  // The window owns what it is given.
  if (auto* const list = dynamic_cast<wxDataViewCtrl*>(&window)) {
    list->SetAccessible(new Named<wxDataViewCtrlAccessible, wxDataViewCtrl>(list, name));
  } else {
    window.SetAccessible(new Named<wxAccessible, wxWindow>(&window, name));
  }
}

}  // namespace txs
