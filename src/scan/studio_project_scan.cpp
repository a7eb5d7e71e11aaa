#include "scan/studio_project_scan.h"

#include <array>
#include <set>
#include <string>
#include <vector>

#include "document/work_border.h"
#include "environment/code_page.h"
#include "environment/full_path.h"
#include "environment/project_type.h"
#include "environment/runtime_error.h"
#include "environment/windows_path.h"
#include "scan/scan_captions.h"
#include "scan/type_libraries.h"
#include "strings/reason.h"

namespace txs {
namespace {

constexpr long kMessageScanning = 908;
constexpr long kMessageDriverMissing = 915;
constexpr int kDeviceCount = 5;
constexpr char kServerProgram[] = "TXEManager.exe";

// What each project type installs of the product.
struct Runtime {
  std::vector<std::string> setups;  // programs in the setup kit
  std::string pseudo_file;
};

Runtime RuntimeOf(long project_type) {
  const std::string server = "TXSRuntimeServerSetup";
  const std::string client = "TXSRuntimeClientSetup";
  switch (project_type) {
    case kProjectTypeSingle:
      return {{server, client}, "Tavix4"};
    case kProjectTypeServer:
      return {{server}, "Tavix4"};
    case kProjectTypeClient:
      return {{client}, "Tavix4 Client"};
    default:
      return {};
  }
}

// A setup that is not there installs nothing, so nothing may be left out on its account.
void UseIfListed(ScanSession& session, const std::string& name) {
  if (!session.FindListedByName(name + ".exe")) return;
  const Application& application = session.App();
  session.Setups().Use(application.platform.profiles.Open(
      FullPathFrom(application.installation.SetupKitDirectory(), name + ".ini")));
}

bool RunsServer(long project_type) {
  return project_type == kProjectTypeSingle || project_type == kProjectTypeServer;
}

// `studio_project` in the comments below is the project's ".txs".
class StudioProjectScan {
 public:
  StudioProjectScan(ScanSession& session, DependencyResolver& resolver)
      : session_(session),
        resolver_(resolver),
        application_(session.App()),
        project_(application_.project),
        product_file_(application_.ProductDependencyFile()) {}

  // Each step comes only when nobody has cancelled; a failed one does not stop the next.
  bool Run() {
    const std::array<void (StudioProjectScan::*)(), 7> steps = {
        &StudioProjectScan::AddRuntime,          &StudioProjectScan::AddProjectFile,
        &StudioProjectScan::AddRegistration,     &StudioProjectScan::AddDatabase,
        &StudioProjectScan::AddServerComponents, &StudioProjectScan::AddDrivers,
        &StudioProjectScan::AddRctFiles};
    if (!IsAbsolutePath(FullPath(project_.directory))) {
      throw RuntimeError(ErrorNumber::kPathNotFound, Words(Reason::kNoProjectDirectory));
    }
    for (const auto step : steps) {
      if (Cancelled()) return false;
      (this->*step)();
    }
    return succeeded_ && !Cancelled();
  }

 private:
  bool Cancelled() { return session_.CancelledMeanwhile(); }

  void Caption(const char* caption) {
    session_.View().StageCaption(ScanStage::kStudioProject, caption);
  }

  std::string InProject(std::string_view name) const {
    return FullPathFrom(project_.directory, name);
  }

  bool Add(std::string_view path, std::string_view dependency_file) {
    const bool added = resolver_.AddFile(path, Force::kNo, dependency_file);
    if (!added) succeeded_ = false;
    return added;
  }
  bool AddWithUsualSource(std::string_view path) { return Add(path, /*dependency_file=*/{}); }
  bool AddWithProductSource(std::string_view path) { return Add(path, product_file_); }

  void AddRuntime() {
    const Runtime runtime = RuntimeOf(project_.type);
    session_.Setups().Clear();
    if (application_.use_runtime_setup) {
      for (const std::string& setup : runtime.setups) AddSetup(setup);
    }
    if (!runtime.pseudo_file.empty()) AddWithProductSource(runtime.pseudo_file);
  }

  void AddSetup(const std::string& name) {
    const std::string kit = application_.installation.SetupKitDirectory();
    if (AddWithProductSource(FullPathFrom(kit, name + ".exe"))) UseIfListed(session_, name);
  }

  void AddProjectFile() {
    Caption(kCaptionStudioFile);
    AddWithUsualSource(InProject(project_.name + ".txs"));
  }

  void AddRegistration() {
    const std::string key = kProjectsKey + ("\\" + project_.name);
    const auto add_line = [&](const std::string& name, const std::string& value) {
      session_.AddScriptLine("WriteRegistry(HKEY_LOCAL_MACHINE|" + key + "|" + name + "|" + value +
                             "|1)");
    };
    add_line("Path", "<ProjectDir>");
    add_line("TavixVersion",
             application_.platform.tools.RegistryText(Hive::kLocalMachine, key, "TavixVersion",
                                                      /*default_value=*/{}));
    add_line("ProjectType", ProjectTypeName(project_.type));
  }

  void AddDatabase() {
    const std::string database = InProject(project_.name + ".dbf");
    if (application_.platform.files.FileExists(database)) AddWithUsualSource(database);
  }

  void AddServerComponents() {
    if (!RunsServer(project_.type)) return;
    Caption(kCaptionServerComponents);
    for (const ProfileEntry& entry : application_.platform.tools.ReadSection(
             "ServerComponents", project_.StudioProjectFile())) {
      if (Cancelled()) return;
      if (!entry.value.empty()) AddWithProductSource(entry.value);
    }
  }

  void AddDrivers() {
    Caption(kCaptionDrivers);
    for (int device = 1; device <= kDeviceCount; ++device) {
      if (Cancelled()) return;
      AddDriver("device" + std::to_string(device));
    }
  }

  void AddDriver(const std::string& section) {
    SystemTools& tools = application_.platform.tools;
    const std::string file = project_.StudioProjectFile();
    if (tools.ReadText(section, "OPCServer", "0", file) == "1") return;
    const std::string program_id = tools.ReadText(section, "ProgID", /*default_value=*/{}, file);
    if (program_id.empty()) return;

    const std::string key = kDriversKey + ("\\" + program_id);
    const std::string path = FileOfRegisteredPath(
        tools, tools.RegistryText(Hive::kLocalMachine, key, "Path", /*default_value=*/{}));
    if (path.empty()) {
      // Devices share drivers; one message is enough.
      if (!missing_drivers_.insert(FoldCase(program_id)).second) return;
      ShowWarning(application_, kMessageDriverMissing, {program_id});
      session_.RecordMissing(program_id, ChainTo(section, program_id));
      return;
    }
    if (!AddWithUsualSource(path)) return;
    if (IsInstalled(path)) AddDriverLines(key, path);
    AddWithProductSource(path);
  }

  // Whether the target computer will have the file: it was found, or is there anyway. A driver that
  // was left out must not be registered.
  bool IsInstalled(const std::string& path) {
    return application_.platform.files.FileExists(session_.KnownPath(path)) ||
           session_.IsSystemFileName(path) ||
           (application_.use_runtime_setup && session_.Setups().Lists(path));
  }

  void AddDriverLines(const std::string& key, const std::string& path) {
    SystemTools& tools = application_.platform.tools;
    const std::string name =
        tools.RegistryText(Hive::kLocalMachine, key, "Name", /*default_value=*/{});
    const auto add_line = [&](const std::string& value_name, const std::string& value) {
      session_.AddScriptLine("WriteRegistry(HKEY_LOCAL_MACHINE|" + key + "|" + value_name + "|" +
                             value + "|1)");
    };
    add_line("Path", session_.VariableFormOf(session_.KnownPath(path), VariableForm::kWholePath));
    add_line("Name", name);
  }

  std::vector<std::string> ChainTo(const std::string& section, const std::string& name) const {
    std::vector<std::string> chain = session_.chain_root;
    chain.push_back(section);
    chain.push_back(name);
    return chain;
  }

  void AddRctFiles() {
    if (!RunsServer(project_.type)) return;
    const std::string directory = FullPath(project_.directory);
    for (const FileEntry& entry : application_.platform.files.List(directory, "*.rct")) {
      if (Cancelled()) return;
      if (!entry.is_folder) AddWithUsualSource(InProject(entry.name));
    }
  }

  static constexpr char kDriversKey[] = "Software\\ORBEKA GmbH\\Tavix\\4.0\\Drivers";

  ScanSession& session_;
  DependencyResolver& resolver_;
  Application& application_;
  const CurrentProject& project_;
  const std::string product_file_;
  std::set<std::string> missing_drivers_;  // folded
  bool succeeded_ = true;
};

}  // namespace

void UseListedSetups(ScanSession& session) {
  session.Setups().Clear();
  if (!session.App().use_runtime_setup) return;
  for (const std::string& setup : RuntimeOf(session.App().project.type).setups) {
    UseIfListed(session, setup);
  }
}

bool ScanStudioProject(ScanSession& session, DependencyResolver& resolver) {
  Application& application = session.App();
  const CurrentProject& project = application.project;
  ScanView& view = session.View();
  view.StageStarted(ScanStage::kStudioProject);
  view.StageCaption(ScanStage::kStudioProject, kCaptionStudioProject);
  session.chain_root = {project.name + ".txs"};
  const bool succeeded = AtWorkBorder(application, kMessageScanning, project.StudioProjectFile(),
                                      [&] { return StudioProjectScan(session, resolver).Run(); });
  if (project.type == kProjectTypeServer && !view.IsCancelPressed()) {
    session.SetProgramName(kServerProgram);
  }
  view.StageEnded(ScanStage::kStudioProject, succeeded);
  return succeeded;
}

}  // namespace txs
