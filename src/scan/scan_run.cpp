#include "scan/scan_run.h"

#include <exception>
#include <string>

#include "document/mdac.h"
#include "document/work_border.h"
#include "environment/code_page.h"
#include "environment/full_path.h"
#include "environment/runtime_error.h"
#include "environment/windows_path.h"
#include "scan/dependency_resolution.h"
#include "scan/scan_session.h"
#include "scan/studio_project_scan.h"
#include "scan/vb_project_reader.h"
#include "scan/visual_basic.h"
#include "strings/reason.h"

namespace txs {
namespace {

constexpr long kTextFailed = 724;
constexpr long kTextDone = 725;
constexpr long kTextRuntimeSetupUsed = 730;
constexpr long kTextRuntimeSetupNotUsed = 731;
constexpr long kMessageScanning = 908;
constexpr long kMessageDesignerNotSupported = 1713;
constexpr long kMessageNoProductList = 1937;

class BusyPointer {
 public:
  explicit BusyPointer(ScanView& view) : view_(view) { view_.ShowBusy(/*busy=*/true); }
  ~BusyPointer() { view_.ShowBusy(/*busy=*/false); }
  BusyPointer(const BusyPointer&) = delete;
  BusyPointer& operator=(const BusyPointer&) = delete;

 private:
  ScanView& view_;
};

// Stage 2, for projects whose forms were designed with a Visual Basic.
bool ScanDesignerProject(ScanSession& session, DependencyResolver& resolver) {
  Application& application = session.App();
  const std::string studio_project = application.project.StudioProjectFile();
  return AtWorkBorder(application, kMessageScanning, studio_project, [&] {
    // One that is not there would read as an empty one.
    if (!application.platform.files.FileExists(studio_project)) {
      throw RuntimeError(ErrorNumber::kFileNotFound,
                         studio_project + ": " + Words(Reason::kFileNotFound));
    }
    const ProfileDocument& project = application.platform.profiles.Open(studio_project);
    const std::string designer = project.Value("Global", "Designer").value_or("");
    if (!IsVisualBasic(designer)) {
      ShowWarning(application, kMessageDesignerNotSupported, {designer});
      return true;
    }
    const std::string file = project.Value("Global", "DesignerProject").value_or("");
    if (file.empty()) {
      throw RuntimeError(ErrorNumber::kBadFileName,
                         studio_project + ": " + Words(Reason::kNoDesignerProject));
    }
    VisualBasicProjectReader reader(session, resolver);
    return EqualNoCase(Extension(file), "vbg") ? reader.ReadGroup(file) : reader.ReadProject(file);
  });
}

bool CanOpen(ProfileFiles& profiles, const std::string& path) {
  try {
    static_cast<void>(profiles.Open(path));
    return true;
  } catch (const RuntimeError&) {
    return false;
  }
}

// The studio's own list brings drivers, script entries and the names that are never packaged.
// Without it a Scan ends well with an installation that does not run.
void CheckProductList(ScanSession& session) {
  Application& application = session.App();
  const std::string list = application.ProductDependencyFile();
  try {
    if (session.Dependencies().Open(list) != nullptr) return;
    ShowWarning(application, kMessageNoProductList, {list});
  } catch (const RuntimeError& error) {
    ShowError(application, kMessageNoProductList, {list}, error);
  }
  session.RecordMissing(FileName(list), {FileName(list)});
}

bool RunStages(ScanSession& session) {
  DependencyResolver resolver(session);
  resolver.AddInstallerLinesOfKeptRows();
  CheckProductList(session);
  bool succeeded = ScanStudioProject(session, resolver);
  if (session.View().IsCancelPressed()) return false;
  const CurrentProject& project = session.App().project;
  const std::string project_file = project.StudioProjectFile();
  // All three ended the first stage with what the second would say again.
  const bool was_missing = session.IsRecordedMissing(FileName(project_file));
  if (!succeeded && !was_missing &&
      (project.directory.empty() || !CanOpen(session.App().platform.profiles, project_file))) {
    return false;
  }
  if (!was_missing) succeeded = ScanDesignerProject(session, resolver) && succeeded;
  if (session.View().IsCancelPressed()) return false;
  return resolver.FollowKeptRows() && succeeded;
}

}  // namespace

ScanResult RunScan(Application& application, ScanView& view, SearchFileDialog& dialog) {
  const bool use_setup = application.use_runtime_setup;
  view.Begin(use_setup, application.texts.GetText(use_setup ? kTextRuntimeSetupUsed
                                                            : kTextRuntimeSetupNotUsed));
  view.ShowCount(application.document.files.RowCount());
  ScanResult result;
  {
    const BusyPointer busy(view);
    result.succeeded =
        AtWorkBorder(application, kMessageScanning, application.project.StudioProjectFile(), [&] {
          if (!application.document.steps.minimal_mdac) UseFullMdac(application);
          // Read at the start; what was away by then is here when the user scans again.
          if (application.document.system_files.excluded.empty()) RefreshExcludedFiles(application);
          ScanSession session(application, view, dialog);
          const bool succeeded = RunStages(session);
          session.StoreUnfinished(/*is_complete=*/succeeded && !view.IsCancelPressed());
          result.missing = session.TakeMissing();
          return succeeded;
        });
  }
  result.cancelled = view.IsCancelPressed();
  result.succeeded = result.succeeded && !result.cancelled;
  if (!result.missing.empty()) view.ShowMissing(result.missing);
  if (result.succeeded) view.ShowFile({});
  view.End(result.succeeded, application.texts.GetText(result.succeeded ? kTextDone : kTextFailed));
  return result;
}

struct AddingByHand::Session {
  Session(Application& application, ScanView& view, SearchFileDialog& dialog)
      : scan(application, view, dialog), resolver(scan) {}

  ~Session() { scan.StoreUnfinished(/*is_complete=*/false); }
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  ScanSession scan;
  DependencyResolver resolver;
  bool setups_are_in_use = false;
};

AddingByHand::AddingByHand(Application& application, ScanView& view, SearchFileDialog& dialog)
    : application_(application), view_(view), dialog_(dialog) {}

AddingByHand::~AddingByHand() = default;

AddingByHand::Session& AddingByHand::Open() {
  if (!session_) session_ = std::make_unique<Session>(application_, view_, dialog_);
  return *session_;
}

bool AddingByHand::IsListed(std::string_view path) {
  return Open().scan.FindListed(FullPath(path)).has_value();
}

bool AddingByHand::Add(std::string_view path) {
  constexpr long kMessageAddingFile = 907;
  const bool added = AtWorkBorder(application_, kMessageAddingFile, std::string(path), [&] {
    Session& session = Open();
    if (!session.setups_are_in_use) UseListedSetups(session.scan);
    session.setups_are_in_use = true;
    return session.resolver.AddFile(path, Force::kYes, /*dependency_file=*/{});
  });
  // What was being followed when it failed counts as read. The next file deserves a fresh start.
  if (!added) session_.reset();
  return added;
}

bool AddFileByHand(Application& application, ScanView& view, SearchFileDialog& dialog,
                   std::string_view path) {
  return AddingByHand(application, view, dialog).Add(path);
}

}  // namespace txs
