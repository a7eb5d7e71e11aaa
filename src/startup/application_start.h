// What every program does before it can work on a project, with or without windows.
#pragma once

#include <functional>
#include <memory>
#include <string_view>

#include "document/application.h"
#include "environment/platform.h"
#include "text/message_service.h"

namespace txs {

// Reads and checks the installation and creates the `ProjectConfigurator`. Null when the studio
// cannot be used; `show` then got message 91, 92 or 94. `platform` and `messages` must outlive the
// result.
[[nodiscard]] std::unique_ptr<Application> StartApplication(
    Platform& platform, MessageService& messages, const std::function<void(const Message&)>& show);

// Makes `name` the current project: type from the registry, directory as given, or the registered
// one when `directory` is empty (it stays empty when the project is not registered). Loads nothing.
void SelectProject(Application& application, std::string_view name, std::string_view directory);

// Loads what an unattended run works on, in the place of main form and open-project routine: the
// main form's state, path variables, settings. False after message 901 with the reason, when the
// settings cannot be read. Never throws.
[[nodiscard]] bool LoadSelectedProject(Application& application);

}  // namespace txs
