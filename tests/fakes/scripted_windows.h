// A window module without windows: counts how often it is opened and answers from a script.
#pragma once

#include <string>

#include "fakes/scripted_message_boxes.h"
#include "startup/window_module.h"

namespace txs {

class ScriptedInteractiveShell : public InteractiveShell {
 public:
  std::string choice;
  int forms = 0;

  [[nodiscard]] std::string ChooseProject(Application& /*application*/) override { return choice; }
  void RunMainForm(Application& /*application*/) override { ++forms; }
};

struct ScriptedWindows {
  ScriptedMessageBoxes message_boxes;
  ScriptedInteractiveShell shell;
  WindowFault fault = WindowFault::kNone;  // other than kNone: opening fails
  std::string reason;
  int opened = 0;

  Windows windows{message_boxes, shell};
  WindowModule module{[this] {
    ++opened;
    return OpenedWindows{.windows = fault == WindowFault::kNone ? &windows : nullptr,
                         .fault = fault,
                         .reason = reason};
  }};
};

}  // namespace txs
