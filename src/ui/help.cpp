#include "ui/help.h"

#include <string>

#include "document/work_border.h"

namespace txs {

void ShowHelp(Application& application, HelpViewer& viewer, int topic) {
  constexpr long kFileMissing = 1910;
  constexpr long kNoViewer = 1911;
  const std::string file = application.installation.HelpFile();
  static_cast<void>(AtWorkBorder(application, kNoViewer, file, [&] {
    if (!application.platform.files.FileExists(file)) {
      ShowWarning(application, kFileMissing, {file});
      return false;
    }
    if (viewer.Open(file, topic)) return true;
    ShowWarning(application, kNoViewer, {file});
    return false;
  }));
}

}  // namespace txs
