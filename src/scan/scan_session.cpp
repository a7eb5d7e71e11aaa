#include "scan/scan_session.h"

#include <algorithm>
#include <utility>

#include "environment/code_page.h"
#include "environment/full_path.h"
#include "environment/runtime_error.h"
#include "environment/windows_path.h"

namespace txs {
namespace {

std::string FoldedName(std::string_view path) { return FoldCase(FileName(path)); }

}  // namespace

ScanSession::ScanSession(Application& application, ScanView& view, SearchFileDialog& dialog)
    : application_(application),
      view_(view),
      dialog_(dialog),
      dependencies_(application.platform.files, application.platform.profiles),
      visual_basic_(FindVisualBasic(application.platform.tools, ReadDesigner())
                        .value_or(VisualBasicInstallation())),
      search_(application.platform.files, SearchPlaces(), [this] { return !CancelledMeanwhile(); }),
      variables_(application.document.path_variables),
      kept_rows_(application.document.files.RowCount()),
      unfinished_before_(application.document.unfinished_files.begin(),
                         application.document.unfinished_files.end()) {
  const SetupDocument& document = application.document;
  for (std::size_t row = 1; row <= kept_rows_; ++row) {
    std::string path = FullPathOfRow(row);
    listed_.try_emplace(FoldCase(path), Listed{row, /*by_this_scan=*/false});
    listed_by_name_.try_emplace(FoldedName(path), std::move(path));
  }
  for (const std::string& line : document.extra_todo_lines) script_lines_.insert(FoldCase(line));
  for (const std::string& name : document.system_files.resolved) {
    system_names_.insert(FoldCase(name));
  }
  for (const std::string& name : document.system_files.excluded) {
    system_names_.insert(FoldCase(name));
  }
}

std::string ScanSession::ReadDesigner() {
  try {
    return application_.platform.tools.ReadText("Global", "Designer", /*default_value=*/{},
                                                application_.project.StudioProjectFile());
  } catch (const RuntimeError&) {
    return {};  // The studio stage opens the same file and reports it.
  }
}

std::vector<SearchPlace> ScanSession::SearchPlaces() const {
  const SystemTools& tools = application_.platform.tools;
  std::vector<SearchPlace> places = {
      {application_.project.directory, SearchPlace::Depth::kTree},
      {application_.installation.SetupKitDirectory(), SearchPlace::Depth::kTree},
      {tools.Folder(SpecialFolder::kSystem), SearchPlace::Depth::kFolderOnly},
      {tools.Folder(SpecialFolder::kWindows), SearchPlace::Depth::kFolderOnly},
      {visual_basic_.directory, SearchPlace::Depth::kTree},
      // The product names components of its own by their bare names too.
      {application_.installation.common_directory, SearchPlace::Depth::kTree},
      {application_.installation.studio_directory, SearchPlace::Depth::kTree},
  };
  // A relative place would be wherever the process happens to stand.
  std::erase_if(places, [](const SearchPlace& place) { return !IsAbsolutePath(place.folder); });
  return places;
}

bool ScanSession::CancelledMeanwhile() {
  view_.LetEventsRun();
  return view_.IsCancelPressed();
}

std::optional<ScanSession::Listed> ScanSession::FindListed(std::string_view full_path) const {
  const auto found = listed_.find(FoldCase(full_path));
  if (found == listed_.end()) return std::nullopt;
  return found->second;
}

bool ScanSession::ListedByThisScan(std::string_view path) const {
  const auto named = listed_by_name_.find(FoldedName(path));
  if (named == listed_by_name_.end()) return false;
  const std::optional<Listed> listed = FindListed(named->second);
  return listed && listed->by_this_scan;
}

std::string ScanSession::VariableFormOf(std::string_view full_path, VariableForm form) const {
  return ToVariableForm(variables_, full_path, form);
}

std::string ScanSession::FullPathOfRow(std::size_t row) const {
  const SetupDocument& document = application_.document;
  const std::string& source = document.files.Row(row).source;
  try {
    return FullPath(FromVariableForm(document.path_variables, source));
  } catch (const RuntimeError&) {
    return source;  // Variables that name each other without end; Create says so.
  }
}

void ScanSession::AppendRow(std::string_view full_path, std::uint64_t length_bytes,
                            RegistrationKind kind, std::string_view destination) {
  SetupDocument& document = application_.document;
  const std::size_t row = document.files.Append(
      VariableFormOf(full_path, VariableForm::kWholePath),
      destination.empty() ? VariableFormOf(full_path, VariableForm::kDirectoryOnly)
                          : std::string(destination),
      std::to_string(static_cast<int>(kind)));
  document.files.Row(row).length_bytes = length_bytes;
  document.changed = true;
  listed_.try_emplace(FoldCase(full_path), Listed{row, /*by_this_scan=*/true});
  const std::string name = FoldedName(full_path);
  listed_by_name_.try_emplace(name, full_path);
  unfinished_before_.erase(name);  // what it needs is followed because it is new
  if (missing_names_.erase(name) > 0) {
    std::erase_if(missing_, [&](const MissingItem& item) { return FoldCase(item.name) == name; });
  }
  view_.ShowCount(document.files.RowCount());
}

bool ScanSession::IsSystemFileName(std::string_view path) const {
  return system_names_.contains(FoldedName(path));
}

bool ScanSession::IsUnfinished(std::string_view path) const {
  return unfinished_before_.contains(FoldedName(path));
}

void ScanSession::LeaveUnfinished(std::string_view path) {
  unfinished_now_.insert(FoldedName(path));
}

void ScanSession::StoreUnfinished(bool is_complete) {
  if (!is_complete) unfinished_now_.insert(unfinished_before_.begin(), unfinished_before_.end());
  std::vector<std::string>& files = application_.document.unfinished_files;
  files.assign(unfinished_now_.begin(), unfinished_now_.end());
  std::sort(files.begin(), files.end());
}

void ScanSession::SetProgramName(std::string_view name) {
  SetupDocument& document = application_.document;
  if (document.program_name == name) return;
  document.program_name = name;
  document.changed = true;
}

void ScanSession::AddScriptLine(std::string_view line) {
  if (!script_lines_.insert(FoldCase(line)).second) return;
  application_.document.extra_todo_lines.emplace_back(line);
}

std::optional<ScanSession::Located> ScanSession::At(const std::string& full_path) const {
  if (!IsAbsolutePath(full_path)) return std::nullopt;
  const std::optional<FileStamp> stamp = application_.platform.files.Stamp(full_path);
  if (!stamp) return std::nullopt;
  return Located{Whereabouts::kFound, full_path, *stamp, /*by_user=*/false};
}

ScanSession::Located ScanSession::Locate(std::string_view path, std::string_view naming_folder,
                                         const ChainMaker& make_chain) {
  const std::string full_path = FullPath(path);
  const std::string name = FileName(full_path);
  if (name != full_path) {
    if (std::optional<Located> found = At(full_path)) return *std::move(found);
    if (!IsAbsolutePath(full_path)) {
      for (const std::string_view folder :
           {naming_folder, std::string_view(application_.project.directory)}) {
        if (std::optional<Located> found = At(FullPathFrom(folder, full_path))) {
          return *std::move(found);
        }
      }
    }
  }

  const std::string key = FoldCase(name);
  const auto asked = asked_.find(key);
  if (asked != asked_.end() && asked->second.whereabouts == Whereabouts::kFound) {
    return asked->second;
  }
  std::optional<Located> found;
  if (asked == asked_.end()) found = At(search_.Find(name));
  if (!found && !naming_folder.empty()) found = At(FullPathFrom(naming_folder, name));
  if (!found) found = FindListedByName(name);
  if (found) {
    asked_[key] = *found;
    return *std::move(found);
  }
  if (application_.use_runtime_setup && setups_.Lists(name)) {
    return {Whereabouts::kCovered, name, {}, /*by_user=*/false};
  }
  if (asked != asked_.end()) return asked->second;
  if (view_.IsCancelPressed()) return {Whereabouts::kDropped, full_path, {}, /*by_user=*/false};
  return AskFor(name, make_chain);
}

std::optional<ScanSession::Located> ScanSession::FindListedByName(
    std::string_view file_name) const {
  const auto listed = listed_by_name_.find(FoldCase(file_name));
  if (listed == listed_by_name_.end()) return std::nullopt;
  return At(listed->second);
}

bool ScanSession::IsCovered(const Located& found) const {
  return application_.use_runtime_setup &&
         setups_.Covers(found.path, application_.platform.clock.ToLocal(found.stamp.last_write));
}

std::string ScanSession::KnownPath(std::string_view path) const {
  std::string full_path = FullPath(path);
  if (application_.platform.files.FileExists(full_path)) return full_path;
  const auto asked = asked_.find(FoldedName(full_path));
  if (asked == asked_.end() || asked->second.whereabouts != Whereabouts::kFound) return full_path;
  return asked->second.path;
}

ScanSession::Located ScanSession::AskFor(std::string_view file_name, const ChainMaker& make_chain) {
  const std::string key = FoldCase(file_name);
  if (const auto asked = asked_.find(key); asked != asked_.end()) return asked->second;

  Located located{Whereabouts::kIgnored, std::string(file_name), {}, /*by_user=*/false};
  std::vector<std::string> chain = make_chain();
  const SearchFileAnswer answer = dialog_.Search({std::string(file_name), chain});
  if (answer.result == SearchFileResult::kCancel) located.whereabouts = Whereabouts::kDropped;
  if (answer.result == SearchFileResult::kOk) {
    if (std::optional<Located> found = At(FullPathFrom(answer.directory, file_name))) {
      located = *std::move(found);
      located.by_user = true;
    }
  }
  if (located.whereabouts != Whereabouts::kFound) {
    RecordMissing(std::string(file_name), std::move(chain));
    LeaveUnfinished(file_name);
  }
  asked_[key] = located;
  return located;
}

void ScanSession::RecordMissing(std::string name, std::vector<std::string> chain) {
  if (!missing_names_.insert(FoldCase(name)).second) return;
  missing_.push_back({std::move(name), std::move(chain)});
}

bool ScanSession::IsRecordedMissing(std::string_view name) const {
  return missing_names_.contains(FoldCase(name));
}

std::vector<MissingItem> ScanSession::TakeMissing() { return std::exchange(missing_, {}); }

}  // namespace txs
