// The setup control file as `verify` reads it.
//
// Input: the script.

#include <algorithm>
#include <string>
#include <string_view>

#include "environment/code_page.h"
#include "environment/windows_path.h"
#include "fuzz/fuzz_support.h"
#include "tool/setup_script.h"

namespace txs::fuzz {
namespace {

constexpr std::size_t kMostFaults = 10001;

void CheckInstalls(const SetupScript& script) {
  Require(script.installs.size() <= script.install_lines, "usable lines are lines");
  std::size_t last_line = 0;
  for (const InstallLine& install : script.installs) {
    Require(install.line > last_line, "the lines come in their order");
    last_line = install.line;
    Require(IsPlainFileName(install.archive), "an archive is a plain file name");
    Require(FileName(install.archive) == install.archive && ParentFolder(install.archive).empty() &&
                install.archive != "..",
            "an archive lies nowhere but on its disk");
    Require(IsPlainFileName(FileName(install.target)), "a target is a file");
    Require(!install.disks.empty() && install.disks.front() > 0, "an archive lies on a disk");
    Require(
        std::ranges::adjacent_find(install.disks, std::greater_equal<>()) == install.disks.end(),
        "the disks ascend");
  }
  for (const std::string& archive : script.archives_named) {
    Require(IsPlainFileName(archive), "an archive is a plain file name");
  }
}

void FuzzSetupScript(std::string_view bytes) {
  const Allocations allocations;
  const SetupScript script = ParseSetupScript(bytes);
  allocations.RequireAtMost(bytes.size() + 64 * script.faults.size(), 24,
                            "a script takes memory as its length", /*always=*/65536);

  CheckInstalls(script);
  Require(script.faults.size() <= kMostFaults, "the list of faults has an end");
  const auto lines = static_cast<std::size_t>(std::ranges::count(bytes, '\n')) + 1;
  std::size_t last_line = 0;
  for (const ScriptFault& fault : script.faults) {
    Require(fault.line <= lines, "a fault is in a line of the script");
    Require(fault.line >= last_line || fault.line == 0, "faults come in the order of their lines");
    last_line = fault.line;
    Require(IsShowable(fault.what) && fault.what.size() < 400, "a fault is said in a few words");
  }
  Require(!script.faults.empty() || script.has_commands, "a sound script has commands");
  if (!script.faults.empty()) return;
  Require(script.installs.size() == script.install_lines, "in a sound script every line is usable");
  Require(script.disks.has_value(), "a sound script tells the number of disks");
  // Nothing can be taken away from the end of a sound script but its last commands.
  Require(!ParseSetupScript(bytes.substr(0, bytes.size() - 1)).faults.empty(),
          "a script that is cut short has a fault");
}

}  // namespace
}  // namespace txs::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  txs::fuzz::FuzzSetupScript(txs::fuzz::AsText(data, size));
  return 0;
}
