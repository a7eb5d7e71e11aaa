#include <windows.h>
// After windows.h, which they build on.
#include <cderr.h>
#include <commdlg.h>

#include <algorithm>
#include <string>

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
  // The program's current directory stays what it is.
  dialog.Flags = OFN_EXPLORER | OFN_FILEMUSTEXIST | OFN_HIDEREADONLY | OFN_NOCHANGEDIR |
                 OFN_ENABLESIZING | (question.several ? OFN_ALLOWMULTISELECT : 0U);
  OpenFilesAnswer answer;
  if (GetOpenFileNameW(&dialog) == FALSE) {
    answer.too_many = CommDlgExtendedError() == FNERR_BUFFERTOOSMALL;
    return answer;
  }
  answer.host_paths = SplitChosenFiles(wxString(buffer).utf8_string());
  return answer;
}

}  // namespace txs
