// The setup document: what the wizard edits, the settings file stores, Scan fills and Create
// builds. One per process, kept in Application.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "document/file_list.h"
#include "document/path_variables.h"
#include "document/step_settings.h"

namespace txs {

// What the settings file on the disk is to the document. Decides whether a save may replace it.
enum class SettingsSource {
  kFile,     // it was read or saved, and held what `settings_digest` tells
  kNoFile,   // there was none, so that what is there by now was never read
  kUnread,   // it could not be read: the document holds the defaults instead
  kCleared,  // the user wants nothing of what it holds
};

struct SetupDocument {
  StepSettings steps;
  FileList files;
  FileList hidden_files;  // read from the settings file, packaged, never shown, never written back
  std::vector<std::string> ini_files;
  std::vector<std::string> hidden_ini_files;
  SystemFileNames system_files;
  // Complete setup-script entries, several commands joined by "@"; no duplicates without regard to
  // case. They live until another project is opened or the process ends: the settings file has no
  // place for them.
  std::vector<std::string> extra_todo_lines;
  // Folded bare names of files that a Scan did not find, or did not follow to the end. The next one
  // treats them as new: what is missing below a row that stood in the list is otherwise taken for
  // deleted by the user. They live as long as the lines above.
  std::vector<std::string> unfinished_files;
  // File name of the project's built program. Create refuses to run while it is empty.
  std::string program_name;
  PathVariableList path_variables;
  std::string configurator_value;  // what ProjectConfigurator answered for the project
  SettingsSource settings_source = SettingsSource::kNoFile;
  // Of everything that a save would replace, as it was read or saved last. With kFile only.
  std::uint64_t settings_digest = 0;
  bool changed = false;  // since the settings were read, saved or cleared

  // The rows that Create works on: the visible ones, then the hidden ones. Valid until a list
  // changes.
  [[nodiscard]] std::vector<FileRow*> AllRows();
};

}  // namespace txs
