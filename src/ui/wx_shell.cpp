#include "ui/wx_shell.h"

#include <wx/evtloop.h>

#include "ui/help_viewer.h"
#include "ui/project_open_form.h"
#include "ui/setup_wizard_form.h"

namespace txs {

std::string WxShell::ChooseProject(Application& application) {
  DesktopHelpViewer help(application.platform.host_paths);
  return FProjectOpen(nullptr, application, &help).ProjectName();
}

void WxShell::RunMainForm(Application& application) {
  DesktopHelpViewer help(application.platform.host_paths);
  wxEventLoop loop;
  // Deletes itself when it is closed.
  auto* const form = new FSetupWizard(application, help);
  form->Bind(wxEVT_DESTROY, [&loop, form](wxWindowDestroyEvent& event) {
    // Those of the controls come along here too.
    if (event.GetEventObject() == form) loop.ScheduleExit();
    event.Skip();
  });
  form->Show();
  loop.Run();
}

}  // namespace txs
