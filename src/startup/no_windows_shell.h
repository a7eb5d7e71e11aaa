// What an interactive start shows as long as this build has no windows: a message that says so.
#pragma once

#include <string>

#include "ui/interactive_shell.h"

namespace txs {

class NoWindowsShell : public InteractiveShell {
 public:
  // Shows message 1900 and chooses nothing.
  [[nodiscard]] std::string ChooseProject(Application& application) override;

  // Shows message 1900 and returns.
  void RunMainForm(Application& application) override;
};

}  // namespace txs
