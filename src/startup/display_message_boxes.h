// The program's message boxes: always on standard error too, and in a window where there is one.
#pragma once

#include "environment/message_boxes.h"
#include "startup/window_module.h"

namespace txs {

class DisplayMessageBoxes : public MessageBoxes {
 public:
  DisplayMessageBoxes(MessageBoxes& console, WindowModule& module)
      : console_(console), module_(module) {}

  // Opens the module on the first box and not before: a run that shows none touches no window
  // system. Where the module cannot be opened, the console answers.
  MessageResult Show(const std::string& prompt, int buttons, const std::string& title,
                     const std::string& help_file, int help_context) override;

 private:
  MessageBoxes& console_;
  WindowModule& module_;
};

}  // namespace txs
