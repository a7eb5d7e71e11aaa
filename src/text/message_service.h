// `ShowMessage`: where every message of a work routine goes.
#pragma once

#include <functional>
#include <string>
#include <utility>

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
  // Told of every message after it was shown.
  using Listener = std::function<void(const Message& message)>;

  virtual ~MessageService() = default;

  // Shows the message in the platform's message box and returns the button pressed; in unattended
  // mode writes one log entry and returns kNone. Never throws.
  MessageResult ShowMessage(const Message& message) {
    const MessageResult result = Show(message);
    if (listener_) listener_(message);
    return result;
  }

  // Replaces the listener and returns the one before; an empty one ends the listening. Must not
  // throw.
  Listener SetListener(Listener listener) { return std::exchange(listener_, std::move(listener)); }

 protected:
  virtual MessageResult Show(const Message& message) = 0;

 private:
  Listener listener_;
};

}  // namespace txs
