#include "ui/state_create_form.h"

#include "ui/label_for.h"
#include "ui/take_note_form.h"
#include "ui/wx_text.h"

namespace txs {
namespace {

constexpr long kTextTitle = 400;
constexpr long kTextState = 401;
constexpr long kTextFile = 402;
constexpr long kTextCount = 403;
constexpr long kTextSize = 404;
constexpr long kTextFailed = 424;

// Device-independent pixels.
constexpr int kGap = 8;
constexpr int kBarTextWidth = 90;

// Bars have this many steps whatever they count: a gauge's own range ends at 2^31.
constexpr int kBarSteps = 10000;

// All of them only when everything is done.
int FilledSteps(std::uint64_t done, std::uint64_t total) {
  if (total == 0) return 0;
  if (done >= total) return kBarSteps;
  return static_cast<int>(static_cast<double>(done) / static_cast<double>(total) * (kBarSteps - 1));
}

// Lines stand in the order of their ids.
std::size_t IndexOf(CreateStage stage) {
  return static_cast<std::size_t>(stage) - static_cast<std::size_t>(CreateStage::kDirectories);
}

}  // namespace

FStateCreate::FStateCreate(wxWindow* parent, Application& application, HelpViewer& help)
    : StateForm(parent, application, kTextTitle, kTextFailed),
      application_(application),
      help_(help) {
  AddStages(
      kTextState,
      {static_cast<long>(CreateStage::kDirectories), static_cast<long>(CreateStage::kCompress),
       static_cast<long>(CreateStage::kSetupKit), static_cast<long>(CreateStage::kDistribute),
       static_cast<long>(CreateStage::kControlFile)});

  auto* const grid = new wxGridBagSizer(FromDIP(kGap), FromDIP(kGap));
  action_ = MakeValueLabel("lblAction", /*least_width=*/0);
  grid->Add(action_, wxGBPosition(0, 1), wxGBSpan(1, 2), wxEXPAND);
  grid->Add(MakeHeading(kTextFile), wxGBPosition(1, 0));
  grid->Add(MakeFileLabel(), wxGBPosition(1, 1), wxGBSpan(1, 2), wxEXPAND);
  AddBar(*grid, /*row=*/2, count_, kTextCount, "picCount", "lblCountPercent");
  AddBar(*grid, /*row=*/3, size_, kTextSize, "picSize", "lblSizePercent");
  grid->AddGrowableCol(1);
  AddRow(grid);
  FinishLayout();
}

void FStateCreate::AddBar(wxGridBagSizer& grid, int row, Bar& bar, long heading_id,
                          const char* bar_name, const char* text_name) {
  grid.Add(MakeHeading(heading_id), wxGBPosition(row, 0), wxDefaultSpan, wxALIGN_CENTER_VERTICAL);
  bar.gauge = new wxGauge(this, wxID_ANY, kBarSteps, wxDefaultPosition, wxDefaultSize,
                          wxGA_HORIZONTAL | wxGA_SMOOTH);
  bar.gauge->SetName(bar_name);
  SetAccessibleName(*bar.gauge, ToWx(Texts().GetText(heading_id)));
  grid.Add(bar.gauge, wxGBPosition(row, 1), wxDefaultSpan, wxEXPAND | wxALIGN_CENTER_VERTICAL);
  wxStaticText* const text = MakeValueLabel(text_name, FromDIP(kBarTextWidth));
  grid.Add(text, wxGBPosition(row, 2), wxDefaultSpan, wxEXPAND | wxALIGN_CENTER_VERTICAL);
  bar.text.emplace(*text);
}

bool FStateCreate::Bar::Show() {
  if (gauge->GetValue() != filled) gauge->SetValue(filled);
  return text->Show();
}

void FStateCreate::Begin() {
  action_->SetLabel(wxString());
  ShowProgress(MakeCreateProgress(/*count_done=*/0, /*count_total=*/0, /*bytes_done=*/0,
                                  /*bytes_total=*/0));
  BeginRun();
}

void FStateCreate::StageStarted(CreateStage stage) { StartStage(IndexOf(stage)); }

void FStateCreate::StageEnded(CreateStage stage, bool succeeded) {
  EndStage(IndexOf(stage), succeeded);
}

void FStateCreate::ShowAction(const std::string& text) {
  action_->SetLabelText(ToWx(text));
  PaintSoon();
}

void FStateCreate::ShowProgress(const CreateProgress& progress) {
  count_.filled = FilledSteps(progress.count_done, progress.count_total);
  count_.text->Set(progress.count_text);
  size_.filled = FilledSteps(progress.bytes_done, progress.bytes_total);
  size_.text->Set(progress.size_text);
  PaintSoon();
}

void FStateCreate::End(bool succeeded, const std::string& result_line) {
  // After a failure it says together with the file where the run stopped.
  if (succeeded) action_->SetLabel(wxString());
  EndRun(succeeded, result_line);
}

void FStateCreate::ShowTakeNote() {
  FTakeNote note(this, application_, help_);
  note.ShowModal();
}

bool FStateCreate::ShowLateParts() {
  bool needs_room = count_.Show();
  needs_room = size_.Show() || needs_room;
  return StateForm::ShowLateParts() || needs_room;
}

}  // namespace txs
