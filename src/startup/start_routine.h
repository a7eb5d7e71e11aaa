// The start routine: decides from registry and command line which project is worked on, and how.
#pragma once

#include <string_view>

#include "create/create_view.h"
#include "document/application.h"
#include "startup/message_routing.h"
#include "ui/interactive_shell.h"

namespace txs {

// Runs the program on `command_line` (the text behind the program's name). Returns the exit code: 1
// when an unattended Create failed, else 0. Messages of the start routine itself (91, 92, 94, 901,
// 913) are boxes even in unattended mode; everything an unattended run has to say goes to its log.
[[nodiscard]] int RunStartRoutine(Platform& platform, RoutedMessages& messages,
                                  InteractiveShell& shell, CreateView& unattended_view,
                                  std::string_view command_line);

}  // namespace txs
