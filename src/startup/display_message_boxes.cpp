#include "startup/display_message_boxes.h"

namespace txs {

MessageResult DisplayMessageBoxes::Show(const std::string& prompt, int buttons,
                                        const std::string& title, const std::string& help_file,
                                        int help_context) {
  const MessageResult answer = console_.Show(prompt, buttons, title, help_file, help_context);
  const OpenedWindows& opened = module_.Open();
  if (opened.windows == nullptr) return answer;
  return opened.windows->message_boxes.Show(prompt, buttons, title, help_file, help_context);
}

}  // namespace txs
