#include "startup/module_shell.h"

#include <vector>

namespace txs {
namespace {

constexpr long kMessageNoWindows = 1900;
constexpr long kMessageNoDesktop = 1974;
constexpr long kMessageNoDisplay = 1975;
constexpr long kMessageNotLoaded = 1976;

long MessageOf(WindowFault fault) {
  switch (fault) {
    case WindowFault::kNoDesktop:
      return kMessageNoDesktop;
    case WindowFault::kNoDisplay:
      return kMessageNoDisplay;
    case WindowFault::kNotLoaded:
      return kMessageNotLoaded;
    default:
      return kMessageNoWindows;
  }
}

}  // namespace

std::string ModuleShell::ChooseProject(Application& application) {
  InteractiveShell* const shell = Shell(application);
  return shell == nullptr ? std::string() : shell->ChooseProject(application);
}

void ModuleShell::RunMainForm(Application& application) {
  InteractiveShell* const shell = Shell(application);
  if (shell != nullptr) shell->RunMainForm(application);
}

InteractiveShell* ModuleShell::Shell(Application& application) {
  const OpenedWindows& opened = module_.Open();
  if (opened.windows != nullptr) return &opened.windows->shell;
  application.messages.ShowMessage(application.texts.Compose(
      MessageOf(opened.fault), {opened.reason}, kButtonsOk | kIconExclamation));
  return nullptr;
}

}  // namespace txs
