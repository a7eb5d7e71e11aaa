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

  auto* const grid = new wxFlexGridSizer(/*cols=*/2, FromDIP(wxSize(kGap, kGap)));
  grid->AddGrowableCol(1);
  grid->AddSpacer(0);
  action_ = MakeValueLabel("lblAction", /*least_width=*/0);
  grid->Add(action_, wxSizerFlags().Expand());
  grid->Add(MakeHeading(kTextFile));
  grid->Add(MakeFileLabel(), wxSizerFlags().Expand());
  AddBar(*grid, count_, kTextCount, "picCount", "lblCountPercent");
  AddBar(*grid, size_, kTextSize, "picSize", "lblSizePercent");
  AddRow(grid);
  FinishLayout();
}

void FStateCreate::AddBar(wxSizer& grid, Bar& bar, long heading_id, const char* bar_name,
                          const char* text_name) {
  grid.Add(MakeHeading(heading_id), wxSizerFlags().CenterVertical());
  bar.picture = new ProgressBar(this, bar_name);
  SetAccessibleName(*bar.picture, ToWx(Texts().GetText(heading_id)));
  wxStaticText* const text = MakeValueLabel(text_name, FromDIP(kBarTextWidth));
  bar.text.emplace(*text);
  auto* const row = new wxBoxSizer(wxHORIZONTAL);
  row->Add(bar.picture, wxSizerFlags(1).CenterVertical());
  row->Add(text, wxSizerFlags().CenterVertical().Border(wxLEFT, FromDIP(kGap)));
  grid.Add(row, wxSizerFlags().Expand());
}

bool FStateCreate::Bar::Show() {
  picture->Fill(filled);
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
  count_.filled = FilledShare(progress.count_done, progress.count_total);
  count_.text->Set(progress.count_text);
  size_.filled = FilledShare(progress.bytes_done, progress.bytes_total);
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
