// The windows stand in a module of their own beside the program, loaded when the first of them is
// shown. Linking the window toolkit into the program would cost every unattended run some twenty
// milliseconds and the toolkit's presence on the build server.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "ui/windows.h"

namespace txs {

enum class WindowFault {
  kNone,
  kNoModule,   // a build without windows
  kNotLoaded,  // the module is there and the system refuses it, as a rule for want of the toolkit
  kNoDisplay,  // none is named, or the one that is named does not answer
  kNoDesktop,  // Windows: a session that nobody sees, as that of a service
};

// What came of opening: windows exactly when there is no fault.
struct OpenedWindows {
  Windows* windows = nullptr;
  WindowFault fault = WindowFault::kNone;
  std::string reason;  // the system's words where the module could not be loaded
};

// Loads the module and connects to the display. What it gives lives as long as the process.
[[nodiscard]] OpenedWindows OpenWindowModule(const char* application_title);

// The module as message boxes and shell share it: opened by whoever needs it first, and not before.
class WindowModule {
 public:
  using Opener = std::function<OpenedWindows()>;

  explicit WindowModule(Opener open) : open_(std::move(open)) {}

  // Opens it at the first call; a fault is for good.
  [[nodiscard]] const OpenedWindows& Open();

 private:
  Opener open_;
  std::optional<OpenedWindows> opened_;
};

}  // namespace txs
