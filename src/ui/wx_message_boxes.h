// Message boxes in windows.
#pragma once

#include <functional>
#include <string>

#include "environment/message_boxes.h"
#include "text/text_service.h"

namespace txs {

// Each box stands in front of the active window and is wide enough for its title, which holds the
// message's number. Esc answers as Cancel, No or OK, whichever of them the box has first. Ctrl+C
// copies title and text. A text that is too high for the screen is scrolled, by the arrow keys,
// too, so that the buttons stay in reach; after some hundred lines it ends in "...", and only
// Ctrl+C gives all of it.
class WxMessageBoxes : public MessageBoxes {
 public:
  // Shows the topic of the help.
  using HelpOpener = std::function<void(int help_context)>;

  // `application_title` stands in for an empty title. The buttons speak German until told
  // otherwise.
  explicit WxMessageBoxes(std::string application_title)
      : application_title_(std::move(application_title)) {}

  // From here on the buttons speak the language of `texts`, and boxes that name a help file have a
  // Help button and help on F1. An empty opener: none have.
  void Use(const TextService& texts, HelpOpener open_help);

  // Needs a connection to the display (ConnectToDisplay).
  MessageResult Show(const std::string& prompt, int buttons, const std::string& title,
                     const std::string& help_file, int help_context) override;

 private:
  std::string application_title_;
  TextService texts_{/*language_id=*/0};
  HelpOpener open_help_;
};

}  // namespace txs
