#include "ui/step_controls.h"

#include <string_view>
#include <vector>

#include "environment/runtime_error.h"

namespace txs {
namespace {

using Field = std::string&;

constexpr TextBox kTextBoxes[] = {
    {"txtInfo11", [](StepSettings& s) -> Field { return s.info.german[0]; }, Step::kTexts,
     /*is_directory=*/false},
    {"txtInfo12", [](StepSettings& s) -> Field { return s.info.german[1]; }, Step::kTexts,
     /*is_directory=*/false},
    {"txtInfo13", [](StepSettings& s) -> Field { return s.info.german[2]; }, Step::kTexts,
     /*is_directory=*/false},
    {"txtInfo21", [](StepSettings& s) -> Field { return s.info.english[0]; }, Step::kTexts,
     /*is_directory=*/false},
    {"txtInfo22", [](StepSettings& s) -> Field { return s.info.english[1]; }, Step::kTexts,
     /*is_directory=*/false},
    {"txtInfo23", [](StepSettings& s) -> Field { return s.info.english[2]; }, Step::kTexts,
     /*is_directory=*/false},
    {"txtStartmenuFolder1", [](StepSettings& s) -> Field { return s.startmenu_folder.german; },
     Step::kTexts, /*is_directory=*/false},
    {"txtStartmenuFolder2", [](StepSettings& s) -> Field { return s.startmenu_folder.english; },
     Step::kTexts, /*is_directory=*/false},
    {"txtStartmenuLink1", [](StepSettings& s) -> Field { return s.startmenu_link.german; },
     Step::kTexts, /*is_directory=*/false},
    {"txtStartmenuLink2", [](StepSettings& s) -> Field { return s.startmenu_link.english; },
     Step::kTexts, /*is_directory=*/false},
    {"txtBackgroundPicture1", [](StepSettings& s) -> Field { return s.background_picture.german; },
     Step::kTexts, /*is_directory=*/false},
    {"txtBackgroundPicture2", [](StepSettings& s) -> Field { return s.background_picture.english; },
     Step::kTexts, /*is_directory=*/false},
    {"txtTavixDirectory", [](StepSettings& s) -> Field { return s.tavix_directory; },
     Step::kDirectories, /*is_directory=*/true},
    {"txtProjectDirectory", [](StepSettings& s) -> Field { return s.project_directory; },
     Step::kDirectories, /*is_directory=*/true},
    // Holds path variables, and is tidied only when it is used.
    {"txtSetupDirectory", [](StepSettings& s) -> Field { return s.setup_directory; }, Step::kMedium,
     /*is_directory=*/false},
};

// The filters of an open-file dialog: each text ends in the placeholder of the separator to the
// next.
std::string ChainFilters(const TextService& texts, std::span<const long> ids) {
  std::string filter;
  for (const long id : ids) filter += texts.GetText(id, {id == ids.back() ? "" : "|"});
  return filter;
}

constexpr long kAllFiles = 1601;
constexpr long kPictures = 1602;
constexpr long kTextDocuments = 1603;
constexpr long kDatabases = 1604;
constexpr long kBinaryFiles = 1605;

}  // namespace

std::span<const TextBox> TextBoxes() { return kTextBoxes; }

const TextBox& FindTextBox(const std::string& name) {
  for (const TextBox& box : kTextBoxes) {
    if (box.name == name) return box;
  }
  throw RuntimeError(ErrorNumber::kInvalidCall, "there is no text box " + name);
}

std::vector<std::string> FileColumnCaptions(const TextService& texts) {
  constexpr long kFirstCaption = 1410;
  std::vector<std::string> captions;
  for (long i = 0; i < kFileColumnCount; ++i) captions.push_back(texts.GetText(kFirstCaption + i));
  return captions;
}

FunctionFrames FramesOf(FormDesigner designer) {
  switch (designer) {
    case FormDesigner::kVisualBasic5:
    case FormDesigner::kVisualBasic6:
      return {.dao = true, .ado = true, .nothing = false};
    case FormDesigner::kOther:
    case FormDesigner::kDelphi4:
    case FormDesigner::kDelphi5:
      break;
  }
  return {.dao = false, .ado = false, .nothing = true};
}

std::string AddFileFilter(const TextService& texts) {
  constexpr long kFilters[] = {kAllFiles, kPictures, kTextDocuments, kDatabases, kBinaryFiles};
  return ChainFilters(texts, kFilters);
}

std::string PictureFilter(const TextService& texts) {
  constexpr long kFilters[] = {kPictures, kAllFiles};
  return ChainFilters(texts, kFilters);
}

}  // namespace txs
