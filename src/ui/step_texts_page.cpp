#include "ui/step_texts_page.h"

#include <wx/sizer.h>

#include <string>

#include "ui/wx_text.h"

namespace txs {
namespace {

constexpr long kInformationLines = 1101;
constexpr long kStartmenuEntry = 1102;
constexpr long kStartmenuFolder = 1103;
constexpr long kStartmenuLink = 1104;
constexpr long kBackgroundPicture = 1105;
constexpr long kBrowse = 1106;
constexpr long kGerman = 1107;
constexpr long kEnglish = 1108;
constexpr int kInformationLineCount = 3;

// The character behind the "&" of a caption, as a key event gives it; 0 without one.
wxChar AccessKey(const wxString& caption) {
  const int mark = caption.Find('&');
  if (mark == wxNOT_FOUND || static_cast<std::size_t>(mark) + 1 >= caption.length()) return 0;
  return static_cast<wxChar>(wxToupper(caption[static_cast<std::size_t>(mark) + 1].GetValue()));
}

}  // namespace

StepTextsPage::StepTextsPage(wxWindow* parent, FormParts& parts)
    : wxPanel(parent), tab_language_(new wxNotebook(this, wxID_ANY)) {
  tab_language_->SetName("tabLanguage");
  AddLanguage(parts, 1, kGerman);
  AddLanguage(parts, 2, kEnglish);

  auto* const rows = new wxBoxSizer(wxVERTICAL);
  rows->Add(tab_language_, wxSizerFlags(1).Expand().Border(wxALL, FromDIP(8)));
  SetSizer(rows);
}

void StepTextsPage::AddLanguage(FormParts& parts, int language, long caption) {
  const std::string number = std::to_string(language);
  auto* const page = new wxPanel(tab_language_);
  const std::size_t index = tab_language_->GetPageCount();
  tab_language_->AddPage(page, wxString());
  parts.Captions().Add(caption, [this, index](const wxString& text) {
    // Tabs have no access keys of their own: the form hands them to TakeAccessKey.
    tab_language_->SetPageText(index, wxControl::RemoveMnemonics(text));
    access_keys_.at(index) = AccessKey(text);
  });

  auto* const rows = new wxBoxSizer(wxVERTICAL);
  wxStaticText* const lines_label = parts.AddLabel(page, kInformationLines);
  rows->Add(lines_label);
  for (int line = 1; line <= kInformationLineCount; ++line) {
    DocumentBox* const box = parts.AddBox(page, "txtInfo" + number + std::to_string(line));
    rows->Add(box, wxSizerFlags().Expand().Border(wxTOP, FromDIP(4)));
    if (line == 1) {
      parts.Tie(lines_label, box);
      first_boxes_.at(index) = box;
    } else {
      parts.Announce(box, [lines_label, line] {
        return lines_label->GetLabelText() + wxString::Format(" %d", line);
      });
    }
  }

  wxStaticBox* const frame = parts.AddFrame(page, "fraStartmenu" + number, kStartmenuEntry);
  auto* const entry = new wxStaticBoxSizer(frame, wxVERTICAL);
  auto* const fields = new wxFlexGridSizer(2, wxSize(FromDIP(8), FromDIP(4)));
  fields->AddGrowableCol(1);
  const auto add_field = [&](long label_id, const std::string& name) {
    wxStaticText* const label = parts.AddLabel(frame, label_id);
    DocumentBox* const box = parts.AddBox(frame, name);
    parts.Tie(label, box);
    fields->Add(label, wxSizerFlags().CentreVertical());
    fields->Add(box, wxSizerFlags().Expand());
  };
  add_field(kStartmenuFolder, "txtStartmenuFolder" + number);
  add_field(kStartmenuLink, "txtStartmenuLink" + number);
  entry->Add(fields, wxSizerFlags().Expand().Border(wxALL, FromDIP(8)));
  rows->Add(entry, wxSizerFlags().Expand().Border(wxTOP, FromDIP(12)));

  wxStaticText* const picture_label = parts.AddLabel(page, kBackgroundPicture);
  DocumentBox* const picture = parts.AddBox(page, "txtBackgroundPicture" + number);
  parts.Tie(picture_label, picture);
  wxButton* const browse =
      parts.AddButton(page, "cmdBrowsePicture" + number, kBrowse, [&parts, picture] {
        const std::string chosen = parts.Presenter().BrowsePicture(picture->Box());
        if (!chosen.empty()) picture->SetValue(ToWx(chosen));
      });
  auto* const row = new wxBoxSizer(wxHORIZONTAL);
  row->Add(picture, wxSizerFlags(1).CentreVertical());
  row->Add(browse, wxSizerFlags().CentreVertical().Border(wxLEFT, FromDIP(8)));
  rows->Add(picture_label, wxSizerFlags().Border(wxTOP, FromDIP(12)));
  rows->Add(row, wxSizerFlags().Expand().Border(wxTOP, FromDIP(4)));

  auto* const outer = new wxBoxSizer(wxVERTICAL);
  outer->Add(rows, wxSizerFlags().Expand().Border(wxALL, FromDIP(8)));
  page->SetSizer(outer);
}

wxWindow* StepTextsPage::FirstControl() const {
  return first_boxes_.at(static_cast<std::size_t>(tab_language_->GetSelection()));
}

void StepTextsPage::ShowPageOf(wxWindow& control) {
  for (std::size_t index = 0; index < tab_language_->GetPageCount(); ++index) {
    if (tab_language_->GetPage(index)->IsDescendant(&control))
      tab_language_->ChangeSelection(index);
  }
}

bool StepTextsPage::TakeAccessKey(wxChar character) {
  for (std::size_t index = 0; index < access_keys_.size(); ++index) {
    if (access_keys_.at(index) == 0 || access_keys_.at(index) != character) continue;
    tab_language_->SetSelection(index);
    FirstControl()->SetFocus();
    return true;
  }
  return false;
}

}  // namespace txs
