// The start routine: decides from registry and command line which project is worked on, and how.
#pragma once

#include <string>
#include <string_view>

#include "create/create_view.h"
#include "document/application.h"
#include "startup/message_routing.h"

namespace txs {

// The windows that an interactive start needs; implemented by the forms, scripted in tests.
class InteractiveShell {
 public:
  virtual ~InteractiveShell() = default;

  // The Open-Project dialog, modal: the chosen name, empty when the user cancelled.
  [[nodiscard]] virtual std::string ChooseProject(Application& application) = 0;

  // The main form; returns when it is closed.
  virtual void RunMainForm(Application& application) = 0;
};

// Runs the program on `command_line` (the text behind the program's name). Returns the exit code: 1
// when an unattended Create failed, else 0. Messages of the start routine itself are boxes even in
// unattended mode.
[[nodiscard]] int RunStartRoutine(Platform& platform, RoutedMessages& messages,
                                  InteractiveShell& shell, CreateView& unattended_view,
                                  std::string_view command_line);

}  // namespace txs
