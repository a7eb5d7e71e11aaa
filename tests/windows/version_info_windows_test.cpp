// Version texts against GetFileVersionInfo, for every program file of this Windows.

#include <gtest/gtest.h>

#include <windows.h>

#include <string>
#include <vector>

#include "environment/file_system_win32.h"
#include "environment/special_folders_win32.h"
#include "environment/version_info.h"
#include "environment/windows_calls_win32.h"
#include "environment/windows_path.h"

namespace txs {
namespace {

// "" when the system finds no version.
std::string SystemVersion(const std::string& path) {
  const std::wstring wide = ToWide(path);
  // Not the version of the translation (.mui) that stands for the file.
  DWORD unused = 0;
  const DWORD size = GetFileVersionInfoSizeExW(FILE_VER_GET_NEUTRAL, wide.c_str(), &unused);
  std::vector<char> block(size);
  VS_FIXEDFILEINFO* fixed = nullptr;
  UINT length = 0;
  if (size == 0 ||
      !GetFileVersionInfoExW(FILE_VER_GET_NEUTRAL, wide.c_str(), 0, size, block.data()) ||
      !VerQueryValueW(block.data(), L"\\", reinterpret_cast<void**>(&fixed), &length) ||
      length < sizeof *fixed) {
    return {};
  }
  std::string text;
  for (const DWORD part : {fixed->dwFileVersionMS >> 16, fixed->dwFileVersionMS & 0xFFFF,
                           fixed->dwFileVersionLS >> 16, fixed->dwFileVersionLS & 0xFFFF}) {
    text += (text.empty() ? "" : ".") + std::to_string(part);
  }
  return text;
}

TEST(VersionsOnWindows, EveryFileOfTheSystemHasTheVersionThatTheSystemReads) {
  const WindowsFileSystem files;
  const std::string folder = WindowsSpecialFolders().Folder(SpecialFolder::kSystem);
  int with_version = 0;
  for (const FileEntry& entry : files.List(folder, "*")) {
    const std::string extension = Extension(entry.name);
    if (entry.is_folder || (extension != "dll" && extension != "exe" && extension != "ocx" &&
                            extension != "drv" && extension != "tlb")) {
      continue;
    }
    const std::string path = JoinPath(folder, entry.name);
    const std::string expected = SystemVersion(path);

    EXPECT_EQ(FileVersion(files, path), expected) << path;
    with_version += expected.empty() ? 0 : 1;
  }

  EXPECT_GT(with_version, 100);
}

}  // namespace
}  // namespace txs
