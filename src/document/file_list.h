// The file list: one row for every file that the installation will carry to the target computer.
//
// Rows count from 1, columns from 1 to 6, as the settings file, the grid and the messages count
// them. Two lists of this shape exist, the visible one and the hidden one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace txs {

enum class FileColumn : int {
  kSource = 1,       // full path on the developer's computer, in path-variable form
  kDestination = 2,  // directory on the target computer, in path-variable form; empty until known
  kLength = 3,       // bytes of the source file, decimal digits; computed, never saved
  kDisk = 4,         // "|" and the disk number for every disk that holds a piece; computed
  kCompressed = 5,   // archive name without directory; computed, kept while the list stays loaded
  kRegister = 6,     // registration kind "0" to "5" or empty
};
inline constexpr int kFileColumnCount = 6;

struct FileRow {
  std::string source;
  std::string destination;
  std::optional<std::uint64_t> length_bytes;
  std::string disk;
  std::string compressed_name;
  std::string registration;
  bool marked = false;  // highlighted in the grid: its file or its destination is missing

  bool operator==(const FileRow&) const = default;
};

class FileList {
 public:
  // `FileListRowCount`: never negative.
  [[nodiscard]] std::size_t RowCount() const { return rows_.size(); }

  // Rows 1 to RowCount(); any other number throws RuntimeError kInvalidCall.
  [[nodiscard]] FileRow& Row(std::size_t row);
  [[nodiscard]] const FileRow& Row(std::size_t row) const;

  // The cell as the grid shows it; an unset length is "".
  [[nodiscard]] std::string Cell(std::size_t row, FileColumn column) const;

  // Takes an edit of the grid, which also takes the row's mark away. A length that is no whole
  // number becomes unset. Row numbers as for Row().
  void SetCell(std::size_t row, FileColumn column, std::string_view text);

  // `FindInFileList`: first row whose cell equals `value` without regard to case; 0 when none does.
  [[nodiscard]] std::size_t Find(std::string_view value, FileColumn column) const;

  // `AppendRow`: columns 3 to 5 stay empty. Returns the new row's number.
  std::size_t Append(std::string source, std::string destination, std::string registration);

  // `DeleteRows`: row numbers in any order; numbers that are no row are passed over.
  void DeleteRows(std::vector<std::size_t> rows);

  void Clear() { rows_.clear(); }
  void ClearMarks();

  [[nodiscard]] std::vector<FileRow>& Rows() { return rows_; }
  [[nodiscard]] const std::vector<FileRow>& Rows() const { return rows_; }

 private:
  std::vector<FileRow> rows_;
};

// `AddUnique`: appends `text` unless an element equals it without regard to case. Returns whether
// it was appended.
bool AddUnique(std::vector<std::string>& list, std::string_view text);

// `SystemFileNames`: bare names that are never listed because every target computer has them.
struct SystemFileNames {
  std::vector<std::string> resolved;  // found by the dependency resolution
  std::vector<std::string> excluded;  // section Exclude of TXDependencies.ini
};

// `IsSystemFile` without its message: whether the bare name of `path` is in either list.
[[nodiscard]] bool IsSystemFile(const SystemFileNames& names, std::string_view path);

}  // namespace txs
