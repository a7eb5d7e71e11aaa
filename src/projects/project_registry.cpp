#include "projects/project_registry.h"

#include <unordered_set>
#include <utility>

#include "environment/code_page.h"
#include "environment/installation.h"
#include "environment/project_type.h"
#include "environment/runtime_error.h"
#include "environment/windows_path.h"

namespace txs {
namespace {

std::string KeyOf(std::string_view name) {
  return std::string(kProjectsKey) + "\\" + std::string(name);
}

std::string ProjectFile(const RegisteredProject& project) {
  const char* const extension = project.type == kProjectTypeGroup ? ".vbg" : ".txs";
  return project.directory + "\\" + project.name + extension;
}

// Of a share or a stick that is away nobody knows whether its projects exist.
bool CanBeAsked(const Platform& platform, const RegisteredProject& project) {
  const std::string root = RootFolder(project.directory);
  return root.empty() || platform.files.FolderExists(root);
}

}  // namespace

RegisteredProject LookUpProject(Platform& platform, std::string_view name) {
  const std::string key = KeyOf(name);
  RegisteredProject project;
  project.name = name;
  project.directory = platform.tools.RegistryText(Hive::kLocalMachine, key, "Path", "");
  project.type_text = platform.tools.RegistryText(Hive::kLocalMachine, key, "ProjectType", "");
  project.type = ProjectTypeFromRegistry(project.type_text);
  project.project_file = ProjectFile(project);
  project.exists = platform.files.FileExists(project.project_file);
  return project;
}

std::vector<RegisteredProject> ListRegisteredProjects(Platform& platform) {
  std::vector<RegisteredProject> projects;
  for (const std::string& name :
       platform.tools.RegistrySubkeys(Hive::kLocalMachine, kProjectsKey)) {
    projects.push_back(LookUpProject(platform, name));
  }
  return projects;
}

void FillRegisteredProjects(Platform& platform, long type_mask, ProjectListModel& list) {
  list.rows.clear();
  list.selected = -1;
  std::unordered_set<std::string> keys;
  for (RegisteredProject& project : ListRegisteredProjects(platform)) {
    if (!project.exists) {
      if (!CanBeAsked(platform, project)) continue;
      try {
        platform.tools.RemoveRegistryKey(Hive::kLocalMachine, KeyOf(project.name));
      } catch (const RuntimeError&) {
        // Without the right to tidy up the list is still right; the next one to fill it may have
        // it.
      }
      continue;
    }
    if ((project.type & type_mask) == 0) continue;
    std::string key = "S:" + FoldCase(project.name);
    if (!keys.insert(key).second) continue;
    list.rows.push_back({std::move(key), std::move(project.name), std::move(project.directory),
                         ProjectTypeName(project.type)});
  }
}

void ProjectChoice::ClickRow(const ProjectListModel& list, int index) {
  const bool is_row = index >= 0 && static_cast<std::size_t>(index) < list.rows.size();
  name_ = is_row ? list.rows[static_cast<std::size_t>(index)].name : std::string();
  open_enabled_ = is_row;
}

}  // namespace txs
