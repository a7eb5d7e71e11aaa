#include "create/disk_distribution.h"

#include <algorithm>
#include <array>
#include <span>
#include <unordered_set>

#include "create/stage_view.h"
#include "document/trailing_number.h"
#include "document/work_border.h"
#include "environment/code_page.h"
#include "environment/windows_path.h"
#include "strings/reason.h"

namespace txs {
namespace {

constexpr long kTextDistributing = 422;
constexpr long kMessageDistributing = 903;
constexpr std::size_t kChunkBytes = 10240;
static_assert(kChunkBytes % 1024 == 0, "PlanDistribution counts whole chunks without rounding");

[[noreturn]] void ThrowAlreadyExists(const std::string& path) {
  throw RuntimeError(ErrorNumber::kAlreadyExists, path + ": " + Words(Reason::kLiesOnTheDisk));
}

// Lays the archives down, disk after disk, as the plan says.
//
// Every disk directory is new in this run, so what lies in it is known without asking the disk: the
// kit on disk 1, the label, and the archives placed so far. A name that comes twice would overwrite
// a file of the installation and is refused.
class Placer {
 public:
  Placer(Application& application, CreateView& view, const CreateState& state,
         std::uint64_t total_count, std::uint64_t total_bytes)
      : files_(application.platform.files),
        view_(view),
        state_(state),
        disk_directory_(state.first_disk_directory),
        total_count_(total_count),
        total_bytes_(total_bytes) {
    placed_names_.reserve(static_cast<std::size_t>(total_count));
  }

  void Begin() {
    if (state_.first_disk_names.contains("disk1")) {
      ThrowAlreadyExists(JoinPath(disk_directory_, "DISK1"));
    }
    WriteLabel();
    ShowProgress();
  }

  void Place(const std::string& name, const ArchivePlacement& placement) {
    folded_name_ = FoldCase(name);
    if (!placed_names_.insert(folded_name_).second) ThrowAlreadyExists(TargetPath(name));
    if (placement.whole) {
      PlaceWhole(name, placement.pieces.front());
    } else {
      PlacePiecewise(name, placement.pieces);
    }
    ++done_count_;
    ShowProgress();
  }

 private:
  [[nodiscard]] std::string ArchivePath(const std::string& name) const {
    return JoinPath(state_.temporary_directory, name);
  }
  [[nodiscard]] std::string TargetPath(const std::string& name) const {
    return JoinPath(disk_directory_, name);
  }

  void PlaceWhole(const std::string& name, const DiskPiece& piece) {
    MoveTo(piece.disk);
    RefuseTakenName(name);
    files_.MoveWhole(ArchivePath(name), TargetPath(name));
    done_bytes_ += piece.bytes;
  }

  void PlacePiecewise(const std::string& name, const std::vector<DiskPiece>& pieces) {
    const BusyPointer busy(view_);
    {
      const std::unique_ptr<InputFile> archive = files_.OpenForReading(ArchivePath(name));
      for (const DiskPiece& piece : pieces) {
        MoveTo(piece.disk);
        RefuseTakenName(name);
        const std::unique_ptr<OutputFile> target = files_.CreateForWriting(TargetPath(name));
        CopyPiece(*archive, *target, piece.bytes);
        target->Close();
      }
    }
    files_.RemoveFile(ArchivePath(name));
  }

  void CopyPiece(InputFile& archive, OutputFile& target, std::uint64_t bytes) {
    std::array<std::byte, kChunkBytes> buffer;
    for (std::uint64_t remaining = bytes; remaining > 0;) {
      const std::size_t wanted =
          static_cast<std::size_t>(std::min<std::uint64_t>(remaining, buffer.size()));
      const std::size_t chunk = archive.Read(std::span(buffer).first(wanted));
      if (chunk == 0) {
        throw RuntimeError(ErrorNumber::kInputPastEnd, Words(Reason::kArchiveIsShorter));
      }
      target.Write(std::span(buffer).first(chunk));
      remaining -= chunk;
      done_bytes_ += chunk;
      ShowProgress();
    }
  }

  void MoveTo(std::uint64_t disk) {
    while (disk_ < disk) {
      ++disk_;
      disk_directory_ = IncrementTrailingNumber(disk_directory_);
      files_.MakeFolder(disk_directory_);
      WriteLabel();
    }
  }

  void WriteLabel() {
    const std::string number = std::to_string(disk_);
    const std::string content = " " + number + " ";
    const std::unique_ptr<OutputFile> label = files_.CreateForWriting(TargetPath("DISK" + number));
    label->Write(std::as_bytes(std::span(content)));
    label->Close();
  }

  void RefuseTakenName(const std::string& name) const {
    const bool is_kit_file = disk_ == 1 && state_.first_disk_names.contains(folded_name_);
    if (is_kit_file || folded_name_ == "disk" + std::to_string(disk_)) {
      ThrowAlreadyExists(TargetPath(name));
    }
  }

  void ShowProgress() {
    view_.ShowProgress(MakeCreateProgress(done_count_, total_count_, done_bytes_, total_bytes_));
  }

  FileSystem& files_;
  CreateView& view_;
  const CreateState& state_;
  std::string disk_directory_;
  std::uint64_t disk_ = 1;
  std::string folded_name_;  // of the archive being placed
  std::unordered_set<std::string> placed_names_;
  std::uint64_t total_count_;
  std::uint64_t total_bytes_;
  std::uint64_t done_count_ = 0;
  std::uint64_t done_bytes_ = 0;
};

}  // namespace

std::string ArchivePlacement::DiskText() const {
  std::string text;
  for (const DiskPiece& piece : pieces) {
    text += '|';
    text += std::to_string(piece.disk);
  }
  return text;
}

std::uint64_t RoundUpTo1024(std::uint64_t bytes) { return (bytes + 1023) / 1024 * 1024; }

DistributionPlan PlanDistribution(const std::vector<std::uint64_t>& archive_bytes,
                                  std::uint64_t medium_bytes, std::uint64_t reserved_bytes) {
  DistributionPlan plan;
  plan.archives.reserve(archive_bytes.size());
  // Signed: the last chunk of a disk is rounded up when it is charged, so that the free room can
  // become negative where the medium or the reservation is no multiple of 1024.
  const std::int64_t medium = static_cast<std::int64_t>(medium_bytes);
  std::int64_t free = medium - static_cast<std::int64_t>(reserved_bytes);
  std::uint64_t disk = 1;

  for (const std::uint64_t size : archive_bytes) {
    ArchivePlacement& placement = plan.archives.emplace_back();
    const std::int64_t need = static_cast<std::int64_t>(RoundUpTo1024(size));
    if (need < free) {
      placement.whole = true;
      placement.pieces.push_back({disk, size});
      free -= need;
      continue;
    }

    if (free < 1) {
      ++disk;
      free = medium;
    }
    placement.pieces.push_back({disk, /*bytes=*/0});
    std::int64_t remaining = static_cast<std::int64_t>(size);
    while (remaining > 0) {
      if (free < 1) {
        ++disk;
        free = medium;
        placement.pieces.push_back({disk, /*bytes=*/0});
      }
      // All chunks of this disk at once. Every chunk but the last is a multiple of 1024 and charged
      // as it is, so they charge together what their sum rounded up does.
      const std::int64_t piece = std::min(free, remaining);
      placement.pieces.back().bytes = static_cast<std::uint64_t>(piece);
      remaining -= piece;
      free -= static_cast<std::int64_t>(RoundUpTo1024(static_cast<std::uint64_t>(piece)));
    }
  }
  plan.disks_used = disk;
  // The next disk is begun only when this one has nothing left.
  if (disk == 1)
    plan.first_disk_free_bytes = static_cast<std::uint64_t>(std::max<std::int64_t>(free, 0));
  return plan;
}

bool MeasureArchives(Application& application, CreateView& view, const CreateState& state,
                     std::vector<std::uint64_t>& sizes) {
  std::string archive;
  return AtWorkBorder(application, kMessageDistributing, archive, [&] {
    const std::vector<FileRow*> rows = application.document.AllRows();
    sizes.reserve(rows.size());
    for (const FileRow* row : rows) {
      archive = row->compressed_name;
      sizes.push_back(
          application.platform.files.Length(JoinPath(state.temporary_directory, archive)));
      if (CancelledMeanwhile(view)) return false;
    }
    return true;
  });
}

bool DistributeOnDisks(Application& application, CreateView& view, CreateState& state) {
  view.ShowAction(application.texts.GetText(kTextDistributing));
  // A row that is not reached, since the run is cancelled, must not keep the disks of another run.
  for (FileRow* row : application.document.AllRows()) row->disk.clear();
  std::vector<std::uint64_t> sizes;
  if (!MeasureArchives(application, view, state, sizes)) return false;

  std::string archive = "DISK1";  // what a message names until the first archive has its turn
  return AtWorkBorder(application, kMessageDistributing, archive, [&] {
    const std::vector<FileRow*> rows = application.document.AllRows();
    const DistributionPlan plan = PlanDistribution(sizes, state.medium_bytes, state.reserved_bytes);
    std::uint64_t total_bytes = 0;
    for (const std::uint64_t size : sizes) total_bytes += size;

    Placer placer(application, view, state, rows.size(), total_bytes);
    placer.Begin();
    for (std::size_t i = 0; i < rows.size(); ++i) {
      archive = rows[i]->compressed_name;
      view.ShowFile(archive);
      if (CancelledMeanwhile(view)) return false;
      placer.Place(archive, plan.archives[i]);
      rows[i]->disk = plan.archives[i].DiskText();
    }

    state.disks_used = plan.disks_used;
    state.first_disk_free_bytes = plan.first_disk_free_bytes;
    state.archive_bytes = total_bytes;
    application.document.steps.disks_needed_label = std::to_string(plan.disks_used);
    application.document.steps.disks_needed_is_estimate = false;
    return true;
  });
}

}  // namespace txs
