#include "ui/step_directories_page.h"

#include <wx/sizer.h>

#include <algorithm>
#include <string>

#include "ui/dialog_parts.h"
#include "ui/label_for.h"
#include "ui/wx_text.h"

namespace txs {
namespace {

constexpr long kExplanation = 1201;
constexpr long kTavixDirectory = 1202;
constexpr long kProjectDirectory = 1203;
constexpr long kUserDirectories = 1204;
constexpr long kAdd = 1205;
constexpr long kDelete = 1206;
constexpr long kRename = 1207;
constexpr long kNameColumn = 1210;
constexpr long kDirectoryColumn = 1211;
constexpr long kNewDirectory = 1920;
constexpr int kDirectory = 1;  // the list's second column
constexpr int kNameWidth = 120;
constexpr int kLeastDirectoryWidth = 160;

// The rows are a window of their own within the list; it is the one that takes keys.
wxWindow* RowsOf(wxListCtrl& list) {
  for (wxWindow* const child : list.GetChildren()) {
    if (child->HasFlag(wxWANTS_CHARS)) return child;
  }
  return &list;
}

}  // namespace

StepDirectoriesPage::StepDirectoriesPage(wxWindow* parent, FormParts& parts)
    : wxPanel(parent), parts_(parts) {
  auto* const rows = new wxBoxSizer(wxVERTICAL);
  rows->Add(parts.AddLabel(this, kExplanation));
  auto* const fields = new wxFlexGridSizer(2, wxSize(FromDIP(8), FromDIP(4)));
  fields->AddGrowableCol(1);
  const auto add_field = [&](long label_id, const std::string& name) {
    wxStaticText* const label = parts.AddLabel(this, label_id);
    DocumentBox* const box = parts.AddBox(this, name);
    parts.Tie(label, box);
    fields->Add(label, wxSizerFlags().CentreVertical());
    fields->Add(box, wxSizerFlags().Expand());
    return box;
  };
  first_box_ = add_field(kTavixDirectory, "txtTavixDirectory");
  add_field(kProjectDirectory, "txtProjectDirectory");
  rows->Add(fields, wxSizerFlags().Expand().Border(wxTOP, FromDIP(8)));
  rows->Add(AddUserDirectories(), wxSizerFlags(1).Expand().Border(wxTOP, FromDIP(12)));
  auto* const outer = new wxBoxSizer(wxVERTICAL);
  outer->Add(rows, wxSizerFlags(1).Expand().Border(wxALL, FromDIP(12)));
  SetSizer(outer);

  BindList();
  BindEditBoxes();
  EnableButtons();
  parts.AddEdit([this] {
    TakeRename();
    LeaveUserDirectory();
  });
}

wxSizer* StepDirectoriesPage::AddUserDirectories() {
  // A frame whose caption has an access key.
  wxStaticText* const label = parts_.AddLabel(this, kUserDirectories);
  auto* const frame = new wxStaticBox(this, wxID_ANY, label);
  frame->SetName("fraUserDirectories");
  list_ = new wxListView(frame, wxID_ANY, wxDefaultPosition, FromDIP(wxSize(320, 120)),
                         wxLC_REPORT | wxLC_SINGLE_SEL);
  list_->SetName("lvwUserDirectories");
  rows_ = RowsOf(*list_);
  AddColumn(*list_, parts_.Captions(), kNameColumn);
  AddColumn(*list_, parts_.Captions(), kDirectoryColumn);
  list_->SetColumnWidth(0, FromDIP(kNameWidth));
  TipCutOffTexts(*list_);
  parts_.Tie(label, list_);
  delete_ = parts_.AddButton(frame, "cmdDeleteUserDir", kDelete, [this] { DeleteDirectory(); });
  rename_ = parts_.AddButton(frame, "cmdRenameUserDir", kRename, [this] { BeginRename(); });
  text_ = new wxTextCtrl(frame, wxID_ANY, wxString(), wxDefaultPosition, wxDefaultSize,
                         wxTE_PROCESS_ENTER);
  text_->SetName("txtUserDirectory");
  parts_.Captions().Add(kNewDirectory, [this](const wxString& text) { text_->SetHint(text); });
  parts_.Announce(text_, [this] { return text_->GetHint(); });
  add_ = parts_.AddButton(frame, "cmdAddUserDir", kAdd, [this] { AddDirectory(); });
  edit_ = new wxTextCtrl(rows_, wxID_ANY, wxString(), wxDefaultPosition, wxDefaultSize,
                         wxTE_PROCESS_ENTER);
  edit_->SetName("txtRenameUserDir");
  edit_->Hide();
  parts_.Announce(edit_, [this] { return rename_->GetLabelText(); });

  auto* const buttons = new wxBoxSizer(wxVERTICAL);
  buttons->Add(delete_, wxSizerFlags().Expand());
  buttons->Add(rename_, wxSizerFlags().Expand().Border(wxTOP, FromDIP(8)));
  auto* const box = new wxBoxSizer(wxVERTICAL);
  box->AddStretchSpacer();
  box->Add(text_, wxSizerFlags().Expand());
  box->AddStretchSpacer();
  auto* const grid = new wxFlexGridSizer(2, wxSize(FromDIP(8), FromDIP(8)));
  grid->AddGrowableCol(0);
  grid->AddGrowableRow(0);
  grid->Add(list_, wxSizerFlags().Expand());
  grid->Add(buttons, wxSizerFlags().Expand());
  grid->Add(box, wxSizerFlags().Expand());
  grid->Add(add_, wxSizerFlags().Expand());
  auto* const group = new wxStaticBoxSizer(frame, wxVERTICAL);
  group->Add(grid, wxSizerFlags(1).Expand().Border(wxALL, FromDIP(8)));
  return group;
}

void StepDirectoriesPage::BindList() {
  list_->Bind(wxEVT_LIST_ITEM_SELECTED, [this](wxListEvent&) { EnableButtons(); });
  list_->Bind(wxEVT_LIST_ITEM_DESELECTED, [this](wxListEvent&) { EnableButtons(); });
  // A double click, or Enter.
  list_->Bind(wxEVT_LIST_ITEM_ACTIVATED, [this](wxListEvent& event) {
    list_->Select(event.GetIndex());
    BeginRename();
  });
  // Tab leads to a row that would be current and not selected.
  rows_->Bind(wxEVT_SET_FOCUS, [this](wxFocusEvent& event) {
    event.Skip();
    if (stays_unselected_ || Selected() || list_->GetItemCount() == 0) return;
    list_->Select(std::max(list_->GetFocusedItem(), 0L));
  });
  list_->Bind(wxEVT_LIST_KEY_DOWN, [this](wxListEvent& event) {
    if (event.GetKeyCode() == WXK_DELETE) {
      DeleteDirectory();
    } else if (event.GetKeyCode() == WXK_F2) {
      BeginRename();
    } else {
      event.Skip();
    }
  });
  // The edit box does not follow the row.
  list_->Bind(wxEVT_LIST_COL_BEGIN_DRAG, [this](wxListEvent& event) {
    TakeRename();
    event.Skip();
  });
  list_->Bind(wxEVT_LIST_COL_END_DRAG, [this](wxListEvent& event) {
    CallAfter([this] { FillColumns(); });
    event.Skip();
  });
  list_->Bind(wxEVT_SIZE, [this](wxSizeEvent& event) {
    TakeRename();
    // The list has its new size once it has seen the event itself.
    CallAfter([this] { FillColumns(); });
    event.Skip();
  });
  const auto take_on_scroll = [this](wxScrollWinEvent& event) {
    TakeRename();
    event.Skip();
  };
  for (const auto& type : {wxEVT_SCROLLWIN_TOP, wxEVT_SCROLLWIN_BOTTOM, wxEVT_SCROLLWIN_LINEUP,
                           wxEVT_SCROLLWIN_LINEDOWN, wxEVT_SCROLLWIN_PAGEUP,
                           wxEVT_SCROLLWIN_PAGEDOWN, wxEVT_SCROLLWIN_THUMBTRACK}) {
    rows_->Bind(type, take_on_scroll);
  }
}

void StepDirectoriesPage::BindEditBoxes() {
  text_->Bind(wxEVT_TEXT, [this](wxCommandEvent&) {
    parts_.Presenter().LooseTextEdited();
    EnableButtons();
    ShowCutText(*text_);
  });
  text_->Bind(wxEVT_TEXT_ENTER, [this](wxCommandEvent&) { AddDirectory(); });
  text_->Bind(wxEVT_KILL_FOCUS, [this](wxFocusEvent& event) {
    LeaveUserDirectory();
    event.Skip();
  });
  edit_->Bind(wxEVT_TEXT, [this](wxCommandEvent&) { parts_.Presenter().LooseTextEdited(); });
  edit_->Bind(wxEVT_TEXT_ENTER, [this](wxCommandEvent&) {
    TakeRename();
    rows_->SetFocus();
  });
  edit_->Bind(wxEVT_CHAR_HOOK, [this](wxKeyEvent& event) {
    if (event.GetKeyCode() != WXK_ESCAPE) {
      event.Skip();
      return;
    }
    DropRename();
    rows_->SetFocus();
  });
  edit_->Bind(wxEVT_KILL_FOCUS, [this](wxFocusEvent& event) {
    TakeRename();
    event.Skip();
  });
}

void StepDirectoriesPage::ShowDocument() {
  numbers_.clear();  // nothing of the old list stays selected
  ShowUserDirectories();
  text_->ChangeValue(wxString());
  EnableButtons();
}

void StepDirectoriesPage::ShowUserDirectories() {
  DropRename();
  const std::optional<std::size_t> selected = Selected();
  std::optional<long> number;
  if (selected && *selected < numbers_.size()) number = numbers_[*selected];
  numbers_.clear();
  list_->DeleteAllItems();
  for (const UserDirectory& row : parts_.App().document.steps.user_directories) {
    const long index = list_->InsertItem(list_->GetItemCount(),
                                         ToWx("<UserDir" + std::to_string(row.number) + ">"));
    list_->SetItem(index, kDirectory, ToWx(row.directory));
    numbers_.push_back(row.number);
    if (row.number == number) {
      list_->Focus(index);
      list_->Select(index);
    }
  }
  FillColumns();
  EnableButtons();
}

void StepDirectoriesPage::SelectDirectory(std::size_t index) {
  list_->Focus(static_cast<long>(index));
  list_->Select(static_cast<long>(index));
  rows_->SetFocus();
}

std::optional<std::size_t> StepDirectoriesPage::Selected() const {
  const long row = list_->GetFirstSelected();
  if (row < 0) return std::nullopt;
  return static_cast<std::size_t>(row);
}

void StepDirectoriesPage::EnableButtons() {
  const bool selected = Selected().has_value();
  delete_->Enable(selected);
  rename_->Enable(selected);
  add_->Enable(!text_->IsEmpty());
}

void StepDirectoriesPage::FillColumns() {
  const int room = rows_->GetClientSize().GetWidth() - list_->GetColumnWidth(0);
  list_->SetColumnWidth(kDirectory, std::max(room, FromDIP(kLeastDirectoryWidth)));
}

void StepDirectoriesPage::AddDirectory() {
  LeaveUserDirectory();
  if (text_->IsEmpty() || !parts_.Presenter().AddUserDirectory(FromWx(text_->GetValue()))) return;
  text_->ChangeValue(wxString());
  EnableButtons();
  list_->EnsureVisible(list_->GetItemCount() - 1);
  text_->SetFocus();
}

void StepDirectoriesPage::DeleteDirectory() {
  const std::optional<std::size_t> selected = Selected();
  if (!selected) return;
  parts_.Presenter().DeleteUserDirectory(*selected);
  // The keyboard goes on at the row that followed, which is not selected: a second press of Delete
  // must not take it unasked.
  const long following = std::min(static_cast<long>(*selected), list_->GetItemCount() - 1L);
  if (following >= 0) list_->Focus(following);
  stays_unselected_ = true;
  rows_->SetFocus();
  stays_unselected_ = false;
}

void StepDirectoriesPage::BeginRename() {
  const std::optional<std::size_t> selected = Selected();
  const std::vector<UserDirectory>& rows = parts_.App().document.steps.user_directories;
  if (!selected || *selected >= rows.size()) return;
  const long row = static_cast<long>(*selected);
  list_->EnsureVisible(row);
  wxRect cell;
  if (!list_->GetSubItemRect(row, kDirectory, cell)) return;
  cell.SetPosition(rows_->ScreenToClient(list_->ClientToScreen(cell.GetPosition())));
  edit_->SetSize(cell);
  edit_->ChangeValue(ToWx(rows[*selected].directory));
  edit_->Show();
  renamed_ = selected;
  edit_->SetFocus();
  edit_->SelectAll();
}

void StepDirectoriesPage::TakeRename() {
  if (!renamed_) return;
  const std::size_t row = *renamed_;
  const std::string text = FromWx(edit_->GetValue());
  DropRename();
  parts_.Presenter().RenameUserDirectory(row, text);
}

void StepDirectoriesPage::DropRename() {
  if (!renamed_) return;
  // First of all: hiding the box takes its focus, which would take the edit.
  renamed_.reset();
  edit_->Hide();
}

void StepDirectoriesPage::LeaveUserDirectory() {
  const wxString text = ToWx(parts_.Presenter().LeaveDirectory(FromWx(text_->GetValue())));
  if (text != text_->GetValue()) text_->ChangeValue(text);
  EnableButtons();
}

}  // namespace txs
