#include "environment/installation.h"

#include <cstdint>
#include <limits>

#include "environment/runtime_error.h"

namespace txs {
namespace {

constexpr long kNoStudioMessage = 91;
constexpr long kStudioDirectoryMissingMessage = 92;

constexpr char kProjectsPathValue[] = "DefaultProjectsPath";

std::string DocumentsFolder(const SystemTools& tools) {
  return tools.RegistryText(Hive::kCurrentUser,
                            "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders",
                            "Personal", "");
}

bool MadeFolder(FileSystem& files, const std::string& folder) {
  try {
    files.MakeFolder(folder);
    return true;
  } catch (const RuntimeError&) {
    return false;
  }
}

// Empty when there is no such folder and none could be made.
std::string ProjectsDirectory(SystemTools& tools, FileSystem& files, const std::string& documents) {
  const std::string registered =
      tools.RegistryText(Hive::kCurrentUser, kStudioKey, kProjectsPathValue, "");
  if (!registered.empty()) {
    return files.FolderExists(registered) || MadeFolder(files, registered) ? registered
                                                                           : std::string();
  }
  // Without a documents folder the path would begin at the root of whatever drive is current.
  if (documents.empty()) return {};
  std::string usual = documents + "\\TavixStudio\\Projects";
  if (!MadeFolder(files, usual)) return {};
  try {
    tools.WriteRegistry(Hive::kCurrentUser, kStudioKey, kProjectsPathValue, usual);
  } catch (const RuntimeError&) {
    // The folder serves this run all the same; the next start registers it.
  }
  return usual;
}

std::string TemplatesDirectory(const SystemTools& tools, const std::string& documents) {
  std::string registered = tools.RegistryText(Hive::kCurrentUser, kStudioKey, "TemplatesPath", "");
  if (!registered.empty() || documents.empty()) return registered;
  return documents + "\\TavixStudio\\Templates";
}

}  // namespace

EnvironmentCheck CheckEnvironment(SystemTools& tools, FileSystem& files) {
  EnvironmentCheck check;
  InstallationSettings& settings = check.settings;

  const std::int64_t language = tools.RegistryNumber(Hive::kLocalMachine, kStudioKey, "LCID", 0);
  if (language >= 0 && language <= std::numeric_limits<std::int32_t>::max()) {
    settings.language_id = static_cast<long>(language);
  }

  const std::string studio = tools.RegistryText(Hive::kLocalMachine, kStudioKey, "Path", "");
  if (studio.empty()) {
    check.fault = EnvironmentFault{kNoStudioMessage, ""};
    return check;
  }
  if (!files.FolderExists(studio)) {
    check.fault = EnvironmentFault{kStudioDirectoryMissingMessage, studio};
    return check;
  }
  settings.studio_directory = studio;

  settings.main_directory = tools.RegistryText(Hive::kLocalMachine, kVendorKey, "MainDir", "");
  settings.common_directory = tools.RegistryText(Hive::kLocalMachine, kVendorKey, "Common", "");
  settings.version = tools.RegistryText(Hive::kLocalMachine, kStudioKey, "Version", "");

  const std::string documents = DocumentsFolder(tools);
  settings.projects_directory = ProjectsDirectory(tools, files, documents);
  settings.templates_directory = TemplatesDirectory(tools, documents);
  return check;
}

}  // namespace txs
