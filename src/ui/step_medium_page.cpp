#include "ui/step_medium_page.h"

#include <wx/sizer.h>

#include <optional>
#include <string>

#include "ui/file_dialogs.h"
#include "ui/wx_text.h"

namespace txs {
namespace {

constexpr long kBrowse = 1106;
constexpr long kMedium = 1501;
constexpr long kDirectory = 1502;
constexpr long kFirstSize = 1503;
constexpr long kFiles = 1505;
constexpr long kCount = 1506;
constexpr long kSize = 1507;
constexpr long kBytes = 1508;
constexpr long kDisksNeeded = 1509;
constexpr long kApproximately = 1510;
constexpr long kCreate = 1511;
constexpr long kOptimisation = 1512;
constexpr long kMinimalMdac = 1513;
constexpr long kServicePack = 1514;

}  // namespace

StepMediumPage::StepMediumPage(wxWindow* parent, FormParts& parts)
    : wxPanel(parent), parts_(parts) {
  auto* const rows = new wxBoxSizer(wxVERTICAL);
  rows->Add(AddMedium(), wxSizerFlags().Expand());
  rows->Add(AddFigures(), wxSizerFlags().Expand().Border(wxTOP, FromDIP(12)));
  rows->Add(AddOptimisation(), wxSizerFlags().Expand().Border(wxTOP, FromDIP(12)));
  rows->AddStretchSpacer();
  wxButton* const create =
      parts.AddButton(this, "cmdCreateSetup", kCreate, [&parts] { parts.Presenter().Create(); });
  rows->Add(create, wxSizerFlags().Right().Border(wxTOP, FromDIP(12)));
  auto* const outer = new wxBoxSizer(wxVERTICAL);
  outer->Add(rows, wxSizerFlags(1).Expand().Border(wxALL, FromDIP(12)));
  SetSizer(outer);
}

wxSizer* StepMediumPage::AddMedium() {
  wxStaticBox* const frame = parts_.AddFrame(this, "fraMedium", kMedium);
  auto* const medium = new wxStaticBoxSizer(frame, wxVERTICAL);
  for (std::size_t index = 0; index < sizes_.size(); ++index) {
    auto* const option = new wxRadioButton(frame, wxID_ANY, wxString(), wxDefaultPosition,
                                           wxDefaultSize, index == 0 ? wxRB_GROUP : 0);
    option->SetName("optDiskSize" + std::to_string(index));
    option->Bind(wxEVT_RADIOBUTTON, [this, index](wxCommandEvent&) {
      parts_.Presenter().SetDiskSize(static_cast<long>(index));
    });
    parts_.Captions().Add(*option, kFirstSize + static_cast<long>(index));
    medium->Add(option, wxSizerFlags().Border(wxLEFT | wxRIGHT | wxTOP, FromDIP(8)));
    sizes_.at(index) = option;
  }
  wxStaticText* const label = parts_.AddLabel(frame, kDirectory);
  directory_ = parts_.AddBox(frame, "txtSetupDirectory");
  parts_.Tie(label, directory_);
  wxButton* const browse =
      parts_.AddButton(frame, "cmdBrowseSetupDirectory", kBrowse, [this] { BrowseDirectory(); });
  auto* const row = new wxBoxSizer(wxHORIZONTAL);
  row->Add(label, wxSizerFlags().CentreVertical());
  row->Add(directory_, wxSizerFlags(1).CentreVertical().Border(wxLEFT, FromDIP(8)));
  row->Add(browse, wxSizerFlags().CentreVertical().Border(wxLEFT, FromDIP(8)));
  medium->Add(row, wxSizerFlags().Expand().Border(wxALL, FromDIP(8)));
  return medium;
}

wxSizer* StepMediumPage::AddFigures() {
  wxStaticBox* const frame = parts_.AddFrame(this, "fraFiles", kFiles);
  auto* const figures = new wxStaticBoxSizer(frame, wxVERTICAL);
  // Label, number, unit.
  auto* const grid = new wxFlexGridSizer(3, wxSize(FromDIP(8), FromDIP(4)));
  const auto add_figure = [&](long label_id, const char* name) {
    grid->Add(parts_.AddLabel(frame, label_id));
    auto* const number = new wxStaticText(frame, wxID_ANY, wxString(), wxDefaultPosition,
                                          wxDefaultSize, wxALIGN_RIGHT);
    number->SetName(name);
    number->SetMinSize(wxSize(number->GetTextExtent("0000000000").GetWidth(), -1));
    grid->Add(number, wxSizerFlags().Expand());
    return number;
  };
  count_ = add_figure(kCount, "lblFileCount");
  grid->AddSpacer(0);
  bytes_ = add_figure(kSize, "lblTotalBytes");
  grid->Add(parts_.AddLabel(frame, kBytes));
  disks_ = add_figure(kDisksNeeded, "lblDisksNeeded");
  approximately_ = parts_.AddLabel(frame, kApproximately);
  approximately_->SetName("lblApproximately");
  grid->Add(approximately_);
  figures->Add(grid, wxSizerFlags().Border(wxALL, FromDIP(8)));
  return figures;
}

wxSizer* StepMediumPage::AddOptimisation() {
  wxStaticBox* const frame = parts_.AddFrame(this, "fraOptimisation", kOptimisation);
  auto* const optimisation = new wxStaticBoxSizer(frame, wxVERTICAL);
  minimal_mdac_ = parts_.AddCheckBox(frame, "chkMinimalMDAC", kMinimalMdac, [this](bool checked) {
    parts_.Presenter().SetMinimalMdac(checked);
  });
  service_pack_ = parts_.AddCheckBox(frame, "chkServicePack", kServicePack, [this](bool checked) {
    parts_.Presenter().SetServicePack(checked);
  });
  optimisation->Add(minimal_mdac_, wxSizerFlags().Border(wxALL, FromDIP(8)));
  optimisation->Add(service_pack_, wxSizerFlags().Border(wxLEFT | wxRIGHT | wxBOTTOM, FromDIP(8)));
  return optimisation;
}

wxWindow* StepMediumPage::FirstControl() const {
  return sizes_[1]->GetValue() ? sizes_[1] : sizes_[0];
}

void StepMediumPage::ShowDocument() {
  const StepSettings& steps = parts_.App().document.steps;
  sizes_.at(steps.disk_size_index == 1 ? 1 : 0)->SetValue(true);
  minimal_mdac_->SetValue(steps.minimal_mdac);
  service_pack_->SetValue(steps.service_pack);
  ShowFigures();
}

void StepMediumPage::ShowFigures() {
  const StepSettings& steps = parts_.App().document.steps;
  count_->SetLabel(ToWx(steps.file_count_label));
  bytes_->SetLabel(ToWx(steps.total_bytes_label));
  disks_->SetLabel(ToWx(steps.disks_needed_label));
  approximately_->Show(steps.disks_needed_is_estimate);
  // A sum may need more room than the one before.
  Layout();
}

void StepMediumPage::BrowseDirectory() {
  const std::optional<std::string> chosen =
      AskForSetupDirectory(this, parts_.App(), FromWx(directory_->GetValue()));
  if (chosen) directory_->SetValue(ToWx(*chosen));
}

}  // namespace txs
