#include "ui/state_scan_form.h"

#include "ui/wx_text.h"

namespace txs {
namespace {

constexpr long kTextTitle = 700;
constexpr long kTextState = 701;
constexpr long kTextFile = 702;
constexpr long kTextCount = 703;
constexpr long kTextFailed = 724;

// Device-independent pixels.
constexpr int kGap = 8;
constexpr int kCountWidth = 60;

// Lines stand in the order of their ids.
std::size_t IndexOf(ScanStage stage) {
  return static_cast<std::size_t>(stage) - static_cast<std::size_t>(ScanStage::kStudioProject);
}

}  // namespace

FStateScan::FStateScan(wxWindow* parent, Application& application)
    : StateForm(parent, application, kTextTitle, kTextFailed) {
  AddStages(kTextState, {static_cast<long>(ScanStage::kStudioProject),
                         static_cast<long>(ScanStage::kVisualBasic)});

  auto* const figures = new wxFlexGridSizer(/*cols=*/2, FromDIP(wxSize(kGap, kGap)));
  figures->AddGrowableCol(1);
  figures->Add(MakeHeading(kTextFile));
  figures->Add(MakeFileLabel(), wxSizerFlags().Expand());
  figures->Add(MakeHeading(kTextCount));
  wxStaticText* const count = MakeValueLabel("lblCount", FromDIP(kCountWidth));
  figures->Add(count, wxSizerFlags().Expand());
  count_.emplace(*count);
  AddRow(figures);

  runtime_setup_ = MakeValueLabel("lblUseRuntimeSetup", /*least_width=*/0);
  auto* const note = new wxBoxSizer(wxHORIZONTAL);
  note->Add(runtime_setup_, wxSizerFlags(1));
  AddRow(note);
  FinishLayout();
}

void FStateScan::Begin(bool use_runtime_setup, const std::string& runtime_setup_note) {
  ShowLine(*runtime_setup_, ToWx(runtime_setup_note), /*bold=*/!use_runtime_setup);
  missing_.clear();
  ShowCount(0);
  BeginRun();
}

void FStateScan::StageStarted(ScanStage stage) { StartStage(IndexOf(stage)); }

void FStateScan::StageCaption(ScanStage stage, const std::string& caption) {
  SetStageCaption(IndexOf(stage), caption);
}

void FStateScan::StageEnded(ScanStage stage, bool succeeded) {
  EndStage(IndexOf(stage), succeeded);
}

void FStateScan::ShowCount(std::size_t rows) {
  count_->Set(std::to_string(rows));
  PaintSoon();
}

void FStateScan::ShowReport(const RunReport& report) {
  RunReport whole = report;
  if (whole.missing.empty()) whole.missing = missing_;
  ListReport(whole);
}

void FStateScan::WaitUntilClosed() {
  if (!ListsReport()) ShowReport({});
  WaitForOk();
}

bool FStateScan::ShowLateParts() {
  const bool needs_room = count_->Show();
  return StateForm::ShowLateParts() || needs_room;
}

}  // namespace txs
