#include <windows.h>
// After windows.h, which they build on.
#include <cderr.h>
#include <commdlg.h>

#include <algorithm>
#include <string>

#include "environment/runtime_error.h"
#include "strings/reason.h"
#include "ui/chosen_files.h"
#include "ui/file_dialogs.h"
#include "ui/open_files.h"
#include "ui/wx_text.h"

namespace txs {
namespace {

// Characters; some thousand files. Windows neither grows it nor tells beforehand what it will need.
constexpr std::size_t kBufferSize = 256 * 1024;

// "Pictures|*.BMP" as Windows takes it: every part ended by a zero, the last by two.
std::wstring FilterParts(const std::string& filter) {
  std::wstring parts = ToWx(filter).ToStdWstring();
  std::replace(parts.begin(), parts.end(), L'|', L'\0');
  return parts + L'\0';
}

// The dialog moves the current directory, whatever its flags say; nobody could delete that folder
// while the program runs.
class CurrentDirectoryKept {
 public:
  CurrentDirectoryKept() : path_(GetCurrentDirectoryW(0, nullptr), L'\0') {
    const auto size = static_cast<DWORD>(path_.size());
    if (GetCurrentDirectoryW(size, path_.data()) >= size) path_.clear();
  }
  ~CurrentDirectoryKept() {
    if (!path_.empty()) SetCurrentDirectoryW(path_.c_str());
  }
  CurrentDirectoryKept(const CurrentDirectoryKept&) = delete;
  CurrentDirectoryKept& operator=(const CurrentDirectoryKept&) = delete;

 private:
  std::wstring path_;
};

}  // namespace

OpenFilesAnswer OpenFiles(wxWindow* parent, const FileQuestion& question,
                          const std::string& host_folder) {
  const std::wstring filter = FilterParts(HostFilter(question.filter));
  const std::wstring folder = ToWx(host_folder).ToStdWstring();
  const std::wstring title = ToWx(question.title).ToStdWstring();
  std::wstring buffer(kBufferSize, L'\0');
  OPENFILENAMEW dialog = {};
  dialog.lStructSize = sizeof dialog;
  dialog.hwndOwner = parent == nullptr ? nullptr : parent->GetHWND();
  dialog.lpstrFilter = filter.c_str();
  dialog.lpstrFile = buffer.data();
  dialog.nMaxFile = static_cast<DWORD>(buffer.size());
  dialog.lpstrInitialDir = folder.empty() ? nullptr : folder.c_str();
  dialog.lpstrTitle = title.c_str();
  dialog.Flags = OFN_EXPLORER | OFN_FILEMUSTEXIST | OFN_HIDEREADONLY | OFN_NOCHANGEDIR |
                 OFN_ENABLESIZING | (question.several ? OFN_ALLOWMULTISELECT : 0U);
  OpenFilesAnswer answer;
  const CurrentDirectoryKept current_directory;
  if (GetOpenFileNameW(&dialog) == FALSE) {
    const DWORD error = CommDlgExtendedError();
    answer.too_many = error == FNERR_BUFFERTOOSMALL;
    if (error == 0 || answer.too_many) return answer;
    throw RuntimeError(ErrorNumber::kInternal,
                       Words(Reason::kFileDialogFailed, {std::to_string(error)}));
  }
  answer.host_paths = SplitChosenFiles(wxString(buffer).utf8_string());
  return answer;
}

}  // namespace txs
