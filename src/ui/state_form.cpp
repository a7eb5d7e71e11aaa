#include "ui/state_form.h"

#include <wx/display.h>
#include <wx/statbox.h>

#include <algorithm>
#include <utility>

#include "ui/clipboard.h"
#include "ui/dialog_parts.h"
#include "ui/form_pictures.h"
#include "ui/label_for.h"
#include "ui/wx_text.h"

namespace txs {
namespace {

constexpr long kTextOk = 10;
constexpr long kTextCancel = 11;
constexpr long kTextCopy = 1960;
constexpr long kTextReport = 1961;
constexpr long kTextDone = 1963;
constexpr long kTextError = 1964;

// Device-independent pixels.
constexpr int kGap = 8;
constexpr int kSmallGap = 4;
constexpr int kFileWidth = 440;
constexpr int kReportHeight = 150;

// The toolkit lays out and paints anew at most this often.
constexpr std::chrono::milliseconds kFrame(20);

void YieldOnce() {
  if (wxEventLoopBase* const active = wxEventLoopBase::GetActive()) {
    active->YieldFor(wxEVT_CATEGORY_ALL);
    return;
  }
  wxEventLoop loop;
  const wxEventLoopActivator activator(&loop);
  loop.YieldFor(wxEVT_CATEGORY_ALL);
}

// Sets back what it set, also when a handler leaves in another way.
class SetWhile {
 public:
  explicit SetWhile(bool& flag) : flag_(flag) { flag_ = true; }
  ~SetWhile() { flag_ = false; }
  SetWhile(const SetWhile&) = delete;
  SetWhile& operator=(const SetWhile&) = delete;

 private:
  bool& flag_;
};

}  // namespace

StateForm::StateForm(wxWindow* parent, const Application& application, long title_id,
                     long failed_id)
    : wxDialog(parent, wxID_ANY, wxString(), wxDefaultPosition, wxDefaultSize,
               wxDEFAULT_DIALOG_STYLE | wxRESIZE_BORDER),
      application_(application),
      failed_id_(failed_id),
      captions_(*this, title_id),
      column_(new wxBoxSizer(wxVERTICAL)) {
  SetIcons(ApplicationIcons());
  auto* const frame = new wxBoxSizer(wxVERTICAL);
  frame->Add(column_, wxSizerFlags(1).Expand().Border(wxALL, FromDIP(kGap)));
  SetSizer(frame);
  Bind(wxEVT_CLOSE_WINDOW, &StateForm::OnClose, this);
}

StateForm::~StateForm() {
  while (busy_ > 0) SetBusy(/*busy=*/false);
}

void StateForm::AddStages(long frame_id, const std::vector<long>& stage_ids) {
  auto* const lines = new wxStaticBoxSizer(wxVERTICAL, this);
  wxStaticBox* const box = lines->GetStaticBox();
  box->SetName("fraState");
  captions_.Add(*box, frame_id);
  stage_list_ = new wxPanel(box);
  stage_list_->SetName("picState");
  SetAccessibleName(*stage_list_, ToWx(Texts().GetText(frame_id)));
  auto* const rows = new wxBoxSizer(wxVERTICAL);
  for (std::size_t i = 0; i < stage_ids.size(); ++i) {
    stages_.emplace_back(stage_list_, *rows, i, Texts());
    captions_.Add(stages_.back().Label(), stage_ids[i]);
  }
  stage_list_->SetSizer(rows);
  lines->Add(stage_list_, wxSizerFlags().Expand());
  lines->AddSpacer(FromDIP(kSmallGap));
  column_->Add(lines, wxSizerFlags().Expand());
}

void StateForm::AddRow(wxSizer* row) {
  column_->Add(row, wxSizerFlags().Expand().Border(wxTOP, FromDIP(kGap)));
}

wxStaticText* StateForm::MakeHeading(long id) {
  auto* const heading = new wxStaticText(this, wxID_ANY, wxString());
  captions_.Add(*heading, id);
  return heading;
}

wxStaticText* StateForm::MakeFileLabel() {
  auto* const label = new wxStaticText(this, wxID_ANY, wxString(), wxDefaultPosition, wxDefaultSize,
                                       wxST_NO_AUTORESIZE | wxST_ELLIPSIZE_MIDDLE);
  label->SetName("lblFile");
  label->SetMinSize(wxSize(FromDIP(kFileWidth), label->GetBestSize().GetHeight()));
  file_.emplace(*label);
  return label;
}

wxStaticText* StateForm::MakeValueLabel(const char* name, int least_width) {
  auto* const label = new wxStaticText(this, wxID_ANY, wxString(), wxDefaultPosition, wxDefaultSize,
                                       wxST_NO_AUTORESIZE);
  label->SetName(name);
  label->SetMinSize(wxSize(least_width, label->GetBestSize().GetHeight()));
  return label;
}

void StateForm::FinishLayout() {
  AddResultLine();
  AddReport();
  AddButtons();
  LoadCaptions(captions_, Texts());
  for (StageLine& stage : stages_) stage.ReserveRoom();
  LabelFor(*report_label_, *report_);
  GrowToFit();
}

void StateForm::AddResultLine() {
  result_picture_ = new wxStaticBitmap(this, wxID_ANY, StageDonePicture());
  result_picture_->SetName("imgResult");
  result_picture_->Hide();
  result_label_ = MakeValueLabel("lblState", /*least_width=*/0);
  auto* const row = new wxBoxSizer(wxHORIZONTAL);
  row->Add(result_picture_, wxSizerFlags().CenterVertical().ReserveSpaceEvenIfHidden());
  row->Add(result_label_, wxSizerFlags(1).CenterVertical().Border(wxLEFT, FromDIP(kGap)));
  AddRow(row);
}

void StateForm::AddReport() {
  report_column_ = new wxBoxSizer(wxVERTICAL);
  report_label_ = new wxStaticText(this, wxID_ANY, wxString());
  report_label_->SetName("lblReport");
  captions_.Add(*report_label_, kTextReport);
  report_ = new wxTextCtrl(this, wxID_ANY, wxString(), wxDefaultPosition,
                           wxSize(-1, FromDIP(kReportHeight)), wxTE_MULTILINE | wxTE_READONLY);
  report_->SetName("txtReport");
  copy_ = new wxButton(this, wxID_ANY, wxString());
  copy_->SetName("cmdCopy");
  captions_.Add(*copy_, kTextCopy);
  copy_->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { CopyReport(); });
  report_column_->Add(report_label_);
  report_column_->Add(report_,
                      wxSizerFlags(1).Expand().Border(wxTOP | wxBOTTOM, FromDIP(kSmallGap)));
  report_column_->Add(copy_);
  column_->Add(report_column_, wxSizerFlags(1).Expand().Border(wxTOP, FromDIP(kGap)));
  column_->Hide(report_column_);
}

void StateForm::AddButtons() {
  ok_ = &AddDialogButton(*this, captions_, wxID_OK, "cmdOK", kTextOk);
  ok_->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { CloseWindow(); });
  cancel_ = &AddDialogButton(*this, captions_, wxID_CANCEL, "cmdCancel", kTextCancel);
  cancel_->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { cancel_pressed_ = true; });
  auto* const buttons = new wxStdDialogButtonSizer;
  buttons->AddButton(ok_);
  buttons->AddButton(cancel_);
  buttons->Realize();
  GetSizer()->Add(buttons,
                  wxSizerFlags().Expand().Border(wxLEFT | wxRIGHT | wxBOTTOM, FromDIP(kGap)));
}

void StateForm::BeginRun() {
  running_ = true;
  open_ = true;
  cancel_pressed_ = false;
  lists_report_ = false;
  for (StageLine& stage : stages_) stage.Clear();
  result_picture_->Hide();
  ShowLine(*result_label_, {}, /*bold=*/true);
  column_->Hide(report_column_);
  ShowFileName({});
  cancel_->Enable();
  ok_->Disable();
  GrowToFit();

  if (!IsShown()) {
    CentreOnParent();
    // Nobody may close the main form below the run, or start another one.
    others_disabled_ = std::make_unique<wxWindowDisabler>(this);
    Show();
  }
  Raise();
  // Not Cancel: an Enter too soon after a message, or one too many, would end the run.
  stage_list_->SetFocus();
  pace_.Start();
  Settle();
  LetWindowEventsRun();
}

void StateForm::EndRun(bool succeeded, const std::string& result_line) {
  running_ = false;
  if (succeeded) ShowFileName({});
  result_picture_->SetBitmap(succeeded ? StageDonePicture() : StageErrorPicture());
  SetAccessibleName(*result_picture_,
                    ToWx(application_.texts.GetText(succeeded ? kTextDone : kTextError)));
  result_picture_->Show();
  ShowLine(*result_label_, ToWx(result_line), /*bold=*/true);
  ok_->Enable();
  ok_->SetFocus();
  cancel_->Disable();
  GrowToFit();
  PaintNow();
}

void StateForm::StartStage(std::size_t index) {
  stages_.at(index).Start();
  PaintNow();
  Settle();
}

void StateForm::EndStage(std::size_t index, bool succeeded) {
  stages_.at(index).End(succeeded);
  PaintNow();
}

void StateForm::SetStageCaption(std::size_t index, const std::string& caption) {
  stages_.at(index).SetCaption(caption);
  PaintSoon();
}

void StateForm::ShowFileName(const std::string& file) {
  file_->Set(file);
  PaintSoon();
}

void StateForm::SetBusy(bool busy) {
  if (busy) {
    ++busy_;
    wxBeginBusyCursor();
  } else if (busy_ > 0) {
    --busy_;
    wxEndBusyCursor();
  }
}

void StateForm::LetWindowEventsRun() {
  PaintSoon();
  // Whatever an event does, the run below it goes on only when that event has been handled.
  if (yielding_) return;
  const SetWhile yielding(yielding_);
  YieldOnce();
  while (std::chrono::steady_clock::now() < settled_) {
    wxMilliSleep(1);
    YieldOnce();
  }
}

void StateForm::Settle() { settled_ = std::chrono::steady_clock::now() + kFrame; }

bool StateForm::ShowLateParts() { return file_->Show(); }

void StateForm::PaintNow() {
  pace_.Run([this] {
    if (ShowLateParts()) GrowToFit();
    Update();
  });
}

void StateForm::PaintSoon() {
  if (pace_.IsDue()) PaintNow();
}

void StateForm::GrowToFit() {
  const wxSize needed = GetSizer()->ComputeFittingWindowSize(this);
  // Only the report has a use for more height.
  SetSizeHints(needed, wxSize(wxDefaultCoord, lists_report_ ? wxDefaultCoord : needed.GetHeight()));
  wxRect place = GetRect();
  wxSize size = place.GetSize();
  size.IncTo(needed);
  if (!lists_report_) size.SetHeight(needed.GetHeight());
  if (size != place.GetSize()) SetSize(size);
  Layout();
  if (!IsShown()) return;

  // A window that grew stays on the screen.
  const wxRect screen = wxDisplay(this).GetClientArea();
  place = wxRect(GetPosition(), size);
  const wxPoint wanted(
      std::max(screen.x, std::min(place.x, screen.x + screen.width - place.width)),
      std::max(screen.y, std::min(place.y, screen.y + screen.height - place.height)));
  if (wanted != place.GetPosition()) Move(wanted);
}

void StateForm::ListReport(const RunReport& report) {
  if (report.IsEmpty()) return;
  report_->ChangeValue(ToWxLines(ReportText(report, application_.texts)));
  report_->SetInsertionPoint(0);
  lists_report_ = true;
  column_->Show(report_column_, /*show=*/true, /*recursive=*/true);
  GrowToFit();
  PaintNow();
}

void StateForm::CopyReport() { CopyToClipboard(report_->GetValue()); }

void StateForm::WaitForOk() {
  if (!open_) return;
  // The run ended without saying so; nobody could close the window.
  if (running_) EndRun(/*succeeded=*/false, Texts().GetText(failed_id_));
  wxEventLoop loop;
  waiting_loop_ = &loop;
  loop.Run();
  waiting_loop_ = nullptr;
}

void StateForm::CloseWindow() {
  if (running_ || !open_) return;
  open_ = false;
  // Before the window goes: the window system then gives the focus back to the main form.
  others_disabled_.reset();
  Hide();
  if (waiting_loop_ != nullptr) waiting_loop_->ScheduleExit();
}

void StateForm::OnClose(wxCloseEvent& event) {
  if (running_) {
    event.Veto();
    return;
  }
  CloseWindow();
}

}  // namespace txs
