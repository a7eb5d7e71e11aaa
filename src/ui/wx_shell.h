// The windows of an interactive start.
#pragma once

#include <string>

#include "environment/host_paths.h"
#include "ui/help.h"
#include "ui/interactive_shell.h"

namespace txs {

// Needs a connection to the display (ConnectToDisplay).
class WxShell : public InteractiveShell {
 public:
  [[nodiscard]] std::string ChooseProject(Application& application) override;
  void RunMainForm(Application& application) override;
};

// Starts the viewer that the desktop has for the file's type.
class DesktopHelpViewer : public HelpViewer {
 public:
  explicit DesktopHelpViewer(const HostPaths& paths) : paths_(paths) {}
  [[nodiscard]] bool Open(const std::string& help_file, int topic) override;

 private:
  const HostPaths& paths_;
};

}  // namespace txs
