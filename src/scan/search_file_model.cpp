#include "scan/search_file_model.h"

#include <algorithm>
#include <utility>

#include "environment/code_page.h"
#include "environment/full_path.h"
#include "environment/runtime_error.h"
#include "environment/windows_path.h"

namespace txs {

SearchFileModel::SearchFileModel(const FileSystem& files, SearchFileRequest request,
                                 std::string_view directory)
    : files_(files), request_(std::move(request)) {
  try {
    drives_ = files_.Drives();
  } catch (const RuntimeError&) {
    // Without a drive list the directory can still be chosen by its path.
  }
  ChangeDirectory(directory);
  if (directory_.empty() && !drives_.empty()) ChangeDrive(drives_.front());
}

void SearchFileModel::ChangeDrive(std::string_view drive) {
  ChangeDirectory(FullPath(std::string(drive) + "\\"));
}

void SearchFileModel::ChangeDirectory(std::string_view name_or_path) {
  const std::string directory = FullPathFrom(directory_, name_or_path);
  if (!IsAbsolutePath(directory) || !files_.FolderExists(directory)) return;
  directory_ = directory;
  drive_ = IsDriveDirectory(directory_) ? directory_.substr(0, 2) : std::string();
  Refresh();
}

void SearchFileModel::Refresh() {
  folders_.clear();
  found_.clear();
  if (directory_.empty()) return;
  // A drive or a share has nothing above it.
  if (FullPathFrom(directory_, "..") != directory_) folders_.emplace_back("..");
  std::vector<FileEntry> entries;
  try {
    entries = files_.List(directory_, "*");
  } catch (const RuntimeError&) {
    return;
  }
  for (FileEntry& entry : entries) {
    if (entry.is_folder) {
      folders_.push_back(std::move(entry.name));
    } else if (EqualNoCase(entry.name, request_.file_name)) {
      found_.push_back(std::move(entry.name));
    }
  }
}

void SearchFileModel::PressOk() {
  if (OkEnabled()) answer_ = {SearchFileResult::kOk, directory_};
}

void SearchFileModel::PressIgnore() { answer_ = {SearchFileResult::kIgnore, {}}; }

void SearchFileModel::PressCancel() { answer_ = {SearchFileResult::kCancel, {}}; }

}  // namespace txs
