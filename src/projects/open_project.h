// Makes a registered project the current one.
#pragma once

#include <string_view>

#include "document/application.h"

namespace txs {

// The open-project routine: name, directory and type from the registry, path variables, settings.
// The to-do lines of the project before are dropped. A missing registry value gives an empty
// directory or type 0. Returns false after an error message when the settings file exists and
// cannot be read or the project configurator fails; the document then holds the defaults. Never
// throws.
bool OpenProject(Application& application, std::string_view name);

// What follows once name, directory and type are set: path-variable list, temporary directory,
// settings file. The unattended run, which keeps the directory of its command line, begins here.
// Throws RuntimeError as ReadSettings.
void LoadCurrentProject(Application& application);

// The controls of the main form that only apply to the types Single and Server.
[[nodiscard]] bool TypeDependentControlsEnabled(long project_type);

}  // namespace txs
