// TXSetupTool.
#include <unistd.h>

#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "environment/file_system_host.h"
#include "environment/platform.h"
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
    std::error_code none;
    if (!std::filesystem::exists(host_path, none)) return std::nullopt;
    const auto* const files = dynamic_cast<const txs::HostFileSystem*>(&Get().files);
    if (files == nullptr) return std::nullopt;
    return files->WindowsPath(host_path);
  }

 private:
  txs::ConsoleMessageBoxes boxes_ = txs::ConsoleMessageBoxes(std::cerr, "TXSetupTool");
  std::unique_ptr<txs::OwnedPlatform> owned_;
};

}  // namespace

int main(int argc, char** argv) {
  LazyPlatform platform;
  txs::ToolContext context{
      .out = std::cout,
      .err = std::cerr,
      .err_is_terminal = isatty(STDERR_FILENO) == 1,
      .version = TXS_VERSION,
      .platform = [&platform]() -> txs::Platform& { return platform.Get(); },
      .windows_path = [&platform](const std::string& path) { return platform.WindowsPath(path); }};
  return txs::RunTool(std::vector<std::string>(argv + 1, argv + argc), context);
}
