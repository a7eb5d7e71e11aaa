// What the window module gives to the program: the only thing that both sides of the border know.
// Nothing of the window toolkit.
#pragma once

#include "environment/message_boxes.h"
#include "ui/interactive_shell.h"

namespace txs {

// Both live as long as the process.
struct Windows {
  MessageBoxes& message_boxes;
  InteractiveShell& shell;
};

// The module's only entry, exported under this name with C linkage. Connects to the display; null
// when it cannot be reached. To be called once.
inline constexpr char kOpenWindowsName[] = "TxsOpenWindows";
using OpenWindowsFunction = Windows* (*)(const char* application_title);

}  // namespace txs
