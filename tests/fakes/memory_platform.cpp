#include "fakes/memory_platform.h"

#include "environment/archiver_builtin.h"
#include "environment/installation.h"
#include "environment/windows_path.h"
#include "strings/reason.h"

namespace txs {

MemoryPlatform::MemoryPlatform()
    : profiles(files),
      tools(registry, files, profiles, folders),
      built_in_archiver_(MakeBuiltInArchiver(files, clock)),
      archiver(*built_in_archiver_),
      platform_{registry,
                files,
                locks,
                host_paths,
                profiles,
                folders,
                tools,
                archiver,
                clock,
                message_boxes,
                [this]() -> std::unique_ptr<ProjectConfigurator> {
                  if (!configurator_available) return nullptr;
                  return MakeBuiltInConfigurator(tools);
                }} {
  // What a test before this one has started in another language must not show here.
  SetReasonLanguage(1033);
}

void MemoryPlatform::CountEverything() {
  registry.before_change = [this](std::string_view operation, std::string_view key) {
    files.CountOther(operation, key);
  };
  locks.can_lock = [this](std::string_view path) {
    try {
      files.CountOther("Locks.TryTake", path);
      return true;
    } catch (const RuntimeError&) {
      return false;
    }
  };
  archiver.fails = [this](std::string_view source) {
    archiver.reason.clear();
    try {
      files.CountOther("Archiver.Compress", source);
      return ArchiveResult::kSuccess;
    } catch (const RuntimeError& error) {
      archiver.reason = error.Description();
      switch (error.Number()) {
        case ErrorNumber::kFileNotFound:
        case ErrorNumber::kPathNotFound:
          return ArchiveResult::kSourceNotFound;
        case ErrorNumber::kPermissionDenied:
          return ArchiveResult::kSourceUnreadable;
        case ErrorNumber::kDiskFull:
          return ArchiveResult::kDiskFull;
        default:
          return ArchiveResult::kUnexpected;
      }
    }
  };
}

void MemoryPlatform::InstallStudio() {
  registry.Write(Hive::kLocalMachine, kVendorKey, "MainDir", "C:\\TavixStudio");
  registry.Write(Hive::kLocalMachine, kVendorKey, "Common", "C:\\TavixStudio\\Common");
  registry.Write(Hive::kLocalMachine, kStudioKey, "LCID", std::uint32_t{1031});
  registry.Write(Hive::kLocalMachine, kStudioKey, "Path", "C:\\TavixStudio\\Studio");
  registry.Write(Hive::kLocalMachine, kStudioKey, "Version", "4.0.12");
  files.AddFolder("C:\\TavixStudio\\Studio");
  files.AddFolder("C:\\TavixStudio\\Common");
  files.AddFolder("C:\\TavixStudio\\SetupKit");
  files.AddFile("C:\\TavixStudio\\SetupKit\\TXSTPKIT.INI", "[SetupFiles]\r\nCount=0\r\n");
  files.AddFile("C:\\TavixStudio\\SetupKit\\TXDependencies.ini", "");
}

void MemoryPlatform::RegisterProject(std::string_view name, std::string_view directory,
                                     std::string_view type) {
  const std::string key = std::string(kProjectsKey) + "\\" + std::string(name);
  registry.Write(Hive::kLocalMachine, key, "Path", std::string(directory));
  registry.Write(Hive::kLocalMachine, key, "ProjectType", std::string(type));
  const bool is_group = type == "32" || type == "Group";
  files.AddFile(JoinPath(directory, std::string(name) + (is_group ? ".vbg" : ".txs")), "");
}

}  // namespace txs
