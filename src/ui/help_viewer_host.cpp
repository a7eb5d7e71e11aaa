#include <wx/utils.h>

#include "environment/runtime_error.h"
#include "ui/help_viewer.h"
#include "ui/wx_text.h"

namespace txs {

bool DesktopHelpViewer::Open(const std::string& help_file, int /*topic*/) {
  try {
    return wxLaunchDefaultApplication(ToWx(paths_.HostPath(help_file)));
  } catch (const RuntimeError&) {
    return false;
  }
}

}  // namespace txs
