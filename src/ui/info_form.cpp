#include "ui/info_form.h"

#include <wx/button.h>
#include <wx/sizer.h>
#include <wx/statbmp.h>
#include <wx/stattext.h>

#include <string>

#include "environment/installation.h"
#include "ui/dialog_parts.h"
#include "ui/form_captions.h"
#include "ui/form_pictures.h"
#include "ui/wx_text.h"

namespace txs {
namespace {

constexpr long kUnknown = 204;
constexpr int kGapDip = 8;
constexpr int kIndentDip = 12;
constexpr int kTitleWidthDip = 280;

std::string FileVersionOfProgram(const SystemTools& tools) {
  const ApplicationInfo& program = tools.Application();
  std::string version;
  try {
    version = tools.FileVersionText(program.directory + "\\" + program.executable_name + ".exe");
  } catch (const RuntimeError&) {
    // Where programs are not named ".exe" they have no version resource either.
  }
  // What the resource would hold.
  return version.empty() ? TXS_VERSION : version;
}

std::string StudioVersion(const Application& application) {
  return application.platform.tools.RegistryText(Hive::kLocalMachine, kStudioKey, "Version",
                                                 application.texts.GetText(kUnknown));
}

// Builds the dialog from top to bottom: products in bold, each with its lines below.
class InfoLines {
 public:
  InfoLines(wxDialog& dialog, FormCaptions& captions)
      : dialog_(dialog), captions_(captions), rows_(new wxBoxSizer(wxVERTICAL)) {}

  [[nodiscard]] wxSizer* Rows() const { return rows_; }

  void Product(long id, double scale) {
    wxStaticText* const label = Label(id);
    label->SetFont(label->GetFont().Bold().Scale(static_cast<float>(scale)));
    rows_->Add(label, wxSizerFlags());
  }

  void Line(long id) { rows_->Add(Label(id), wxSizerFlags()); }

  void Version(long id, const char* name, const std::string& version) {
    auto* const row = new wxBoxSizer(wxHORIZONTAL);
    wxStaticText* const caption = Label(id);
    captions_of_versions_.push_back(caption);
    row->Add(caption, wxSizerFlags().Border(wxLEFT, dialog_.FromDIP(kIndentDip)));
    auto* const value = new wxStaticText(&dialog_, wxID_ANY, wxEmptyString);
    value->SetName(name);
    value->SetLabelText(ToWx(version));
    row->Add(value, wxSizerFlags().Border(wxLEFT, dialog_.FromDIP(kIndentDip)));
    rows_->Add(row, wxSizerFlags().Border(wxTOP, dialog_.FromDIP(kGapDip / 2)));
  }

  void Gap() { rows_->AddSpacer(dialog_.FromDIP(2 * kGapDip)); }

  // The versions stand below each other. Call it after captions are set.
  void AlignVersions() {
    int width = 0;
    for (const wxStaticText* const caption : captions_of_versions_) {
      width = std::max(width, caption->GetBestSize().GetWidth());
    }
    for (wxStaticText* const caption : captions_of_versions_) {
      caption->SetMinSize(wxSize(width, wxDefaultCoord));
    }
  }

 private:
  wxStaticText* Label(long id) {
    auto* const label = new wxStaticText(&dialog_, wxID_ANY, wxEmptyString);
    label->SetName("lblInfo" + std::to_string(id));
    captions_.Add(*label, id);
    return label;
  }

  wxDialog& dialog_;
  FormCaptions& captions_;
  wxSizer* rows_;
  std::vector<wxStaticText*> captions_of_versions_;
};

}  // namespace

FInfo::FInfo(wxWindow* parent, Application& application, HelpViewer* help)
    : wxDialog(parent, wxID_ANY, wxEmptyString, wxDefaultPosition, wxDefaultSize,
               wxDEFAULT_DIALOG_STYLE, "FInfo") {
  FormCaptions captions(*this, 200);
  auto* const picture = new wxStaticBitmap(this, wxID_ANY, ApplicationPicture());
  picture->SetName("imgApplication");
  InfoLines lines(*this, captions);
  lines.Product(250, /*scale=*/1.5);
  lines.Line(251);
  lines.Gap();
  lines.Product(201, /*scale=*/1.0);
  lines.Version(205, "lblFileVersion", FileVersionOfProgram(application.platform.tools));
  lines.Gap();
  lines.Product(203, /*scale=*/1.0);
  lines.Version(202, "lblStudioVersion", StudioVersion(application));
  auto* const buttons = new wxStdDialogButtonSizer;
  wxButton& ok = AddDialogButton(*this, captions, wxID_OK, "cmdOK", 10);
  buttons->AddButton(&ok);
  LoadCaptions(captions, application.texts);
  lines.AlignVersions();
  lines.Rows()->SetMinSize(wxSize(FromDIP(kTitleWidthDip), wxDefaultCoord));

  auto* const content = new wxBoxSizer(wxHORIZONTAL);
  content->Add(picture, wxSizerFlags().Border(wxALL, FromDIP(kGapDip)));
  content->Add(lines.Rows(), wxSizerFlags(1).Border(wxALL, FromDIP(kGapDip)));
  FinishDialog(*this, content, buttons);
  if (help != nullptr) OfferHelp(*this, application, *help);
  ok.SetFocus();
}

}  // namespace txs
