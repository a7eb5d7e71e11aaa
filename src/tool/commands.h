// The commands of TXSetupTool, over whatever platform and streams they are given.
#pragma once

#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "environment/platform.h"

namespace txs {

struct ToolContext {
  std::ostream& out;             // results
  std::ostream& err;             // messages and the progress line
  bool err_is_terminal = false;  // only then is there a progress line
  std::string version;           // of the program, for --version

  // The computer. Not called for --help, --version and wrong usage; may throw RuntimeError.
  std::function<Platform&()> platform;

  // The Windows name of a path as the host writes it; nothing when the host has no such file or
  // folder, or writes paths as Windows does.
  std::function<std::optional<std::string>(const std::string& host_path)> windows_path;
};

inline constexpr int kToolDone = 0;
inline constexpr int kToolFailed = 1;
inline constexpr int kToolWrongUsage = 2;
inline constexpr int kToolSomethingMissing = 3;
inline constexpr int kToolDoesNotFit = 4;
inline constexpr int kToolDamaged = 5;

// Runs the command that `arguments` name (without the program's name). Returns the exit code. Never
// throws.
[[nodiscard]] int RunTool(const std::vector<std::string>& arguments, ToolContext& context);

}  // namespace txs
