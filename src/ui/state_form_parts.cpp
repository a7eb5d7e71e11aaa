#include "ui/state_form_parts.h"

#include "ui/form_pictures.h"
#include "ui/label_for.h"
#include "ui/wx_text.h"

namespace txs {
namespace {

constexpr long kTextRunning = 1962;
constexpr long kTextDone = 1963;
constexpr long kTextError = 1964;

// Device-independent pixels.
constexpr int kGap = 8;
constexpr int kSmallGap = 4;

constexpr std::chrono::milliseconds kPaintInterval(25);
// Painting may take this much, and one part in so many of the run's time.
constexpr std::chrono::milliseconds kPaintAllowance(50);
constexpr int kPaintShare = 10;

void SetWeight(wxWindow& window, bool bold) {
  wxFont font = window.GetFont();
  font.SetWeight(bold ? wxFONTWEIGHT_BOLD : wxFONTWEIGHT_NORMAL);
  window.SetFont(font);
}

// What the label's text takes in its font. The toolkit's own best size still knows the font before
// the last change as long as the window is hidden.
wxSize RoomFor(const wxStaticText& label) {
  const wxString text = label.GetLabelText();
  // An empty line is as high as one with text.
  wxSize room = label.GetTextExtent(text.empty() ? wxString("A") : text);
  if (text.empty()) room.SetWidth(0);
  // Windows puts a pixel below the text, for the sake of its base line.
  room.IncTo(wxSize(0, label.GetBestSize().GetHeight()));
  // Rounding, and letters that lean out.
  return room + label.FromDIP(wxSize(2, 0));
}

}  // namespace

void ShowLine(wxStaticText& label, const wxString& text, bool bold) {
  SetWeight(label, bold);
  label.SetLabelText(text);
  label.SetMinSize(RoomFor(label));
}

StageLine::StageLine(wxWindow* parent, wxSizer& column, std::size_t index, const TextService& texts)
    : texts_(texts),
      picture_(new wxStaticBitmap(parent, wxID_ANY, StageRunningPicture())),
      label_(new wxStaticText(parent, wxID_ANY, wxString(), wxDefaultPosition, wxDefaultSize,
                              wxST_NO_AUTORESIZE)) {
  picture_->SetName("imgState" + std::to_string(index));
  picture_->Hide();
  label_->SetName("lblStateInfo" + std::to_string(index));
  auto* const row = new wxBoxSizer(wxHORIZONTAL);
  row->Add(picture_, wxSizerFlags().CenterVertical().ReserveSpaceEvenIfHidden());
  row->Add(label_, wxSizerFlags(1).CenterVertical().Border(wxLEFT, parent->FromDIP(kGap)));
  const int gap = parent->FromDIP(kSmallGap);
  column.Add(row, wxSizerFlags().Expand().Border(wxALL, gap));
}

void StageLine::ReserveRoom() {
  caption_ = label_->GetLabel();
  SetWeight(*label_, /*bold=*/true);
  label_->SetMinSize(RoomFor(*label_));
  SetWeight(*label_, /*bold=*/false);
}

void StageLine::ShowPicture(const wxBitmapBundle& picture, long text_id) {
  const wxString meaning = ToWx(texts_.GetText(text_id));
  picture_->SetBitmap(picture);
  picture_->SetToolTip(meaning);
  SetAccessibleName(*picture_, meaning);
  picture_->Show();
}

void StageLine::Clear() {
  picture_->Hide();
  SetWeight(*label_, /*bold=*/false);
  label_->SetLabel(caption_);
}

void StageLine::Start() {
  ShowPicture(StageRunningPicture(), kTextRunning);
  SetWeight(*label_, /*bold=*/true);
}

void StageLine::SetCaption(const std::string& caption) { label_->SetLabelText(ToWx(caption)); }

void StageLine::End(bool succeeded) {
  ShowPicture(succeeded ? StageDonePicture() : StageErrorPicture(),
              succeeded ? kTextDone : kTextError);
  SetWeight(*label_, /*bold=*/false);
  label_->SetLabel(caption_);
}

bool LateText::Show() {
  if (!next_) return false;
  const wxString text = ToWx(*next_);
  next_.reset();
  if (label_.GetLabelText() == text) return false;
  label_.SetLabelText(text);
  if (label_.IsEllipsized()) {
    label_.SetToolTip(text);
    return false;
  }
  const int needed = RoomFor(label_).GetWidth();
  if (needed <= label_.GetMinWidth()) return false;
  label_.SetMinSize(wxSize(needed, label_.GetMinHeight()));
  return true;
}

void PaintPace::Start() {
  start_ = Clock::now();
  last_ = {};
  spent_ = {};
}

bool PaintPace::IsDue() const {
  const Clock::time_point now = Clock::now();
  return now - last_ >= kPaintInterval || spent_ <= kPaintAllowance + (now - start_) / kPaintShare;
}

}  // namespace txs
