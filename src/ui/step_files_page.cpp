#include "ui/step_files_page.h"

#include <wx/dialog.h>
#include <wx/sizer.h>
#include <wx/toplevel.h>

#include <algorithm>

#include "ui/file_dialogs.h"
#include "ui/label_for.h"
#include "ui/wx_text.h"

namespace txs {
namespace {

constexpr long kFirstInstruction = 1401;
constexpr long kLastInstruction = 1403;
constexpr long kScan = 1404;
constexpr long kAdd = 1405;
constexpr long kDelete = 1406;
constexpr long kFilesToInstall = 1505;
constexpr long kScanTip = 1921;
constexpr long kAddTip = 1922;
constexpr long kDeleteTip = 1923;
constexpr long kEmptyList = 1924;

bool IsDialogInFront() {
  return std::any_of(wxTopLevelWindows.begin(), wxTopLevelWindows.end(), [](wxWindow* window) {
    const auto* const dialog = dynamic_cast<wxDialog*>(window);
    return dialog != nullptr && dialog->IsModal();
  });
}

}  // namespace

StepFilesPage::StepFilesPage(wxWindow* parent, FormParts& parts) : wxPanel(parent), parts_(parts) {
  auto* const rows = new wxBoxSizer(wxVERTICAL);
  for (long id = kFirstInstruction; id <= kLastInstruction; ++id) {
    rows->Add(parts.AddLabel(this, id), wxSizerFlags().Border(wxBOTTOM, FromDIP(4)));
  }

  scan_ = parts.AddButton(this, "cmdScan", kScan, [&parts] { parts.Presenter().Scan(); });
  add_ = parts.AddButton(this, "cmdAddFile", kAdd, [&parts] { parts.Presenter().AddFiles(); });
  delete_ = parts.AddButton(this, "cmdDeleteFile", kDelete, [this] { DeleteSelected(); });
  // Their captions have no access keys; the tips name the keys that stand in for them.
  parts.Captions().Add(kScanTip, [this](const wxString& text) { scan_->SetToolTip(text); });
  parts.Captions().Add(kAddTip, [this](const wxString& text) { add_->SetToolTip(text); });
  parts.Captions().Add(kDeleteTip, [this](const wxString& text) { delete_->SetToolTip(text); });
  auto* const buttons = new wxBoxSizer(wxHORIZONTAL);
  buttons->Add(scan_);
  buttons->Add(add_, wxSizerFlags().Border(wxLEFT, FromDIP(8)));
  buttons->Add(delete_, wxSizerFlags().Border(wxLEFT, FromDIP(8)));
  rows->Add(buttons, wxSizerFlags().Border(wxTOP, FromDIP(4)));

  FileGrid::Events events;
  events.edited = [&parts](std::size_t row, FileColumn column, const std::string& text) {
    parts.Presenter().EditCell(row, column, text);
  };
  events.selection_changed = [this] { EnableButtons(); };
  events.delete_pressed = [this] { DeleteSelected(); };
  events.files_dropped = [this](const std::vector<std::string>& host_paths) {
    AddDropped(host_paths);
  };
  grid_ = new FileGrid(this, parts.App().document.files, std::move(events));
  grid_->SetName("grdFiles");
  grid_->SetColumnCaptions(FileColumnCaptions(parts.App().texts));
  grid_->SetMinSize(FromDIP(wxSize(400, 160)));
  parts.Announce(grid_, [&parts] { return ToWx(parts.App().texts.GetText(kFilesToInstall)); });
  rows->Add(grid_, wxSizerFlags(1).Expand().Border(wxTOP, FromDIP(8)));

  parts.AddEdit([this] { grid_->TakeEdit(); });

  hint_ = parts.AddLabel(this, kEmptyList);
  hint_->SetName("lblEmptyList");
  // The list must not jump when the first file comes.
  rows->Add(hint_, wxSizerFlags().Border(wxTOP, FromDIP(4)).ReserveSpaceEvenIfHidden());
  auto* const outer = new wxBoxSizer(wxVERTICAL);
  outer->Add(rows, wxSizerFlags(1).Expand().Border(wxALL, FromDIP(12)));
  SetSizer(outer);
}

wxWindow* StepFilesPage::FirstControl() const {
  return parts_.App().document.files.RowCount() == 0 ? static_cast<wxWindow*>(scan_) : grid_;
}

void StepFilesPage::ShowDocument() {
  grid_->ResetRows();
  RefreshFileList();
}

void StepFilesPage::RefreshFileList() {
  grid_->RefreshRows();
  hint_->Show(parts_.App().document.files.RowCount() == 0);
  EnableButtons();
}

bool StepFilesPage::TakeKey(int key_code) {
  const bool scan = key_code == WXK_F5;
  const bool add = key_code == WXK_INSERT || key_code == WXK_NUMPAD_INSERT;
  if (!scan && !add) return false;
  parts_.TakeEdits();
  if (scan) {
    parts_.Presenter().Scan();
  } else {
    parts_.Presenter().AddFiles();
  }
  return true;
}

void StepFilesPage::EnableButtons() { delete_->Enable(!grid_->SelectedRows().empty()); }

void StepFilesPage::DeleteSelected() {
  const std::vector<std::size_t> rows = grid_->SelectedRows();
  if (rows.empty()) return;
  parts_.Presenter().DeleteRows(rows);
  // The button that had the focus may be disabled by now.
  FirstControl()->SetFocus();
}

void StepFilesPage::AddDropped(const std::vector<std::string>& host_paths) {
  // A form that is closing is disabled. A dialog in front of it may be about to change the project.
  if (!IsEnabled() || parts_.Presenter().IsRunning() || IsDialogInFront()) return;
  const std::vector<std::string> paths = WindowsPaths(parts_.App(), host_paths);
  if (!paths.empty()) parts_.Presenter().AddFiles(paths);
}

}  // namespace txs
