// The process-wide state, in one object that startup (or a test) builds and passes by reference.
#pragma once

#include <memory>
#include <string>

#include "document/setup_document.h"
#include "environment/installation.h"
#include "environment/platform.h"
#include "environment/runtime_error.h"
#include "text/message_service.h"
#include "text/text_service.h"

namespace txs {

// The project that the process works on.
struct CurrentProject {
  std::string name;       // the registry subkey: no directory, no extension
  std::string directory;  // as stored or as given, with or without trailing backslash
  long type = 0;          // project_type.h; 0 when unknown
  std::string file;       // directory + "\" + name + ".txs", or the bare name

  // directory + "\" + name + ".txs", whatever `file` holds.
  [[nodiscard]] std::string StudioProjectFile() const;
  // directory + "\" + name + ".swz"
  [[nodiscard]] std::string SettingsFile() const;
  // directory + "\~TXSetup.lock": of the directory, since projects that share it share ~TEMP.
  [[nodiscard]] std::string LockFile() const;
  // directory + "\~TEMP": where Create compresses.
  [[nodiscard]] std::string TemporaryDirectory() const;
};

struct Application {
  Platform& platform;
  MessageService& messages;
  TextService texts;
  InstallationSettings installation;
  std::unique_ptr<ProjectConfigurator> configurator;  // never null once the start routine is past
  CurrentProject project;
  SetupDocument document;
  bool unattended = false;        // `UnattendedMode`: set only by the switch /c=
  bool use_runtime_setup = true;  // `UseRuntimeSetup`
  bool hide_mdac_hint = false;    // `HideMdacHint`

  // \SetupKit\TXDependencies.ini under the main directory.
  [[nodiscard]] std::string ProductDependencyFile() const {
    return installation.SetupKitDirectory() + "\\TXDependencies.ini";
  }
};

// What loading the main form does to the state, with or without a window: reads the options of the
// wizard's registry key, empties both system-file lists and reads section Exclude of the product
// dependency file into the second. An unreadable dependency file counts as an empty one; Scan asks
// for it again.
void LoadMainFormState(Application& application);

// Section Exclude as it is now, in the place of what was read before.
void RefreshExcludedFiles(Application& application);

// Keeps the option "Use pre-defined setup for runtime components": the number 1 or 0 in the
// registry. Throws RuntimeError when the registry refuses.
void StoreUseRuntimeSetup(Application& application, bool use_runtime_setup);

// Shows `id` composed with `parameters` and text 99 for `error`, as every work routine does at its
// border.
void ShowError(Application& application, long id, const std::vector<std::string>& parameters,
               const RuntimeError& error);

// Shows message `id` under its title, with the exclamation icon.
void ShowWarning(Application& application, long id, const std::vector<std::string>& parameters);

}  // namespace txs
