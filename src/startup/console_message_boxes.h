// Message boxes where there is no display: the text goes to a stream, standard error in the
// program.
#pragma once

#include <ostream>
#include <string>
#include <string_view>

#include "environment/message_boxes.h"

namespace txs {

class ConsoleMessageBoxes : public MessageBoxes {
 public:
  // `application_title` stands in for an empty title.
  ConsoleMessageBoxes(std::ostream& stream, std::string application_title)
      : stream_(stream), application_title_(std::move(application_title)) {}

  // Writes title and prompt, each on lines of its own, and answers at once.
  MessageResult Show(const std::string& prompt, int buttons, const std::string& title,
                     const std::string& help_file, int help_context) override;

 private:
  std::ostream& stream_;
  std::string application_title_;
};

// The answer that nobody is there to give: kCancel where the box has that button, else kNo or kOk.
[[nodiscard]] MessageResult AnswerOfNobody(int buttons);

// `text` with CR LF as LF, as terminals want it.
[[nodiscard]] std::string ToConsoleText(std::string_view text);

}  // namespace txs
