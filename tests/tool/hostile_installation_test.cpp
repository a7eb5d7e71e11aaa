// Installations that somebody made to do harm: `verify` tells what is wrong with them, writes
// nothing and opens nothing outside the directory that it was given. Each is tried in memory, where
// the diary tells what was asked for, and on the real disk.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <string>
#include <vector>

#include "environment/archiver_builtin.h"
#include "environment/code_page.h"
#include "environment/file_system_host.h"
#include "environment/windows_path.h"
#include "fakes/demo_project.h"
#include "fakes/fixed_clock.h"
#include "fakes/memory_file_system.h"
#include "fakes/temp_folder.h"
#include "tool/verify_installation.h"

namespace txs {
namespace {

using ::testing::Contains;
using ::testing::Field;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

namespace fs = std::filesystem;

constexpr char kSetup[] = "C:\\Setup";
constexpr char kSecret[] = "C:\\Secret\\secret.zip";

// What the installation holds, by its path below the installation's directory.
using Installation = std::map<std::string, std::string>;

struct Install {
  std::string archive;
  std::string target;
  std::string length;
  std::string disks;
};

std::string Script(const std::vector<Install>& installs, const std::string& max_disk = "1") {
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
std::string Archive(const std::string& name, const std::string& contents) {
  MemoryFileSystem files;
  const FixedClock clock;
  files.AddFile("C:\\" + name, contents);
  const auto archiver = MakeBuiltInArchiver(files, clock);
  EXPECT_EQ(archiver->Compress("C:\\archive", "C:\\" + name), ArchiveResult::kSuccess);
  return files.Contents("C:\\archive");
}

// A number of `bytes` bytes, little-endian, in the place of what stood there.
void Patch(std::string& text, std::size_t at, std::uint64_t number, std::size_t bytes) {
  for (std::size_t i = 0; i < bytes; ++i) {
    text[at + i] = static_cast<char>(number >> (8 * i) & 0xFF);
  }
}

struct Hostile {
  std::string name;
  Installation installation;
  std::string fault;  // part of what must be said of it
};

Installation OneDisk(const std::vector<Install>& installs, Installation more = {}) {
  more["DISK1\\DISK1"] = " 1 ";
  more["DISK1\\SETUP.STP"] = Script(installs);
  return more;
}

std::vector<Hostile> HostileInstallations() {
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

// Every file with its bytes, by its path.
std::map<std::string, std::string> Everything(const fs::path& folder) {
  std::map<std::string, std::string> everything;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    std::string bytes;
    if (fs::is_regular_file(entry.symlink_status())) {
      std::ifstream stream(entry.path(), std::ios::binary);
      bytes.assign(std::istreambuf_iterator<char>(stream), {});
    }
    everything[entry.path().string()] = bytes;
  }
  return everything;
}

// A disk of the host that notes what is opened and listed, as the real path that is behind it.
class WatchedHost : public FileReader {
 public:
  explicit WatchedHost(const fs::path& root) : files_(root.string()) {}

  [[nodiscard]] const std::vector<std::string>& Touched() const { return touched_; }

  [[nodiscard]] bool FileExists(std::string_view path) const override {
    return files_.FileExists(path);
  }
  [[nodiscard]] bool FolderExists(std::string_view path) const override {
    return files_.FolderExists(path);
  }
  [[nodiscard]] std::optional<FileStamp> Stamp(std::string_view path) const override {
    return files_.Stamp(path);
  }
  [[nodiscard]] std::unique_ptr<InputFile> OpenForReading(std::string_view path) const override {
    Note(path);
    return files_.OpenForReading(path);
  }
  [[nodiscard]] std::vector<FileEntry> List(std::string_view folder,
                                            std::string_view pattern) const override {
    Note(folder);
    return files_.List(folder, pattern);
  }

 private:
  void Note(std::string_view path) const {
    std::error_code ignored;
    touched_.push_back(fs::weakly_canonical(files_.HostPath(path), ignored).string());
  }

  HostFileSystem files_;
  mutable std::vector<std::string> touched_;
};

class HostileInstallationOnDisk : public testing::Test {
 protected:
  HostileInstallationOnDisk() {
    fs::create_directories(Setup());
    fs::create_directories(Outside());
    Put(Outside() / "secret.zip", "secret");
    Put(Outside() / "DISK2", " 2 ");
  }

  [[nodiscard]] fs::path Setup() const { return root_.Path() / "drive_c" / "Setup"; }
  [[nodiscard]] fs::path Outside() const { return root_.Path() / "drive_c" / "Secret"; }

  static void Put(const fs::path& path, const std::string& bytes) {
    fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << bytes;
  }
  void Lay(const Installation& installation) const {
    for (const auto& [path, bytes] : installation) {
      std::string host = path;
      std::ranges::replace(host, '\\', '/');
      Put(Setup() / host, bytes);
    }
  }

  // Verifies, and expects that nothing was written and nothing outside was opened or listed.
  [[nodiscard]] VerifyResult VerifyWatched() const {
    const auto before = Everything(root_.Path());
    const WatchedHost disk(root_.Path());

    VerifyResult result = VerifyInstallation(disk, kSetup);

    EXPECT_EQ(Everything(root_.Path()), before);
    const std::string inside = fs::canonical(Setup()).string();
    for (const std::string& path : disk.Touched()) {
      EXPECT_TRUE(path == inside || path.starts_with(inside + "/")) << path;
    }
    return result;
  }

  TempFolder root_;
};

TEST(HostileInstallationInMemory, IsToldOfWithoutWritingAndWithoutLeavingItsDirectory) {
  for (const Hostile& hostile : HostileInstallations()) {
    SCOPED_TRACE(hostile.name);
    MemoryFileSystem files;
    files.AddFile(kSecret, "secret");
    for (const auto& [path, bytes] : hostile.installation) {
      files.AddFile(JoinPath(kSetup, path), bytes);
    }
    const std::vector<std::string> before = files.AllFiles();
    files.diary.clear();

    const VerifyResult result = VerifyInstallation(files, kSetup);

    EXPECT_THAT(result.damages, Contains(Field(&Damage::what, HasSubstr(hostile.fault))));
    EXPECT_LE(result.damages.size(), 10'001u);
    EXPECT_EQ(files.AllFiles(), before);
    for (const auto& [operation, path] : files.diary) {
      EXPECT_THAT((std::vector<std::string>{"FolderExists", "List", "Stamp", "OpenForReading",
                                            "Read", "Seek"}),
                  Contains(operation));
      EXPECT_THAT(path, StartsWith(kSetup));
      EXPECT_THAT(path, Not(HasSubstr("..")));
    }
    EXPECT_LE(files.diary.size(), 1000u);
  }
}

TEST_F(HostileInstallationOnDisk, IsToldOfWithoutWritingAndWithoutLeavingItsDirectory) {
  for (const Hostile& hostile : HostileInstallations()) {
    SCOPED_TRACE(hostile.name);
    fs::remove_all(Setup());
    fs::create_directories(Setup());
    Lay(hostile.installation);

    const VerifyResult result = VerifyWatched();

    EXPECT_THAT(result.damages, Contains(Field(&Damage::what, HasSubstr(hostile.fault))));
  }
}

TEST_F(HostileInstallationOnDisk, LinksAreDamagesAndNotFollowed) {
  const std::string archive = Archive("x.txt", "abcdef");
  Put(Outside() / "x.zip", archive);
  Put(Outside() / "SETUP.STP", Script({}));
  const std::vector<std::pair<std::string, std::function<void()>>> links = {
      {"DISK1\\x.zip",
       [&] { fs::create_symlink(Outside() / "x.zip", Setup() / "DISK1" / "x.zip"); }},
      {"DISK1\\x.zip", [&] { fs::create_symlink("../../Secret/x.zip", Setup() / "DISK1/x.zip"); }},
      {"DISK1\\x.zip", [&] { fs::create_symlink("/dev/zero", Setup() / "DISK1" / "x.zip"); }},
      {"DISK1\\x.zip", [&] { fs::create_symlink("x.zip", Setup() / "DISK1" / "x.zip"); }},
      {"DISK1\\SETUP.STP",
       [&] {
         fs::remove(Setup() / "DISK1" / "SETUP.STP");
         fs::create_symlink(Outside() / "SETUP.STP", Setup() / "DISK1" / "SETUP.STP");
       }},
      {"DISK1\\DISK1",
       [&] {
         fs::remove(Setup() / "DISK1" / "DISK1");
         fs::create_symlink(Outside() / "DISK2", Setup() / "DISK1" / "DISK1");
       }},
      {"DISK2", [&] { fs::create_directory_symlink(Outside(), Setup() / "DISK2"); }},
      {"DISK2", [&] { fs::create_directory_symlink("/", Setup() / "DISK2"); }},
      {"DISK1\\more", [&] { fs::create_directory_symlink("..", Setup() / "DISK1" / "more"); }},
  };
  for (const auto& [where, link] : links) {
    SCOPED_TRACE(where);
    fs::remove_all(Setup());
    Lay(OneDisk({{"x.zip", "<ProjectDir>\\x.txt", "6", "1"}}));
    link();

    const VerifyResult result = VerifyWatched();

    EXPECT_THAT(result.damages, Contains(Damage{where, "is a link and not followed"}));
  }
}

TEST_F(HostileInstallationOnDisk, PipesAreDamagesAndDoNotHoldItUp) {
  Lay(OneDisk({{"x.zip", "<ProjectDir>\\x.txt", "6", "1"}}));
  ASSERT_EQ(mkfifo((Setup() / "DISK1" / "x.zip").c_str(), S_IRWXU), 0);

  EXPECT_THAT(VerifyWatched().damages,
              Contains(Field(&Damage::where, std::string("DISK1\\x.zip"))));

  fs::remove(Setup() / "DISK1" / "SETUP.STP");
  ASSERT_EQ(mkfifo((Setup() / "DISK1" / "SETUP.STP").c_str(), S_IRWXU), 0);

  EXPECT_THAT(VerifyWatched().damages,
              Contains(Field(&Damage::where, std::string("DISK1\\SETUP.STP"))));
}

TEST_F(HostileInstallationOnDisk, TheDirectoryItselfMayBeALink) {
  fs::remove_all(Setup());
  fs::create_directory_symlink(Outside(), Setup());
  fs::remove(Outside() / "DISK2");
  Installation sound = OneDisk({{"x.zip", "<ProjectDir>\\x.txt", "6", "1"}},
                               {{"DISK1\\x.zip", Archive("x.txt", "abcdef")}});
  std::string& script = sound["DISK1\\SETUP.STP"];
  script.replace(script.find("MaxBytes=0"), 10, "MaxBytes=6");
  Lay(sound);

  EXPECT_THAT(VerifyWatched().damages, IsEmpty());
}

// Names that only another program can have given, and that a back-end may list all the same.
class OddNames : public FileReader {
 public:
  std::vector<std::string> names;
  mutable std::vector<std::string> asked;

  [[nodiscard]] bool FileExists(std::string_view) const override { return false; }
  [[nodiscard]] bool FolderExists(std::string_view) const override { return true; }
  [[nodiscard]] std::optional<FileStamp> Stamp(std::string_view path) const override {
    asked.emplace_back(path);
    return std::nullopt;
  }
  [[nodiscard]] std::unique_ptr<InputFile> OpenForReading(std::string_view path) const override {
    asked.emplace_back(path);
    throw RuntimeError(ErrorNumber::kFileNotFound, std::string(path));
  }
  [[nodiscard]] std::vector<FileEntry> List(std::string_view folder,
                                            std::string_view) const override {
    if (FileName(folder) != "DISK1") return {{"DISK1", /*is_folder=*/true}};
    std::vector<FileEntry> entries;
    for (const std::string& name : names) entries.push_back({name, /*is_folder=*/false});
    return entries;
  }
};

TEST(HostileInstallation, AFileWhoseNameLeadsElsewhereIsNotLookedAt) {
  OddNames disk;
  disk.names = {"..\\..\\secret.zip", "..", "NUL", "COM1.zip", "C:\\x.zip", "x.zip:stream", "a/b"};

  const VerifyResult result = VerifyInstallation(disk, kSetup);

  EXPECT_THAT(disk.asked, IsEmpty());
  for (const std::string& name : disk.names) {
    EXPECT_THAT(result.damages,
                Contains(Damage{"DISK1\\" + name, "has a name that no setup can use"}));
  }
}

}  // namespace
}  // namespace txs
