#include "startup/display_message_boxes.h"

namespace txs {

MessageResult DisplayMessageBoxes::Show(const std::string& prompt, int buttons,
                                        const std::string& title, const std::string& help_file,
                                        int help_context) {
  const MessageResult answer = console_.Show(prompt, buttons, title, help_file, help_context);
  if (!opened_) {
    opened_ = true;
    display_ = open_display_();
  }
  if (display_ == nullptr) return answer;
  return display_->Show(prompt, buttons, title, help_file, help_context);
}

}  // namespace txs
