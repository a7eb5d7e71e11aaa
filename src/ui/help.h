// The help file of the studio.
#pragma once

#include <string>

#include "document/application.h"

namespace txs {

// The platform's viewer for help files.
class HelpViewer {
 public:
  virtual ~HelpViewer() = default;

  // Opens a help file, named as Windows names it, at a topic; 0 is the contents. False when no
  // viewer could be started.
  [[nodiscard]] virtual bool Open(const std::string& help_file, int topic) = 0;
};

// Topics of the help file.
inline constexpr int kHelpContents = 0;

// What F1 and the Help buttons do. A help file that is not there (message 1910) and a viewer that
// cannot be started (message 1911) are said, with the file's full path.
void ShowHelp(Application& application, HelpViewer& viewer, int topic);

}  // namespace txs
