#include "create/setup_kit.h"

#include <memory>
#include <optional>
#include <span>

#include "create/disk_distribution.h"
#include "create/stage_view.h"
#include "document/work_border.h"
#include "environment/code_page.h"
#include "environment/windows_path.h"
#include "strings/reason.h"

namespace txs {
namespace {

constexpr char kListName[] = "TXSTPKIT.INI";
constexpr char kSection[] = "SetupFiles";
// A list that claims more files than this is damaged; believing it would exhaust the memory.
constexpr std::int64_t kMaxKitFiles = 1'000'000;

constexpr long kTextWriting = 426;
constexpr long kTextCopying = 427;
constexpr long kMessageCopying = 909;
constexpr long kMessageReadingList = 910;
constexpr long kMessageWriting = 911;
constexpr long kMessageKitTooLarge = 912;

bool ReadList(Application& application, std::vector<std::string>& names) {
  return AtWorkBorder(application, kMessageReadingList, kListName, [&] {
    names = ReadSetupKitList(application);
    return true;
  });
}

// Bytes of file `index` of the kit, which `subject` then names: by its key when the list has no
// name for it. Throws RuntimeError when it is missing.
std::uint64_t KitFileLength(const Application& application, const std::vector<std::string>& names,
                            std::size_t index, std::string& subject) {
  subject = names[index];
  if (subject.empty()) {
    subject = std::to_string(index + 1);
    throw RuntimeError(
        ErrorNumber::kBadFileName,
        std::string(kListName) + ": " + Words(Reason::kKeyIsMissing, {kSection, subject}));
  }
  return application.platform.files.Length(
      JoinPath(application.installation.SetupKitDirectory(), subject));
}

bool CopyFiles(Application& application, CreateView& view, const std::vector<std::string>& names,
               CreateState& state) {
  std::string subject;
  return AtWorkBorder(application, kMessageCopying, subject, [&] {
    FileSystem& files = application.platform.files;
    const std::string kit_directory = application.installation.SetupKitDirectory();
    // Measured first, so that the bar knows where it ends.
    std::vector<std::uint64_t> lengths;
    lengths.reserve(names.size());
    std::uint64_t total_bytes = 0;
    for (std::size_t i = 0; i < names.size(); ++i) {
      lengths.push_back(KitFileLength(application, names, i, subject));
      total_bytes += lengths.back();
    }
    std::uint64_t done_bytes = 0;
    view.ShowProgress(MakeCreateProgress(/*count_done=*/0, names.size(), done_bytes, total_bytes));

    for (std::size_t i = 0; i < names.size(); ++i) {
      subject = names[i];
      view.ShowFile(names[i]);
      if (CancelledMeanwhile(view)) return false;
      files.CopyWhole(JoinPath(kit_directory, names[i]),
                      JoinPath(state.first_disk_directory, names[i]));
      state.first_disk_names.insert(FoldCase(names[i]));
      state.reserved_bytes += RoundUpTo1024(lengths[i]);
      done_bytes += lengths[i];
      view.ShowProgress(MakeCreateProgress(i + 1, names.size(), done_bytes, total_bytes));
    }
    return true;
  });
}

bool WritePlaceholder(Application& application, CreateView& view, CreateState& state) {
  const std::string shown_name = "setup.stp";
  return AtWorkBorder(application, kMessageWriting, shown_name, [&] {
    view.ShowAction(application.texts.GetText(kTextWriting));
    view.ShowFile(shown_name);
    const std::string blanks(kScriptPlaceholderBytes, ' ');
    const std::unique_ptr<OutputFile> file = application.platform.files.CreateForWriting(
        JoinPath(state.first_disk_directory, "SETUP.STP"));
    file->Write(std::as_bytes(std::span(blanks)));
    file->Close();
    state.first_disk_names.insert(FoldCase(shown_name));
    state.reserved_bytes += kScriptPlaceholderBytes;
    return true;
  });
}

bool CheckRoom(Application& application, std::uint64_t reserved_bytes, std::uint64_t medium_bytes) {
  if (reserved_bytes <= medium_bytes) return true;
  ShowWarning(application, kMessageKitTooLarge, {});
  return false;
}

}  // namespace

std::vector<std::string> ReadSetupKitList(Application& application) {
  const std::string path = JoinPath(application.installation.SetupKitDirectory(), kListName);
  const ProfileDocument& list = application.platform.profiles.Open(path);
  const std::optional<std::string> count_text = list.Value(kSection, "Count");
  // A profile file that does not exist reads as an empty one, which would hide why Count is
  // missing.
  if (!count_text && !application.platform.files.FileExists(path)) {
    throw RuntimeError(ErrorNumber::kFileNotFound, path + ": " + Words(Reason::kFileNotFound));
  }
  const std::optional<std::int64_t> count = ParseWholeNumber(count_text.value_or(""));
  if (!count || *count < 0 || *count > kMaxKitFiles) {
    throw RuntimeError(ErrorNumber::kTypeMismatch,
                       path + ": " + Words(Reason::kNoNumberOfFiles, {kSection}));
  }
  std::vector<std::string> names;
  names.reserve(static_cast<std::size_t>(*count));
  for (std::int64_t i = 1; i <= *count; ++i) {
    names.push_back(list.Value(kSection, std::to_string(i)).value_or(""));
  }
  return names;
}

bool CopySetupKit(Application& application, CreateView& view, CreateState& state) {
  state.reserved_bytes = 0;
  state.first_disk_names.clear();
  std::vector<std::string> names;
  view.ShowAction(application.texts.GetText(kTextCopying));
  return ReadList(application, names) && CopyFiles(application, view, names, state) &&
         WritePlaceholder(application, view, state) &&
         CheckRoom(application, state.reserved_bytes, state.medium_bytes);
}

std::optional<SetupKitRoom> MeasureSetupKit(Application& application, std::uint64_t medium_bytes) {
  std::vector<std::string> names;
  if (!ReadList(application, names)) return std::nullopt;
  SetupKitRoom room;
  std::string subject;
  const bool measured = AtWorkBorder(application, kMessageCopying, subject, [&] {
    for (std::size_t i = 0; i < names.size(); ++i) {
      room.bytes += RoundUpTo1024(KitFileLength(application, names, i, subject));
    }
    room.bytes += kScriptPlaceholderBytes;
    return true;
  });
  if (!measured) return std::nullopt;
  room.fits = CheckRoom(application, room.bytes, medium_bytes);
  return room;
}

}  // namespace txs
