// TXSetupWizard.
#include <exception>
#include <iostream>
#include <memory>

#include "create/create_view.h"
#include "environment/platform.h"
#include "startup/console_message_boxes.h"
#include "startup/display_message_boxes.h"
#include "startup/message_routing.h"
#include "startup/module_shell.h"
#include "startup/program_place.h"
#include "startup/start_routine.h"
#include "startup/window_module.h"

namespace {

int RunProgram(const std::string& command_line, txs::MessageBoxes& boxes,
               txs::WindowModule& module) {
  const std::unique_ptr<txs::OwnedPlatform> owned = txs::MakeHostPlatform(boxes);
  txs::Platform& platform = owned->Get();
  platform.tools.Initialize(txs::ThisApplication());
  txs::RoutedMessages messages(platform, std::cerr, txs::SpareLogDirectory());
  txs::ModuleShell shell(module);
  txs::SilentCreateView view;
  return txs::RunStartRoutine(platform, messages, shell, view, command_line);
}

}  // namespace

int main(int argc, char** argv) {
  const txs::Utf8Console utf8_console;
  txs::ConsoleMessageBoxes console(std::cerr, txs::kApplicationTitle);
  txs::WindowModule module([] { return txs::OpenWindowModule(txs::kApplicationTitle); });
  txs::DisplayMessageBoxes boxes(console, module);
  std::string command_line;
  try {
    command_line = txs::CommandLineText(argc, argv);
    return RunProgram(command_line, boxes, module);
  } catch (const std::exception& error) {
    return txs::TellFailedStart(error.what(), boxes, console, command_line);
  }
}
