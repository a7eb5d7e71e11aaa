// The windows of an interactive start.
#pragma once

#include <string>

#include "ui/interactive_shell.h"

namespace txs {

// Needs a connection to the display (ConnectToDisplay).
class WxShell : public InteractiveShell {
 public:
  [[nodiscard]] std::string ChooseProject(Application& application) override;
  void RunMainForm(Application& application) override;
};

}  // namespace txs
