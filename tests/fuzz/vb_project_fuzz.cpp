// Visual Basic projects (.vbp), scanned.
//
// Input: the project's file.

#include <string>
#include <string_view>
#include <vector>

#include "fuzz/scan_fuzz.h"

namespace txs::fuzz {
namespace {

std::vector<std::string> Scan(std::string_view project, bool use_runtime_setup) {
  ScanFuzzWorld world;
  world.application.use_runtime_setup = use_runtime_setup;
  world.files.AddFile("C:\\Demo\\Demo.vbp", project);
  const ScanResult result = world.RunChecked(project.size());
  return OutcomeOf(world, result);
}

void FuzzVbProject(std::string_view project) {
  const std::vector<std::string> outcome = Scan(project, /*use_runtime_setup=*/false);

  static_cast<void>(Scan(project, /*use_runtime_setup=*/true));
  // However the lines end, they say the same.
  std::string other_ends;
  for (std::size_t at = 0; at < project.size(); ++at) {
    const bool is_pair = project[at] == '\r' && at + 1 < project.size() && project[at + 1] == '\n';
    if (is_pair) continue;
    if (project[at] == '\r' || project[at] == '\n') {
      other_ends += "\r\n";
    } else {
      other_ends += project[at];
    }
  }
  Require(Scan(other_ends, /*use_runtime_setup=*/false) == outcome,
          "a project says the same with other line ends");
}

}  // namespace
}  // namespace txs::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  txs::fuzz::FuzzVbProject(txs::fuzz::AsText(data, size));
  return 0;
}
