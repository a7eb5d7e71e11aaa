// Reads Visual Basic projects and groups line by line and hands every component, and the compiled
// program, to the dependency resolution. See docs/formats/visual-basic-projects.md.
#pragma once

#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "scan/dependency_resolution.h"
#include "scan/scan_session.h"

namespace txs {

class VisualBasicProjectReader {
 public:
  // Both must outlive this.
  VisualBasicProjectReader(ScanSession& session, DependencyResolver& resolver)
      : session_(session), resolver_(resolver) {}

  // `file_name` of a .vbp is relative to the project directory. True when every file was added and
  // the compiled program exists; false after a message (1711, 907, or 908, which names the file).
  // Type libraries that are not registered (914) and insertable objects (916) are messages but no
  // failure; the former are recorded as missing. After Cancel it stops at once and answers with
  // what was so far.
  [[nodiscard]] bool ReadProject(std::string_view file_name);

  // `file_name` of a .vbg. True when every project of the group was read so. A project that the
  // group names twice is read once.
  [[nodiscard]] bool ReadGroup(std::string_view file_name);

 private:
  struct Project {
    std::string path;       // of the .vbp
    std::string directory;  // of the .vbp
    std::string type;
    std::string program_name;  // ExeName32
    std::string program_path;  // Path32
    bool in_section = false;
    bool succeeded = true;
  };
  struct Library {
    std::string guid;
    std::string version;
    std::string locale;
    std::string locale_as_written;
    std::string description;
  };

  // One .vbp; the projects above it stand in the session's chain root.
  [[nodiscard]] bool ReadMember(std::string_view file_name);
  void ReadLines(Project& project);
  void ReadLine(Project& project, std::string_view line);
  void ReadReference(Project& project, std::string_view value);
  void ReadObject(Project& project, std::string_view value);
  void AddLibrary(Project& project, const Library& library);
  void ReportUnresolved(const std::string& guid, const std::string& name);
  void ReportProjectReference(const Project& project, std::string_view value, long message_id);
  void AddComponent(Project& project, std::string path);
  void AddPseudoFile(Project& project, std::string_view name);
  void AddProgram(Project& project);
  [[nodiscard]] std::string CompletePath(std::string path) const;

  ScanSession& session_;
  DependencyResolver& resolver_;
  std::unordered_set<std::string> members_;     // folded full paths of the group's projects
  std::unordered_set<std::string> unresolved_;  // folded, said once
  std::unordered_set<std::string> unresolved_guids_;
};

}  // namespace txs
