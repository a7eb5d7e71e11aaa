// The studio's list of projects in the registry.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "document/application.h"

namespace txs {

// A registered project as the registry holds it.
struct RegisteredProject {
  std::string name;
  std::string directory;  // value `Path`, as stored
  std::string type_text;  // value `ProjectType`, as stored: a number or a name
  long type = 0;
  std::string project_file;  // directory, name and ".vbg" for a group, ".txs" for all others
  bool exists = false;
};

// All registrations in the registry's order; removes nothing.
[[nodiscard]] std::vector<RegisteredProject> ListRegisteredProjects(Platform& platform);

// The registration of one name; values that are missing are empty, the type 0.
[[nodiscard]] RegisteredProject LookUpProject(Platform& platform, std::string_view name);

// One row of the Open-Project dialog's list view.
struct ProjectRow {
  std::string key;  // "S:" and the name in lower case
  std::string name;
  std::string directory;
  std::string type;  // the type's name
};

// The list view of the Open-Project dialog, without a window.
struct ProjectListModel {
  std::vector<ProjectRow> rows;
  int selected = -1;  // index of the selected row, -1 for none
  // Registrations that are left out because nobody knows now whether their project file is there.
  std::size_t unreachable = 0;
};

// `FillRegisteredProjects`: replaces the rows by the registered projects whose type has a bit in
// common with `type_mask`. Kept on purpose: a registration whose project file has gone is deleted
// from the registry as a side effect; one on a drive, share or link's target that is away, or in a
// folder that is closed to this user, is only left out and counted as unreachable. A second name
// that differs only in case is left out, since its key is taken. Afterwards no row is selected. A
// registration that cannot be deleted stays and is passed over.
void FillRegisteredProjects(Platform& platform, long type_mask, ProjectListModel& list);

// The state of the Open-Project dialog: which name it would return. The form only forwards events.
class ProjectChoice {
 public:
  void ClickRow(const ProjectListModel& list, int index);  // -1: empty space of the list
  void CloseByTitleBar() { name_.clear(); }
  // Cancel hides the dialog without clearing the chosen name, so a row clicked before Cancel is
  // still returned. Kept on purpose.
  void Cancel() {}
  [[nodiscard]] bool OpenEnabled() const { return open_enabled_; }
  [[nodiscard]] const std::string& ProjectName() const { return name_; }

 private:
  std::string name_;
  bool open_enabled_ = false;
};

}  // namespace txs
