#include "ui/step_functions_page.h"

#include <wx/sizer.h>

#include "projects/open_project.h"

namespace txs {
namespace {

constexpr long kChoose = 1301;
constexpr long kNothing = 1302;
constexpr long kDaoWorkspaces = 1303;
constexpr long kAdo = 1304;
constexpr long kJet = 1305;
constexpr long kOdbc = 1306;

}  // namespace

StepFunctionsPage::StepFunctionsPage(wxWindow* parent, FormParts& parts)
    : wxPanel(parent),
      parts_(parts),
      choose_(parts.AddLabel(this, kChoose)),
      nothing_(parts.AddLabel(this, kNothing)),
      dao_frame_(parts.AddFrame(this, "fraDAO", kDaoWorkspaces)),
      jet_(parts.AddCheckBox(dao_frame_, "chkVB5dbUseJet", kJet,
                             [&parts](bool checked) { parts.Presenter().SetUseJet(checked); })),
      odbc_(parts.AddCheckBox(dao_frame_, "chkVB5dbUseODBC", kOdbc,
                              [&parts](bool checked) { parts.Presenter().SetUseOdbc(checked); })),
      ado_(parts.AddCheckBox(this, "chkADO", kAdo, [](bool) {})) {
  choose_->SetName("lblChooseFunctions");
  nothing_->SetName("lblNoFunctions");
  auto* const dao = new wxStaticBoxSizer(dao_frame_, wxVERTICAL);
  dao->Add(jet_, wxSizerFlags().Border(wxALL, FromDIP(8)));
  dao->Add(odbc_, wxSizerFlags().Border(wxLEFT | wxRIGHT | wxBOTTOM, FromDIP(8)));
  auto* const rows = new wxBoxSizer(wxVERTICAL);
  rows->Add(choose_);
  rows->Add(nothing_);
  rows->Add(dao, wxSizerFlags().Expand().Border(wxTOP, FromDIP(12)));
  rows->Add(ado_, wxSizerFlags().Border(wxTOP, FromDIP(12)));
  auto* const outer = new wxBoxSizer(wxVERTICAL);
  outer->Add(rows, wxSizerFlags().Expand().Border(wxALL, FromDIP(12)));
  SetSizer(outer);
}

wxWindow* StepFunctionsPage::FirstControl() const {
  return jet_->IsEnabled() && dao_frame_->IsShown() ? jet_ : nullptr;
}

void StepFunctionsPage::ShowDocument() {
  const StepSettings& steps = parts_.App().document.steps;
  const FunctionFrames frames = FramesOf(steps.designer);
  choose_->Show(!frames.nothing);
  nothing_->Show(frames.nothing);
  dao_frame_->Show(frames.dao);
  jet_->Show(frames.dao);
  odbc_->Show(frames.dao);
  ado_->Show(frames.ado);
  const bool enabled = TypeDependentControlsEnabled(parts_.App().project.type);
  jet_->Enable(enabled);
  odbc_->Enable(enabled);
  // The setup engine cannot install it.
  ado_->Disable();
  jet_->SetValue(steps.use_jet);
  odbc_->SetValue(steps.use_odbc);
  Layout();
}

}  // namespace txs
