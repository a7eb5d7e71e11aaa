// The viewer that the desktop has for help files.
#pragma once

#include <string>

#include "environment/host_paths.h"
#include "ui/help.h"

namespace txs {

// On Windows, HTML Help at the topic, else the program for files of that type; elsewhere only the
// latter, which opens the file at its first page.
class DesktopHelpViewer : public HelpViewer {
 public:
  // `paths` must outlive the viewer.
  explicit DesktopHelpViewer(const HostPaths& paths) : paths_(paths) {}
  [[nodiscard]] bool Open(const std::string& help_file, int topic) override;

 private:
  const HostPaths& paths_;
};

}  // namespace txs
