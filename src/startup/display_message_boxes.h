// The program's message boxes: always on standard error too, and in a window where there is one.
#pragma once

#include <functional>

#include "environment/message_boxes.h"

namespace txs {

class DisplayMessageBoxes : public MessageBoxes {
 public:
  // Connects to the window system; null where there is none. What it gives lives as long as the
  // process.
  using Opener = std::function<MessageBoxes*()>;

  DisplayMessageBoxes(MessageBoxes& console, Opener open_display)
      : console_(console), open_display_(std::move(open_display)) {}

  // Connects on the first box and not before: a run that shows none touches no window system.
  MessageResult Show(const std::string& prompt, int buttons, const std::string& title,
                     const std::string& help_file, int help_context) override;

 private:
  MessageBoxes& console_;
  Opener open_display_;
  bool opened_ = false;
  MessageBoxes* display_ = nullptr;
};

}  // namespace txs
