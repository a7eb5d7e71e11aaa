// The platform's modal message box.
#pragma once

#include <string>

namespace txs {

// Button and icon flags, added; the values are the platform's own.
inline constexpr int kButtonsOk = 0;
inline constexpr int kButtonsYesNoCancel = 3;
inline constexpr int kButtonsYesNo = 4;
inline constexpr int kIconCritical = 16;
inline constexpr int kIconQuestion = 32;
inline constexpr int kIconExclamation = 48;
inline constexpr int kIconInformation = 64;
inline constexpr int kButtonHelp = 16384;

// The number of the button pressed; 0 where no box was shown (unattended mode).
enum class MessageResult : int {
  kNone = 0,
  kOk = 1,
  kCancel = 2,
  kIgnore = 5,
  kYes = 6,
  kNo = 7,
};

class MessageBoxes {
 public:
  virtual ~MessageBoxes() = default;

  // Shows the box and waits for the answer. An empty title shows the application's title. Texts are
  // UTF-8 with CR LF line ends. Where there is no display the text goes to standard error and the
  // answer is kCancel where the box has that button, else kNo or kOk.
  [[nodiscard]] virtual MessageResult Show(const std::string& prompt, int buttons,
                                           const std::string& title, const std::string& help_file,
                                           int help_context) = 0;
};

}  // namespace txs
