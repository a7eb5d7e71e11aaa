#include "ui/wx_message_boxes.h"

#include <wx/artprov.h>
#include <wx/button.h>
#include <wx/dialog.h>
#include <wx/display.h>
#include <wx/scrolwin.h>
#include <wx/settings.h>
#include <wx/sizer.h>
#include <wx/statbmp.h>
#include <wx/stattext.h>
#include <wx/utils.h>

#include <algorithm>

#include "ui/clipboard.h"
#include "ui/form_pictures.h"
#include "ui/wx_text.h"

namespace txs {
namespace {

constexpr int kButtonsMask = 0xF;
constexpr int kIconMask = 0xF0;

constexpr long kTextOk = 10;
constexpr long kTextCancel = 11;
constexpr long kTextHelp = 12;
constexpr long kTextYes = 1978;
constexpr long kTextNo = 1979;

// Device-independent pixels.
constexpr int kWidestLine = 480;
constexpr int kTitleBarButtons = 140;
constexpr int kMargin = 12;

// Of the screen's height. A longer text is scrolled: the buttons must stay in reach.
constexpr double kHighestText = 0.6;
// Beyond, a text is no longer read; the clipboard still gets all of it. A window of the system is
// not higher than 32767 pixels either.
constexpr std::size_t kMostLines = 400;
// More characters than any line shows.
constexpr std::size_t kMostMeasured = 400;

wxArtID IconOf(int buttons) {
  switch (buttons & kIconMask) {
    case kIconCritical:
      return wxART_ERROR;
    case kIconQuestion:
      return wxART_QUESTION;
    case kIconExclamation:
      return wxART_WARNING;
    case kIconInformation:
      return wxART_INFORMATION;
    default:
      return {};
  }
}

MessageResult ResultOf(int pressed) {
  switch (pressed) {
    case wxID_YES:
      return MessageResult::kYes;
    case wxID_NO:
      return MessageResult::kNo;
    case wxID_CANCEL:
      return MessageResult::kCancel;
    default:
      return MessageResult::kOk;
  }
}

// A run shows its messages while the pointer is busy; an answer is not what the user waits for.
class PointerWaitsForAnswer {
 public:
  PointerWaitsForAnswer() {
    for (; wxIsBusy(); ++depth_) wxEndBusyCursor();
  }
  ~PointerWaitsForAnswer() {
    for (; depth_ > 0; --depth_) wxBeginBusyCursor();
  }
  PointerWaitsForAnswer(const PointerWaitsForAnswer&) = delete;
  PointerWaitsForAnswer& operator=(const PointerWaitsForAnswer&) = delete;

 private:
  int depth_ = 0;
};

// The active window, else the one that was opened last: a state window lies over the main form.
// Null when there is none.
wxWindow* FrontWindow() {
  wxWindow* front = nullptr;
  for (wxWindow* const window : wxTopLevelWindows) {
    auto* const form = dynamic_cast<wxTopLevelWindow*>(window);
    if (form == nullptr || !form->IsShown() || form->IsBeingDeleted()) continue;
    front = window;
    if (form->IsActive()) break;
  }
  return front;
}

// Line breaks at blanks, and within a word that is longer than a line (a path) behind a backslash.
// No more than kMostLines lines.
class WrappedText {
 public:
  WrappedText(const wxString& text, const wxWindow& window, int width)
      : window_(window), width_(width) {
    wxString word;
    for (const wxUniChar c : text) {
      if (c != '\n' && c != ' ') {
        word += c;
        continue;
      }
      AddWord(word);
      word.clear();
      if (c == ' ') {
        line_ += c;
      } else {
        EndLine();
      }
      if (IsFull()) break;
    }
    AddWord(word);
    text_ += IsFull() ? wxString("...") : line_;
  }

  [[nodiscard]] const wxString& Text() const { return text_; }

 private:
  [[nodiscard]] bool Fits(const wxString& line) const {
    return line.length() <= kMostMeasured && window_.GetTextExtent(line).x <= width_;
  }

  [[nodiscard]] bool IsFull() const { return count_ >= kMostLines; }

  void EndLine() {
    text_ += line_ + '\n';
    line_.clear();
    ++count_;
  }

  void AddWord(wxString word) {
    if (!line_.empty() && !Fits(line_ + word)) EndLine();
    while (!IsFull() && !Fits(word) && word.length() > 1) {
      std::size_t count = 1;
      while (count < word.length() && Fits(word.Left(count + 1))) ++count;
      const std::size_t backslash = word.Left(count).rfind('\\');
      if (backslash != wxString::npos && backslash > 0) count = backslash + 1;
      line_ = word.Left(count);
      EndLine();
      word = word.Mid(count);
    }
    line_ += word;
  }

  const wxWindow& window_;
  int width_;
  wxString text_;
  wxString line_;
  std::size_t count_ = 0;
};

class MessageDialog : public wxDialog {
 public:
  struct Contents {
    wxString title;
    wxString prompt;
    int buttons = kButtonsOk;
    std::function<void()> open_help;  // empty: no help
  };

  MessageDialog(wxWindow* parent, const TextService& texts, Contents contents)
      : wxDialog(parent, wxID_ANY, contents.title), contents_(std::move(contents)) {
    SetName("FMessage");
    SetIcons(ApplicationIcons());
    auto* const outer = new wxBoxSizer(wxVERTICAL);
    outer->Add(MakeMessage(), wxSizerFlags(1).Expand().Border(wxALL, FromDIP(kMargin)));
    outer->Add(MakeButtons(texts), wxSizerFlags().Expand().Border(wxALL & ~wxTOP, FromDIP(8)));
    SetSizer(outer);
    const int title_width = GetTextExtent(contents_.title).x + FromDIP(kTitleBarButtons);
    outer->SetMinSize(wxSize(title_width, -1));
    outer->SetSizeHints(this);
    CentreOnParent();
    Bind(wxEVT_CHAR_HOOK, &MessageDialog::OnKey, this);
  }

 private:
  wxSizer* MakeMessage() {
    auto* const row = new wxBoxSizer(wxHORIZONTAL);
    const wxArtID icon = IconOf(contents_.buttons);
    if (!icon.empty()) {
      auto* const image = new wxStaticBitmap(
          this, wxID_ANY, wxArtProvider::GetBitmapBundle(icon, wxART_MESSAGE_BOX));
      image->SetName("imgMessage");
      row->Add(image, wxSizerFlags().Top().Border(wxRIGHT, FromDIP(kMargin)));
    }
    const wxString text = WrappedText(contents_.prompt, *this, FromDIP(kWidestLine)).Text();
    wxStaticText* const label = MakeLabel(*this, text);
    const wxSize needed = label->GetBestSize();
    const int highest = static_cast<int>(
        kHighestText *
        wxDisplay(GetParent() == nullptr ? this : GetParent()).GetClientArea().height);
    if (needed.GetHeight() <= highest) {
      row->Add(label, wxSizerFlags(1).CentreVertical());
      return row;
    }
    label->Destroy();
    pane_ = new wxScrolledWindow(this, wxID_ANY, wxDefaultPosition, wxDefaultSize, wxVSCROLL);
    pane_->SetName("picMessage");
    auto* const column = new wxBoxSizer(wxVERTICAL);
    column->Add(MakeLabel(*pane_, text));
    pane_->SetSizer(column);
    pane_->SetScrollRate(0, GetCharHeight());
    const int bar = wxSystemSettings::GetMetric(wxSYS_VSCROLL_X, pane_) + FromDIP(kMargin);
    pane_->SetMinSize(wxSize(needed.GetWidth() + bar, highest));
    row->Add(pane_, wxSizerFlags(1).Expand());
    return row;
  }

  static wxStaticText* MakeLabel(wxWindow& parent, const wxString& text) {
    auto* const label = new wxStaticText(&parent, wxID_ANY, wxString());
    label->SetName("lblMessage");
    label->SetLabelText(text);
    return label;
  }

  wxSizer* MakeButtons(const TextService& texts) {
    auto* const row = new wxStdDialogButtonSizer;
    const auto add = [&](wxWindowID id, const char* name, long text) {
      auto* const button = new wxButton(this, id, ToWx(texts.GetText(text)));
      button->SetName(name);
      row->AddButton(button);
      return button;
    };
    wxButton* first = nullptr;
    switch (contents_.buttons & kButtonsMask) {
      case kButtonsYesNoCancel:
        first = add(wxID_YES, "cmdYes", kTextYes);
        add(wxID_NO, "cmdNo", kTextNo);
        add(wxID_CANCEL, "cmdCancel", kTextCancel);
        SetEscapeId(wxID_CANCEL);
        break;
      case kButtonsYesNo:
        first = add(wxID_YES, "cmdYes", kTextYes);
        add(wxID_NO, "cmdNo", kTextNo);
        SetEscapeId(wxID_NO);
        break;
      default:
        first = add(wxID_OK, "cmdOK", kTextOk);
        SetEscapeId(wxID_OK);
        break;
    }
    if (contents_.open_help) {
      add(wxID_HELP, "cmdHelp", kTextHelp)->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) {
        contents_.open_help();
      });
    }
    row->Realize();
    for (const wxWindowID id : {wxID_YES, wxID_NO}) {
      wxWindow* const button = FindWindow(id);
      if (button == nullptr) continue;
      button->Bind(wxEVT_BUTTON, [this, id](wxCommandEvent&) { EndModal(id); });
    }
    first->SetDefault();
    first->SetFocus();
    return row;
  }

  void OnKey(wxKeyEvent& event) {
    if (event.GetKeyCode() == WXK_F1 && event.GetModifiers() == wxMOD_NONE && contents_.open_help) {
      contents_.open_help();
    } else if (event.GetKeyCode() == 'C' && event.GetModifiers() == wxMOD_CONTROL) {
      CopyToClipboard(contents_.title + "\n\n" + contents_.prompt + "\n");
    } else if (!ScrollBy(event.GetKeyCode())) {
      event.Skip();
    }
  }

  // The buttons keep the focus.
  bool ScrollBy(int key_code) {
    if (pane_ == nullptr) return false;
    switch (key_code) {
      case WXK_UP:
        return pane_->ScrollLines(-1), true;
      case WXK_DOWN:
        return pane_->ScrollLines(1), true;
      case WXK_PAGEUP:
        return pane_->ScrollPages(-1), true;
      case WXK_PAGEDOWN:
        return pane_->ScrollPages(1), true;
      default:
        return false;
    }
  }

  Contents contents_;
  wxScrolledWindow* pane_ = nullptr;  // where the text is too high for the screen
};

}  // namespace

void WxMessageBoxes::Use(const TextService& texts, HelpOpener open_help) {
  texts_ = texts;
  open_help_ = std::move(open_help);
}

MessageResult WxMessageBoxes::Show(const std::string& prompt, int buttons, const std::string& title,
                                   const std::string& help_file, int help_context) {
  MessageDialog::Contents contents;
  contents.title = ToWx(title.empty() ? application_title_ : title);
  contents.prompt = ToWxLines(prompt);
  contents.buttons = buttons;
  if (open_help_ && !help_file.empty()) {
    contents.open_help = [this, help_context] { open_help_(help_context); };
  }
  const PointerWaitsForAnswer pointer;
  MessageDialog dialog(FrontWindow(), texts_, std::move(contents));
  return ResultOf(dialog.ShowModal());
}

}  // namespace txs
