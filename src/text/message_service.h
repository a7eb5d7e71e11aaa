// `ShowMessage`: where every message of a work routine goes.
#pragma once

#include <string>

#include "environment/message_boxes.h"

namespace txs {

// A message ready to be shown; texts are UTF-8 with CR LF line ends.
struct Message {
  long id = 0;
  std::string prompt;
  std::string title;  // empty: the application's title
  int buttons = kButtonsOk | kIconExclamation;
  std::string help_file;
  int help_context = 0;
};

class MessageService {
 public:
  virtual ~MessageService() = default;

  // Shows the message in the platform's message box and returns the button pressed; in unattended
  // mode writes one log entry and returns kNone. Never throws.
  virtual MessageResult ShowMessage(const Message& message) = 0;
};

}  // namespace txs
