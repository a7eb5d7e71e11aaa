// Message boxes that nobody sees: they note what they were asked and answer from a script.
#pragma once

#include <deque>
#include <string>
#include <vector>

#include "environment/message_boxes.h"

namespace txs {

class ScriptedMessageBoxes : public MessageBoxes {
 public:
  struct Shown {
    std::string prompt;
    int buttons = 0;
    std::string title;
    std::string help_file;
    int help_context = 0;
  };

  std::vector<Shown> shown;
  std::deque<MessageResult> answers;  // kOk once it is empty

  [[nodiscard]] MessageResult Show(const std::string& prompt, int buttons, const std::string& title,
                                   const std::string& help_file, int help_context) override {
    shown.push_back({prompt, buttons, title, help_file, help_context});
    if (answers.empty()) return MessageResult::kOk;
    const MessageResult answer = answers.front();
    answers.pop_front();
    return answer;
  }
};

}  // namespace txs
