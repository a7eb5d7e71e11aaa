// The studio's installation settings, read from the registry once at start.
#pragma once

#include <optional>
#include <string>

#include "environment/system_tools.h"

namespace txs {

inline constexpr char kVendorKey[] = "Software\\ORBEKA GmbH";
inline constexpr char kStudioKey[] = "Software\\ORBEKA GmbH\\Tavix\\4.0";
inline constexpr char kProjectsKey[] = "Software\\ORBEKA GmbH\\Tavix\\4.0\\Projects";
// Value of kStudioKey: the class of the studio's ProjectConfigurator component, its name or {...}.
inline constexpr char kConfiguratorValue[] = "ProjectConfigurator";
inline constexpr char kWizardKey[] = "Software\\ORBEKA GmbH\\Tavix\\4.0\\TX4SetupWizard";

struct InstallationSettings {
  long language_id = 0;          // LCID: 1031 German, 1033 English
  std::string studio_directory;  // Path
  std::string main_directory;    // MainDir
  std::string common_directory;  // Common
  std::string version;
  std::string projects_directory;  // empty when it could not be created
  std::string templates_directory;

  // "\SetupKit" under the main directory: kit files, TXSTPKIT.INI, TXDependencies.ini.
  [[nodiscard]] std::string SetupKitDirectory() const { return main_directory + "\\SetupKit"; }
  [[nodiscard]] std::string HelpFile() const {
    return common_directory + "\\HelpFiles\\Projektmanagement.chm";
  }
};

// Why the studio cannot be used: message 91 (no parameter) or 92 (the missing directory).
struct EnvironmentFault {
  long message_id = 0;
  std::string parameter;
};

struct EnvironmentCheck {
  InstallationSettings settings;          // language_id is always filled
  std::optional<EnvironmentFault> fault;  // set: the program must end
};

// Reads and checks the installation. Never throws: registry reads yield defaults, and a projects
// folder that cannot be created only leaves `projects_directory` empty. May create the default
// projects folder (with its parents) and register it once.
[[nodiscard]] EnvironmentCheck CheckEnvironment(SystemTools& tools, FileSystem& files);

}  // namespace txs
