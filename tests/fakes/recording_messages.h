// A message service that notes what it is told to show and answers from a script.
#pragma once

#include <deque>
#include <vector>

#include "text/message_service.h"

namespace txs {

class RecordingMessages : public MessageService {
 public:
  std::vector<Message> shown;
  std::deque<MessageResult> answers;  // kOk once it is empty

  MessageResult Show(const Message& message) override {
    shown.push_back(message);
    if (answers.empty()) return MessageResult::kOk;
    const MessageResult answer = answers.front();
    answers.pop_front();
    return answer;
  }

  [[nodiscard]] std::vector<long> Ids() const {
    std::vector<long> ids;
    for (const Message& message : shown) ids.push_back(message.id);
    return ids;
  }
};

}  // namespace txs
