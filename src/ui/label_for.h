// What ties a control to its label for people who do not use the mouse or the screen.
#pragma once

#include <wx/stattext.h>
#include <wx/window.h>

namespace txs {

// The label's access key moves the focus to `target`, and `target` is announced by the label's
// text. The label must stand right before its target in tab order. Call it after captions are set.
void LabelFor(wxStaticText& label, wxWindow& target);

// Announces a control that has no label of its own, without the "&" of an access key.
void SetAccessibleName(wxWindow& window, const wxString& name);

}  // namespace txs
