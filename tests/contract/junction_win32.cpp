#include "contract/junction_win32.h"

#include <windows.h>
// After <windows.h>.
#include <winioctl.h>

#include <cstring>
#include <vector>

#include "environment/windows_calls_win32.h"

namespace txs {
namespace {

// REPARSE_DATA_BUFFER of a mount point; mingw-w64 has it among the headers for drivers only.
std::vector<char> MountPoint(const std::wstring& target) {
  const std::wstring name = L"\\??\\" + target;
  const auto name_bytes = static_cast<WORD>(name.size() * sizeof(wchar_t));
  const auto data_bytes = static_cast<WORD>(8 + name_bytes + 2 * sizeof(wchar_t));
  const auto print_name_at = static_cast<WORD>(name_bytes + sizeof(wchar_t));
  const WORD fields[] = {data_bytes, 0, 0, name_bytes, print_name_at, 0};
  const DWORD tag = IO_REPARSE_TAG_MOUNT_POINT;
  std::vector<char> bytes(8U + data_bytes);
  std::memcpy(bytes.data(), &tag, sizeof tag);
  std::memcpy(bytes.data() + sizeof tag, fields, sizeof fields);
  std::memcpy(bytes.data() + 16, name.data(), name_bytes);
  return bytes;
}

bool SetMountPoint(const std::wstring& path, const std::wstring& target) {
  const KernelHandle folder(CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                        FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT,
                                        nullptr));
  std::vector<char> bytes = MountPoint(target);
  DWORD returned = 0;
  return folder.IsOpen() &&
         DeviceIoControl(folder.Get(), FSCTL_SET_REPARSE_POINT, bytes.data(),
                         static_cast<DWORD>(bytes.size()), nullptr, 0, &returned, nullptr) != 0;
}

using HostName = char*(__cdecl*)(const wchar_t*);

bool LinkOnHost(const std::wstring& path, const std::wstring& target) {
  const auto host_name = reinterpret_cast<HostName>(reinterpret_cast<void*>(
      GetProcAddress(GetModuleHandleW(L"kernel32"), "wine_get_unix_file_name")));
  if (host_name == nullptr) return false;
  char* const from = host_name(target.c_str());
  const std::wstring parent = path.substr(0, path.rfind(L'\\'));
  char* const folder = host_name(parent.c_str());
  if (from == nullptr || folder == nullptr) return false;
  const std::string link = std::string(folder) + "/" + ToUtf8(path.substr(path.rfind(L'\\') + 1));
  std::wstring command = ToWide("/bin/ln -s \"" + std::string(from) + "\" \"" + link + "\"");
  HeapFree(GetProcessHeap(), 0, from);
  HeapFree(GetProcessHeap(), 0, folder);
  STARTUPINFOW startup = {};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process = {};
  if (!CreateProcessW(L"Z:\\bin\\ln", command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                      &startup, &process)) {
    return false;
  }
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  // The handle does not tell when a program of the host has ended.
  for (int i = 0; i < 2000; ++i) {
    if (GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES) return true;
    Sleep(5);
  }
  return false;
}

}  // namespace

Junction MakeJunction(const std::string& path, const std::string& target) {
  const std::wstring wide_path = ToWide(path);
  const std::wstring wide_target = ToWide(target);
  if (CreateDirectoryW(wide_path.c_str(), nullptr)) {
    if (SetMountPoint(wide_path, wide_target)) return Junction::kReal;
    RemoveDirectoryW(wide_path.c_str());
  }
  return LinkOnHost(wide_path, wide_target) ? Junction::kLinkOfTheHost : Junction::kNone;
}

}  // namespace txs
