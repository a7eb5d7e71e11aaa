// Installations that somebody made to do harm, and a disk that notes what is looked at.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "environment/archiver_builtin.h"
#include "fakes/fixed_clock.h"
#include "fakes/memory_file_system.h"
#include "fakes/real_disk.h"
#include "tool/verify_installation.h"

namespace txs {

// What the installation holds, by its path below the installation's directory.
using Installation = std::map<std::string, std::string>;

struct Install {
  std::string archive;
  std::string target;
  std::string length;
  std::string disks;
};

inline std::string Script(const std::vector<Install>& installs, const std::string& max_disk = "1") {
  std::string script =
      "[Params]\r\nDefLang=1031\r\nSilent=0\r\nForce=0\r\nTargetDir=C:\\Demo\r\nSetupName=Demo\r\n";
  for (int i = 0; i < 3; ++i) script += "SetupDesc0=a\r\nSetupDesc1=b\r\n";
  script += "MaxBytes=0\r\nMaxDisk=" + max_disk + "\r\n[ToDo]\r\n";
  for (const Install& install : installs) {
    script += "InstallFile(" + install.archive + "|" + install.target + "|" + install.length +
              "|21.11.2026||2|0|" + install.disks + ")\r\n";
  }
  return script + "Exit\r\n";
}

// A sound archive of one file.
inline std::string Archive(const std::string& name, const std::string& contents) {
  MemoryFileSystem files;
  const FixedClock clock;
  files.AddFile("C:\\" + name, contents);
  const auto archiver = MakeBuiltInArchiver(files, clock);
  EXPECT_EQ(archiver->Compress("C:\\archive", "C:\\" + name), ArchiveResult::kSuccess);
  return files.Contents("C:\\archive");
}

// A number of `bytes` bytes, little-endian, in the place of what stood there.
inline void Patch(std::string& text, std::size_t at, std::uint64_t number, std::size_t bytes) {
  for (std::size_t i = 0; i < bytes; ++i) {
    text[at + i] = static_cast<char>(number >> (8 * i) & 0xFF);
  }
}

struct Hostile {
  std::string name;
  Installation installation;
  std::string fault;  // part of what must be said of it
};

inline Installation OneDisk(const std::vector<Install>& installs, Installation more = {}) {
  more["DISK1\\DISK1"] = " 1 ";
  more["DISK1\\SETUP.STP"] = Script(installs);
  return more;
}

inline std::vector<Hostile> HostileInstallations() {
  std::vector<Hostile> all;
  for (const char* archive :
       {"..\\..\\Secret\\secret.zip", "..\\Secret\\secret.zip", "..", "C:\\Secret\\secret.zip",
        "C:secret.zip", "\\Secret\\secret.zip", "\\\\server\\share\\secret.zip",
        "../../Secret/secret.zip", "\\\\?\\C:\\Secret\\secret.zip", "\\\\.\\PhysicalDrive0",
        "secret.zip:stream", "sub\\secret.zip", "*.zip", "", " "}) {
    all.push_back({"archive named " + std::string(archive),
                   OneDisk({{archive, "<ProjectDir>\\secret.txt", "6", "1"}}),
                   "not the name of an archive"});
  }
  for (const char* device : {"NUL", "CON", "aux.zip", "COM1", "lpt9.zip", "PRN .zip", "nul."}) {
    all.push_back({"archive named like the device " + std::string(device),
                   OneDisk({{device, "<ProjectDir>\\x.txt", "6", "1"}}),
                   "not the name of an archive"});
  }
  all.push_back({"archive that is the script itself",
                 OneDisk({{"setup.stp", "<ProjectDir>\\x.txt", "6", "1"}}), "is no archive"});
  all.push_back({"target that is a device",
                 OneDisk({{"x.zip", "<ProjectDir>\\NUL", "6", "1"}}, {{"DISK1\\x.zip", "x"}}),
                 "the target is no file"});
  for (const char* target : {"<ProjectDir>\\..\\..\\Windows\\x", "<ProjectDir>/../x", "..\\x",
                             "<WinDir>\\.. \\x", "<WinDir>\\...\\x", "C:\\.\\x"}) {
    all.push_back({"target " + std::string(target),
                   OneDisk({{"x.zip", target, "6", "1"}}, {{"DISK1\\x.zip", "x"}}),
                   "the target leads out of its directory"});
  }
  all.push_back({"disks without end",
                 OneDisk({{"x.zip", "<ProjectDir>\\x", "6",
                           [] {
                             std::string disks = "1";
                             for (int i = 2; i <= 20000; ++i) disks += "|" + std::to_string(i);
                             return disks;
                           }()}},
                         {{"DISK1\\x.zip", "x"}}),
                 "the piece is missing"});
  all.push_back({"disks whose number is out of all bounds",
                 OneDisk({{"x.zip", "<ProjectDir>\\x", "6", "1|18446744073709551615"}},
                         {{"DISK1\\x.zip", "x"}}),
                 "the piece is missing"});
  all.push_back({"arguments without end",
                 OneDisk({{"x.zip", "<ProjectDir>\\x", "6", std::string(1 << 20, '|')}}),
                 "the disks are not in order"});

  const std::string contents = std::string(2'000'000, 'x');
  const std::string bomb = Archive("x.txt", contents);
  all.push_back({"bomb that the script calls small",
                 OneDisk({{"x.zip", "<ProjectDir>\\x.txt", "6", "1"}}, {{"DISK1\\x.zip", bomb}}),
                 "holds 2000000 bytes, the script says 6"});
  // The size that the headers tell stands twice; the contents are what they are.
  std::string lying_bomb = bomb;
  const std::size_t directory = lying_bomb.rfind("PK\x01\x02");
  Patch(lying_bomb, 22, 6, 4);
  Patch(lying_bomb, directory + 24, 6, 4);
  all.push_back(
      {"bomb that calls itself small",
       OneDisk({{"x.zip", "<ProjectDir>\\x.txt", "6", "1"}}, {{"DISK1\\x.zip", lying_bomb}}),
       "the contents are longer than the header says"});

  const std::string sound = Archive("x.txt", "abcdef");
  const std::size_t entry = sound.rfind("PK\x01\x02");
  const std::size_t end = sound.rfind("PK\x05\x06");
  const std::string two_entries = [&] {
    std::string archive =
        sound.substr(0, end) + sound.substr(entry, end - entry) + sound.substr(end);
    const std::size_t new_end = archive.rfind("PK\x05\x06");
    Patch(archive, new_end + 8, 2, 2);
    Patch(archive, new_end + 10, 2, 2);
    Patch(archive, new_end + 12, 2 * (end - entry), 4);
    return archive;
  }();
  all.push_back(
      {"two entries over the same bytes",
       OneDisk({{"x.zip", "<ProjectDir>\\x.txt", "6", "1"}}, {{"DISK1\\x.zip", two_entries}}),
       "holds 2 entries"});
  const auto patched = [&](std::size_t at, std::uint64_t number, std::size_t bytes) {
    std::string archive = sound;
    Patch(archive, at, number, bytes);
    return archive;
  };
  const auto with_archive = [&](const std::string& archive) {
    return OneDisk({{"x.zip", "<ProjectDir>\\x.txt", "6", "1"}}, {{"DISK1\\x.zip", archive}});
  };
  all.push_back({"entry that begins inside the directory",
                 with_archive(patched(entry + 42, entry, 4)), "does not begin where"});
  all.push_back({"directory that lies over the contents", with_archive(patched(end + 16, 4, 4)),
                 "the directory is not where"});
  all.push_back({"directory behind the end of the archive",
                 with_archive(patched(end + 16, 0xFFFFFFF0, 4)), "the directory is not where"});
  all.push_back({"packed contents longer than the archive",
                 with_archive(patched(entry + 20, 0x7FFFFFFF, 4)), "differ"});
  all.push_back({"file name longer than the archive", with_archive(patched(26, 0xFFFF, 2)),
                 "outside the archive"});
  all.push_back({"entry called ..\\x",
                 [&] {
                   std::string archive = sound;
                   archive.replace(30, 5, "..\\xx");
                   archive.replace(entry + 46, 5, "..\\xx");
                   return with_archive(archive);
                 }(),
                 "holds \"..\\xx\""});
  all.push_back({"lengths whose sum is beyond every number",
                 OneDisk({{"x.zip", "<ProjectDir>\\x.txt", "18446744073709551615", "1"},
                          {"y.zip", "<ProjectDir>\\y.txt", "18446744073709551615", "1"}}),
                 "the length is not possible"});
  Installation hollow = OneDisk({{"x.zip", "<ProjectDir>\\x.txt", "6", "1|2"}});
  hollow["DISK1\\SETUP.STP"] = Script({{"x.zip", "<ProjectDir>\\x.txt", "6", "1|2"}}, "2");
  hollow["DISK1\\x.zip"] = sound;
  hollow["DISK2\\DISK2"] = " 2 ";
  hollow["DISK2\\x.zip"] = "";
  all.push_back({"piece without contents", hollow, "is empty"});
  all.push_back({"disk far away",
                 {{"DISK999999999\\DISK999999999", " 999999999 "}},
                 "the disk directory is missing"});
  return all;
}

// Notes what is opened and listed, as the place that it leads to.
class WatchedDisk : public FileReader {
 public:
  explicit WatchedDisk(const RealDisk& disk) : disk_(disk) {}

  [[nodiscard]] const std::vector<std::filesystem::path>& Touched() const { return touched_; }

  [[nodiscard]] bool FileExists(std::string_view path) const override {
    return disk_.files.FileExists(path);
  }
  [[nodiscard]] bool FolderExists(std::string_view path) const override {
    return disk_.files.FolderExists(path);
  }
  [[nodiscard]] std::optional<FileStamp> Stamp(std::string_view path) const override {
    return disk_.files.Stamp(path);
  }
  [[nodiscard]] std::unique_ptr<InputFile> OpenForReading(std::string_view path) const override {
    touched_.push_back(disk_.Followed(path));
    return disk_.files.OpenForReading(path);
  }
  [[nodiscard]] std::vector<FileEntry> List(std::string_view folder,
                                            std::string_view pattern) const override {
    touched_.push_back(disk_.Followed(folder));
    return disk_.files.List(folder, pattern);
  }
  [[nodiscard]] std::vector<FileEntry> UnusableEntries(std::string_view folder) const override {
    touched_.push_back(disk_.Followed(folder));
    return disk_.files.UnusableEntries(folder);
  }

 private:
  const RealDisk& disk_;
  mutable std::vector<std::filesystem::path> touched_;
};

// The installation lies in Setup\; beside it, in Outside\, is what must not be looked at.
class HostileInstallationOnDisk : public testing::Test {
 protected:
  HostileInstallationOnDisk() {
    std::filesystem::create_directories(Setup(""));
    WriteHostFile(Outside("secret.zip"), "secret");
    WriteHostFile(Outside("DISK2"), " 2 ");
  }

  [[nodiscard]] std::filesystem::path Setup(const std::string& below) const {
    return disk_.Host("Setup\\" + below);
  }
  [[nodiscard]] std::filesystem::path Outside(const std::string& below) const {
    return disk_.Host("Secret\\" + below);
  }
  void Lay(const Installation& installation) const {
    for (const auto& [path, bytes] : installation) WriteHostFile(Setup(path), bytes);
  }

  // Verifies, and expects that nothing was written and nothing outside was opened or listed.
  [[nodiscard]] VerifyResult VerifyWatched() const {
    const auto before = Everything();
    const WatchedDisk disk(disk_);

    VerifyResult result = VerifyInstallation(disk, disk_.At("Setup"));

    EXPECT_EQ(Everything(), before);
    const std::filesystem::path inside = disk_.Followed(disk_.At("Setup"));
    for (const std::filesystem::path& path : disk.Touched()) {
      const auto [end, unused] =
          std::mismatch(inside.begin(), inside.end(), path.begin(), path.end());
      EXPECT_TRUE(end == inside.end()) << path;
    }
    return result;
  }

  RealDisk disk_;

 private:
  // Every file and folder with its bytes, by its path.
  [[nodiscard]] std::map<std::filesystem::path, std::string> Everything() const {
    std::map<std::filesystem::path, std::string> everything;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(disk_.Host(""))) {
      const bool is_file = std::filesystem::is_regular_file(entry.symlink_status());
      everything[entry.path()] = is_file ? ReadHostFile(entry.path()) : std::string();
    }
    return everything;
  }
};

}  // namespace txs
