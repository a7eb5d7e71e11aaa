#include "document/file_list.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

#include "environment/code_page.h"
#include "environment/runtime_error.h"
#include "environment/windows_path.h"

namespace txs {
namespace {

// Enough for the digits of any 64-bit number.
using DigitBuffer = std::array<char, 20>;

std::string_view LengthText(const FileRow& row, DigitBuffer& digits) {
  if (!row.length_bytes) return {};
  char* const begin = digits.data();
  const std::to_chars_result written =
      std::to_chars(begin, begin + digits.size(), *row.length_bytes);
  return {begin, static_cast<std::size_t>(written.ptr - begin)};
}

// The cell's text where it stands; only the length must be written out, into `digits`. Looking
// through a long list so allocates nothing.
std::string_view CellText(const FileRow& row, FileColumn column, DigitBuffer& digits) {
  switch (column) {
    case FileColumn::kSource:
      return row.source;
    case FileColumn::kDestination:
      return row.destination;
    case FileColumn::kLength:
      return LengthText(row, digits);
    case FileColumn::kDisk:
      return row.disk;
    case FileColumn::kCompressed:
      return row.compressed_name;
    case FileColumn::kRegister:
      return row.registration;
  }
  return {};
}

std::optional<std::uint64_t> ParseLength(std::string_view text) {
  text = TrimBlanks(text);
  std::uint64_t length = 0;
  const char* const end = text.data() + text.size();
  const auto [stopped, error] = std::from_chars(text.data(), end, length);
  if (error != std::errc() || stopped != end) return std::nullopt;
  return length;
}

bool ContainsNoCase(const std::vector<std::string>& list, std::string_view text) {
  return std::any_of(list.begin(), list.end(),
                     [&](const std::string& element) { return EqualNoCase(element, text); });
}

}  // namespace

FileRow& FileList::Row(std::size_t row) {
  return const_cast<FileRow&>(std::as_const(*this).Row(row));
}

const FileRow& FileList::Row(std::size_t row) const {
  if (row < 1 || row > rows_.size()) {
    throw RuntimeError(ErrorNumber::kInvalidCall,
                       "the file list has " + std::to_string(rows_.size()) + " rows, but row " +
                           std::to_string(row) + " was asked for");
  }
  return rows_[row - 1];
}

std::string FileList::Cell(std::size_t row, FileColumn column) const {
  DigitBuffer digits;
  return std::string(CellText(Row(row), column, digits));
}

void FileList::SetCell(std::size_t row, FileColumn column, std::string_view text) {
  FileRow& cells = Row(row);
  switch (column) {
    case FileColumn::kSource:
      cells.source = text;
      break;
    case FileColumn::kDestination:
      cells.destination = text;
      break;
    case FileColumn::kLength:
      cells.length_bytes = ParseLength(text);
      break;
    case FileColumn::kDisk:
      cells.disk = text;
      break;
    case FileColumn::kCompressed:
      cells.compressed_name = text;
      break;
    case FileColumn::kRegister:
      cells.registration = text;
      break;
  }
  cells.marked = false;
}

std::size_t FileList::Find(std::string_view value, FileColumn column) const {
  DigitBuffer digits;
  for (std::size_t i = 0; i < rows_.size(); ++i) {
    if (EqualNoCase(CellText(rows_[i], column, digits), value)) return i + 1;
  }
  return 0;
}

std::size_t FileList::Append(std::string source, std::string destination,
                             std::string registration) {
  FileRow& row = rows_.emplace_back();
  row.source = std::move(source);
  row.destination = std::move(destination);
  row.registration = std::move(registration);
  return rows_.size();
}

void FileList::DeleteRows(std::vector<std::size_t> rows) {
  std::sort(rows.begin(), rows.end());
  auto next = std::lower_bound(rows.begin(), rows.end(), std::size_t{1});
  std::size_t kept = 0;
  for (std::size_t i = 0; i < rows_.size(); ++i) {
    const bool deleted = next != rows.end() && *next == i + 1;
    while (next != rows.end() && *next == i + 1) ++next;
    if (deleted) continue;
    if (kept != i) rows_[kept] = std::move(rows_[i]);
    ++kept;
  }
  rows_.resize(kept);
}

void FileList::ClearMarks() {
  for (FileRow& row : rows_) row.marked = false;
}

bool AddUnique(std::vector<std::string>& list, std::string_view text) {
  if (ContainsNoCase(list, text)) return false;
  list.emplace_back(text);
  return true;
}

bool IsSystemFile(const SystemFileNames& names, std::string_view path) {
  const std::string name = FileName(path);
  return ContainsNoCase(names.resolved, name) || ContainsNoCase(names.excluded, name);
}

}  // namespace txs
