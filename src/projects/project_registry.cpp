#include "projects/project_registry.h"

#include <algorithm>
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

// Whether the disk itself says that the project file has gone: the first folder above it that can
// be listed does not hold what leads to it. Of a folder that is closed to this user, and of a
// share, a stick or the target of a link that is away, nobody knows what it holds.
bool HasGone(const Platform& platform, const RegisteredProject& project) {
  const std::string root = RootFolder(project.directory);
  if (root.empty()) return true;  // no place that could be away
  bool is_project_file = true;
  for (std::string path = project.project_file;;) {
    const std::string name = FileName(path);
    std::string folder = ParentFolder(path);
    if (folder.size() < root.size()) folder = root;
    try {
      const std::vector<FileEntry> entries = platform.files.List(folder, "*");
      return std::ranges::none_of(entries, [&](const FileEntry& entry) {
        return EqualNoCase(entry.name, name) && !(is_project_file && entry.is_folder);
      });
    } catch (const RuntimeError& error) {
      if (error.Number() != ErrorNumber::kPathNotFound || folder.size() == root.size())
        return false;
    }
    path = std::move(folder);
    is_project_file = false;
  }
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
  list.unreachable = 0;
  std::unordered_set<std::string> keys;
  for (RegisteredProject& project : ListRegisteredProjects(platform)) {
    if (!project.exists) {
      if (!HasGone(platform, project)) {
        if ((project.type & type_mask) != 0) ++list.unreachable;
        continue;
      }
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
