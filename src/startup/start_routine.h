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

  // The main form on the project that was just opened; returns when it is closed. What loading the
  // form does to the state has been done (LoadMainFormState).
  virtual void RunMainForm(Application& application) = 0;
};

// Runs the program on `command_line` (the text behind the program's name). Returns the exit code: 1
// when an unattended Create failed, else 0. Messages of the start routine itself (91, 92, 94, 901,
// 913) are boxes even in unattended mode; everything an unattended run has to say goes to its log.
[[nodiscard]] int RunStartRoutine(Platform& platform, RoutedMessages& messages,
                                  InteractiveShell& shell, CreateView& unattended_view,
                                  std::string_view command_line);

}  // namespace txs
