#include "fakes/real_disk.h"

#include <windows.h>

#include "environment/file_locks_win32.h"
#include "environment/file_system_win32.h"
#include "environment/windows_calls_win32.h"
#include "fakes/temp_folder.h"

namespace txs {

struct RealDisk::Parts {
  TempFolder folder;
  WindowsFileSystem files;
  WindowsFileLocks locks;
};

RealDisk::RealDisk()
    : parts_(std::make_unique<Parts>()),
      files(parts_->files),
      host_paths(parts_->files),
      locks(parts_->locks) {}
RealDisk::~RealDisk() = default;

std::string RealDisk::At(std::string_view below) const {
  return ToUtf8(parts_->folder.Path().native()) + "\\" + std::string(below);
}

std::filesystem::path RealDisk::Host(std::string_view below) const {
  return parts_->folder.Path() / ToWide(below);
}

std::filesystem::path RealDisk::Followed(std::string_view path) const {
  const std::wstring asked = ToWide(host_paths.HostPath(path));
  const KernelHandle file(CreateFileW(asked.c_str(), FILE_READ_ATTRIBUTES,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                      nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
  std::wstring found(32768, L'\0');
  found.resize(file.IsOpen() ? GetFinalPathNameByHandleW(file.Get(), found.data(),
                                                         static_cast<DWORD>(found.size()), 0)
                             : 0);
  return found.empty() ? asked : found;
}

}  // namespace txs
