// What the Search-File dialog shows, without a window: a drive list, a directory list and a file
// list that holds only files of the name searched for.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "environment/file_system.h"
#include "scan/search_file_dialog.h"

namespace txs {

class SearchFileModel {
 public:
  // Opens in `directory`, or in the first drive when that does not exist. The answer is kCancel
  // until a button says otherwise. `files` must outlive the model.
  SearchFileModel(const FileSystem& files, SearchFileRequest request, std::string_view directory);

  [[nodiscard]] const SearchFileRequest& Request() const { return request_; }
  [[nodiscard]] const std::vector<std::string>& Drives() const { return drives_; }
  [[nodiscard]] const std::string& Drive() const { return drive_; }  // "C:"
  // The directory shown, without trailing backslash except of a drive ("C:\").
  [[nodiscard]] const std::string& Directory() const { return directory_; }
  // Names of its folders; ".." first unless it is a drive. Empty when it cannot be read.
  [[nodiscard]] const std::vector<std::string>& Folders() const { return folders_; }
  // Names of its files that equal the name searched for without regard to case.
  [[nodiscard]] const std::vector<std::string>& Files() const { return found_; }

  void ChangeDrive(std::string_view drive);
  // A name out of Folders(), or a full path. A directory that does not exist changes nothing.
  void ChangeDirectory(std::string_view name_or_path);
  void Refresh();

  // OK only makes sense where the file lies.
  [[nodiscard]] bool OkEnabled() const { return !found_.empty(); }
  void PressOk();
  void PressIgnore();
  void PressCancel();
  [[nodiscard]] const SearchFileAnswer& Answer() const { return answer_; }

 private:
  const FileSystem& files_;
  SearchFileRequest request_;
  std::vector<std::string> drives_;
  std::string drive_;
  std::string directory_;
  std::vector<std::string> folders_;
  std::vector<std::string> found_;
  SearchFileAnswer answer_;
};

}  // namespace txs
