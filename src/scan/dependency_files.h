// What dependency files say of a file: how it is registered, what it needs, which script lines it
// brings. See docs/formats/dependency-files.md.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "environment/file_system.h"
#include "environment/profile_document.h"
#include "environment/profile_files.h"

namespace txs {

// The kind that the file list's Register column holds.
enum class RegistrationKind : int {
  kNone = 0,
  kInProcess = 1,     // $(DLLSelfRegister)
  kOutOfProcess = 2,  // $(EXESelfRegister)
  kOther = 3,         // any other value: known to want registering, unknown how
  kRemote = 4,        // $(REMOTE)
  kTypeLibrary = 5,   // $(TLBRegister)
};

// Compared without regard to case; kNone for an empty text.
[[nodiscard]] RegistrationKind RegistrationKindOf(std::string_view register_value);

// The entries of one file, of its plain section and then its localised ones.
struct DependencyEntries {
  RegistrationKind registration = RegistrationKind::kNone;
  std::string replace;
  std::vector<std::string> uses;          // names or paths
  std::vector<std::string> script_lines;  // values of I1, I2, ...
};

// One dependency file. A text that is none has no section that anybody asks for.
class DependencyFile {
 public:
  // `document` must outlive this.
  explicit DependencyFile(const ProfileDocument& document);

  // Nothing when the file has no section of that name: neither [name], nor [name <0007>] (German)
  // or [name <0009>] (English), nor one of another language. The first of another language stands
  // in only where all of these are missing. Each list ends at its first missing or empty number; a
  // value that is only a comment is passed over.
  [[nodiscard]] std::optional<DependencyEntries> Find(std::string_view file_name) const;

 private:
  const ProfileDocument& document_;
  // Names of all sections, by folded name without language, in file order.
  std::unordered_map<std::string, std::vector<std::string>> localised_;
  std::unordered_map<std::string, std::string> plain_;
};

// The dependency files of one Scan: each is read and parsed once, however often it is asked.
class DependencyFiles {
 public:
  DependencyFiles(const FileReader& files, ProfileFiles& profiles)
      : files_(files), profiles_(profiles) {}

  // Null when there is no such file. Throws RuntimeError, once per file, when it exists and cannot
  // be read; from then on it counts as missing, so that one locked file is one message.
  [[nodiscard]] const DependencyFile* Open(std::string_view path);

  // The ".dep" beside a component, of the same base name.
  [[nodiscard]] const DependencyFile* OpenOwn(std::string_view component_path);

 private:
  const FileReader& files_;
  ProfileFiles& profiles_;
  std::unordered_map<std::string, std::unique_ptr<DependencyFile>> opened_;  // by folded path
};

}  // namespace txs
