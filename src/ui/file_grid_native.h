// What the grid needs of the toolkit's own list and wxWidgets does not pass on.
#pragma once

#include <wx/dataview.h>

namespace txs {

// A cell whose text is cut off shows it whole in a tooltip, for the mouse as for the keyboard
// (Ctrl+F1).
void ShowCutTextsAsTooltips(wxDataViewCtrl& list);

// An edit that loses the focus is taken, not dropped: what somebody typed is not lost because they
// clicked elsewhere.
void TakeEditsWhenLeft(wxDataViewTextRenderer& renderer);

// The width that a column was given. The last column may be shown wider, up to the list's edge.
[[nodiscard]] int GivenWidth(const wxDataViewColumn& column);

}  // namespace txs
