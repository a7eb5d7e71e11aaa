// A studio on a folder of the disk with one project of three diskettes, ready for Create.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

#include "create/create_run.h"
#include "create/create_world.h"
#include "environment/archiver_builtin.h"
#include "fakes/real_disk.h"

namespace txs {

class CreateRunOnDisk : public testing::Test {
 protected:
  CreateRunOnDisk() {
    Add("Demo.exe", Noise(3'000'000));
    Add("text.dat", std::string(200'000, 't'));
    Add("empty.dat", "");
    Add("Grün & 'quer'.dat", "a name to trip over");
    WriteHostFile(disk_.Host("Tavix\\SetupKit\\setup.exe"), Noise(5000));
    WriteHostFile(disk_.Host("Tavix\\SetupKit\\txstpkit.ini"),
                  "[SetupFiles]\r\nCount=1\r\n1=SETUP.EXE\r\n");
    application_.installation.main_directory = disk_.At("Tavix");
    // Not as the disk spells it.
    const std::string directory = disk_.At("demo");
    application_.project = {"Demo", directory, /*type=*/1, directory + "\\Demo.txs"};
    application_.unattended = true;
    SetupDocument& document = application_.document;
    document.program_name = "Demo.exe";
    document.path_variables = BuildPathVariables(application_.installation, tools_, directory);
    document.steps.tavix_directory = "C:\\TavixStudio";
    document.steps.project_directory = "C:\\Anlage";
    document.steps.setup_directory = "<ProjectDir>\\Setup";
  }

  void Add(const std::string& name, std::string_view bytes) {
    WriteHostFile(disk_.Host("Demo\\" + name), bytes);
    application_.document.files.Append(disk_.At("Demo\\" + name), "<ProjectDir>", "");
  }
  CreateResult Run() { return RunCreate(application_, view_); }

  // What the installation holds of that name.
  [[nodiscard]] std::filesystem::path Output(const std::string& below) const {
    return disk_.Host("Demo\\Setup\\" + below);
  }
  // The archive of a row, its pieces joined.
  [[nodiscard]] std::string Archive(const FileRow& row, std::uint64_t disks) const {
    std::string bytes;
    for (std::uint64_t disk = 1; disk <= disks; ++disk) {
      bytes += ReadHostFile(Output("DISK" + std::to_string(disk) + "\\" + row.compressed_name));
    }
    return bytes;
  }

  RealDisk disk_;
  MemoryRegistry registry_;
  ProfileFiles profiles_{disk_.files};
  FixedSpecialFolders folders_;
  SystemTools tools_{registry_, disk_.files, profiles_, folders_};
  FixedClock clock_;
  ScriptedMessageBoxes message_boxes_;
  std::unique_ptr<Archiver> archiver_ = MakeBuiltInArchiver(disk_.files, clock_);
  Platform platform_{registry_,
                     disk_.files,
                     disk_.locks,
                     disk_.host_paths,
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

}  // namespace txs
