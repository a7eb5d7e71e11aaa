#include <dlfcn.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "startup/program_place.h"
#include "startup/window_module.h"

namespace txs {
namespace {

constexpr char kModuleName[] = "TXSetupWizardWindows.so";
constexpr char kEntryName[] = "TxsOpenMessageBoxes";
using Entry = MessageBoxes* (*)(const char* application_title);

bool IsSet(const char* variable) {
  const char* const value = std::getenv(variable);
  return value != nullptr && *value != '\0';
}

}  // namespace

MessageBoxes* OpenWindowModule(const char* application_title) {
  if (!IsSet("DISPLAY") && !IsSet("WAYLAND_DISPLAY")) return nullptr;
  const std::filesystem::path directory = ProgramDirectory();
  // An empty directory would let the loader search other places.
  if (directory.empty()) return nullptr;
  const std::string path = (directory / kModuleName).string();
  void* const module = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (module == nullptr) return nullptr;
  const auto entry = reinterpret_cast<Entry>(dlsym(module, kEntryName));
  return entry == nullptr ? nullptr : entry(application_title);
}

}  // namespace txs
