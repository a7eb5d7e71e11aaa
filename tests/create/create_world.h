// A studio computer in memory with one project, ready for Create.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "create/create.h"
#include "document/application.h"
#include "document/path_variables.h"
#include "environment/windows_path.h"
#include "fakes/memory_platform.h"
#include "fakes/noise.h"
#include "fakes/recording_create_view.h"
#include "fakes/recording_messages.h"

namespace txs {

inline FileTime Noon(int year, unsigned month, unsigned day) {
  return std::chrono::sys_days(std::chrono::year(year) / static_cast<int>(month) /
                               static_cast<int>(day)) +
         std::chrono::hours(12);
}

inline constexpr char kOutput[] = "C:\\Demo\\Setup";
inline constexpr char kTemporary[] = "C:\\Demo\\~TEMP";
inline constexpr char kKitFolder[] = "C:\\Tavix\\SetupKit";

// The project "Demo" of type Single in C:\Demo, the main directory C:\Tavix, an empty setup kit,
// the unlimited medium, English texts, a run that nobody attends.
class CreateWorld {
 public:
  CreateWorld()
      : application{platform.Get(),           messages, TextService(1033),
                    /*installation=*/{},
                    /*configurator=*/nullptr,
                    /*project=*/{},
                    /*document=*/{}} {
    InstallationSettings& installation = application.installation;
    installation.language_id = 1033;
    installation.main_directory = "C:\\Tavix";
    installation.studio_directory = "C:\\Tavix\\Studio";
    installation.common_directory = "C:\\Tavix\\Common";
    application.project = {"Demo", "C:\\Demo", /*type=*/1, "C:\\Demo\\Demo.txs"};
    application.unattended = true;
    SetupDocument& document = application.document;
    document.program_name = "Demo.exe";
    document.path_variables =
        BuildPathVariables(installation, platform.tools, application.project.directory);
    StepSettings& steps = document.steps;
    steps.startmenu_folder = {"Visualisierung", "Visualization"};
    steps.startmenu_link = {"Demo", "Demo"};
    steps.tavix_directory = "C:\\TavixStudio";
    steps.project_directory = "C:\\Anlage";
    steps.setup_directory = "<ProjectDir>\\Setup";
    steps.disk_size_index = 1;
    files.AddFolder("C:\\Demo");
    SetKit({});
  }

  void Speak(long language_id) {
    application.installation.language_id = language_id;
    application.texts = TextService(language_id);
  }

  // Makes the file and its row in the visible list. `source` may begin with a path variable.
  FileRow& Add(std::string_view source, std::string_view bytes,
               std::string_view destination = "<ProjectDir>", std::string_view registration = "",
               FileTime last_write = Noon(2004, 2, 20)) {
    return AddTo(application.document.files, source, bytes, destination, registration, last_write);
  }
  FileRow& AddHidden(std::string_view source, std::string_view bytes,
                     std::string_view destination = "<ProjectDir>",
                     std::string_view registration = "", FileTime last_write = Noon(2004, 2, 20)) {
    return AddTo(application.document.hidden_files, source, bytes, destination, registration,
                 last_write);
  }

  void SetKit(const std::vector<std::pair<std::string, std::string>>& kit) {
    std::string list = "[SetupFiles]\r\nCount=" + std::to_string(kit.size()) + "\r\n";
    for (std::size_t i = 0; i < kit.size(); ++i) {
      list += std::to_string(i + 1) + "=" + kit[i].first + "\r\n";
      files.AddFile(std::string(kKitFolder) + "\\" + kit[i].first, kit[i].second);
    }
    SetKitList(list);
  }
  void SetKitList(std::string_view list) {
    files.AddFile(std::string(kKitFolder) + "\\TXSTPKIT.INI", list);
  }

  // From now on, the source's archive is `size` bytes of noise.
  void SetArchiveSize(std::string_view source_path, std::size_t size) {
    platform.archiver.FailFor(source_path, ArchiveResult::kSuccess);
    archives_[std::string(source_path)] = Noise(size, static_cast<std::uint32_t>(size));
    platform.archiver.before = [this](std::string_view archive, std::string_view path) {
      const auto found = archives_.find(std::string(path));
      if (found != archives_.end()) files.AddFile(archive, found->second);
    };
  }

  CreateResult Run() { return RunCreate(application, view); }

  // The state as the directory stage leaves it, for stages that are tested alone.
  CreateState MakeState() {
    files.AddFolder(kTemporary);
    files.AddFolder(std::string(kOutput) + "\\DISK1");
    CreateState state;
    state.output_directory = kOutput;
    state.temporary_directory = kTemporary;
    state.first_disk_directory = std::string(kOutput) + "\\DISK1";
    state.medium_bytes = 2147483647;
    return state;
  }

  // Every file below the output directory with its bytes.
  [[nodiscard]] std::map<std::string, std::string> Output() const {
    std::map<std::string, std::string> output;
    for (const std::string& path : files.AllFilesIn(kOutput)) {
      output[path.substr(std::string_view(kOutput).size() + 1)] = files.Contents(path);
    }
    return output;
  }

  MemoryPlatform platform;
  MemoryFileSystem& files = platform.files;
  RecordingMessages messages;
  Application application;
  RecordingCreateView view;

 private:
  FileRow& AddTo(FileList& list, std::string_view source, std::string_view bytes,
                 std::string_view destination, std::string_view registration, FileTime last_write) {
    files.AddFile(FromVariableForm(application.document.path_variables, source), bytes, last_write);
    const std::size_t row =
        list.Append(std::string(source), std::string(destination), std::string(registration));
    return list.Row(row);
  }

  std::map<std::string, std::string> archives_;  // by source path
};

}  // namespace txs
