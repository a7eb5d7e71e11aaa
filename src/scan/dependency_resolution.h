// Add file with dependencies: a file goes into the file list with its destination and registration
// kind, and everything that it needs follows, as the dependency files tell.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "scan/dependency_files.h"
#include "scan/scan_session.h"

namespace txs {

enum class Force {
  kNo,   // a file that is listed is left alone
  kYes,  // it is listed once more
};

// The order of what is added is that of a recursion that visits each needed file completely before
// the next, but no chain of files is deep enough to overflow the stack.
class DependencyResolver {
 public:
  // `session` must outlive this.
  explicit DependencyResolver(ScanSession& session) : session_(session) {}

  // Adds `path` (a full path, a bare name, or a pseudo-file such as "VB Runtime") and what it
  // needs. `dependency_file` is where its section is looked for first; where that has none, and
  // with an empty `dependency_file`, it is the file's own ".dep", then the one of the project's
  // Visual Basic.
  //
  // A row that stood in the list before the Scan is left as it is and not followed. What this Scan
  // itself adds is followed once in its default source and once in the product dependency file.
  //
  // False after a message (907) and when Cancel was pressed; what was added until then stays. A
  // file that is not found is recorded in the session and does not make the result false.
  [[nodiscard]] bool AddFile(std::string_view path, Force force, std::string_view dependency_file);

  // AddFile with the default source, then with the product dependency file; both are tried.
  [[nodiscard]] bool AddFromBothSources(std::string_view path);

  // The MDAC installer and the Jet service pack with their script lines, or only the hint (917)
  // when the predefined runtime setup is used. Without force nothing happens when the list holds
  // the installer or the script its line. No row, no line and no hint comes twice in one Scan.
  [[nodiscard]] bool AddMdacAndJet(Force force);

  // Script lines live only as long as the process, rows longer: for rows that a settings file
  // brought, the lines of their sections are added again. Follows nothing.
  [[nodiscard]] bool AddScriptLinesOfKeptRows();

 private:
  // A file whose needs are being followed.
  struct Frame {
    std::string name;
    std::string folder;
    const DependencyFile* source = nullptr;
    std::vector<std::string> uses;
    std::vector<std::string> script_lines;
    std::size_t next = 0;
    bool product_is_next = false;
  };
  struct Section {
    const DependencyFile* source = nullptr;
    DependencyEntries entries;
  };
  struct SourcesRead {
    bool usual = false;
    bool product = false;
  };

  [[nodiscard]] const DependencyFile* Product();
  [[nodiscard]] std::optional<Section> FindSection(const std::string& path,
                                                   const DependencyFile* first);
  [[nodiscard]] bool IsReplacedByMdac(const std::string& path,
                                      const std::optional<Section>& section);
  // Handles one file and pushes it when it has needs to follow.
  [[nodiscard]] bool Enter(const std::string& path, Force force, const DependencyFile* source);
  void Follow(const std::string& path, Section section, bool with_script_lines);
  void TakeRow(const ScanSession::Located& located, Force force, RegistrationKind kind);
  // `subject` is the file to add, and from then on the one that is being handled.
  [[nodiscard]] bool Run(std::string& subject, Force force, std::string_view dependency_file);
  [[nodiscard]] std::vector<std::string> ChainTo(std::string_view name) const;
  void AddInstaller(std::string_view file_name, std::string_view search_name,
                    const std::string& script_line);
  [[nodiscard]] bool ListsInstaller(std::string_view file_name) const;

  ScanSession& session_;
  std::vector<Frame> frames_;
  std::unordered_map<std::string, SourcesRead> read_;  // by folded path
  bool mdac_done_ = false;
  std::string mdac_needed_by_;  // the component that MDAC replaces
};

}  // namespace txs
