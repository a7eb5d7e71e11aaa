// The start routine: decides from registry and command line which project is worked on, and how.
#pragma once

#include <string>
#include <string_view>

#include "create/create_view.h"
#include "document/application.h"
#include "environment/message_boxes.h"
#include "startup/message_routing.h"
#include "ui/interactive_shell.h"

namespace txs {

// Runs the program on `command_line` (the text behind the program's name). Returns the exit code: 1
// when an unattended Create failed, else 0. Messages of the start routine itself (91, 92, 94, 901,
// 913) are boxes even in unattended mode; everything an unattended run has to say goes to its log.
[[nodiscard]] int RunStartRoutine(Platform& platform, RoutedMessages& messages,
                                  InteractiveShell& shell, CreateView& unattended_view,
                                  std::string_view command_line);

// Says why there was nothing to run the start routine on: the registry cannot be read, or memory
// ran out. In which language to say so is not known. An interactive start says it in a box; an
// unattended one on `console` alone, since nobody would close the box. Returns the exit code: 1 for
// an unattended run, which must not be taken for a success, else 0.
[[nodiscard]] int TellFailedStart(const std::string& reason, MessageBoxes& boxes,
                                  MessageBoxes& console, std::string_view command_line);

}  // namespace txs
