// Dependency files, read and followed.
//
// Input: the product dependency file, that of Visual Basic, and a component's own; a fourth part,
// if there is one, is the studio project.

#include <algorithm>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "environment/code_page.h"
#include "environment/profile_document.h"
#include "fuzz/scan_fuzz.h"
#include "scan/dependency_files.h"

namespace txs::fuzz {
namespace {

void CheckEntries(std::string_view bytes) {
  const ProfileDocument document(bytes);
  const DependencyFile file(document);
  for (const std::string& section : document.SectionNames()) {
    const std::size_t language = section.rfind('<');
    for (const std::string_view name :
         {std::string_view(section), TrimBlanks(std::string_view(section).substr(0, language))}) {
      const std::optional<DependencyEntries> entries = file.Find(name);
      const std::optional<DependencyEntries> folded = file.Find(FoldCase(name));
      Require(entries.has_value() == folded.has_value(), "a file is found in any spelling");
      if (!entries) continue;
      Require(entries->uses == folded->uses && entries->script_lines == folded->script_lines &&
                  entries->registration == folded->registration &&
                  entries->replace == folded->replace,
              "a file is the same in any spelling");
      for (const std::string& use : entries->uses) {
        Require(!use.empty() && use.front() != ';', "what is needed has a name");
      }
      for (const std::string& line : entries->script_lines) {
        Require(!line.empty() && line.front() != ';', "a line is no comment");
      }
    }
  }
}

void FuzzDependencyFiles(std::string_view input) {
  const std::vector<std::string_view> parts = Parts(input, 4);
  CheckEntries(parts[0].substr(0, 8192));

  for (const bool use_runtime_setup : {false, true}) {
    ScanFuzzWorld world;
    world.application.use_runtime_setup = use_runtime_setup;
    world.SetVbProject({"Type=Exe", "ExeName32=\"Demo.exe\"",
                        std::string("Object=") + kGuid1 + "#1.0#0; a.dll",
                        std::string("Object=") + kGuid2 + "#2.0#0; c.ocx"});
    world.files.AddFile(kProductFile, parts[0]);
    if (parts.size() > 1) world.files.AddFile(kVb6File, parts[1]);
    if (parts.size() > 2) world.files.AddFile("C:\\Windows\\System32\\a.dep", parts[2]);
    if (parts.size() > 3) world.files.AddFile("C:\\Demo\\Demo.txs", parts[3]);

    static_cast<void>(world.RunChecked(input.size()));

    for (const char* path : {kProductFile, kVb6File, "C:\\Windows\\System32\\a.dep"}) {
      Require(world.Opened(path) <= 1, "a dependency file is read once");
    }
  }
}

}  // namespace
}  // namespace txs::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  txs::fuzz::FuzzDependencyFiles(txs::fuzz::AsText(data, size));
  return 0;
}
