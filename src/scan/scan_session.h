// The state of one Scan: what its stages share, and what makes its cost grow linearly: the file
// list and the to-do lines indexed by name, each dependency file parsed once, each folder listed
// once.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "document/application.h"
#include "scan/dependency_files.h"
#include "scan/missing_file_search.h"
#include "scan/missing_item.h"
#include "scan/predefined_setups.h"
#include "scan/scan_view.h"
#include "scan/search_file_dialog.h"
#include "scan/visual_basic.h"

namespace txs {

class ScanSession {
 public:
  // Takes the file list, the to-do lines and the system-file names as they are now; while the
  // session lives, only it may add to the first two. Reads the designer of the studio project; one
  // that cannot be read counts as none.
  ScanSession(Application& application, ScanView& view, SearchFileDialog& dialog);
  ScanSession(const ScanSession&) = delete;
  ScanSession& operator=(const ScanSession&) = delete;

  [[nodiscard]] Application& App() { return application_; }
  [[nodiscard]] ScanView& View() { return view_; }
  [[nodiscard]] DependencyFiles& Dependencies() { return dependencies_; }
  [[nodiscard]] PredefinedSetups& Setups() { return setups_; }
  // Of the project's form designer; empty texts when it is no Visual Basic.
  [[nodiscard]] const VisualBasicInstallation& VisualBasic() const { return visual_basic_; }

  // Lets pending window events run; whether Cancel has been pressed by then.
  [[nodiscard]] bool CancelledMeanwhile();

  // --- The file list.
  struct Listed {
    std::size_t row = 0;
    bool by_this_scan = false;
  };
  // Nothing when no row names the file. `full_path` as FullPath writes it.
  [[nodiscard]] std::optional<Listed> FindListed(std::string_view full_path) const;
  // Whether this session appended a row of that bare name.
  [[nodiscard]] bool ListedByThisScan(std::string_view path) const;
  // Appends a row: source in variable form, length, kind; `destination` empty means the file's own
  // directory in variable form.
  void AppendRow(std::string_view full_path, std::uint64_t length_bytes, RegistrationKind kind,
                 std::string_view destination);
  // Path in variable form. Trailing backslashes in the values of path variables do not count: a
  // project whose directory is registered as "C:\Demo\" finds its files below <ProjectDir> too.
  [[nodiscard]] std::string VariableFormOf(std::string_view full_path, VariableForm form) const;
  // Rows that stood in the list when the session began.
  [[nodiscard]] std::size_t KeptRows() const { return kept_rows_; }
  // The full path that a row's source stands for.
  [[nodiscard]] std::string FullPathOfRow(std::size_t row) const;
  [[nodiscard]] bool IsSystemFileName(std::string_view path) const;

  // --- What the next Scan owes (SetupDocument::unfinished_files).
  // Whether an earlier Scan left the file of this bare name out, or did not follow it to the end.
  [[nodiscard]] bool IsUnfinished(std::string_view path) const;
  void LeaveUnfinished(std::string_view path);
  // Hands over to the document what this session leaves. What it found there and has not added
  // itself is forgotten only when `is_complete`: then nothing has been left out unseen.
  void StoreUnfinished(bool is_complete);

  void SetProgramName(std::string_view name);

  // --- The to-do lines: as AddUnique.
  void AddScriptLine(std::string_view line);

  // --- Files and where they are.
  enum class Whereabouts {
    kFound,
    kCovered,  // not here, but a predefined setup installs it
    kIgnored,  // left out; what it needs is still followed
    kDropped,  // left out with all that it needs
  };
  struct Located {
    Whereabouts whereabouts = Whereabouts::kDropped;
    std::string path;      // full path; with anything but kFound what was asked for
    FileStamp stamp;       // of the file found
    bool by_user = false;  // the user said where it is
  };
  // Where the file is: at `path`, else where the automatic search finds its name, else beside the
  // file that names it (`naming_folder`), else in a row of the list, else in a predefined setup in
  // use, else where the user says. Each
  // missing name is asked for once per Scan; the chain is only made, and recorded, when the file is
  // missing.
  using ChainMaker = std::function<std::vector<std::string>()>;
  [[nodiscard]] Located Locate(std::string_view path, std::string_view naming_folder,
                               const ChainMaker& make_chain);
  // Where Locate found what was asked for as `path`; its full path as given where it found nothing,
  // or was never asked.
  [[nodiscard]] std::string KnownPath(std::string_view path) const;
  // The file of the first row of this bare name; nothing when there is none, or its file has gone.
  [[nodiscard]] std::optional<Located> FindListedByName(std::string_view file_name) const;
  // Whether a predefined setup in use installs the file that was found.
  [[nodiscard]] bool IsCovered(const Located& found) const;
  // Asks the user for a file that is not at its fixed place, and records it when it stays missing.
  [[nodiscard]] Located AskFor(std::string_view file_name, const ChainMaker& make_chain);

  // --- What was not found.
  void RecordMissing(std::string name, std::vector<std::string> chain);
  [[nodiscard]] bool IsRecordedMissing(std::string_view name) const;
  [[nodiscard]] std::vector<MissingItem> TakeMissing();
  // The projects that the current line belongs to, outermost first: what every chain begins with.
  std::vector<std::string> chain_root;

 private:
  [[nodiscard]] std::optional<Located> At(const std::string& full_path) const;
  [[nodiscard]] std::vector<SearchPlace> SearchPlaces() const;
  [[nodiscard]] std::string ReadDesigner();

  Application& application_;
  ScanView& view_;
  SearchFileDialog& dialog_;
  DependencyFiles dependencies_;
  PredefinedSetups setups_;
  VisualBasicInstallation visual_basic_;
  MissingFileSearch search_;
  PathVariableList variables_;

  std::size_t kept_rows_ = 0;
  std::unordered_map<std::string, Listed> listed_;               // by folded full path
  std::unordered_map<std::string, std::string> listed_by_name_;  // folded name to full path
  std::unordered_set<std::string> script_lines_;                 // folded
  std::unordered_set<std::string> system_names_;                 // folded

  std::unordered_set<std::string> unfinished_before_;  // folded names
  std::unordered_set<std::string> unfinished_now_;

  std::unordered_map<std::string, Located> asked_;  // by folded name
  std::vector<MissingItem> missing_;
  std::unordered_set<std::string> missing_names_;  // folded
};

}  // namespace txs
