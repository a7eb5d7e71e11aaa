// Message boxes of wxWidgets.
#pragma once

#include <functional>
#include <string>

#include "environment/message_boxes.h"

namespace txs {

class WxMessageBoxes : public MessageBoxes {
 public:
  // Shows the topic of a help file; empty where there is no help, and no box then has a Help
  // button.
  using HelpOpener = std::function<void(const std::string& help_file, int help_context)>;

  // `application_title` stands in for an empty title.
  WxMessageBoxes(std::string application_title, HelpOpener open_help)
      : application_title_(std::move(application_title)), open_help_(std::move(open_help)) {}

  // Needs a connection to the display (ConnectToDisplay).
  MessageResult Show(const std::string& prompt, int buttons, const std::string& title,
                     const std::string& help_file, int help_context) override;

 private:
  std::string application_title_;
  HelpOpener open_help_;
};

// Initialises wxWidgets for the rest of the process. False when the display cannot be reached; the
// toolkit then writes the reason to standard error.
[[nodiscard]] bool ConnectToDisplay();

}  // namespace txs
