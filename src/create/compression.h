// Every listed file becomes its own archive in the temporary directory.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "create/create_state.h"
#include "create/create_view.h"
#include "document/application.h"

namespace txs {

// Gives out archive names that no row carries yet: "x.dll.zip", then "x.dll.1.zip", "x.dll.2.zip",
// ... compared without regard to case. Each name costs about the same however many were given out.
class CompressedNames {
 public:
  // Takes the names that rows already carry.
  explicit CompressedNames(const std::vector<FileRow*>& rows);

  // The archive name for a source file; `source_path` counts only with its bare file name.
  [[nodiscard]] std::string Next(std::string_view source_path);

 private:
  std::unordered_set<std::string> taken_;                     // folded
  std::unordered_map<std::string, std::size_t> next_number_;  // by folded file name
};

// Stage 406. Rows get their compressed name where they have none. False after message 902, or when
// Cancel was pressed; the archives made so far stay in the temporary directory.
[[nodiscard]] bool CompressFiles(Application& application, CreateView& view,
                                 const CreateState& state);

}  // namespace txs
