// The windows of an interactive start, from the module that has them.
#pragma once

#include <string>

#include "startup/window_module.h"
#include "ui/interactive_shell.h"

namespace txs {

// Opens the module at the first question. Where that fails each call shows a message that says why
// and what to do, and does nothing else: 1900 (a build without windows), 1974 (no desktop), 1975
// (no display) or 1976 (the module could not be loaded).
class ModuleShell : public InteractiveShell {
 public:
  explicit ModuleShell(WindowModule& module) : module_(module) {}

  [[nodiscard]] std::string ChooseProject(Application& application) override;
  void RunMainForm(Application& application) override;

 private:
  // Null after the message.
  [[nodiscard]] InteractiveShell* Shell(Application& application);

  WindowModule& module_;
};

}  // namespace txs
