#include "ui/search_file_form.h"

#include <wx/sizer.h>
#include <wx/utils.h>

#include <string>
#include <vector>

#include "environment/code_page.h"
#include "environment/windows_path.h"
#include "scan/missing_item.h"
#include "ui/dialog_parts.h"
#include "ui/label_for.h"
#include "ui/remembered_window.h"
#include "ui/wx_text.h"

namespace txs {
namespace {

constexpr char kFormName[] = "FSearchFile";
constexpr long kNeededByText = 1946;
constexpr char kParentFolder[] = "..";
constexpr int kGapDip = 8;
constexpr int kLabelGapDip = 4;
constexpr int kChainWidthDip = 400;
constexpr int kListWidthDip = 250;
constexpr int kListHeightDip = 180;

void SelectRow(wxListView& list, long row) {
  list.Select(row);
  list.Focus(row);
}

// A list that shows `names` already keeps its selection; any other selects its first row.
void ShowNames(wxListView& list, const std::vector<std::string>& names) {
  bool same = names.size() == static_cast<std::size_t>(list.GetItemCount());
  for (std::size_t row = 0; same && row < names.size(); ++row) {
    same = list.GetItemText(static_cast<long>(row)) == ToWx(names[row]);
  }
  if (same) return;
  list.DeleteAllItems();
  for (const std::string& name : names) list.InsertItem(list.GetItemCount(), ToWx(name));
  FitColumns(list);
  if (!names.empty()) SelectRow(list, 0);
}

// The busy pointer of a run rests while the user is asked.
class BusyPointerRests {
 public:
  BusyPointerRests() {
    for (; wxIsBusy(); ++depth_) wxEndBusyCursor();
  }
  ~BusyPointerRests() {
    for (; depth_ > 0; --depth_) wxBeginBusyCursor();
  }
  BusyPointerRests(const BusyPointerRests&) = delete;
  BusyPointerRests& operator=(const BusyPointerRests&) = delete;

 private:
  int depth_ = 0;
};

}  // namespace

FSearchFile::FSearchFile(wxWindow* parent, Application& application, HelpViewer& help,
                         SearchFileModel& model)
    : wxDialog(parent, wxID_ANY, wxEmptyString, wxDefaultPosition, wxDefaultSize,
               wxDEFAULT_DIALOG_STYLE | wxRESIZE_BORDER, kFormName),
      application_(application),
      model_(model) {
  FormCaptions captions(*this, 500);
  auto* const content = new wxBoxSizer(wxVERTICAL);
  content->Add(MakeExplanation(captions), wxSizerFlags().Expand());
  content->AddSpacer(FromDIP(2 * kGapDip));
  content->Add(MakeLists(captions), wxSizerFlags(1).Expand());
  wxStdDialogButtonSizer* const buttons = MakeButtons(captions);
  LoadCaptions(captions, application.texts);
  LabelFor(*drive_label_, *drives_);
  LabelFor(*path_label_, *folders_);
  LabelFor(*file_label_, *files_);

  ShowModel();
  FinishDialog(*this, content, buttons);
  RestoreWindow(*this, application_.platform.registry, kFormName);
  CentreOnParent();
  BindEvents();
  OfferHelp(*this, application_, help);
  folders_->SetFocus();
}

int FSearchFile::ShowModal() {
  const int result = wxDialog::ShowModal();
  KeepWindow(*this, application_.platform.registry, kFormName, /*columns=*/{});
  return result;
}

wxStaticText* FSearchFile::MakeText(const char* name) {
  auto* const text = new wxStaticText(this, wxID_ANY, wxEmptyString);
  text->SetName(name);
  return text;
}

// Not a list box: that one would press the OK button whenever Enter enters a folder.
wxListView* FSearchFile::MakeList(const char* name) {
  auto* const list = new wxListView(
      this, wxID_ANY, wxDefaultPosition, FromDIP(wxSize(kListWidthDip, kListHeightDip)),
      wxLC_REPORT | wxLC_NO_HEADER | wxLC_SINGLE_SEL | wxBORDER_SIMPLE);
  list->SetName(name);
  list->AppendColumn(wxEmptyString);
  KeepLastColumnStretched(*list);
  TipCutOffTexts(*list);
  return list;
}

wxSizer* FSearchFile::MakeExplanation(FormCaptions& captions) {
  auto* const rows = new wxBoxSizer(wxVERTICAL);
  wxStaticText* const heading = MakeText("lblNotFound");
  heading->SetFont(heading->GetFont().Bold());
  captions.Add(*heading, 501);
  rows->Add(heading, wxSizerFlags().Border(wxBOTTOM, FromDIP(kLabelGapDip)));
  wxStaticText* const request = MakeText("lblRequest");
  captions.Add(*request, 502);
  rows->Add(request);

  // Who needs the file often tells where to look for it.
  auto* const needed_by = new wxBoxSizer(wxHORIZONTAL);
  wxStaticText* const caption = MakeText("lblNeededBy");
  captions.Add(*caption, kNeededByText);
  needed_by->Add(caption, wxSizerFlags().Border(wxRIGHT, FromDIP(kGapDip)));
  wxStaticText* const chain = MakeText("lblChain");
  chain->SetLabelText(ToWx(ChainText(model_.Request().chain)));
  chain->Wrap(FromDIP(kChainWidthDip));
  needed_by->Add(chain, wxSizerFlags(1));
  rows->Add(needed_by, wxSizerFlags().Expand().Border(wxTOP, FromDIP(kGapDip)));
  needed_by->ShowItems(!model_.Request().chain.empty());
  return rows;
}

wxSizer* FSearchFile::MakeLists(FormCaptions& captions) {
  const wxSizerFlags beside = wxSizerFlags().CentreVertical().Border(wxRIGHT, FromDIP(kGapDip));
  drive_label_ = MakeText("lblDrive");
  captions.Add(*drive_label_, 506);
  drives_ = new wxChoice(this, wxID_ANY);
  drives_->SetName("drvSearchFile");
  for (const std::string& drive : model_.Drives()) drives_->Append(ToWx(drive));
  auto* const drive_row = new wxBoxSizer(wxHORIZONTAL);
  drive_row->Add(drive_label_, beside);
  drive_row->Add(drives_, wxSizerFlags().CentreVertical());

  path_label_ = MakeText("lblPath");
  captions.Add(*path_label_, 505);
  path_ = new wxStaticText(this, wxID_ANY, wxEmptyString, wxDefaultPosition, wxDefaultSize,
                           wxST_ELLIPSIZE_MIDDLE | wxST_NO_AUTORESIZE);
  path_->SetName("lblFilePath");
  // A long path must not widen the dialog.
  path_->SetMinSize(wxSize(FromDIP(kLabelGapDip), wxDefaultCoord));
  auto* const path_row = new wxBoxSizer(wxHORIZONTAL);
  path_row->Add(path_label_, beside);
  path_row->Add(path_, wxSizerFlags(1).CentreVertical());
  folders_ = MakeList("dirSearchFile");

  file_label_ = MakeText("lblFile");
  captions.Add(*file_label_, 504);
  wxStaticText* const name = MakeText("lblFileName");
  name->SetFont(name->GetFont().Bold());
  name->SetLabelText(ToWx(model_.Request().file_name));
  auto* const name_row = new wxBoxSizer(wxHORIZONTAL);
  name_row->Add(file_label_, beside);
  name_row->Add(name, wxSizerFlags(1).CentreVertical());
  files_ = MakeList("filSearchFile");

  auto* const columns = new wxFlexGridSizer(/*cols=*/2, FromDIP(wxSize(kGapDip, kLabelGapDip)));
  columns->AddGrowableCol(0, 1);
  columns->AddGrowableCol(1, 1);
  columns->AddGrowableRow(1, 1);
  columns->Add(path_row, wxSizerFlags().Expand());
  columns->Add(name_row, wxSizerFlags().Expand());
  columns->Add(folders_, wxSizerFlags().Expand());
  columns->Add(files_, wxSizerFlags().Expand());
  auto* const rows = new wxBoxSizer(wxVERTICAL);
  rows->Add(drive_row);
  rows->AddSpacer(FromDIP(kGapDip));
  rows->Add(columns, wxSizerFlags(1).Expand());
  return rows;
}

wxStdDialogButtonSizer* FSearchFile::MakeButtons(FormCaptions& captions) {
  auto* const buttons = new wxStdDialogButtonSizer;
  ok_ = &AddDialogButton(*this, captions, wxID_OK, "cmdOK", 10);
  buttons->AddButton(ok_);
  // Stands where "No" would.
  buttons->SetNegativeButton(&AddDialogButton(*this, captions, wxID_IGNORE, "cmdIgnore", 503));
  buttons->AddButton(&AddDialogButton(*this, captions, wxID_CANCEL, "cmdCancel", 11));
  buttons->AddButton(&AddDialogButton(*this, captions, wxID_HELP, "cmdHelp", 12));
  return buttons;
}

void FSearchFile::BindEvents() {
  drives_->Bind(wxEVT_CHOICE, [this](wxCommandEvent&) { ChangeDrive(); });
  // A double click or the Enter key.
  folders_->Bind(wxEVT_LIST_ITEM_ACTIVATED, [this](wxListEvent& event) {
    EnterFolder(FromWx(folders_->GetItemText(event.GetIndex())));
  });
  folders_->Bind(wxEVT_KEY_DOWN, &FSearchFile::HandleFolderKey, this);
  files_->Bind(wxEVT_LIST_ITEM_ACTIVATED, [this](wxListEvent&) { PressOk(); });
  Bind(wxEVT_ACTIVATE, [this](wxActivateEvent& event) {
    event.Skip();
    if (event.GetActive()) LookAgain();
  });

  Bind(
      wxEVT_BUTTON, [this](wxCommandEvent&) { PressOk(); }, wxID_OK);
  Bind(
      wxEVT_BUTTON,
      [this](wxCommandEvent&) {
        model_.PressIgnore();
        EndModal(wxID_IGNORE);
      },
      wxID_IGNORE);
  // The Escape key and the title bar come here too.
  Bind(
      wxEVT_BUTTON,
      [this](wxCommandEvent&) {
        model_.PressCancel();
        EndModal(wxID_CANCEL);
      },
      wxID_CANCEL);
}

void FSearchFile::HandleFolderKey(wxKeyEvent& event) {
  if (event.GetKeyCode() != WXK_BACK || event.HasAnyModifiers()) {
    event.Skip();
    return;
  }
  const std::vector<std::string>& folders = model_.Folders();
  if (!folders.empty() && folders.front() == kParentFolder) EnterFolder(kParentFolder);
}

void FSearchFile::ShowModel() {
  drives_->SetStringSelection(ToWx(model_.Drive()));
  if (model_.Drive().empty()) drives_->SetSelection(wxNOT_FOUND);
  const wxString directory = ToWx(model_.Directory());
  if (path_->GetLabelText() != directory) {
    path_->SetLabelText(directory);
    path_->SetToolTip(directory);
  }
  ShowNames(*folders_, model_.Folders());
  ShowNames(*files_, model_.Files());
  // A disabled button would keep the focus and swallow the Escape key.
  if (!model_.OkEnabled() && ok_->HasFocus()) folders_->SetFocus();
  ok_->Enable(model_.OkEnabled());
}

void FSearchFile::ChangeDrive() {
  const std::string chosen = FromWx(drives_->GetStringSelection());
  model_.ChangeDrive(chosen);
  // Without a disk in it the drive is not changed.
  if (!EqualNoCase(model_.Drive(), chosen)) wxBell();
  ShowModel();
}

void FSearchFile::EnterFolder(const std::string& name) {
  const std::string before = model_.Directory();
  model_.ChangeDirectory(name);
  if (model_.Directory() == before) {
    // The folder has gone.
    wxBell();
    LookAgain();
    return;
  }
  ShowModel();
  // Going up leads back to the folder that was left.
  if (name != kParentFolder) return;
  const long left = folders_->FindItem(-1, ToWx(FileName(before)));
  if (left != wxNOT_FOUND) SelectRow(*folders_, left);
}

void FSearchFile::PressOk() {
  LookAgain();
  if (!model_.OkEnabled()) return;
  model_.PressOk();
  EndModal(wxID_OK);
}

void FSearchFile::LookAgain() {
  model_.Refresh();
  ShowModel();
}

SearchFileAnswer SearchFileForms::Search(const SearchFileRequest& request) {
  const bool found_before =
      !directory_.empty() && application_.platform.files.FolderExists(directory_);
  SearchFileModel model(application_.platform.files, request,
                        found_before ? directory_ : application_.project.directory);
  const BusyPointerRests pointer;
  FSearchFile dialog(parent_, application_, help_, model);
  dialog.ShowModal();
  if (model.Answer().result == SearchFileResult::kOk) directory_ = model.Answer().directory;
  return model.Answer();
}

}  // namespace txs
