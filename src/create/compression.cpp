#include "create/compression.h"

#include <cstdint>
#include <optional>

#include "create/stage_view.h"
#include "document/path_variables.h"
#include "document/work_border.h"
#include "environment/code_page.h"
#include "environment/windows_path.h"
#include "strings/reason.h"
#include "text/message_service.h"

namespace txs {
namespace {

constexpr long kTextCompressing = 428;
constexpr long kMessageCompressing = 902;

std::uint64_t TotalLength(const std::vector<FileRow*>& rows) {
  std::uint64_t total = 0;
  for (const FileRow* row : rows) total += row->length_bytes.value_or(0);
  return total;
}

// The codes are the library's own and say little to a user: the reason stands below, where there is
// one.
void ShowResultCode(Application& application, const std::string& source, ArchiveResult code,
                    const std::string& reason) {
  Message message = application.texts.Compose(kMessageCompressing, {source});
  message.prompt += "\r\n(" + std::to_string(static_cast<int>(code)) + ")";
  if (!reason.empty()) message.prompt += "\r\n" + reason;
  application.messages.ShowMessage(message);
}

// The script tells the setup engine the length that the row had when the run began. A file that has
// another one by now, as when somebody builds the program just then, would be refused there.
bool HasItsLength(const Application& application, const FileRow& row, const std::string& source) {
  if (!row.length_bytes) return true;
  const std::optional<FileStamp> stamp = application.platform.files.Stamp(source);
  return stamp && stamp->length_bytes == *row.length_bytes;
}

}  // namespace

CompressedNames::CompressedNames(const std::vector<FileRow*>& rows) {
  taken_.reserve(rows.size() * 2);
  for (const FileRow* row : rows) {
    if (!row->compressed_name.empty()) taken_.insert(FoldCase(row->compressed_name));
  }
}

std::string CompressedNames::Next(std::string_view source_path) {
  const std::string file_name = FileName(source_path);
  std::string name = file_name + ".zip";
  if (taken_.insert(FoldCase(name)).second) return name;

  // Remembered per file name, so that the thousandth file of one name does not try 999 taken names.
  std::size_t& number = next_number_.try_emplace(FoldCase(file_name), 1).first->second;
  do {
    name = file_name + "." + std::to_string(number++) + ".zip";
  } while (!taken_.insert(FoldCase(name)).second);
  return name;
}

bool CompressFiles(Application& application, CreateView& view, const CreateState& state) {
  std::string source;
  return AtWorkBorder(application, kMessageCompressing, source, [&] {
    view.ShowAction(application.texts.GetText(kTextCompressing));
    const std::vector<FileRow*> rows = application.document.AllRows();
    const std::uint64_t total_bytes = TotalLength(rows);
    CompressedNames names(rows);
    std::uint64_t done_bytes = 0;
    view.ShowProgress(MakeCreateProgress(/*count_done=*/0, rows.size(), done_bytes, total_bytes));

    const BusyPointer busy(view);
    for (std::size_t i = 0; i < rows.size(); ++i) {
      FileRow& row = *rows[i];
      source = SourcePath(application.document.path_variables, row.source);
      view.ShowFile(source);
      if (row.compressed_name.empty()) row.compressed_name = names.Next(source);
      const std::string archive = JoinPath(state.temporary_directory, row.compressed_name);
      view.LetEventsRun();

      const ArchiveResult code = application.platform.archiver.Compress(archive, source);
      if (code != ArchiveResult::kSuccess) {
        ShowResultCode(application, source, code, application.platform.archiver.FailureReason());
        return false;
      }
      if (!HasItsLength(application, row, source)) {
        ShowResultCode(application, source, ArchiveResult::kSourceChanged,
                       source + ": " + Words(Reason::kChangedDuringRun));
        return false;
      }
      if (CancelledMeanwhile(view)) return false;
      const std::optional<FileStamp> stamp = application.platform.files.Stamp(archive);
      if (!stamp || stamp->length_bytes == 0) {
        ShowWarning(application, kMessageCompressing, {row.compressed_name});
        return false;
      }
      done_bytes += row.length_bytes.value_or(0);
      view.ShowProgress(MakeCreateProgress(i + 1, rows.size(), done_bytes, total_bytes));
    }
    return true;
  });
}

}  // namespace txs
