// Create on folders of the host: what it leaves is read back by programs that know nothing of it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <string>

#include "create/create_run.h"
#include "create/create_world.h"
#include "create/setup_control_file.h"
#include "document/medium.h"
#include "environment/archiver_builtin.h"
#include "environment/code_page.h"
#include "environment/file_locks_host.h"
#include "environment/file_system_host.h"
#include "fakes/temp_folder.h"

namespace txs {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace fs = std::filesystem;

std::string ReadHostFile(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void WriteHostFile(const fs::path& path, std::string_view bytes) {
  fs::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary) << bytes;
}

// Every file below `folder` with its bytes.
std::map<std::string, std::string> ReadHostTree(const fs::path& folder) {
  std::map<std::string, std::string> files;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
    if (entry.is_regular_file()) {
      files[fs::relative(entry.path(), folder).string()] = ReadHostFile(entry.path());
    }
  }
  return files;
}

bool Succeeds(const std::string& command) {
  return std::system((command + " >/dev/null 2>&1").c_str()) == 0;
}

class CreateRunOnHost : public testing::Test {
 protected:
  CreateRunOnHost() {
    fs::create_directories(drive_ / "Demo");
    Add("Demo/Demo.exe", Noise(3'000'000));
    Add("Demo/text.dat", std::string(200'000, 't'));
    Add("Demo/empty.dat", "");
    Add("Demo/Grün & 'quer'.dat", "a name to trip over");
    WriteHostFile(drive_ / "Tavix/SetupKit/setup.exe", Noise(5000));
    WriteHostFile(drive_ / "Tavix/SetupKit/txstpkit.ini",
                  "[SetupFiles]\r\nCount=1\r\n1=SETUP.EXE\r\n");
    application_.installation.main_directory = "C:\\Tavix";
    application_.project = {"Demo", "C:\\demo", /*type=*/1, "C:\\demo\\Demo.txs"};
    application_.unattended = true;
    SetupDocument& document = application_.document;
    document.program_name = "Demo.exe";
    document.path_variables = BuildPathVariables(application_.installation, tools_, "C:\\demo");
    document.steps.tavix_directory = "C:\\TavixStudio";
    document.steps.project_directory = "C:\\Anlage";
    document.steps.setup_directory = "<ProjectDir>\\Setup";
  }

  void Add(const std::string& host_name, std::string_view bytes) {
    WriteHostFile(drive_ / host_name, bytes);
    application_.document.files.Append("C:\\Demo\\" + fs::path(host_name).filename().string(),
                                       "<ProjectDir>", "");
  }
  CreateResult Run() { return RunCreate(application_, view_); }

  TempFolder folder_;
  fs::path drive_ = folder_.Path() / "drive_c";
  fs::path output_ = drive_ / "Demo" / "Setup";

  HostFileSystem files_{folder_.Path().string()};
  HostFileLocks locks_{files_};
  MemoryRegistry registry_;
  ProfileFiles profiles_{files_};
  FixedSpecialFolders folders_;
  SystemTools tools_{registry_, files_, profiles_, folders_};
  FixedClock clock_;
  ScriptedMessageBoxes message_boxes_;
  std::unique_ptr<Archiver> archiver_ = MakeBuiltInArchiver(files_, clock_);
  Platform platform_{registry_,
                     files_,
                     locks_,
                     files_,
                     profiles_,
                     folders_,
                     tools_,
                     *archiver_,
                     clock_,
                     message_boxes_,
                     /*make_configurator=*/{}};
  RecordingMessages messages_;
  Application application_{platform_,
                           messages_,
                           TextService(1033),
                           /*installation=*/{},
                           /*configurator=*/nullptr,
                           /*project=*/{},
                           /*document=*/{}};
  RecordingCreateView view_;
};

TEST_F(CreateRunOnHost, OtherProgramsReadWhatTheDisksHold) {
  const CreateResult result = Run();

  ASSERT_TRUE(result.succeeded) << (messages_.shown.empty() ? "" : messages_.shown[0].prompt);
  EXPECT_EQ(result.disks, 3u);
  const fs::path joined = folder_.Path() / "joined.zip";
  for (const FileRow& row : application_.document.files.Rows()) {
    SCOPED_TRACE(row.compressed_name);
    std::string bytes;
    for (std::uint64_t disk = 1; disk <= result.disks; ++disk) {
      const std::string label = "DISK" + std::to_string(disk);
      const fs::path piece = output_ / label / row.compressed_name;
      const bool named = (row.disk + "|").find("|" + std::to_string(disk) + "|") != row.disk.npos;
      EXPECT_EQ(fs::exists(piece), named) << row.disk;
      if (fs::exists(piece)) bytes += ReadHostFile(piece);
    }
    WriteHostFile(joined, bytes);
    EXPECT_TRUE(Succeeds("unzip -tqq '" + joined.string() + "'"));
    EXPECT_TRUE(Succeeds("7z t '" + joined.string() + "'"));
    const fs::path unpacked = folder_.Path() / "unpacked";
    EXPECT_EQ(
        std::system(("unzip -p '" + joined.string() + "' > '" + unpacked.string() + "'").c_str()),
        0);
    const std::string name = FileName(row.source);
    EXPECT_EQ(ReadHostFile(unpacked), ReadHostFile(drive_ / "Demo" / name));
  }
  for (std::uint64_t disk = 1; disk <= result.disks; ++disk) {
    const std::string label = "DISK" + std::to_string(disk);
    EXPECT_EQ(ReadHostFile(output_ / label / label), " " + std::to_string(disk) + " ");
    std::uint64_t used = 0;
    for (const fs::directory_entry& entry : fs::directory_iterator(output_ / label)) {
      if (entry.path().filename() != label) used += entry.file_size();
    }
    EXPECT_LE(used, kDisketteBytes);
  }
  EXPECT_EQ(ReadHostFile(output_ / "DISK1" / "SETUP.EXE"), Noise(5000));
  EXPECT_FALSE(fs::exists(drive_ / "Demo" / "~TEMP"));
}

TEST_F(CreateRunOnHost, TwoRunsGiveTheSameBytes) {
  ASSERT_TRUE(Run().succeeded);
  const std::map<std::string, std::string> first = ReadHostTree(output_);

  ASSERT_TRUE(Run().succeeded);

  EXPECT_EQ(ReadHostTree(output_), first);
}

TEST_F(CreateRunOnHost, OldDisksGoWhateverTheyHoldAndFilesNamedLikeDisksStay) {
  WriteHostFile(output_ / "disk7" / "deep" / "read only", "old");
  fs::permissions(output_ / "disk7" / "deep" / "read only", fs::perms::owner_read);
  WriteHostFile(output_ / "DISK.TXT", "stays");
  WriteHostFile(folder_.Path() / "elsewhere" / "precious", "not ours");
  fs::create_directory_symlink(folder_.Path() / "elsewhere", output_ / "disk7" / "link");

  ASSERT_TRUE(Run().succeeded);

  EXPECT_FALSE(fs::exists(output_ / "disk7"));
  EXPECT_EQ(ReadHostFile(output_ / "DISK.TXT"), "stays");
  EXPECT_EQ(ReadHostFile(folder_.Path() / "elsewhere" / "precious"), "not ours");
}

TEST_F(CreateRunOnHost, AProjectInAFolderNamedLikeADiskIsNotDeletedByAnotherNameOfItsParent) {
  WriteHostFile(drive_ / "Projects" / "DiskMonitor" / "Monitor.txs", "the project");
  fs::create_directory_symlink(drive_ / "Projects", drive_ / "Link");
  application_.project.directory = "C:\\Projects\\DiskMonitor";
  application_.document.steps.setup_directory = "C:\\Link";

  EXPECT_FALSE(Run().succeeded);

  EXPECT_THAT(messages_.Ids(), ElementsAre(906));
  EXPECT_EQ(ReadHostFile(drive_ / "Projects" / "DiskMonitor" / "Monitor.txs"), "the project");
}

TEST_F(CreateRunOnHost, AFileInThePlaceOfTheFirstDiskIsMessage906) {
  WriteHostFile(output_ / "DISK1", "a file");

  EXPECT_FALSE(Run().succeeded);

  EXPECT_THAT(messages_.Ids(), ElementsAre(906));
  EXPECT_EQ(ReadHostFile(output_ / "DISK1"), "a file");
}

TEST_F(CreateRunOnHost, AnOutputDirectoryThatIsAFileIsMessage906) {
  WriteHostFile(output_, "a file");

  EXPECT_FALSE(Run().succeeded);

  EXPECT_THAT(messages_.Ids(), ElementsAre(906));
  EXPECT_EQ(ReadHostFile(output_), "a file");
}

TEST_F(CreateRunOnHost, AFileInThePlaceOfTheTemporaryDirectoryIsMessage905) {
  WriteHostFile(drive_ / "Demo" / "~TEMP", "a file");

  EXPECT_FALSE(Run().succeeded);

  EXPECT_THAT(messages_.Ids(), ElementsAre(905));
}

TEST_F(CreateRunOnHost, TheScriptIsTheOneOfTheDocument) {
  ASSERT_TRUE(Run().succeeded);

  const std::string script = ReadHostFile(output_ / "DISK1" / "SETUP.STP");
  EXPECT_TRUE(script.starts_with("[Params]\r\nDefLang=0\r\n"));
  EXPECT_NE(script.find("Gr\xFCn & 'quer'.dat.zip|<ProjectDir>\\Gr\xFCn & 'quer'.dat|19|"),
            std::string::npos);
  EXPECT_EQ(script.size(), Utf8ToAnsi(SetupControlText(application_)).size());
}

}  // namespace
}  // namespace txs
