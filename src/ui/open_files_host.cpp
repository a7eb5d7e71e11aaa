#include <wx/filedlg.h>

#include "ui/file_dialogs.h"
#include "ui/open_files.h"
#include "ui/wx_text.h"

namespace txs {

OpenFilesAnswer OpenFiles(wxWindow* parent, const FileQuestion& question,
                          const std::string& host_folder) {
  const long style = wxFD_OPEN | wxFD_FILE_MUST_EXIST | (question.several ? wxFD_MULTIPLE : 0);
  wxFileDialog dialog(parent, ToWx(question.title), ToWx(host_folder), wxString(),
                      ToWx(HostFilter(question.filter)), style);
  OpenFilesAnswer answer;
  if (dialog.ShowModal() != wxID_OK) return answer;
  wxArrayString chosen;
  if (question.several) {
    dialog.GetPaths(chosen);
  } else {
    chosen.Add(dialog.GetPath());
  }
  for (const wxString& path : chosen) {
    // Something that is no file of this computer has no path.
    if (!path.empty()) answer.host_paths.push_back(FromWx(path));
  }
  return answer;
}

}  // namespace txs
