#include "ui/options_form.h"

#include <wx/button.h>
#include <wx/sizer.h>
#include <wx/statbox.h>

#include <algorithm>

#include "environment/installation.h"
#include "ui/clipboard.h"
#include "ui/dialog_parts.h"
#include "ui/form_captions.h"
#include "ui/label_for.h"
#include "ui/remembered_window.h"
#include "ui/wx_text.h"

namespace txs {
namespace {

constexpr char kFormName[] = "FOptions";
constexpr long kOptionNotWritten = 1942;
constexpr int kGapDip = 8;
constexpr int kMinListWidthDip = 460;
constexpr int kMaxListWidthDip = 900;
constexpr int kListHeightDip = 240;

}  // namespace

FOptions::FOptions(wxWindow* parent, Application& application, HelpViewer& help)
    : wxDialog(parent, wxID_ANY, wxEmptyString, wxDefaultPosition, wxDefaultSize,
               wxDEFAULT_DIALOG_STYLE | wxRESIZE_BORDER, kFormName),
      application_(application) {
  FormCaptions captions(*this, 800);
  const int gap = FromDIP(kGapDip);

  auto* const list_frame = new wxStaticBoxSizer(wxVERTICAL, this);
  list_frame->GetStaticBox()->SetName("fraVariables");
  captions.Add(*list_frame->GetStaticBox(), 801);
  variables_ = new wxListView(list_frame->GetStaticBox(), wxID_ANY, wxDefaultPosition,
                              wxDefaultSize, wxLC_REPORT | wxLC_SINGLE_SEL | wxBORDER_SIMPLE);
  variables_->SetName("lvwVariables");
  AddColumn(*variables_, captions, 810);
  AddColumn(*variables_, captions, 811);
  KeepLastColumnStretched(*variables_);
  list_frame->Add(variables_, wxSizerFlags(1).Expand().Border(wxALL, gap));
  variable_ = new wxTextCtrl(list_frame->GetStaticBox(), wxID_ANY);
  variable_->SetName("txtVariable");
  variable_->Hide();
  list_frame->Add(variable_, wxSizerFlags().Expand().Border(wxLEFT | wxRIGHT | wxBOTTOM, gap));

  auto* const option_frame = new wxStaticBoxSizer(wxVERTICAL, this);
  option_frame->GetStaticBox()->SetName("fraOptions");
  captions.Add(*option_frame->GetStaticBox(), 802);
  use_runtime_setup_ = new wxCheckBox(option_frame->GetStaticBox(), wxID_ANY, wxEmptyString);
  use_runtime_setup_->SetName("chkUseRuntimeSetup");
  captions.Add(*use_runtime_setup_, 803);
  option_frame->Add(use_runtime_setup_, wxSizerFlags().Border(wxALL, gap));

  auto* const buttons = new wxStdDialogButtonSizer;
  buttons->AddButton(&AddDialogButton(*this, captions, wxID_OK, "cmdOK", 10));
  buttons->AddButton(&AddDialogButton(*this, captions, wxID_CANCEL, "cmdCancel", 11));
  buttons->AddButton(&AddDialogButton(*this, captions, wxID_HELP, "cmdHelp", 12));
  LoadCaptions(captions, application.texts);

  use_runtime_setup_->SetValue(application.use_runtime_setup);
  SetAccessibleName(*variables_, list_frame->GetStaticBox()->GetLabelText());
  FillVariables();
  auto* const content = new wxBoxSizer(wxVERTICAL);
  content->Add(list_frame, wxSizerFlags(1).Expand());
  content->AddSpacer(gap);
  content->Add(option_frame, wxSizerFlags().Expand());
  FinishDialog(*this, content, buttons);
  RestoreWindow(*this, application_.platform.registry, kFormName);
  CentreOnParent();
  BindEvents();
  OfferHelp(*this, application_, help);
  use_runtime_setup_->SetFocus();
}

int FOptions::ShowModal() {
  const int result = wxDialog::ShowModal();
  KeepWindow(*this, application_.platform.registry, kFormName, /*columns=*/{});
  return result;
}

void FOptions::FillVariables() {
  for (const PathVariable& variable : application_.document.path_variables) {
    const long at = variables_->InsertItem(variables_->GetItemCount(), ToWx(variable.name));
    variables_->SetItem(at, 1, ToWx(variable.value));
  }
  const int width =
      std::clamp(FitColumns(*variables_), FromDIP(kMinListWidthDip), FromDIP(kMaxListWidthDip));
  variables_->SetMinSize(wxSize(width, FromDIP(kListHeightDip)));
}

void FOptions::BindEvents() {
  TipCutOffTexts(*variables_);
  // The list is for viewing: a double click does nothing.
  variables_->Bind(wxEVT_KEY_DOWN, &FOptions::HandleListKey, this);
  variable_->Bind(wxEVT_KILL_FOCUS, [this](wxFocusEvent& event) {
    event.Skip();
    variable_->Hide();
  });
  Bind(
      wxEVT_BUTTON,
      [this](wxCommandEvent&) {
        if (StoreOption()) EndModal(wxID_OK);
      },
      wxID_OK);
}

void FOptions::HandleListKey(wxKeyEvent& event) {
  const int key = event.GetKeyCode();
  if ((key == WXK_RETURN || key == WXK_NUMPAD_ENTER) && !event.HasAnyModifiers()) {
    // The list would take the key for a double click.
    if (StoreOption()) EndModal(wxID_OK);
  } else if (event.GetModifiers() == wxMOD_CONTROL && (key == 'C' || key == WXK_INSERT)) {
    CopyValue();
  } else {
    event.Skip();
  }
}

bool FOptions::StoreOption() {
  try {
    StoreUseRuntimeSetup(application_, use_runtime_setup_->GetValue());
    return true;
  } catch (const RuntimeError& error) {
    ShowError(application_, kOptionNotWritten, {kWizardKey}, error);
    return false;
  }
}

void FOptions::CopyValue() {
  const long row = variables_->GetFirstSelected();
  if (row == wxNOT_FOUND) return;
  CopyToClipboard(variables_->GetItemText(row, 1));
}

}  // namespace txs
