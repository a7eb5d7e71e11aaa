#include "tool/verify_installation.h"

#include <algorithm>
#include <limits>
#include <map>
#include <optional>
#include <span>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "environment/code_page.h"
#include "environment/runtime_error.h"
#include "environment/windows_path.h"
#include "strings/reason.h"
#include "tool/archive_check.h"
#include "tool/setup_script.h"

namespace txs {
namespace {

constexpr char kScriptName[] = "SETUP.STP";
constexpr std::uint64_t kLongestScript = std::uint64_t{64} << 20;
constexpr char kIsLink[] = "is a link and not followed";
constexpr char kUnusableName[] = "has a name that no setup can use";
constexpr std::string_view kDiskPrefix = "DISK";
constexpr std::size_t kMostDamages = 10000;

struct DiskFile {
  std::string name;  // as spelled on the disk
  bool is_folder = false;
  std::uint64_t length_bytes = 0;
};

// One disk directory as it was listed.
struct Disk {
  std::string name;  // "DISK2"
  std::string path;
  std::vector<DiskFile> files;                           // in the order of their names
  std::unordered_map<std::string, std::size_t> by_name;  // index in files, by folded name

  [[nodiscard]] const DiskFile* Find(std::string_view name_wanted) const {
    const auto found = by_name.find(FoldCase(name_wanted));
    return found == by_name.end() ? nullptr : &files[found->second];
  }
};

// The number of "DISK12"; nothing for any other name, also for "DISK012".
std::optional<std::uint64_t> DiskNumber(std::string_view name) {
  constexpr std::size_t kPrefix = kDiskPrefix.size();
  constexpr std::size_t kMostDigits = 9;
  if (name.size() <= kPrefix || name.size() > kPrefix + kMostDigits) return std::nullopt;
  if (!EqualNoCase(name.substr(0, kPrefix), kDiskPrefix) || name[kPrefix] == '0')
    return std::nullopt;
  std::uint64_t number = 0;
  for (const char c : name.substr(kPrefix)) {
    if (c < '0' || c > '9') return std::nullopt;
    number = number * 10 + static_cast<std::uint64_t>(c - '0');
  }
  return number;
}

std::string DiskName(std::uint64_t number) { return "DISK" + std::to_string(number); }

std::string ScriptPlace(std::size_t line) {
  std::string place = std::string("DISK1\\") + kScriptName;
  if (line > 0) place += " line " + std::to_string(line);
  return place;
}

class Verifier {
 public:
  Verifier(const FileReader& files, std::string_view directory)
      : files_(files), directory_(directory) {
    while (!directory_.empty() && (directory_.back() == '\\' || directory_.back() == '/')) {
      directory_.pop_back();
    }
  }

  VerifyResult Verify() {
    if (directory_.empty() || !files_.FolderExists(directory_)) {
      throw RuntimeError(ErrorNumber::kPathNotFound,
                         directory_ + ": " + Words(Reason::kFolderNotFound));
    }
    FindDisks();
    for (auto& [number, disk] : disks_) ListDisk(disk);
    for (const auto& [number, disk] : disks_) CheckLabel(number, disk);
    const std::optional<SetupScript> script = ReadScript();
    if (script) {
      CheckScript(*script);
      for (const InstallLine& install : script->installs) CheckInstall(install);
      if (script->has_commands) CheckSurplus(*script);
    }
    return std::move(result_);
  }

 private:
  void Add(std::string where, std::string what) {
    if (result_.damages.size() > kMostDamages) return;
    if (result_.damages.size() == kMostDamages) {
      where = directory_;
      what = "too many damages; only the first " + std::to_string(kMostDamages) + " are listed";
    }
    result_.damages.push_back({std::move(where), std::move(what)});
  }

  // Runs `work`; what cannot be read is a damage at `where`.
  template <typename Work>
  void Reading(const std::string& where, const Work& work) {
    try {
      work();
    } catch (const RuntimeError& error) {
      Add(where, "cannot be read (" + std::to_string(static_cast<int>(error.Number())) + ": " +
                     error.Description() + ")");
    }
  }

  void FindDisks() {
    Reading(directory_, [this] {
      for (const FileEntry& entry : files_.List(directory_ + "\\", "DISK*")) {
        if (!entry.is_folder) continue;
        if (entry.is_link) {
          Add(entry.name, kIsLink);
          continue;
        }
        const std::optional<std::uint64_t> number = DiskNumber(entry.name);
        if (!number) {
          Add(entry.name, "is no disk directory of an installation");
        } else if (!disks_.try_emplace(*number).second) {
          Add(entry.name, "differs only in case from another disk directory");
        } else {
          Disk& disk = disks_[*number];
          disk.name = DiskName(*number);
          disk.path = directory_ + "\\" + entry.name;
        }
      }
      for (const FileEntry& entry : files_.UnusableEntries(directory_ + "\\")) {
        if (!entry.is_folder) continue;
        if (EqualNoCase(std::string_view(entry.name).substr(0, kDiskPrefix.size()), kDiskPrefix)) {
          Add(entry.name, kUnusableName);
        }
      }
    });
    std::uint64_t next = 1;
    for (const auto& [number, disk] : disks_) {
      if (number > next) AddMissingDisks(next, number - 1);
      next = number + 1;
    }
    if (disks_.empty()) AddMissingDisks(1, 1);
    result_.disks = disks_.size();
  }

  void AddMissingDisks(std::uint64_t first, std::uint64_t last) {
    std::string where = DiskName(first);
    if (last > first) where += " to " + DiskName(last);
    Add(std::move(where), "the disk directory is missing");
  }

  void ListDisk(Disk& disk) {
    Reading(disk.name, [this, &disk] {
      for (FileEntry& entry : files_.List(disk.path, "*")) {
        // Nothing that could lead elsewhere is as much as looked at: a foreign tool can give a file
        // a name that means a device or another directory.
        if (!IsPlainFileName(entry.name)) {
          Add(disk.name + "\\" + entry.name, kUnusableName);
          continue;
        }
        if (entry.is_link) {
          Add(disk.name + "\\" + entry.name, kIsLink);
          continue;
        }
        DiskFile file;
        file.is_folder = entry.is_folder;
        if (!file.is_folder) {
          const std::optional<FileStamp> stamp = files_.Stamp(disk.path + "\\" + entry.name);
          if (!stamp) {
            Add(disk.name + "\\" + entry.name, "cannot be read");
            continue;
          }
          file.length_bytes = stamp->length_bytes;
        }
        file.name = std::move(entry.name);
        if (!disk.by_name.try_emplace(FoldCase(file.name), disk.files.size()).second) {
          Add(disk.name + "\\" + file.name, "differs only in case from another file");
          continue;
        }
        disk.files.push_back(std::move(file));
      }
      for (const FileEntry& entry : files_.UnusableEntries(disk.path)) {
        Add(disk.name + "\\" + entry.name, kUnusableName);
      }
    });
  }

  void CheckLabel(std::uint64_t number, const Disk& disk) {
    const std::string where = disk.name + "\\" + disk.name;
    const std::string label = " " + std::to_string(number) + " ";
    const DiskFile* const file = disk.Find(disk.name);
    if (file == nullptr) {
      Add(where, "the label file is missing");
    } else if (file->is_folder || file->length_bytes != label.size()) {
      Add(where, "the label file does not say \"" + label + "\"");
    } else {
      Reading(where, [&] {
        if (files_.ReadWhole(disk.path + "\\" + file->name) == label) return;
        Add(where, "the label file does not say \"" + label + "\"");
      });
    }
  }

  std::optional<SetupScript> ReadScript() {
    const auto disk = disks_.find(1);
    if (disk == disks_.end()) return std::nullopt;
    const DiskFile* const file = disk->second.Find(kScriptName);
    if (file == nullptr || file->is_folder) {
      Add(ScriptPlace(0), "the setup control file is missing");
      return std::nullopt;
    }
    if (file->length_bytes > kLongestScript) {
      Add(ScriptPlace(0), "is too long for a setup control file");
      return std::nullopt;
    }
    std::optional<SetupScript> script;
    Reading(ScriptPlace(0), [&] {
      script = ParseSetupScript(files_.ReadWhole(disk->second.path + "\\" + file->name));
    });
    return script;
  }

  void CheckScript(const SetupScript& script) {
    result_.files = script.install_lines;
    for (const ScriptFault& fault : script.faults) Add(ScriptPlace(fault.line), fault.what);
    const std::uint64_t last_disk = disks_.empty() ? 0 : disks_.rbegin()->first;
    if (script.disks && *script.disks != last_disk) {
      Add(ScriptPlace(script.disks_line), "MaxDisk is " + std::to_string(*script.disks) +
                                              ", the last disk directory is " +
                                              DiskName(last_disk));
    }
  }

  void CheckInstall(const InstallLine& install) {
    const std::string line = ScriptPlace(install.line);
    if (EqualNoCase(install.archive, kScriptName) || DiskNumber(install.archive)) {
      Add(line, "\"" + install.archive + "\" is no archive");
      return;
    }
    bool complete = true;
    std::vector<ArchivePiece> pieces;
    for (const std::uint64_t number : install.disks) {
      const auto disk = disks_.find(number);
      const DiskFile* const file =
          disk == disks_.end() ? nullptr : disk->second.Find(install.archive);
      const std::string where = DiskName(number) + "\\" + install.archive;
      if (file == nullptr || file->is_folder) {
        Add(where, install.disks.size() == 1 ? "the archive is missing" : "the piece is missing");
        complete = false;
        continue;
      }
      if (file->length_bytes == 0) {
        Add(where, "is empty");
        complete = false;
      }
      pieces.push_back({disk->second.path + "\\" + file->name, file->length_bytes});
      // Only a hostile installation has so many bytes; the figure then stays at the most.
      const std::uint64_t room = std::numeric_limits<std::uint64_t>::max() - result_.bytes;
      result_.bytes += std::min(room, file->length_bytes);
    }
    if (!complete) return;
    const std::string where = DiskName(install.disks.front()) + "\\" + install.archive;
    Reading(where, [&] {
      const ArchiveExpectation expected{FileName(install.target), install.length_bytes};
      for (std::string& what : CheckArchive(files_, pieces, expected)) Add(where, std::move(what));
    });
  }

  // What lies on the disks and is neither label, script, nor named there by an InstallFile line.
  // The setup kit on the first disk is known to nobody here; only what looks like an archive
  // counts.
  void CheckSurplus(const SetupScript& script) {
    std::unordered_set<std::string> named;
    for (const std::string& archive : script.archives_named) named.insert(FoldCase(archive));
    std::unordered_map<std::string, const InstallLine*> installs;
    for (const InstallLine& install : script.installs) {
      installs.emplace(FoldCase(install.archive), &install);
    }
    for (const auto& [number, disk] : disks_) {
      for (const DiskFile& file : disk.files) {
        const std::string where = disk.name + "\\" + file.name;
        const std::string folded = FoldCase(file.name);
        const auto install = installs.find(folded);
        if (install != installs.end()) {
          const std::vector<std::uint64_t>& disks = install->second->disks;
          if (!std::binary_search(disks.begin(), disks.end(), number)) {
            Add(where, "is a piece on a disk that the script does not name for it");
          }
          continue;
        }
        if (named.contains(folded) || EqualNoCase(file.name, disk.name)) continue;
        const bool may_be_kit = number == 1 && !EqualNoCase(Extension(file.name), "zip");
        if (!may_be_kit) Add(where, "is surplus: the script does not name it");
      }
    }
  }

  const FileReader& files_;
  std::string directory_;
  std::map<std::uint64_t, Disk> disks_;
  VerifyResult result_;
};

}  // namespace

VerifyResult VerifyInstallation(const FileReader& files, std::string_view directory) {
  return Verifier(files, directory).Verify();
}

}  // namespace txs
