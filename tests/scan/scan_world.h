// A studio computer in memory with one project, ready for Scan.
#pragma once

#include <algorithm>
#include <chrono>
#include <string>
#include <string_view>
#include <vector>

#include "document/application.h"
#include "document/path_variables.h"
#include "environment/code_page.h"
#include "fakes/memory_platform.h"
#include "fakes/recording_messages.h"
#include "fakes/recording_scan_view.h"
#include "scan/dependency_resolution.h"
#include "scan/scan_run.h"
#include "scan/scan_session.h"

namespace txs {

inline constexpr char kProductFile[] = "C:\\Tavix\\SetupKit\\TXDependencies.ini";
inline constexpr char kVb6File[] = "C:\\VB98\\Wizards\\PDWizard\\Vb6dep.ini";
inline constexpr char kGuid1[] = "{11111111-0000-0000-C000-000000000046}";
inline constexpr char kGuid2[] = "{22222222-0000-0000-C000-000000000046}";

// Each line on its own, as Windows writes text files, in the ANSI code page.
inline std::string Lines(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += line + "\r\n";
  return Utf8ToAnsi(text);
}

// The project "Demo" of type Single in C:\Demo, designed with Visual Basic 6.0 as Demo.vbp with the
// program Demo.exe; the main directory C:\Tavix; English texts; no predefined runtime setup.
class ScanWorld {
 public:
  ScanWorld()
      : application{platform.Get(),           messages, TextService(1033),
                    /*installation=*/{},
                    /*configurator=*/nullptr,
                    /*project=*/{},
                    /*document=*/{}} {
    InstallationSettings& installation = application.installation;
    installation.main_directory = "C:\\Tavix";
    installation.studio_directory = "C:\\Tavix\\Studio";
    installation.common_directory = "C:\\Tavix\\Common";
    application.project = {"Demo", "C:\\Demo", /*type=*/1, "C:\\Demo\\Demo.txs"};
    application.use_runtime_setup = false;
    BuildVariables();
    platform.registry.Write(Hive::kLocalMachine,
                            "Software\\Microsoft\\VisualStudio\\6.0\\Setup\\Microsoft Visual Basic",
                            "ProductDir", std::string("C:\\VB98"));
    SetStudioProject({});
    SetVbProject({"Type=Exe", "ExeName32=\"Demo.exe\""});
    files.AddFile("C:\\Demo\\Demo.exe", "program");
    files.AddFolder("C:\\Windows\\System32");
    SetProductFile({});
  }

  void BuildVariables() {
    application.document.path_variables =
        BuildPathVariables(application.installation, platform.tools, application.project.directory);
  }
  void Speak(long language_id) { application.texts = TextService(language_id); }

  void SetStudioProject(const std::vector<std::string>& more_lines,
                        std::string_view designer = "Visual Basic 6.0",
                        std::string_view designer_project = "Demo.vbp") {
    std::vector<std::string> lines = {"[Global]", "Designer=" + std::string(designer),
                                      "DesignerProject=" + std::string(designer_project)};
    lines.insert(lines.end(), more_lines.begin(), more_lines.end());
    files.AddFile("C:\\Demo\\Demo.txs", Lines(lines));
  }
  void SetVbProject(const std::vector<std::string>& lines) {
    files.AddFile("C:\\Demo\\Demo.vbp", Lines(lines));
  }
  void SetProductFile(const std::vector<std::string>& lines) {
    files.AddFile(kProductFile, Lines(lines));
  }
  void SetVb6File(const std::vector<std::string>& lines) { files.AddFile(kVb6File, Lines(lines)); }
  void AddSystemFile(const std::string& name) {
    files.AddFile("C:\\Windows\\System32\\" + name, name);
  }
  void RegisterLibrary(const std::string& guid, const std::string& version, const std::string& path,
                       const std::string& locale = "0") {
    platform.registry.Write(Hive::kClassesRoot,
                            "TypeLib\\" + guid + "\\" + version + "\\" + locale + "\\win32", "",
                            path);
  }
  void RegisterDriver(const std::string& program_id, const std::string& path,
                      const std::string& name) {
    const std::string key = "Software\\ORBEKA GmbH\\Tavix\\4.0\\Drivers\\" + program_id;
    platform.registry.Write(Hive::kLocalMachine, key, "Path", path);
    platform.registry.Write(Hive::kLocalMachine, key, "Name", name);
  }

  ScanResult Run() { return RunScan(application, view, dialog); }

  // Sources of the rows, in order.
  [[nodiscard]] std::vector<std::string> Sources() const {
    std::vector<std::string> sources;
    for (const FileRow& row : application.document.files.Rows()) sources.push_back(row.source);
    return sources;
  }
  // "name kind" of the rows, in order.
  [[nodiscard]] std::vector<std::string> Kinds() const {
    std::vector<std::string> kinds;
    for (const FileRow& row : application.document.files.Rows()) {
      kinds.push_back(row.source.substr(row.source.rfind('\\') + 1) + " " + row.registration);
    }
    return kinds;
  }
  [[nodiscard]] const std::vector<std::string>& ToDo() const {
    return application.document.extra_todo_lines;
  }
  [[nodiscard]] bool HasToDo(const std::string& line) const {
    return std::count(ToDo().begin(), ToDo().end(), line) == 1;
  }
  [[nodiscard]] std::size_t Opened(std::string_view path) const {
    return static_cast<std::size_t>(
        std::count_if(files.diary.begin(), files.diary.end(), [&](const auto& entry) {
          return entry.operation == "OpenForReading" && EqualNoCase(entry.path, path);
        }));
  }

  MemoryPlatform platform;
  MemoryFileSystem& files = platform.files;
  RecordingMessages messages;
  Application application;
  RecordingScanView view;
  ScriptedSearchFileDialog dialog;
};

// A world in which single files are added, without a run around.
class ResolutionWorld : public ScanWorld {
 public:
  // Made at first use, so that a test can set the scene before.
  DependencyResolver& Resolver() {
    if (!resolver_) {
      session_.emplace(application, view, dialog);
      session_->chain_root = {"Demo.vbp"};
      resolver_.emplace(*session_);
    }
    return *resolver_;
  }
  ScanSession& Session() {
    Resolver();
    return *session_;
  }
  bool Add(std::string_view path) { return Resolver().AddFromBothSources(path); }

 private:
  std::optional<ScanSession> session_;
  std::optional<DependencyResolver> resolver_;
};

}  // namespace txs
