// What a run has to tell after its end: the messages that it showed, and what it did not find. The
// state windows list it and let the user copy it.
#pragma once

#include <string>
#include <vector>

#include "scan/missing_item.h"
#include "text/message_service.h"
#include "text/text_service.h"

namespace txs {

struct RunReport {
  std::vector<std::string> messages;  // prompts as they were shown, in order
  std::vector<MissingItem> missing;

  [[nodiscard]] bool IsEmpty() const { return messages.empty() && missing.empty(); }
};

// One line per message (its line breaks become blanks) and one per missing item, "COMCAT.DLL
// (Demo.vbp → MSCOMCTL.OCX)" with the chain that needs it; missing items stand under a heading
// (text 1912). Lines end in "\n".
[[nodiscard]] std::string ReportText(const RunReport& report, const TextService& texts);

// Notes the messages that are shown while this lives. Whoever listened before still hears them.
class MessageCollector {
 public:
  explicit MessageCollector(MessageService& messages);
  ~MessageCollector();
  MessageCollector(const MessageCollector&) = delete;
  MessageCollector& operator=(const MessageCollector&) = delete;

  [[nodiscard]] const std::vector<std::string>& Prompts() const { return prompts_; }

 private:
  MessageService& messages_;
  MessageService::Listener before_;
  std::vector<std::string> prompts_;
};

}  // namespace txs
