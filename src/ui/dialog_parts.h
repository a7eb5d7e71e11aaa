// What the dialogs have in common.
#pragma once

#include <wx/button.h>
#include <wx/dialog.h>
#include <wx/listctrl.h>
#include <wx/sizer.h>

#include "document/application.h"
#include "ui/form_captions.h"
#include "ui/help.h"

namespace txs {

// F1, wherever the focus is, and the button wxID_HELP, where there is one, open the help file.
void OfferHelp(wxDialog& dialog, Application& application, HelpViewer& help);

// A button of the row at the bottom; the one of wxID_OK is the default button.
wxButton& AddDialogButton(wxDialog& dialog, FormCaptions& captions, wxWindowID id, const char* name,
                          long caption);

// Puts `content` above the row of buttons, gives the dialog the size that both need as its minimum,
// the program's icon, and its place in the middle of its parent. Call it after captions are set.
void FinishDialog(wxDialog& dialog, wxSizer* content, wxStdDialogButtonSizer* buttons);

// A column of a report list, with its caption from the string table.
void AddColumn(wxListView& list, FormCaptions& captions, long id);

// The window in which a list shows its rows: the list itself where the platform draws it.
[[nodiscard]] wxWindow* RowArea(wxListView& list);

// Makes every column as wide as its contents and its header need, the last one at least as wide as
// what the others leave of the list. Returns the width that the list needs to show all columns.
int FitColumns(wxListView& list);

// The last column takes what the others leave whenever the list's size changes.
void KeepLastColumnStretched(wxListView& list);

// A text that its column cuts off is shown as a tip while the pointer is over it.
void TipCutOffTexts(wxListView& list);

}  // namespace txs
