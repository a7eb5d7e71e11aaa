// The windows stand in a module of their own beside the program, loaded when the first of them is
// shown. Linking the window toolkit into the program would cost every unattended run some twenty
// milliseconds and the toolkit's presence on the build server.
#pragma once

#include "environment/message_boxes.h"

namespace txs {

// Loads the module and connects to the display; null where there is no display or no module (a
// build without windows has none). The reason is not reported: whoever asks has another way to
// show its text. What is returned lives as long as the process.
[[nodiscard]] MessageBoxes* OpenWindowModule(const char* application_title);

}  // namespace txs
