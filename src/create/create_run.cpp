#include "create/create_run.h"

#include <algorithm>
#include <exception>
#include <functional>
#include <memory>
#include <unordered_set>
#include <vector>

#include "create/compression.h"
#include "create/setup_control_file.h"
#include "create/setup_kit.h"
#include "create/stage_view.h"
#include "document/document_check.h"
#include "document/mdac.h"
#include "document/medium.h"
#include "document/path_variables.h"
#include "document/project_lock.h"
#include "document/settings_file.h"
#include "document/work_border.h"
#include "environment/code_page.h"
#include "environment/windows_path.h"
#include "strings/reason.h"

namespace txs {
namespace {

constexpr long kTextFailed = 424;
constexpr long kTextDone = 425;
constexpr long kMessageTemporaryDirectory = 905;
constexpr long kMessageOutputDirectory = 906;
constexpr long kMessageProgramMissing = 1711;

bool RunStage(CreateView& view, CreateStage stage, const std::function<bool()>& work) {
  view.StageStarted(stage);
  const bool succeeded = work();
  view.StageEnded(stage, succeeded);
  return succeeded;
}

// What comes before the stages. The path variables are extended first, so that <TempDir> and the
// user directories resolve from here on.
bool Prepare(Application& application) {
  const std::string no_subject;
  const bool prepared = AtWorkBorder(application, kMessageOutputDirectory, no_subject, [&] {
    ExtendPathVariables(application);
    if (application.document.steps.minimal_mdac) {
      UseMinimalMdac(application);
    } else {
      UseFullMdac(application);
    }
    return true;
  });
  return prepared && CheckDocument(application, Step::kAll) && CheckScriptCharacters(application);
}

std::string ResolveOutputDirectory(const Application& application) {
  std::string directory = NormalizeDirectory(FromVariableForm(
      application.document.path_variables, application.document.steps.setup_directory));
  // Disk directories are deleted in it: a directory that depends on where the process happens to
  // stand is not what anyone meant.
  if (!IsAbsolutePath(directory)) {
    throw RuntimeError(ErrorNumber::kBadFileName, Words(Reason::kNoCompletePath, {directory}));
  }
  return directory;
}

// A tidy folded path that ends in a backslash, so that being inside is a matter of prefixes.
std::string FoldedFolder(std::string_view directory) {
  std::string folded = FoldCase(NormalizeDirectory(directory));
  if (folded.empty() || folded.back() != '\\') folded += '\\';
  return folded;
}

// Folders that are going to be deleted with all that is in them. A user may have something there
// that is not ours: whoever builds into the parent of the project, where the pattern DISK* also
// matches a folder such as "DiskMonitor", must not lose the project.
class DoomedFolders {
 public:
  DoomedFolders(const FileSystem& files, const std::vector<std::string>& folders) : files_(files) {
    for (const std::string& folder : folders) {
      folders_.push_back(FoldedFolder(folder));
      folders_.push_back(FoldedFolder(files.FinalPath(folder)));
    }
  }

  // Throws when `folder` is one of them or lies in one, be it by another name: with "..", by a
  // share, a substituted drive or a link. `subject` is what the user knows it by.
  void Spare(std::string_view folder, std::string_view subject) {
    if (folders_.empty() || folder.empty()) return;
    const std::string folded = FoldedFolder(folder);
    if (!seen_.insert(folded).second) return;
    if (Holds(folded) || Holds(FoldedFolder(files_.FinalPath(folder)))) {
      throw RuntimeError(ErrorNumber::kPathFileAccess,
                         std::string(subject) + ": " + Words(Reason::kWouldBeDeleted));
    }
  }

  // The same for everything that the run reads.
  void SpareSources(Application& application) {
    const std::string kit = application.installation.SetupKitDirectory();
    Spare(application.project.directory, application.project.directory);
    Spare(kit, kit);
    const PathVariableList& variables = application.document.path_variables;
    const auto spare_file = [&](const std::string& text) {
      const std::string path = SourcePath(variables, text);
      Spare(ParentFolder(path), path);
    };
    for (const FileRow* row : application.document.AllRows()) spare_file(row->source);
    const Bilingual<std::string>& pictures = application.document.steps.background_picture;
    for (const std::string* picture : {&pictures.german, &pictures.english}) {
      if (!picture->empty()) spare_file(*picture);
    }
  }

 private:
  [[nodiscard]] bool Holds(std::string_view folded) const {
    return std::ranges::any_of(
        folders_, [&](const std::string& folder) { return folded.starts_with(folder); });
  }

  const FileSystem& files_;
  std::vector<std::string> folders_;
  std::unordered_set<std::string> seen_;  // thousands of files lie in a few folders
};

bool MakeTemporaryDirectory(Application& application, CreateState& state) {
  const std::string no_subject;
  return AtWorkBorder(application, kMessageTemporaryDirectory, no_subject, [&] {
    // Without a project directory this would be \~TEMP of whatever drive is current.
    if (application.project.directory.empty()) {
      throw RuntimeError(ErrorNumber::kPathNotFound, Words(Reason::kNoProjectDirectory));
    }
    FileSystem& files = application.platform.files;
    const std::string directory = application.project.TemporaryDirectory();
    DoomedFolders(files, {directory}).SpareSources(application);
    state.temporary_directory = directory;
    files.RemoveTree(state.temporary_directory);
    files.MakeFolder(state.temporary_directory);
    return true;
  });
}

void RemoveOldDisks(Application& application, const std::string& output_directory) {
  FileSystem& files = application.platform.files;
  std::vector<std::string> old_disks;
  // Made first, so that it is there: a share that is away for a moment would seem to hold no disks
  // of an earlier run, and they would go out with the new ones.
  files.MakeFolder(output_directory);
  for (const FileEntry& entry : files.List(output_directory, "DISK*")) {
    if (entry.is_folder) old_disks.push_back(JoinPath(output_directory, entry.name));
  }
  DoomedFolders(files, old_disks).SpareSources(application);
  for (const std::string& disk : old_disks) files.RemoveTree(disk);
}

// ~TEMP is emptied first and removed in the end.
void RefuseOutputInTemporaryDirectory(const Application& application, const CreateState& state) {
  DoomedFolders(application.platform.files, {application.project.TemporaryDirectory()})
      .Spare(state.output_directory, state.output_directory);
}

// Before anything is deleted.
bool ChooseOutputDirectory(Application& application, CreateState& state) {
  const std::string no_subject;
  return AtWorkBorder(application, kMessageOutputDirectory, no_subject, [&] {
    state.output_directory = ResolveOutputDirectory(application);
    RefuseOutputInTemporaryDirectory(application, state);
    return true;
  });
}

bool MakeOutputDirectory(Application& application, CreateState& state) {
  const std::string no_subject;
  return AtWorkBorder(application, kMessageOutputDirectory, no_subject, [&] {
    RemoveOldDisks(application, state.output_directory);
    const std::string_view separator = state.output_directory.back() == '\\' ? "" : "\\";
    state.first_disk_directory.append(state.output_directory).append(separator).append("DISK1");
    application.platform.files.MakeFolder(state.first_disk_directory);
    // Once more: only now that both are there is every name of theirs known.
    RefuseOutputInTemporaryDirectory(application, state);
    return true;
  });
}

// Stage 405.
bool MakeDirectories(Application& application, CreateView& view, CreateState& state) {
  if (CancelledMeanwhile(view)) return false;
  state.medium_bytes = MediumSizeBytes(application.document.steps.disk_size_index);
  return ChooseOutputDirectory(application, state) && MakeTemporaryDirectory(application, state) &&
         MakeOutputDirectory(application, state);
}

bool RunStages(Application& application, CreateView& view, CreateState& state) {
  return RunStage(view, CreateStage::kDirectories,
                  [&] { return MakeDirectories(application, view, state); }) &&
         RunStage(view, CreateStage::kCompress,
                  [&] { return CompressFiles(application, view, state); }) &&
         RunStage(view, CreateStage::kSetupKit,
                  [&] { return CopySetupKit(application, view, state); }) &&
         RunStage(view, CreateStage::kDistribute,
                  [&] { return DistributeOnDisks(application, view, state); }) &&
         RunStage(view, CreateStage::kControlFile,
                  [&] { return WriteSetupControlFile(application, view, state); });
}

void RemoveTemporaryDirectory(Application& application, const CreateState& state) {
  if (state.temporary_directory.empty()) return;
  try {
    application.platform.files.RemoveTree(state.temporary_directory);
  } catch (const std::exception&) {
    // Nothing depends on it: the next run removes it first, and says so if it still cannot.
  }
}

bool ProgramIsKnown(Application& application) {
  if (!application.document.program_name.empty()) return true;
  ShowWarning(application, kMessageProgramMissing, {});
  return false;
}

CreateResult Run(Application& application, CreateView& view) {
  CreateResult result;
  if (!ProgramIsKnown(application)) return result;
  // Two runs would empty ~TEMP and the disks under each other's hands.
  std::unique_ptr<HeldLock> lock = LockProject(application);
  if (lock == nullptr) return result;
  view.Begin();
  CreateState state;
  result.succeeded =
      Prepare(application) && RunStages(application, view, state) && !view.IsCancelPressed();
  if (result.succeeded) RemoveTemporaryDirectory(application, state);

  result.output_directory = state.output_directory;
  result.disks = state.disks_used;
  result.files = application.document.AllRows().size();
  result.archive_bytes = state.archive_bytes;
  // The note may stand on the screen over night; nobody works in the directory then.
  lock.reset();
  view.End(result.succeeded, application.texts.GetText(result.succeeded ? kTextDone : kTextFailed));
  if (!application.unattended) view.ShowTakeNote();
  return result;
}

// Compresses into ~TEMP, which must exist, and lays the archives out on paper.
std::optional<CreatePlan> MeasureAndPlan(Application& application, CreateView& view,
                                         const CreateState& state) {
  std::vector<std::uint64_t> sizes;
  std::optional<SetupKitRoom> room;
  const bool measured = RunStage(view, CreateStage::kCompress,
                                 [&] { return CompressFiles(application, view, state); }) &&
                        RunStage(view, CreateStage::kSetupKit,
                                 [&] {
                                   room = MeasureSetupKit(application, state.medium_bytes);
                                   return room.has_value();
                                 }) &&
                        RunStage(view, CreateStage::kDistribute,
                                 [&] { return MeasureArchives(application, view, state, sizes); });
  if (!measured || view.IsCancelPressed()) return std::nullopt;

  CreatePlan plan;
  plan.fits = room->fits;
  DistributionPlan distribution;
  if (plan.fits) {
    distribution = PlanDistribution(sizes, state.medium_bytes, room->bytes);
    plan.disks = distribution.disks_used;
  }
  const std::vector<FileRow*> rows = application.document.AllRows();
  plan.files.reserve(rows.size());
  for (std::size_t i = 0; i < rows.size(); ++i) {
    CreatePlan::File& file = plan.files.emplace_back();
    file.archive = rows[i]->compressed_name;
    file.archive_bytes = sizes[i];
    plan.archive_bytes += sizes[i];
    if (!plan.fits) continue;
    for (const DiskPiece& piece : distribution.archives[i].pieces) file.disks.push_back(piece.disk);
  }
  return plan;
}

std::optional<CreatePlan> Plan(Application& application, CreateView& view) {
  if (!ProgramIsKnown(application)) return std::nullopt;
  const std::unique_ptr<HeldLock> lock = LockProject(application);
  if (lock == nullptr) return std::nullopt;
  view.Begin();
  CreateState state;
  state.medium_bytes = MediumSizeBytes(application.document.steps.disk_size_index);
  std::optional<CreatePlan> plan;
  if (Prepare(application) && RunStage(view, CreateStage::kDirectories, [&] {
        return !CancelledMeanwhile(view) && ChooseOutputDirectory(application, state) &&
               MakeTemporaryDirectory(application, state);
      })) {
    plan = MeasureAndPlan(application, view, state);
  }
  RemoveTemporaryDirectory(application, state);
  // "Installation disks created" would not be true.
  view.End(plan.has_value(), plan ? std::string() : application.texts.GetText(kTextFailed));
  return plan;
}

}  // namespace

CreateResult RunCreate(Application& application, CreateView& view) {
  try {
    return Run(application, view);
  } catch (const std::exception&) {
    // Every stage has its own border; what arrives here was thrown while a message or the result
    // was being shown, so there is nobody left to tell.
    return {};
  }
}

std::optional<CreatePlan> PlanCreate(Application& application, CreateView& view) {
  try {
    return Plan(application, view);
  } catch (const std::exception&) {
    return std::nullopt;
  }
}

}  // namespace txs
