// Windows has no list of this kind: wxWidgets draws it itself. It takes an edit that loses the
// focus, and scrolls at once.
#include <wx/dataview.h>
#include <wx/event.h>

#include "ui/file_grid_native.h"

namespace txs {
namespace {

// What the list leaves free on both sides of a text.
constexpr int kCellMarginDip = 8;

wxString CutTextAt(const wxDataViewCtrl& list, const wxPoint& at) {
  wxDataViewItem item;
  wxDataViewColumn* column = nullptr;
  list.HitTest(at, item, column);
  if (!item.IsOk() || column == nullptr) return {};
  wxVariant value;
  list.GetModel()->GetValue(value, item, column->GetModelColumn());
  const wxString text = value.GetString();
  const int needed = list.GetTextExtent(text).GetWidth() + list.FromDIP(kCellMarginDip);
  return needed > column->GetWidth() ? text : wxString();
}

}  // namespace

void ShowCutTextsAsTooltips(wxDataViewCtrl& list) {
  wxWindow* const rows = list.GetMainWindow();
  rows->Bind(wxEVT_MOTION, [&list, rows](wxMouseEvent& event) {
    event.Skip();
    const wxPoint at = list.ScreenToClient(rows->ClientToScreen(event.GetPosition()));
    const wxString tip = CutTextAt(list, at);
    if (tip == rows->GetToolTipText()) return;
    if (tip.empty()) {
      rows->UnsetToolTip();
    } else {
      rows->SetToolTip(tip);
    }
  });
}

void TakeEditsWhenLeft(wxDataViewTextRenderer& /*renderer*/) {}

void LetTabLeave(wxDataViewCtrl& list) {
  wxWindow* const rows = list.GetMainWindow();
  rows->Bind(wxEVT_CHAR_HOOK, [&list, rows](wxKeyEvent& event) {
    // In an editor, which is a window of its own within the rows, Tab takes the edit.
    const bool on_rows = wxWindow::FindFocus() == rows && !event.HasModifiers();
    if (!on_rows || !list.HandleAsNavigationKey(event)) event.Skip();
  });
}

void TakeOpenEdit(wxDataViewCtrl& list) {
  for (unsigned int i = 0; i < list.GetColumnCount(); ++i) {
    wxDataViewRenderer* const renderer = list.GetColumn(i)->GetRenderer();
    if (renderer->GetEditorCtrl() != nullptr) renderer->FinishEditing();
  }
}

void ScrollToRow(wxDataViewCtrl& list, unsigned int row) {
  const auto* const model = dynamic_cast<const wxDataViewVirtualListModel*>(list.GetModel());
  if (model != nullptr) list.EnsureVisible(model->GetItem(row));
}

int GivenWidth(const wxDataViewColumn& column) { return column.WXGetSpecifiedWidth(); }

wxWindow& KeyWindow(wxDataViewCtrl& list) { return *list.GetMainWindow(); }

void WithoutSelectionEvents(wxDataViewCtrl& list, const std::function<void()>& change) {
  const wxEventBlocker silence(&list, wxEVT_DATAVIEW_SELECTION_CHANGED);
  change();
}

}  // namespace txs
