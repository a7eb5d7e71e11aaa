#include <dlfcn.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

#include "startup/program_place.h"
#include "startup/window_module.h"

namespace txs {
namespace {

constexpr char kModuleName[] = "TXSetupWizardWindows.so";

bool IsSet(const char* variable) {
  const char* const value = std::getenv(variable);
  return value != nullptr && *value != '\0';
}

OpenedWindows Failed(WindowFault fault, std::string reason = {}) {
  return {.windows = nullptr, .fault = fault, .reason = std::move(reason)};
}

std::string LoaderWords() {
  const char* const words = dlerror();
  return words == nullptr ? std::string() : words;
}

}  // namespace

OpenedWindows OpenWindowModule(const char* application_title) {
  const std::filesystem::path directory = ProgramDirectory();
  // An empty directory would let the loader search other places.
  if (directory.empty()) return Failed(WindowFault::kNoModule);
  const std::filesystem::path path = directory / kModuleName;
  std::error_code none;
  if (!std::filesystem::exists(path, none)) return Failed(WindowFault::kNoModule);
  // Before the toolkit is loaded: it would only find out the same, more slowly.
  if (!IsSet("DISPLAY") && !IsSet("WAYLAND_DISPLAY")) return Failed(WindowFault::kNoDisplay);

  void* const module = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (module == nullptr) return Failed(WindowFault::kNotLoaded, LoaderWords());
  const auto open = reinterpret_cast<OpenWindowsFunction>(dlsym(module, kOpenWindowsName));
  if (open == nullptr) return Failed(WindowFault::kNotLoaded, LoaderWords());
  Windows* const windows = open(application_title);
  if (windows == nullptr) return Failed(WindowFault::kNoDisplay);
  return {.windows = windows, .fault = WindowFault::kNone, .reason = {}};
}

}  // namespace txs
