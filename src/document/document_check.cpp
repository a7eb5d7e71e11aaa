#include "document/document_check.h"

#include <algorithm>
#include <cstddef>
#include <exception>
#include <limits>
#include <new>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "document/medium.h"
#include "document/path_variables.h"
#include "environment/code_page.h"
#include "environment/windows_path.h"
#include "strings/reason.h"

namespace txs {
namespace {

constexpr long kPictureMissing = 1707;
constexpr long kDirectoriesMissing = 1708;
constexpr long kFilesMissing = 1709;
constexpr long kDestinationsMissing = 1710;
constexpr long kNoDriveDirectory = 1712;
constexpr long kSeparatorInText = 1935;
constexpr long kFilesConcerned = 1940;

// A message that names more would bury what it says.
constexpr std::size_t kMostNamed = 100;

// A message that is about to be shown, or that comes nearest to an error that interrupts the check.
struct Finding {
  long id = 0;
  std::vector<std::string> parameters;
  const std::string* setting = nullptr;  // that it is about
};

using MaybeFinding = std::optional<Finding>;

bool IsBlank(std::string_view text) { return TrimBlanks(text).empty(); }

// Each check gives the finding that ends it. `doing` always names what is being checked, for the
// case that the check cannot be finished.
MaybeFinding CheckPictures(Application& application, Finding& doing) {
  const SetupDocument& document = application.document;
  const Bilingual<std::string>& pictures = document.steps.background_picture;
  for (const std::string* picture : {&pictures.german, &pictures.english}) {
    if (picture->empty()) continue;
    doing = {kPictureMissing, {*picture}, picture};
    const std::string path = SourcePath(document.path_variables, *picture);
    if (!application.platform.files.FileExists(path)) {
      return Finding{kPictureMissing, {path}, picture};
    }
  }
  return std::nullopt;
}

// The script separates what its commands are given by "|" and knows no way to write one.
MaybeFinding CheckSeparator(const std::string& text) {
  if (text.find('|') == std::string::npos) return std::nullopt;
  return Finding{kSeparatorInText, {text}, &text};
}

MaybeFinding CheckShellLinks(const StepSettings& steps) {
  for (const auto* text : {&steps.startmenu_folder, &steps.startmenu_link}) {
    if (MaybeFinding finding = CheckSeparator(text->german)) return finding;
    if (MaybeFinding finding = CheckSeparator(text->english)) return finding;
  }
  return std::nullopt;
}

MaybeFinding CheckDirectories(const StepSettings& steps, Finding& doing) {
  for (const std::string* directory : {&steps.tavix_directory, &steps.project_directory}) {
    doing = {kDirectoriesMissing, {}, directory};
    if (IsBlank(*directory)) return doing;
  }

  const auto check = [](const std::string& directory) -> MaybeFinding {
    if (!IsDriveDirectory(directory)) return Finding{kNoDriveDirectory, {directory}, &directory};
    return CheckSeparator(directory);
  };
  if (MaybeFinding finding = check(steps.tavix_directory)) return finding;
  if (MaybeFinding finding = check(steps.project_directory)) return finding;
  for (const UserDirectory& user : steps.user_directories) {
    if (MaybeFinding finding = check(user.directory)) return finding;
  }
  return std::nullopt;
}

// Whether the row's file is there. The stamp answers that and the length with one call, which
// counts when the files are many or lie on a server.
bool TakeLength(Application& application, FileRow& row) {
  const std::optional<FileStamp> stamp =
      application.platform.files.Stamp(SourcePath(application.document.path_variables, row.source));
  row.length_bytes.reset();
  if (stamp) row.length_bytes = stamp->length_bytes;
  return stamp.has_value();
}

// Takes every row's length and marks the rows whose file is not there.
bool MarkMissingFiles(Application& application) {
  bool complete = true;
  for (FileRow* const row : application.document.AllRows()) {
    row->marked = !TakeLength(application, *row);
    complete = complete && !row->marked;
  }
  return complete;
}

bool MarkMissingDestinations(SetupDocument& document) {
  bool complete = true;
  for (FileRow* const row : document.AllRows()) {
    row->marked = IsBlank(row->destination);
    complete = complete && !row->marked;
  }
  return complete;
}

MaybeFinding CheckFiles(Application& application, Finding& doing) {
  SetupDocument& document = application.document;
  document.files.ClearMarks();
  document.hidden_files.ClearMarks();
  doing = {kFilesMissing, {}};
  const bool files_exist = MarkMissingFiles(application);
  RefreshFigures(application);
  if (!files_exist) return doing;
  doing = {kDestinationsMissing, {}};
  if (!MarkMissingDestinations(document)) return doing;
  for (FileRow* const row : document.AllRows()) {
    if (row->destination.find('|') == std::string::npos) continue;
    row->marked = true;
    return Finding{kSeparatorInText, {row->destination}};
  }
  return std::nullopt;
}

// The marks of the rows are all that the messages about files go by. Where nobody sees them, in an
// unattended run and for rows that the list does not show, the files are named: line breaks and
// paths, nothing where the marks will do.
std::string MarkedFiles(Application& application) {
  const SetupDocument& document = application.document;
  const auto is_marked = [](const FileRow& row) { return row.marked; };
  if (!application.unattended && std::ranges::none_of(document.hidden_files.Rows(), is_marked)) {
    return {};
  }
  std::string names;
  std::size_t count = 0;
  for (const FileRow* const row : application.document.AllRows()) {
    if (!row->marked || ++count > kMostNamed) continue;
    const std::string path = SourcePath(document.path_variables, row->source);
    names += "\r\n" + (path.empty() ? "\"\"" : path);
  }
  if (count > kMostNamed) names += "\r\n...";
  return names;
}

void ShowFinding(Application& application, const Finding& finding) {
  Message message = application.texts.Compose(finding.id, finding.parameters);
  if (finding.id == kFilesMissing || finding.id == kDestinationsMissing) {
    const std::string names = MarkedFiles(application);
    if (!names.empty()) {
      message.prompt += "\r\n" + application.texts.GetText(kFilesConcerned, {names});
    }
  }
  application.messages.ShowMessage(message);
}

MaybeFinding RunCheck(Application& application, Step step, Finding& doing) {
  const auto concerns = [step](Step part) { return step == Step::kAll || step == part; };
  if (concerns(Step::kTexts)) {
    if (MaybeFinding finding = CheckPictures(application, doing)) return finding;
    if (MaybeFinding finding = CheckShellLinks(application.document.steps)) return finding;
  }
  if (concerns(Step::kDirectories)) {
    if (MaybeFinding finding = CheckDirectories(application.document.steps, doing)) return finding;
  }
  if (concerns(Step::kFiles)) {
    if (MaybeFinding finding = CheckFiles(application, doing)) return finding;
  }
  if (step == Step::kMedium) RefreshFigures(application);
  return std::nullopt;
}

}  // namespace

bool CheckDocument(Application& application, Step step, const std::string** wrong) {
  Finding doing{kFilesMissing, {}};
  // The check is run from event handlers and by Create, neither of which expects an error: what
  // cannot be checked counts as failed.
  try {
    const MaybeFinding finding = RunCheck(application, step, doing);
    if (!finding) return true;
    doing = *finding;
    ShowFinding(application, doing);
  } catch (const RuntimeError& error) {
    ShowError(application, doing.id, doing.parameters, error);
  } catch (const std::bad_alloc&) {
    ShowError(application, doing.id, doing.parameters,
              RuntimeError(ErrorNumber::kOutOfMemory, Words(Reason::kOutOfMemory)));
  } catch (const std::exception& error) {
    ShowError(application, doing.id, doing.parameters,
              RuntimeError(ErrorNumber::kInternal, error.what()));
  }
  if (wrong != nullptr) *wrong = doing.setting;
  return false;
}

void MeasureFiles(Application& application) {
  for (FileRow* const row : application.document.AllRows()) {
    try {
      static_cast<void>(TakeLength(application, *row));
    } catch (const RuntimeError&) {
      row->length_bytes.reset();  // The check of the files says what is wrong.
    }
  }
  RefreshFigures(application);
}

void RefreshFigures(Application& application) {
  constexpr std::uint64_t kLargest = std::numeric_limits<std::uint64_t>::max();
  SetupDocument& document = application.document;
  std::uint64_t count = 0;
  std::uint64_t bytes = 0;
  for (const FileRow* const row : document.AllRows()) {
    ++count;
    // Lengths can be typed into the grid, so the sum may exceed what any disk holds.
    const std::uint64_t length = row->length_bytes.value_or(0);
    bytes = length > kLargest - bytes ? kLargest : bytes + length;
  }
  StepSettings& steps = document.steps;
  steps.file_count_label = std::to_string(count);
  steps.total_bytes_label = std::to_string(bytes);
  steps.disks_needed_label =
      std::to_string(EstimateDisksNeeded(bytes, MediumSizeBytes(steps.disk_size_index)));
  steps.disks_needed_is_estimate = true;
}

}  // namespace txs
