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
  // What this Scan itself adds is followed once in its default source and once in the product
  // dependency file. A row that stood in the list before the Scan is left as it is. What it needs
  // is looked through all the same: script lines live only as long as the process and are added
  // again, those of pseudo-files and of covered files too, and what cannot be found is asked for.
  // What can be found and is not listed stays out: the user has deleted it, unless the document
  // says that an earlier Scan left it unfinished.
  //
  // False after a message (907) and when Cancel was pressed; what was added until then stays, and
  // the session keeps what was not followed to the end. A file that is not found is recorded in the
  // session and does not make the result false.
  [[nodiscard]] bool AddFile(std::string_view path, Force force, std::string_view dependency_file);

  // AddFile with the default source, then with the product dependency file; both are tried.
  [[nodiscard]] bool AddFromBothSources(std::string_view path);

  // The MDAC installer and the Jet service pack with their script lines, or only the hint (917)
  // when the predefined runtime setup is used. Without force nothing happens when the list holds
  // the installer or the script its line. No row, no line and no hint comes twice in one Scan.
  [[nodiscard]] bool AddMdacAndJet(Force force);

  // The script lines that start the installers of data access, for those that stood in the list
  // before the Scan.
  void AddInstallerLinesOfKeptRows();

  // AddFromBothSources for the rows that stood in the list before the Scan and that nobody named:
  // those that the user added, and those of a component that the project no longer uses. Their own
  // files are not looked for. Belongs at the end, when the predefined setups are in use.
  [[nodiscard]] bool FollowKeptRows();

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
    bool kept = false;  // what is below only brings script lines; see AddFile
  };
  struct Section {
    const DependencyFile* source = nullptr;
    DependencyEntries entries;
  };
  struct SourcesRead {
    bool usual = false;
    bool product = false;
  };
  struct Installer;
  static const Installer kMdac;
  static const Installer kJet;

  [[nodiscard]] const DependencyFile* Product();
  [[nodiscard]] std::optional<Section> FindSection(const std::string& path,
                                                   const DependencyFile* first);
  [[nodiscard]] bool IsReplacedByMdac(const std::string& path,
                                      const std::optional<Section>& section);
  // Looks for one file, and visits it.
  [[nodiscard]] bool Enter(const std::string& path, Force force, const DependencyFile* source);
  // Handles one file and pushes it when it has needs to follow.
  [[nodiscard]] bool Visit(const ScanSession::Located& located, bool is_system, Force force,
                           const DependencyFile* source);
  void Follow(const std::string& path, Section section, bool with_script_lines, bool kept);
  void TakeRow(const ScanSession::Located& located, Force force, RegistrationKind kind);
  // Until nothing is left to follow. `subject` becomes the file that is being handled.
  [[nodiscard]] bool FollowAll(std::string& subject);
  // After `subject` could not be handled: the next Scan has to follow it and all that led to it.
  void LeaveUnfinished(const std::string& subject);
  [[nodiscard]] std::vector<std::string> ChainTo(std::string_view name) const;
  // For a component below a kept row, in whose place the installers were packaged: what the user
  // deleted of them stays deleted, but what cannot be found is asked for.
  void AskForMissingInstallers();
  void AddInstaller(const Installer& installer);
  [[nodiscard]] bool ListsInstaller(std::string_view file_name) const;
  // A row that the user took from another place than the kit, and that the script runs.
  [[nodiscard]] std::optional<ScanSession::Located> FindInstallerRow(
      std::string_view file_name) const;
  [[nodiscard]] bool MinimalMdacIsListed() const;

  ScanSession& session_;
  std::vector<Frame> frames_;
  std::unordered_map<std::string, SourcesRead> read_;            // by folded path
  std::unordered_map<std::string, SourcesRead> looked_through_;  // the same, below kept rows
  bool mdac_done_ = false;
  bool installers_asked_for_ = false;
  std::string mdac_needed_by_;  // the component that MDAC replaces
};

}  // namespace txs
