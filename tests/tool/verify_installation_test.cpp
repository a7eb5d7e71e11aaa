#include "tool/verify_installation.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <sstream>

#include "create/create_run.h"
#include "fakes/demo_project.h"
#include "fakes/memory_platform.h"
#include "fakes/noise.h"
#include "startup/start_routine.h"

namespace txs {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr char kSetup[] = "C:\\Projects\\Demo\\Setup";
constexpr char kScript[] = "C:\\Projects\\Demo\\Setup\\DISK1\\SETUP.STP";

class NoShell : public InteractiveShell {
 public:
  std::string ChooseProject(Application& /*application*/) override { return {}; }
  void RunMainForm(Application& /*application*/) override {}
};

// An installation on three diskettes, made by Create: big.dat lies on all of them.
struct VerifyInstallationTest : ::testing::Test {
  MemoryPlatform world;

  VerifyInstallationTest() {
    InstallDemoProject(world);
    std::string settings = DemoSettings() + "04=<ProjectDir>\\big.dat,<ProjectDir>,0\r\n";
    settings.replace(settings.find("size=1"), 6, "size=0");
    world.files.AddFile("C:\\Projects\\Demo\\Demo.swz", settings);
    world.files.AddFile("C:\\Projects\\Demo\\big.dat", Noise(3'000'000, 9));
    std::ostringstream errors;
    RoutedMessages messages(world.Get(), errors);
    NoShell shell;
    SilentCreateView view;
    EXPECT_EQ(RunStartRoutine(world.Get(), messages, shell, view, "/c=Demo"), 0);
  }

  [[nodiscard]] static std::string Path(const std::string& where) {
    return std::string(kSetup) + "\\" + where;
  }

  [[nodiscard]] VerifyResult Verify() const { return VerifyInstallation(world.files, kSetup); }

  // Where the damages are, in their order.
  [[nodiscard]] std::vector<std::string> Places() const {
    std::vector<std::string> places;
    for (const Damage& damage : Verify().damages) places.push_back(damage.where);
    return places;
  }

  void Change(const std::string& where, const std::function<void(std::string&)>& edit) {
    std::string bytes = world.files.Contents(Path(where));
    edit(bytes);
    world.files.AddFile(Path(where), bytes);
  }

  void ChangeScript(const std::string& what, const std::string& by) {
    Change("DISK1\\SETUP.STP", [&](std::string& bytes) {
      const std::size_t at = bytes.find(what);
      ASSERT_NE(at, std::string::npos);
      bytes.replace(at, what.size(), by);
    });
  }

  // "DISK1\SETUP.STP line N" of the first line that holds `text`.
  [[nodiscard]] std::string LineOf(const std::string& text) const {
    const std::string bytes = world.files.Contents(kScript);
    const auto lines = std::count(
        bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(bytes.find(text)), '\n');
    return "DISK1\\SETUP.STP line " + std::to_string(lines + 1);
  }
};

TEST_F(VerifyInstallationTest, FindsWhatCreateMadeSound) {
  const VerifyResult result = Verify();

  EXPECT_THAT(result.damages, IsEmpty());
  EXPECT_TRUE(result.Sound());
  EXPECT_EQ(result.disks, 3u);
  EXPECT_EQ(result.files, 4u);
  std::uint64_t bytes = 0;
  for (const std::string& path : world.files.AllFilesIn(kSetup)) {
    if (path.ends_with(".zip")) bytes += world.files.Contents(path).size();
  }
  EXPECT_EQ(result.bytes, bytes);
}

TEST_F(VerifyInstallationTest, WritesNothing) {
  const std::size_t before = world.files.AllFiles().size();
  world.files.diary.clear();

  static_cast<void>(Verify());

  EXPECT_EQ(world.files.AllFiles().size(), before);
  EXPECT_EQ(world.files.Times("Write"), 0u);
}

TEST_F(VerifyInstallationTest, AcceptsATrailingBackslash) {
  EXPECT_TRUE(VerifyInstallation(world.files, std::string(kSetup) + "\\").Sound());
}

TEST_F(VerifyInstallationTest, DirectoryThatDoesNotExistThrows) {
  for (const char* directory : {"C:\\Nowhere", "", kScript}) {
    try {
      static_cast<void>(VerifyInstallation(world.files, directory));
      FAIL() << "no error was thrown for " << directory;
    } catch (const RuntimeError& error) {
      EXPECT_EQ(error.Number(), ErrorNumber::kPathNotFound);
    }
  }
}

TEST_F(VerifyInstallationTest, DirectoryWithoutDisksIsDamaged) {
  world.files.AddFolder("C:\\Empty");

  const VerifyResult result = VerifyInstallation(world.files, "C:\\Empty");

  EXPECT_THAT(result.damages, ElementsAre(Damage{"DISK1", "the disk directory is missing"}));
}

// --- Disks and labels

TEST_F(VerifyInstallationTest, MissingDiskInTheMiddleIsFound) {
  world.files.Vanish(Path("DISK2"));

  EXPECT_THAT(Places(), ElementsAre("DISK2", "DISK2\\big.dat.zip"));
}

TEST_F(VerifyInstallationTest, MissingLastDiskIsFound) {
  const std::string line = LineOf("MaxDisk=");
  world.files.Vanish(Path("DISK3"));

  EXPECT_THAT(Places(), ElementsAre(line, "DISK3\\big.dat.zip"));
}

TEST_F(VerifyInstallationTest, SurplusDiskIsFound) {
  const std::string line = LineOf("MaxDisk=");
  world.files.AddFile(Path("DISK4\\DISK4"), " 4 ");

  EXPECT_THAT(Places(), ElementsAre(line));
}

TEST_F(VerifyInstallationTest, ManyMissingDisksAreOneDamage) {
  const std::string line = LineOf("MaxDisk=");
  world.files.AddFile(Path("DISK900000000\\DISK900000000"), " 900000000 ");

  EXPECT_THAT(Places(), ElementsAre("DISK4 to DISK899999999", line));
}

TEST_F(VerifyInstallationTest, FolderThatOnlyLooksLikeADiskIsFound) {
  world.files.AddFolder(Path("DISK03"));
  world.files.AddFolder(Path("DISKETTE"));
  world.files.AddFolder(Path("DISK99999999999999999999"));

  EXPECT_THAT(Places(), ElementsAre("DISK03", "DISK99999999999999999999", "DISKETTE"));
}

TEST_F(VerifyInstallationTest, OtherFilesBesideTheDisksAreNoDamage) {
  world.files.AddFile(Path("DISKS.TXT"), "");
  world.files.AddFolder(Path("Notes"));

  EXPECT_THAT(Places(), IsEmpty());
}

TEST_F(VerifyInstallationTest, WrongLabelsAreFound) {
  Change("DISK1\\DISK1", [](std::string& bytes) { bytes = " 2 "; });
  Change("DISK2\\DISK2", [](std::string& bytes) { bytes = "2"; });
  world.files.Vanish(Path("DISK3\\DISK3"));

  EXPECT_THAT(Places(), ElementsAre("DISK1\\DISK1", "DISK2\\DISK2", "DISK3\\DISK3"));
}

// --- Archives and pieces

TEST_F(VerifyInstallationTest, MissingPieceIsFound) {
  world.files.Vanish(Path("DISK2\\big.dat.zip"));

  EXPECT_THAT(Places(), ElementsAre("DISK2\\big.dat.zip"));
}

TEST_F(VerifyInstallationTest, MissingArchiveIsFound) {
  world.files.Vanish(Path("DISK1\\Trend.ocx.zip"));

  EXPECT_THAT(Places(), ElementsAre("DISK1\\Trend.ocx.zip"));
}

TEST_F(VerifyInstallationTest, FlippedByteIsFound) {
  Change("DISK2\\big.dat.zip", [](std::string& bytes) { bytes[12345] ^= 1; });

  const std::vector<Damage> damages = Verify().damages;

  ASSERT_EQ(damages.size(), 1u);
  EXPECT_EQ(damages[0].where, "DISK1\\big.dat.zip");
  EXPECT_THAT(damages[0].what, HasSubstr("CRC"));
}

TEST_F(VerifyInstallationTest, TruncatedAndEmptyPiecesAreFound) {
  Change("DISK2\\big.dat.zip", [](std::string& bytes) { bytes.pop_back(); });
  EXPECT_THAT(Places(), ElementsAre("DISK1\\big.dat.zip"));

  Change("DISK2\\big.dat.zip", [](std::string& bytes) { bytes.clear(); });
  EXPECT_THAT(Places(), ElementsAre("DISK2\\big.dat.zip"));
}

TEST_F(VerifyInstallationTest, SwappedPiecesAreFound) {
  const std::string second = world.files.Contents(Path("DISK2\\big.dat.zip"));
  const std::string third = world.files.Contents(Path("DISK3\\big.dat.zip"));
  world.files.AddFile(Path("DISK2\\big.dat.zip"), third);
  world.files.AddFile(Path("DISK3\\big.dat.zip"), second);

  EXPECT_THAT(Places(), ElementsAre("DISK1\\big.dat.zip"));
}

TEST_F(VerifyInstallationTest, PieceOnADiskThatIsNotNamedIsFound) {
  world.files.AddFile(Path("DISK2\\Trend.ocx.zip"), "x");

  EXPECT_THAT(Places(), ElementsAre("DISK2\\Trend.ocx.zip"));
}

TEST_F(VerifyInstallationTest, SurplusArchiveIsFound) {
  world.files.AddFile(Path("DISK1\\old.dll.zip"), "x");
  world.files.AddFile(Path("DISK3\\README.TXT"), "x");

  EXPECT_THAT(Places(), ElementsAre("DISK1\\old.dll.zip", "DISK3\\README.TXT"));
}

TEST_F(VerifyInstallationTest, KitFilesOnTheFirstDiskAreNoDamage) {
  world.files.AddFile(Path("DISK1\\KIT.DLL"), "x");

  EXPECT_THAT(Places(), IsEmpty());
}

TEST_F(VerifyInstallationTest, ArchiveOfAnotherFileIsFound) {
  world.files.AddFile(Path("DISK1\\Trend.ocx.zip"),
                      world.files.Contents(Path("DISK1\\Demo.exe.zip")));

  const std::vector<Damage> damages = Verify().damages;

  ASSERT_EQ(damages.size(), 2u);
  EXPECT_THAT(damages[0].what, HasSubstr("\"Demo.exe\""));
  EXPECT_THAT(damages[1].what, HasSubstr("5007 bytes"));
}

TEST_F(VerifyInstallationTest, UnreadablePieceIsADamage) {
  world.files.FailPath(Path("DISK2\\big.dat.zip"), "OpenForReading", ErrorNumber::kDeviceIo);

  EXPECT_THAT(Places(), ElementsAre("DISK1\\big.dat.zip"));
}

// --- The script

TEST_F(VerifyInstallationTest, MissingScriptIsFound) {
  world.files.Vanish(kScript);

  EXPECT_THAT(Places(), ElementsAre("DISK1\\SETUP.STP"));
}

TEST_F(VerifyInstallationTest, ScriptThatWasNeverWrittenIsFound) {
  Change("DISK1\\SETUP.STP", [](std::string& bytes) { bytes = std::string(32000, ' '); });

  EXPECT_THAT(Places(), ElementsAre("DISK1\\SETUP.STP"));
}

TEST_F(VerifyInstallationTest, LineThatNamesWhatIsNotThereIsFound) {
  ChangeScript("InstallFile(Trend.ocx.zip|", "InstallFile(Trent.ocx.zip|");

  EXPECT_THAT(Places(), ElementsAre("DISK1\\Trent.ocx.zip", "DISK1\\Trend.ocx.zip"));
}

TEST_F(VerifyInstallationTest, RegistrationOfWhatIsNotInstalledIsFound) {
  const std::string line = LineOf("RegInProc(");
  ChangeScript("RegInProc(<WinSysDir>\\Trend.ocx", "RegInProc(<WinSysDir>\\Trent.ocx");

  EXPECT_THAT(Places(), ElementsAre(line));
}

TEST_F(VerifyInstallationTest, LengthOtherThanTheArchivesIsFound) {
  const std::string max_bytes = LineOf("MaxBytes=");
  ChangeScript("Trend.ocx|700|", "Trend.ocx|701|");

  EXPECT_THAT(Places(), ElementsAre(max_bytes, "DISK1\\Trend.ocx.zip"));
}

TEST_F(VerifyInstallationTest, ArchiveThatIsTheScriptOrALabelIsFound) {
  const std::string line = LineOf("InstallFile(Trend.ocx.zip|");
  ChangeScript("InstallFile(Trend.ocx.zip|", "InstallFile(SETUP.STP|");
  EXPECT_THAT(Places(), ElementsAre(line, "DISK1\\Trend.ocx.zip"));

  ChangeScript("InstallFile(SETUP.STP|", "InstallFile(DISK1|");
  EXPECT_THAT(Places(), ElementsAre(line, "DISK1\\Trend.ocx.zip"));
}

TEST_F(VerifyInstallationTest, ArchiveNameThatLeadsElsewhereIsNotFollowed) {
  const std::string line = LineOf("InstallFile(Trend.ocx.zip|");
  world.files.AddFile("C:\\Projects\\secret.zip", "x");
  for (const char* name : {"..\\..\\secret.zip", "../../secret.zip", "C:\\Projects\\secret.zip"}) {
    MemoryFileSystem& files = world.files;
    const std::string original = files.Contents(kScript);
    ChangeScript("InstallFile(Trend.ocx.zip|", "InstallFile(" + std::string(name) + "|");
    files.diary.clear();

    EXPECT_THAT(Places(), ::testing::Contains(line));

    for (const MemoryFileSystem::DiaryEntry& entry : files.diary) {
      EXPECT_TRUE(entry.path.starts_with(kSetup)) << entry.operation << " " << entry.path;
      EXPECT_THAT(entry.path, ::testing::Not(HasSubstr("secret")));
    }
    files.AddFile(kScript, original);
  }
}

TEST_F(VerifyInstallationTest, DiskThatIsNotThereIsNotLookedFor) {
  ChangeScript("|2|0|1|2|3)", "|2|0|1|2|3|18446744073709551615)");

  EXPECT_THAT(Places(), ElementsAre("DISK18446744073709551615\\big.dat.zip"));
}

TEST_F(VerifyInstallationTest, SeveralDamagesAreListedEachOnItsOwn) {
  world.files.Vanish(Path("DISK1\\Demo.exe.zip"));
  Change("DISK3\\DISK3", [](std::string& bytes) { bytes = "x"; });
  world.files.AddFile(Path("DISK2\\z.zip"), "");

  EXPECT_THAT(Places(), ElementsAre("DISK3\\DISK3", "DISK1\\Demo.exe.zip", "DISK2\\z.zip"));
}

TEST_F(VerifyInstallationTest, RandomDamageOfTheScriptNeverThrows) {
  world.files.AddFile(kScript, [this] {
    std::string bytes = world.files.Contents(kScript);
    // Without the large archive a round is quick.
    const std::size_t line = bytes.find("InstallFile(big.dat.zip");
    return bytes.erase(line, bytes.find('\n', line) + 1 - line);
  }());
  const std::string original = world.files.Contents(kScript);
  unsigned state = 11;
  const auto random = [&state] { return (state = state * 1664525U + 1013904223U) >> 8; };

  for (int round = 0; round < 2000; ++round) {
    std::string changed = original;
    for (unsigned i = 0; i < 1 + random() % 4; ++i) {
      changed[random() % changed.size()] = static_cast<char>(random());
    }
    world.files.AddFile(kScript, changed);
    EXPECT_NO_THROW(static_cast<void>(Verify()));
  }
}

TEST_F(VerifyInstallationTest, EveryFailingOperationIsADamageOrOfNoConsequence) {
  const std::uint64_t before = world.files.OperationCount();
  ASSERT_TRUE(Verify().Sound());
  const std::uint64_t operations = world.files.OperationCount() - before;

  // The first one is the question whether the directory exists.
  for (std::uint64_t n = 2; n <= operations; ++n) {
    world.files.FailOperation(n, ErrorNumber::kDeviceIo);
    EXPECT_FALSE(Verify().Sound()) << "operation " << n;
    world.files.StopFailing();
  }
}

}  // namespace
}  // namespace txs
