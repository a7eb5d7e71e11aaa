// What the grid needs of the toolkit's own list and wxWidgets does not pass on.
#pragma once

#include <wx/dataview.h>

#include <functional>

namespace txs {

// A cell whose text is cut off shows it whole in a tooltip, for the mouse as for the keyboard
// (Ctrl+F1).
void ShowCutTextsAsTooltips(wxDataViewCtrl& list);

// An edit that loses the focus is taken, not dropped: what somebody typed is not lost because they
// clicked elsewhere.
void TakeEditsWhenLeft(wxDataViewTextRenderer& renderer);

// Tab and Shift+Tab lead out of the list, rather than through all of its cells.
void LetTabLeave(wxDataViewCtrl& list);

// Ends an open edit as Enter does.
void TakeOpenEdit(wxDataViewCtrl& list);

// Scrolls until the row, counted from 0, is visible. The toolkit's own scrolling glides, and stops
// half-way when the window is laid out meanwhile.
void ScrollToRow(wxDataViewCtrl& list, unsigned int row);

// The width that a column was given. The last column may be shown wider, up to the list's edge.
[[nodiscard]] int GivenWidth(const wxDataViewColumn& column);

// The window that the keys go to while the list has the focus.
[[nodiscard]] wxWindow& KeyWindow(wxDataViewCtrl& list);

// Calls `change`, during which the list announces no change of its selection.
void WithoutSelectionEvents(wxDataViewCtrl& list, const std::function<void()>& change);

}  // namespace txs
