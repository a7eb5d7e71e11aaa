#include "environment/special_folders_win32.h"

#include <windows.h>
// After <windows.h>.
#include <knownfolders.h>
#include <objbase.h>
#include <shlobj.h>

#include "environment/windows_calls_win32.h"

namespace txs {
namespace {

const KNOWNFOLDERID& IdOf(SpecialFolder folder) {
  switch (folder) {
    case SpecialFolder::kSystem:
      return FOLDERID_System;
    case SpecialFolder::kFonts:
      return FOLDERID_Fonts;
    case SpecialFolder::kCommonFiles:
      return FOLDERID_ProgramFilesCommon;
    case SpecialFolder::kProgramFiles:
      return FOLDERID_ProgramFiles;
    default:
      return FOLDERID_Windows;
  }
}

}  // namespace

std::string WindowsSpecialFolders::Folder(SpecialFolder folder) const {
  wchar_t* path = nullptr;
  const HRESULT result = SHGetKnownFolderPath(IdOf(folder), KF_FLAG_DEFAULT, nullptr, &path);
  // To be freed after a failure, too.
  std::string text = SUCCEEDED(result) && path != nullptr ? ToUtf8(path) : std::string();
  CoTaskMemFree(path);
  while (text.ends_with('\\')) text.pop_back();
  return text;
}

}  // namespace txs
