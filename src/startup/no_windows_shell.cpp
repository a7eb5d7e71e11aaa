#include "startup/no_windows_shell.h"

namespace txs {
namespace {

constexpr long kMessageNoWindows = 1900;

void SayNoWindows(Application& application) {
  application.messages.ShowMessage(
      application.texts.Compose(kMessageNoWindows, {}, kButtonsOk | kIconInformation));
}

}  // namespace

std::string NoWindowsShell::ChooseProject(Application& application) {
  SayNoWindows(application);
  return {};
}

void NoWindowsShell::RunMainForm(Application& application) { SayNoWindows(application); }

}  // namespace txs
