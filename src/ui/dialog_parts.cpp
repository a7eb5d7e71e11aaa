#include "ui/dialog_parts.h"

#include <wx/settings.h>

#include <algorithm>

#include "ui/form_pictures.h"

namespace txs {
namespace {

constexpr int kGapDip = 8;
// What the row of buttons keeps from the dialog's edges by itself.
constexpr int kEdgeDip = 12;
// What the list leaves free on both sides of a text.
constexpr int kCellMarginDip = 8;

wxString CutOffText(const wxListView& list, const wxPoint& at) {
  int flags = 0;
  const long row = list.HitTest(at, flags);
  if (row == wxNOT_FOUND) return {};
  int left = -list.GetScrollPos(wxHORIZONTAL);
  for (int column = 0; column < list.GetColumnCount(); ++column) {
    const int right = left + list.GetColumnWidth(column);
    if (at.x >= left && at.x < right) {
      const wxString text = list.GetItemText(row, column);
      const int visible = std::min(right, list.GetClientSize().GetWidth()) - std::max(left, 0);
      const int needed = list.GetTextExtent(text).GetWidth() + list.FromDIP(kCellMarginDip);
      return needed > visible ? text : wxString();
    }
    left = right;
  }
  return {};
}

void StretchLastColumn(wxListView& list) {
  const int last = list.GetColumnCount() - 1;
  if (last < 0) return;
  list.SetColumnWidth(last, wxLIST_AUTOSIZE_USEHEADER);
  int room = RowArea(list)->GetClientSize().GetWidth();
  for (int column = 0; column < last; ++column) room -= list.GetColumnWidth(column);
  if (room > list.GetColumnWidth(last)) list.SetColumnWidth(last, room);
}

// The window manager may give another frame than that of the window before, by which wxWidgets has
// measured; the contents would then lack the difference.
void KeepContentsWhole(wxDialog& dialog) {
  dialog.Bind(wxEVT_SIZE, [&dialog, corrected = false](wxSizeEvent& event) mutable {
    event.Skip();
    const wxSize needed = dialog.GetSizer()->GetMinSize();
    const wxSize has = dialog.GetClientSize();
    const bool lacks = has.GetWidth() < needed.GetWidth() || has.GetHeight() < needed.GetHeight();
    // Once: a screen may be too small, and the window manager would answer for ever.
    if (!lacks || corrected || !dialog.IsShown()) return;
    corrected = true;
    wxSize whole = has;
    whole.IncTo(needed);
    dialog.CallAfter([&dialog, whole] { dialog.SetClientSize(whole); });
  });
}

}  // namespace

void OfferHelp(wxDialog& dialog, Application& application, HelpViewer& help) {
  dialog.Bind(wxEVT_CHAR_HOOK, [&application, &help](wxKeyEvent& event) {
    if (event.GetKeyCode() != WXK_F1 || event.HasAnyModifiers()) {
      event.Skip();
      return;
    }
    ShowHelp(application, help, kHelpContents);
  });
  dialog.Bind(
      wxEVT_BUTTON,
      [&application, &help](wxCommandEvent&) { ShowHelp(application, help, kHelpContents); },
      wxID_HELP);
}

wxButton& AddDialogButton(wxDialog& dialog, FormCaptions& captions, wxWindowID id, const char* name,
                          long caption) {
  auto* const button = new wxButton(&dialog, id);
  button->SetName(name);
  captions.Add(*button, caption);
  if (id == wxID_OK) button->SetDefault();
  return *button;
}

void FinishDialog(wxDialog& dialog, wxSizer* content, wxStdDialogButtonSizer* buttons) {
  const int edge = dialog.FromDIP(kEdgeDip);
  buttons->Realize();
  auto* const rows = new wxBoxSizer(wxVERTICAL);
  rows->Add(content, wxSizerFlags(1).Expand().Border(wxLEFT | wxTOP | wxRIGHT, edge));
  rows->AddSpacer(dialog.FromDIP(kGapDip));
  rows->Add(buttons, wxSizerFlags().Expand().Border(wxBOTTOM, dialog.FromDIP(kGapDip)));
  dialog.SetSizerAndFit(rows);
  KeepContentsWhole(dialog);
  dialog.SetIcons(ApplicationIcons());
  dialog.CentreOnParent();
}

void AddColumn(wxListView& list, FormCaptions& captions, long id) {
  const long column = list.AppendColumn(wxEmptyString);
  captions.Add(id, [&list, column](const wxString& text) {
    wxListItem header;
    header.SetMask(wxLIST_MASK_TEXT);
    header.SetText(text);
    list.SetColumn(static_cast<int>(column), header);
  });
}

wxWindow* RowArea(wxListView& list) {
  const wxWindowList& parts = list.GetChildren();
  return parts.empty() ? &list : parts.front();
}

int FitColumns(wxListView& list) {
  int needed = wxSystemSettings::GetMetric(wxSYS_VSCROLL_X, &list);
  for (int column = 0; column < list.GetColumnCount(); ++column) {
    list.SetColumnWidth(column, wxLIST_AUTOSIZE_USEHEADER);
    needed += list.GetColumnWidth(column);
  }
  StretchLastColumn(list);
  return needed;
}

void KeepLastColumnStretched(wxListView& list) {
  list.Bind(wxEVT_SIZE, [&list](wxSizeEvent& event) {
    event.Skip();
    // The list has its new size once it has seen the event itself.
    list.CallAfter([&list] { StretchLastColumn(list); });
  });
}

void TipCutOffTexts(wxListView& list) {
  list.Bind(wxEVT_MOTION, [&list](wxMouseEvent& event) {
    event.Skip();
    const wxString tip = CutOffText(list, event.GetPosition());
    if (tip == list.GetToolTipText()) return;
    if (tip.empty()) {
      list.UnsetToolTip();
    } else {
      list.SetToolTip(tip);
    }
  });
}

}  // namespace txs
