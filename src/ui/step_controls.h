// The text boxes of the five steps: which field of the document each one holds.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "document/application.h"
#include "document/document_check.h"
#include "text/text_service.h"

namespace txs {

struct TextBox {
  const char* name;  // the control's documented name and index: "txtInfo11"
  // The field that the box shows and edits.
  std::string& (*field)(StepSettings& steps);
  Step step;
  bool is_directory;  // normalised when the focus leaves it
};

// txtInfo11 to 13 and 21 to 23, txtStartmenuFolder1 and 2, txtStartmenuLink1 and 2,
// txtBackgroundPicture1 and 2, txtTavixDirectory, txtProjectDirectory, txtSetupDirectory.
[[nodiscard]] std::span<const TextBox> TextBoxes();

// The box of that name; throws RuntimeError kInvalidCall when there is none.
[[nodiscard]] const TextBox& FindTextBox(const std::string& name);

// The texts of the six columns of the file list (1410 to 1415), left to right.
[[nodiscard]] std::vector<std::string> FileColumnCaptions(const TextService& texts);

// What step 3 shows. DAO workspace types and ADO exist for projects designed with Visual Basic.
struct FunctionFrames {
  bool dao = false;
  bool ado = false;      // shown, never enabled: not implemented in the setup engine
  bool nothing = false;  // text 1302 instead of text 1301

  bool operator==(const FunctionFrames&) const = default;
};
[[nodiscard]] FunctionFrames FramesOf(FormDesigner designer);

// Filter of the open-file dialog of step 4: texts 1601 to 1605 chained by "|".
[[nodiscard]] std::string AddFileFilter(const TextService& texts);
// The same for the background picture of step 1: pictures first, then all files.
[[nodiscard]] std::string PictureFilter(const TextService& texts);

}  // namespace txs
