#include "document/mdac.h"

#include <string>
#include <utility>
#include <vector>

#include "document/path_variables.h"
#include "environment/code_page.h"
#include "environment/windows_path.h"

namespace txs {
namespace {

std::string InKit(const Application& application, const char* installer) {
  return JoinPath(application.installation.SetupKitDirectory(), installer);
}

std::string SourceInKit(const Application& application, const char* installer) {
  return ToVariableForm(application.document.path_variables, InKit(application, installer),
                        VariableForm::kWholePath);
}

// Rebuilt through AddUnique: a Scan after an earlier Create may have added the other entry again,
// and none must run twice.
void ReplaceEntry(SetupDocument& document, const char* old_entry, const char* new_entry) {
  std::vector<std::string> entries;
  for (const std::string& entry : document.extra_todo_lines) {
    AddUnique(entries, EqualNoCase(entry, old_entry) ? new_entry : entry);
  }
  document.extra_todo_lines = std::move(entries);
}

}  // namespace

void UseMinimalMdac(Application& application) {
  SetupDocument& document = application.document;
  const std::string minimal_source = SourceInKit(application, kMinimalMdacInstaller);
  for (FileRow* row : document.AllRows()) {
    if (EqualNoCase(FileName(row->source), kFullMdacInstaller)) row->source = minimal_source;
  }
  ReplaceEntry(document, kFullMdacEntry, kMinimalMdacEntry);
}

void UseFullMdac(Application& application) {
  SetupDocument& document = application.document;
  const std::string minimal = InKit(application, kMinimalMdacInstaller);
  const std::string full_source = SourceInKit(application, kFullMdacInstaller);
  for (FileRow* row : document.AllRows()) {
    if (!EqualNoCase(row->destination, kTempDirName)) continue;
    if (!EqualNoCase(SourcePath(document.path_variables, row->source), minimal)) continue;
    row->source = full_source;
    row->compressed_name.clear();
  }
  ReplaceEntry(document, kMinimalMdacEntry, kFullMdacEntry);
}

}  // namespace txs
