// TXSetupTool.
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "environment/platform.h"
#include "environment/runtime_error.h"
#include "startup/console_message_boxes.h"
#include "startup/program_place.h"
#include "tool/commands.h"

namespace {

// The computer, made when a command first asks for it.
class LazyPlatform {
 public:
  txs::Platform& Get() {
    if (owned_ == nullptr) {
      owned_ = txs::MakeHostPlatform(boxes_);
      owned_->Get().tools.Initialize(txs::ThisApplication());
    }
    return owned_->Get();
  }

  std::optional<std::string> WindowsPath(const std::string& host_path) {
    try {
      const txs::Platform& platform = Get();
      std::string path = platform.host_paths.WindowsPath(host_path);
      const bool is_there = platform.files.FileExists(path) || platform.files.FolderExists(path);
      if (is_there) return path;
    } catch (const txs::RuntimeError&) {
      // No path of this computer.
    }
    return std::nullopt;
  }

 private:
  txs::ConsoleMessageBoxes boxes_ = txs::ConsoleMessageBoxes(std::cerr, "TXSetupTool");
  std::unique_ptr<txs::OwnedPlatform> owned_;
};

}  // namespace

int main(int argc, char** argv) {
  const txs::Utf8Console utf8_console;
  LazyPlatform platform;
  txs::ToolContext context{
      .out = std::cout,
      .err = std::cerr,
      .err_is_terminal = txs::ErrorsGoToATerminal(),
      .version = TXS_VERSION,
      .platform = [&platform]() -> txs::Platform& { return platform.Get(); },
      .windows_path = [&platform](const std::string& path) { return platform.WindowsPath(path); }};
  return txs::RunTool(txs::CommandLineArguments(argc, argv), context);
}
