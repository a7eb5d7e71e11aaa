#include <algorithm>
#include <string>
#include <system_error>

#include "startup/program_place.h"

namespace txs {
namespace {

std::filesystem::path ProgramFile() {
  std::error_code none;
  return std::filesystem::read_symlink("/proc/self/exe", none);
}

}  // namespace

std::filesystem::path ProgramDirectory() { return ProgramFile().parent_path(); }

ApplicationInfo ThisApplication() {
  ApplicationInfo info;
  info.directory = "Z:" + ProgramDirectory().string();
  std::replace(info.directory.begin(), info.directory.end(), '/', '\\');
  info.executable_name = ProgramFile().filename().string();
  info.title = kApplicationTitle;
  return info;
}

}  // namespace txs
