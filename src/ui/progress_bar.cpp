#include "ui/progress_bar.h"

#include <wx/dcbuffer.h>
#include <wx/settings.h>

#include <algorithm>
#include <cmath>

namespace txs {
namespace {

// Device-independent pixels.
constexpr int kWidth = 200;
constexpr int kHeight = 14;

}  // namespace

double FilledShare(std::uint64_t done, std::uint64_t total) {
  if (total == 0) return 0;
  if (done >= total) return 1;
  // The quotient of two large numbers may round to 1.
  return std::min(static_cast<double>(done) / static_cast<double>(total), std::nextafter(1.0, 0.0));
}

ProgressBar::ProgressBar(wxWindow* parent, const char* name) {
  SetBackgroundStyle(wxBG_STYLE_PAINT);
  Create(parent, wxID_ANY, wxDefaultPosition, wxDefaultSize,
         wxBORDER_NONE | wxFULL_REPAINT_ON_RESIZE, name);
  SetInitialSize();
  Bind(wxEVT_PAINT, &ProgressBar::OnPaint, this);
}

void ProgressBar::Fill(double share) {
  const int before = FilledPixels();
  share_ = share;
  if (FilledPixels() != before) Refresh();
}

wxSize ProgressBar::DoGetBestClientSize() const { return FromDIP(wxSize(kWidth, kHeight)); }

// Rounded down: the last column is filled when everything is done.
int ProgressBar::FilledPixels() const {
  return static_cast<int>(share_ * std::max(GetClientSize().GetWidth() - 2, 0));
}

void ProgressBar::OnPaint(wxPaintEvent&) {
  wxAutoBufferedPaintDC canvas(this);
  const wxSize size = GetClientSize();
  canvas.SetPen(wxSystemSettings::GetColour(wxSYS_COLOUR_BTNSHADOW));
  canvas.SetBrush(wxSystemSettings::GetColour(wxSYS_COLOUR_WINDOW));
  canvas.DrawRectangle(wxPoint(0, 0), size);
  canvas.SetPen(*wxTRANSPARENT_PEN);
  canvas.SetBrush(wxSystemSettings::GetColour(wxSYS_COLOUR_HIGHLIGHT));
  canvas.DrawRectangle(1, 1, FilledPixels(), size.GetHeight() - 2);
}

}  // namespace txs
