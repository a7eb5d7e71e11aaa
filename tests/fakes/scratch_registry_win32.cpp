#include "fakes/scratch_registry_win32.h"

#include <windows.h>

#include <array>
#include <stdexcept>
#include <string>
#include <utility>

namespace txs {

struct ScratchRegistry::Parts {
  static std::array<std::pair<HKEY, const wchar_t*>, 3> Hives() {
    return {{{HKEY_CLASSES_ROOT, L"\\Classes"},
             {HKEY_LOCAL_MACHINE, L"\\Machine"},
             // Last: the others lie below it.
             {HKEY_CURRENT_USER, L"\\User"}}};
  }

  std::wstring path = L"Software\\TXSetupWizardTest" + std::to_wstring(GetCurrentProcessId());
  HKEY real_user = nullptr;
};

ScratchRegistry::ScratchRegistry() : parts_(std::make_unique<Parts>()) {
  const auto require = [](LSTATUS error) {
    if (error != ERROR_SUCCESS) throw std::runtime_error("no scratch registry");
  };
  require(RegOpenCurrentUser(KEY_ALL_ACCESS, &parts_->real_user));
  for (const auto& [hive, name] : Parts::Hives()) {
    HKEY key = nullptr;
    require(RegCreateKeyExW(parts_->real_user, (parts_->path + name).c_str(), 0, nullptr,
                            REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS, nullptr, &key, nullptr));
    const LSTATUS error = RegOverridePredefKey(hive, key);
    RegCloseKey(key);
    require(error);
  }
}

ScratchRegistry::~ScratchRegistry() {
  for (const auto& [hive, name] : Parts::Hives()) RegOverridePredefKey(hive, nullptr);
  RegDeleteTreeW(parts_->real_user, parts_->path.c_str());
  RegCloseKey(parts_->real_user);
}

}  // namespace txs
