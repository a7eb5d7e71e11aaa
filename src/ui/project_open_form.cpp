#include "ui/project_open_form.h"

#include <wx/sizer.h>

#include <algorithm>

#include "ui/dialog_parts.h"
#include "ui/form_captions.h"
#include "ui/label_for.h"
#include "ui/remembered_window.h"
#include "ui/wx_text.h"

namespace txs {
namespace {

constexpr char kFormName[] = "FProjectOpen";
constexpr long kAllTypes = -1;
constexpr long kUnreachableText = 1941;
constexpr long kNoProjectText = 1945;
constexpr int kMinListWidthDip = 440;
constexpr int kMaxListWidthDip = 900;
constexpr int kListHeightDip = 220;

}  // namespace

FProjectOpen::FProjectOpen(wxWindow* parent, Application& application, HelpViewer* help)
    : wxDialog(parent, wxID_ANY, wxEmptyString, wxDefaultPosition, wxDefaultSize,
               wxDEFAULT_DIALOG_STYLE | wxRESIZE_BORDER, kFormName),
      application_(application) {
  MakeControls();
  FillList();
  auto* const content = new wxBoxSizer(wxVERTICAL);
  content->Add(list_, wxSizerFlags(1).Expand());
  content->Add(away_, wxSizerFlags().Expand().Border(wxTOP));
  auto* const buttons = new wxStdDialogButtonSizer;
  buttons->AddButton(open_);
  buttons->AddButton(cancel_);
  FinishDialog(*this, content, buttons);
  RestoreWindow(*this, application_.platform.registry, kFormName);
  CentreOnParent();

  BindEvents();
  if (help != nullptr) OfferHelp(*this, application_, *help);
  if (projects_.rows.empty()) {
    cancel_->SetFocus();
  } else {
    list_->SetFocus();
  }
}

std::string FProjectOpen::ProjectName() {
  ShowModal();
  KeepWindow(*this, application_.platform.registry, kFormName, /*columns=*/{});
  return choice_.ProjectName();
}

void FProjectOpen::MakeControls() {
  FormCaptions captions(*this, 600);
  list_ = new wxListView(this, wxID_ANY, wxDefaultPosition, wxDefaultSize,
                         wxLC_REPORT | wxLC_SINGLE_SEL | wxBORDER_SIMPLE);
  list_->SetName("lvwRegisteredProjects");
  AddColumn(*list_, captions, 610);
  AddColumn(*list_, captions, 611);
  AddColumn(*list_, captions, 612);
  KeepLastColumnStretched(*list_);
  hint_ = new wxStaticText(RowArea(*list_), wxID_ANY, wxEmptyString, wxDefaultPosition,
                           wxDefaultSize, wxALIGN_CENTRE_HORIZONTAL);
  hint_->SetName("lblNoProjects");
  hint_->GetParent()->Bind(wxEVT_SIZE, [this](wxSizeEvent& event) {
    event.Skip();
    hint_->CentreOnParent();
  });
  captions.Add(*hint_, kNoProjectText);
  away_ = new wxStaticText(this, wxID_ANY, wxEmptyString);
  away_->SetName("lblUnreachable");
  open_ = &AddDialogButton(*this, captions, wxID_OK, "cmdOpen", 13);
  cancel_ = &AddDialogButton(*this, captions, wxID_CANCEL, "cmdCancel", 11);
  LoadCaptions(captions, application_.texts);
  SetAccessibleName(*list_, GetTitle());
}

void FProjectOpen::FillList() {
  FillRegisteredProjects(application_.platform, kAllTypes, projects_);
  for (const ProjectRow& row : projects_.rows) {
    const long at = list_->InsertItem(list_->GetItemCount(), ToWx(row.name));
    list_->SetItem(at, 1, ToWx(row.directory));
    list_->SetItem(at, 2, ToWx(row.type));
  }
  const std::size_t away = projects_.unreachable;
  hint_->Show(projects_.rows.empty() && away == 0);
  away_->SetLabel(ToWxLines(application_.texts.GetText(kUnreachableText, {std::to_string(away)})));
  away_->Show(away > 0);
  open_->Enable(choice_.OpenEnabled());

  const int width =
      std::clamp(FitColumns(*list_), FromDIP(kMinListWidthDip), FromDIP(kMaxListWidthDip));
  list_->SetMinSize(wxSize(width, FromDIP(kListHeightDip)));
}

void FProjectOpen::BindEvents() {
  list_->Bind(wxEVT_LIST_ITEM_SELECTED, [this](wxListEvent&) { TakeSelection(); });
  list_->Bind(wxEVT_LIST_ITEM_DESELECTED, [this](wxListEvent&) { TakeSelection(); });
  list_->Bind(wxEVT_LIST_ITEM_ACTIVATED, [this](wxListEvent&) {
    TakeSelection();
    if (choice_.OpenEnabled()) EndModal(wxID_OK);
  });
  list_->Bind(wxEVT_KEY_DOWN, &FProjectOpen::HandleListKey, this);
  TipCutOffTexts(*list_);
  cancel_->Bind(wxEVT_BUTTON, [this](wxCommandEvent& event) {
    choice_.Cancel();
    event.Skip();
  });
  // The Escape key presses Cancel, so only the title bar comes here.
  Bind(wxEVT_CLOSE_WINDOW, [this](wxCloseEvent& event) {
    choice_.CloseByTitleBar();
    event.Skip();
  });
}

void FProjectOpen::HandleListKey(wxKeyEvent& event) {
  const int key = event.GetKeyCode();
  const bool is_arrow =
      key == WXK_DOWN || key == WXK_UP || key == WXK_NUMPAD_DOWN || key == WXK_NUMPAD_UP;
  if (!is_arrow || list_->IsEmpty() || list_->GetFirstSelected() != wxNOT_FOUND) {
    event.Skip();
    return;
  }
  list_->Select(std::max(list_->GetFocusedItem(), 0L));
}

void FProjectOpen::TakeSelection() {
  choice_.ClickRow(projects_, static_cast<int>(list_->GetFirstSelected()));
  open_->Enable(choice_.OpenEnabled());
}

}  // namespace txs
