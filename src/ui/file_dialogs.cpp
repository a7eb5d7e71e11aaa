#include "ui/file_dialogs.h"

#include <wx/dirdlg.h>

#include "document/path_variables.h"
#include "environment/runtime_error.h"
#include "environment/windows_path.h"
#include "ui/chosen_files.h"
#include "ui/open_files.h"
#include "ui/wx_text.h"

namespace txs {
namespace {

constexpr long kNotCompleted = 1913;
constexpr long kOutsideOfDrives = 1925;
constexpr long kChooseSetupDirectory = 1926;
// A box that names more would not fit on the screen.
constexpr std::size_t kMostNamed = 10;

// The nearest folder at or above `directory` that exists, in the host's name; empty when none does.
std::string HostFolder(const Application& application, std::string directory) {
  try {
    while (!directory.empty()) {
      const std::string folder = directory.back() == ':' ? directory + "\\" : directory;
      if (application.platform.files.FolderExists(folder)) {
        return application.platform.host_paths.HostPath(folder);
      }
      std::string parent = ParentFolder(directory);
      if (parent.size() >= directory.size()) break;
      directory = std::move(parent);
    }
  } catch (const RuntimeError&) {
    // The dialog then opens where the host likes.
  }
  return {};
}

}  // namespace

std::vector<std::string> WindowsPaths(Application& application,
                                      const std::vector<std::string>& host_paths) {
  std::vector<std::string> paths;
  std::string outside;
  std::size_t outside_count = 0;
  for (const std::string& host_path : host_paths) {
    try {
      paths.push_back(application.platform.host_paths.WindowsPath(host_path));
    } catch (const RuntimeError&) {
      if (++outside_count <= kMostNamed) outside += "\r\n" + host_path;
    }
  }
  if (outside_count > kMostNamed) outside += "\r\n...";
  if (outside_count > 0) ShowWarning(application, kOutsideOfDrives, {outside});
  return paths;
}

std::vector<std::string> AskForFiles(wxWindow* parent, Application& application,
                                     const FileQuestion& question) {
  try {
    const OpenFilesAnswer answer =
        OpenFiles(parent, question, HostFolder(application, question.directory));
    return WindowsPaths(application, ChosenPaths(application, answer));
  } catch (const RuntimeError& error) {
    ShowError(application, kNotCompleted, {}, error);
    return {};
  }
}

std::optional<std::string> AskForSetupDirectory(wxWindow* parent, Application& application,
                                                const std::string& directory) {
  try {
    const PathVariableList& variables = application.document.path_variables;
    wxDirDialog dialog(parent, ToWx(application.texts.GetText(kChooseSetupDirectory)),
                       ToWx(HostFolder(application, FromVariableForm(variables, directory))));
    if (dialog.ShowModal() != wxID_OK) return std::nullopt;
    const std::vector<std::string> chosen = WindowsPaths(application, {FromWx(dialog.GetPath())});
    if (chosen.empty()) return std::nullopt;
    // A name behind the directory makes the directory itself what is converted.
    const std::string answer = ParentFolder(
        ToVariableForm(variables, JoinPath(chosen.front(), "x"), VariableForm::kWholePath));
    return answer.ends_with(':') ? answer + "\\" : answer;
  } catch (const RuntimeError& error) {
    ShowError(application, kNotCompleted, {}, error);
    return std::nullopt;
  }
}

}  // namespace txs
