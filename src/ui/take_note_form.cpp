#include "ui/take_note_form.h"

#include <wx/button.h>
#include <wx/sizer.h>
#include <wx/statbmp.h>
#include <wx/stattext.h>

#include <vector>

#include "ui/dialog_parts.h"
#include "ui/form_captions.h"
#include "ui/form_pictures.h"

namespace txs {
namespace {

constexpr int kGapDip = 8;
constexpr int kTextWidthDip = 480;
constexpr float kHeadingScale = 1.2F;

}  // namespace

FTakeNote::FTakeNote(wxWindow* parent, Application& application, HelpViewer& help)
    : wxDialog(parent, wxID_ANY, wxEmptyString, wxDefaultPosition, wxDefaultSize,
               wxDEFAULT_DIALOG_STYLE, "FTakeNote") {
  FormCaptions captions(*this, 300);
  auto* const picture = new wxStaticBitmap(this, wxID_ANY, NoticePicture());
  picture->SetName("imgNotice");
  auto* const texts = new wxBoxSizer(wxVERTICAL);
  std::vector<wxStaticText*> paragraphs;
  const auto add_text = [&](const char* name, long id) {
    auto* const text = new wxStaticText(this, wxID_ANY, wxEmptyString);
    text->SetName(name);
    captions.Add(*text, id);
    paragraphs.push_back(text);
    texts->Add(text, wxSizerFlags().Border(wxBOTTOM, FromDIP(kGapDip)));
    return text;
  };
  wxStaticText* const heading = add_text("lblHeading", 301);
  heading->SetFont(heading->GetFont().Bold().Scale(kHeadingScale));
  add_text("lblDevelopmentComputer", 302);
  add_text("lblCompleteness", 303);
  add_text("lblTips", 304);
  auto* const buttons = new wxStdDialogButtonSizer;
  wxButton& ok = AddDialogButton(*this, captions, wxID_OK, "cmdOK", 10);
  buttons->AddButton(&ok);
  buttons->AddButton(&AddDialogButton(*this, captions, wxID_HELP, "cmdHelp", 12));
  LoadCaptions(captions, application.texts);
  for (wxStaticText* const paragraph : paragraphs) paragraph->Wrap(FromDIP(kTextWidthDip));

  auto* const content = new wxBoxSizer(wxHORIZONTAL);
  content->Add(picture, wxSizerFlags().Border(wxALL, FromDIP(kGapDip)));
  content->Add(texts, wxSizerFlags(1).Border(wxALL, FromDIP(kGapDip)));
  FinishDialog(*this, content, buttons);
  OfferHelp(*this, application, help);
  ok.SetFocus();
}

}  // namespace txs
