#include "projects/open_project.h"

#include <string>

#include "document/path_variables.h"
#include "document/settings_file.h"
#include "document/work_border.h"
#include "environment/project_type.h"
#include "projects/project_registry.h"

namespace txs {

bool OpenProject(Application& application, std::string_view name) {
  constexpr long kProjectCannotBeEdited = 901;
  // A copy: `name` may be the current project's, which is about to be replaced.
  const std::string subject(name);
  // The border of the routine: the callers are event handlers and the start routine, which have the
  // document at its defaults to go on with.
  return AtWorkBorder(application, kProjectCannotBeEdited, subject, [&] {
    // Until they are read; what fails before must not lead to a save of anything else, either.
    application.document.settings_source = SettingsSource::kUnread;
    const RegisteredProject registered = LookUpProject(application.platform, subject);
    CurrentProject& project = application.project;
    project.name = registered.name;
    project.directory = registered.directory;
    project.type = registered.type;
    project.file = registered.name;
    // What the Scan of another project collected has no business in this one's script.
    application.document.extra_todo_lines.clear();
    application.document.unfinished_files.clear();
    LoadCurrentProject(application);
    return true;
  });
}

void LoadCurrentProject(Application& application) {
  application.document.path_variables = BuildPathVariables(
      application.installation, application.platform.tools, application.project.directory);
  // Without the user directories of the project before, should there have been one.
  application.document.steps.user_directories.clear();
  ExtendPathVariables(application);
  ReadSettings(application);
  ExtendPathVariables(application);
}

bool TypeDependentControlsEnabled(long project_type) {
  return project_type == kProjectTypeSingle || project_type == kProjectTypeServer;
}

}  // namespace txs
