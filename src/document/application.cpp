#include "document/application.h"

namespace txs {
namespace {

constexpr char kUseRuntimeSetupValue[] = "UseRuntimeSetup";
constexpr char kHideMdacHintValue[] = "HideMdacHint";

bool ReadOption(const SystemTools& tools, const char* name, bool default_value) {
  return tools.RegistryNumber(Hive::kCurrentUser, kWizardKey, name, default_value ? 1 : 0) != 0;
}

std::vector<std::string> ReadExcludedFiles(Application& application) {
  try {
    return application.platform.tools.ReadNumberedList("Exclude", /*key_digits=*/1,
                                                       application.ProductDependencyFile());
  } catch (const RuntimeError&) {
    // Scan says that the list cannot be read.
    return {};
  }
}

// Directories are registered with a trailing backslash; users need not read two of them.
std::string InDirectory(const std::string& directory, const std::string& file_name) {
  return directory + (directory.ends_with('\\') ? "" : "\\") + file_name;
}

}  // namespace

std::string CurrentProject::StudioProjectFile() const {
  return InDirectory(directory, name + ".txs");
}

std::string CurrentProject::SettingsFile() const { return InDirectory(directory, name + ".swz"); }

std::string CurrentProject::LockFile() const { return InDirectory(directory, "~TXSetup.lock"); }

std::string CurrentProject::TemporaryDirectory() const { return InDirectory(directory, "~TEMP"); }

void LoadMainFormState(Application& application) {
  const SystemTools& tools = application.platform.tools;
  application.use_runtime_setup = ReadOption(tools, kUseRuntimeSetupValue, /*default_value=*/true);
  application.hide_mdac_hint = ReadOption(tools, kHideMdacHintValue, /*default_value=*/false);

  application.document.system_files.resolved.clear();
  RefreshExcludedFiles(application);
}

void RefreshExcludedFiles(Application& application) {
  application.document.system_files.excluded = ReadExcludedFiles(application);
}

void StoreUseRuntimeSetup(Application& application, bool use_runtime_setup) {
  application.platform.tools.WriteRegistry(Hive::kCurrentUser, kWizardKey, kUseRuntimeSetupValue,
                                           std::uint32_t{use_runtime_setup ? 1u : 0u});
  application.use_runtime_setup = use_runtime_setup;
}

void ShowError(Application& application, long id, const std::vector<std::string>& parameters,
               const RuntimeError& error) {
  application.messages.ShowMessage(application.texts.ComposeError(id, parameters, error));
}

void ShowWarning(Application& application, long id, const std::vector<std::string>& parameters) {
  application.messages.ShowMessage(application.texts.Compose(id, parameters));
}

}  // namespace txs
