#include "ui/step_controls.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

#include "environment/runtime_error.h"

namespace txs {
namespace {

using testing::ElementsAre;

const TextService kInGerman(1031);
const TextService kInEnglish(1033);

TEST(TextBoxes, AreThoseOfTheSteps) {
  std::vector<std::string> names;
  for (const TextBox& box : TextBoxes()) names.emplace_back(box.name);

  EXPECT_THAT(names, ElementsAre("txtInfo11", "txtInfo12", "txtInfo13", "txtInfo21", "txtInfo22",
                                 "txtInfo23", "txtStartmenuFolder1", "txtStartmenuFolder2",
                                 "txtStartmenuLink1", "txtStartmenuLink2", "txtBackgroundPicture1",
                                 "txtBackgroundPicture2", "txtTavixDirectory",
                                 "txtProjectDirectory", "txtSetupDirectory"));
}

TEST(TextBoxes, HoldAFieldEach) {
  StepSettings steps;
  for (const TextBox& box : TextBoxes()) box.field(steps) = box.name;

  EXPECT_THAT(steps.info.german, ElementsAre("txtInfo11", "txtInfo12", "txtInfo13"));
  EXPECT_THAT(steps.info.english, ElementsAre("txtInfo21", "txtInfo22", "txtInfo23"));
  EXPECT_EQ(steps.startmenu_folder,
            (Bilingual<std::string>{"txtStartmenuFolder1", "txtStartmenuFolder2"}));
  EXPECT_EQ(steps.startmenu_link,
            (Bilingual<std::string>{"txtStartmenuLink1", "txtStartmenuLink2"}));
  EXPECT_EQ(steps.background_picture,
            (Bilingual<std::string>{"txtBackgroundPicture1", "txtBackgroundPicture2"}));
  EXPECT_EQ(steps.tavix_directory, "txtTavixDirectory");
  EXPECT_EQ(steps.project_directory, "txtProjectDirectory");
  EXPECT_EQ(steps.setup_directory, "txtSetupDirectory");
}

TEST(TextBoxes, StandOnTheirSteps) {
  for (const TextBox& box : TextBoxes()) {
    const std::string name = box.name;
    const Step expected = name == "txtSetupDirectory" ? Step::kMedium
                          : name == "txtTavixDirectory" || name == "txtProjectDirectory"
                              ? Step::kDirectories
                              : Step::kTexts;
    EXPECT_EQ(box.step, expected) << name;
  }
}

TEST(TextBoxes, OfStep2AreTidiedAsDirectories) {
  for (const TextBox& box : TextBoxes()) {
    EXPECT_EQ(box.is_directory, box.step == Step::kDirectories) << box.name;
  }
}

TEST(TextBoxes, AreFoundByTheirNames) {
  EXPECT_STREQ(FindTextBox("txtInfo23").name, "txtInfo23");
  try {
    static_cast<void>(FindTextBox("txtInfo14"));
    FAIL() << "a box was found";
  } catch (const RuntimeError& error) {
    EXPECT_EQ(error.Number(), ErrorNumber::kInvalidCall);
    EXPECT_THAT(error.Description(), testing::HasSubstr("txtInfo14"));
  }
}

TEST(FileColumns, HaveTheirCaptionsFromLeftToRight) {
  EXPECT_THAT(FileColumnCaptions(kInGerman),
              ElementsAre("Quelldatei", "Zielverzeichnis", "Länge", "Diskette", "Name (kompr.)",
                          "Registrieren"));
  EXPECT_THAT(FileColumnCaptions(kInEnglish),
              ElementsAre("Source File", "Destination Directory", "Length", "Disk", "Name (compr.)",
                          "Register"));
}

TEST(FramesOfStep3, ApplyToVisualBasic) {
  const FunctionFrames both{.dao = true, .ado = true, .nothing = false};

  EXPECT_EQ(FramesOf(FormDesigner::kVisualBasic5), both);
  EXPECT_EQ(FramesOf(FormDesigner::kVisualBasic6), both);
}

TEST(FramesOfStep3, AreNotThereForOtherDesigners) {
  const FunctionFrames none{.dao = false, .ado = false, .nothing = true};

  EXPECT_EQ(FramesOf(FormDesigner::kDelphi4), none);
  EXPECT_EQ(FramesOf(FormDesigner::kDelphi5), none);
  EXPECT_EQ(FramesOf(FormDesigner::kOther), none);
}

TEST(AddFileFilter, OffersAllFilesPicturesTextsDatabasesAndBinaries) {
  EXPECT_EQ(AddFileFilter(kInEnglish),
            "All Files|*.*|Pictures|*.BMP;*.JPG;*.WMF;*.EMF;*.ICO|"
            "Text Documents|*.TXT;*.RTF;*.DOC|Databases|*.MDB|Binary Files|*.DLL;*.OCX;*.EXE");
  EXPECT_EQ(AddFileFilter(kInGerman),
            "Alle Dateien|*.*|Bilder|*.BMP;*.JPG;*.WMF;*.EMF;*.ICO|"
            "Textdokumente|*.TXT;*.RTF;*.DOC|Datenbanken|*.MDB|Binärdateien|*.DLL;*.OCX;*.EXE");
}

TEST(PictureFilter, OffersPicturesFirst) {
  EXPECT_EQ(PictureFilter(kInEnglish), "Pictures|*.BMP;*.JPG;*.WMF;*.EMF;*.ICO|All Files|*.*");
  EXPECT_EQ(PictureFilter(kInGerman), "Bilder|*.BMP;*.JPG;*.WMF;*.EMF;*.ICO|Alle Dateien|*.*");
}

}  // namespace
}  // namespace txs
