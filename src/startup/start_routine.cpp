#include "startup/start_routine.h"

#include <memory>

#include "create/create_run.h"
#include "projects/open_project.h"
#include "startup/application_start.h"
#include "startup/command_line.h"

namespace txs {
namespace {

constexpr int kExitNormal = 0;
constexpr int kExitCreateFailed = 1;

constexpr long kMessageCannotEdit = 901;
constexpr long kMessageCommandLine = 913;

// Past ShowMessage: these are boxes in every mode.
void ShowBox(Platform& platform, const Message& message) {
  static_cast<void>(platform.message_boxes.Show(message.prompt, message.buttons, message.title,
                                                message.help_file, message.help_context));
}

void RefuseCommandLine(Application& application) {
  Message message = application.texts.Compose(kMessageCommandLine, {}, kButtonsOk | kIconCritical);
  message.title.clear();
  ShowBox(application.platform, message);
}

int RunUnattended(Application& application, RoutedMessages& messages, CreateView& view) {
  application.unattended = true;
  messages.GoUnattended(application.project.directory);
  if (!LoadSelectedProject(application)) return kExitCreateFailed;
  return RunCreate(application, view).succeeded ? kExitNormal : kExitCreateFailed;
}

void RunInteractive(Application& application, InteractiveShell& shell) {
  if (application.project.directory.empty()) {
    ShowBox(application.platform,
            application.texts.Compose(kMessageCannotEdit, {application.project.name},
                                      kButtonsOk | kIconCritical));
    return;
  }
  LoadMainFormState(application);
  // Unreadable settings were reported; the form then shows the defaults.
  static_cast<void>(OpenProject(application, std::string(application.project.name)));
  // A path was given, and no project of that name is registered. The form is shown all the same; it
  // has read nothing and saves nothing.
  if (application.project.directory.empty()) {
    ShowWarning(application, kMessageCannotEdit, {application.project.name});
  }
  shell.RunMainForm(application);
}

}  // namespace

int RunStartRoutine(Platform& platform, RoutedMessages& messages, InteractiveShell& shell,
                    CreateView& unattended_view, std::string_view command_line) {
  const std::unique_ptr<Application> application = StartApplication(
      platform, messages, [&platform](const Message& message) { ShowBox(platform, message); });
  if (application == nullptr) return kExitNormal;

  const CommandLine line = ParseCommandLine(command_line);
  switch (line.kind) {
    case CommandLine::Kind::kRefused:
      RefuseCommandLine(*application);
      break;
    case CommandLine::Kind::kUnattended:
      SelectProject(*application, line.project_name, line.project_directory);
      return RunUnattended(*application, messages, unattended_view);
    case CommandLine::Kind::kProject:
      SelectProject(*application, line.project_name, line.project_directory);
      RunInteractive(*application, shell);
      break;
    case CommandLine::Kind::kEmpty: {
      const std::string chosen = shell.ChooseProject(*application);
      if (chosen.empty()) break;
      SelectProject(*application, chosen, /*directory=*/{});
      RunInteractive(*application, shell);
      break;
    }
  }
  return kExitNormal;
}

int TellFailedStart(const std::string& reason, MessageBoxes& boxes, MessageBoxes& console,
                    std::string_view command_line) {
  const bool unattended = ParseCommandLine(command_line).kind == CommandLine::Kind::kUnattended;
  static_cast<void>((unattended ? console : boxes)
                        .Show(reason, kButtonsOk | kIconCritical,
                              /*title=*/"", /*help_file=*/"", /*help_context=*/0));
  return unattended ? kExitCreateFailed : kExitNormal;
}

}  // namespace txs
