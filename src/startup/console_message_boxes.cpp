#include "startup/console_message_boxes.h"

namespace txs {

MessageResult ConsoleMessageBoxes::Show(const std::string& prompt, int buttons,
                                        const std::string& title, const std::string& /*help_file*/,
                                        int /*help_context*/) {
  stream_ << ToConsoleText(title.empty() ? application_title_ : title) << '\n'
          << ToConsoleText(prompt) << '\n';
  stream_.flush();
  return AnswerOfNobody(buttons);
}

MessageResult AnswerOfNobody(int buttons) {
  constexpr int kButtonsMask = 0xF;
  switch (buttons & kButtonsMask) {
    case kButtonsYesNoCancel:
      return MessageResult::kCancel;
    case kButtonsYesNo:
      return MessageResult::kNo;
    default:
      return MessageResult::kOk;
  }
}

std::string ToConsoleText(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool before_line_feed = i + 1 < text.size() && text[i + 1] == '\n';
    if (text[i] != '\r' || !before_line_feed) result += text[i];
  }
  return result;
}

}  // namespace txs
