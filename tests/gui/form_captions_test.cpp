#include "ui/form_captions.h"

#include <gtest/gtest.h>
#include <wx/button.h>
#include <wx/frame.h>
#include <wx/stattext.h>

#include <stdexcept>

#include "gui/gui_support.h"

namespace txs {
namespace {

TEST(FormCaptions, GiveTheFormAndItsControlsTheirTextsInTheLanguageOfTheStudio) {
  for (const long language : {1031L, 1033L}) {
    wxFrame form(nullptr, wxID_ANY, "");
    auto* const button = new wxButton(&form, wxID_ANY, "");
    wxString header;
    FormCaptions captions(form, 200);
    captions.Add(*button, 12);
    captions.Add(611, [&](const wxString& text) { header = text; });

    LoadCaptions(captions, TextService(language));

    const bool german = language == 1031;
    EXPECT_EQ(form.GetTitle().utf8_string(),
              german ? "Info über TavixStudio" : "Info about TavixStudio");
    EXPECT_EQ(button->GetLabel(), german ? "&Hilfe" : "&Help");
    EXPECT_EQ(button->GetLabelText(), german ? "Hilfe" : "Help");
    EXPECT_EQ(header, german ? "Verzeichnis" : "Directory");
  }
}

TEST(FormCaptions, ShowALineEndOfATextAsASingleLineBreak) {
  wxFrame form(nullptr, wxID_ANY, "");
  auto* const text = new wxStaticText(&form, wxID_ANY, "");
  FormCaptions captions(form, 200);
  captions.Add(*text, 1705);

  LoadCaptions(captions, TextService(1033));

  EXPECT_EQ(text->GetLabel(),
            "The file '' is a system file!\nIt has not to be listed additionally!");
}

TEST(FormCaptions, AControlThatCannotTakeItsCaptionLeavesTheOthersTheirs) {
  wxFrame form(nullptr, wxID_ANY, "");
  auto* const button = new wxButton(&form, wxID_ANY, "");
  FormCaptions captions(form, 200);
  captions.Add(10, [](const wxString&) { throw std::runtime_error("no caption"); });
  captions.Add(*button, 11);

  LoadCaptions(captions, TextService(1033));

  EXPECT_EQ(button->GetLabel(), "Cancel");
}

}  // namespace
}  // namespace txs
