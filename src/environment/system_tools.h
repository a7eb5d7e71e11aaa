// `SystemTools`: the service object of the studio's product family that the routines ask for
// registry values, profile files, path names, folders and file versions.
//
// One instance per process, built on the platform interfaces; the same code runs over the real
// platform and over memory. Path names themselves are plain functions (windows_path.h).
#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "environment/file_system.h"
#include "environment/profile_files.h"
#include "environment/registry.h"
#include "environment/special_folders.h"

namespace txs {

// What the program tells about itself at start.
struct ApplicationInfo {
  std::string directory;        // without trailing backslash
  std::string executable_name;  // without directory and ".exe"
  std::string title;
};

class SystemTools {
 public:
  SystemTools(Registry& registry, FileSystem& files, ProfileFiles& profiles,
              const SpecialFolders& folders)
      : registry_(registry), files_(files), profiles_(profiles), folders_(folders) {}

  void Initialize(ApplicationInfo application) { application_ = std::move(application); }
  [[nodiscard]] const ApplicationInfo& Application() const { return application_; }

  // --- Registry. Reading never fails: a missing key or value yields the default.
  // A number value reads as its decimal text.
  [[nodiscard]] std::string RegistryText(Hive hive, std::string_view key, std::string_view name,
                                         std::string_view default_value) const;
  // A text value that is a whole decimal number reads as that number, any other text as the
  // default.
  [[nodiscard]] std::int64_t RegistryNumber(Hive hive, std::string_view key, std::string_view name,
                                            std::int64_t default_value) const;
  void WriteRegistry(Hive hive, std::string_view key, std::string_view name,
                     const RegistryValue& value);
  [[nodiscard]] std::vector<std::string> RegistrySubkeys(Hive hive, std::string_view key) const;
  void RemoveRegistryKey(Hive hive, std::string_view key);

  // --- Profile files; the path comes last. Reading a file that cannot be read (no permission, a
  // folder) throws RuntimeError; a missing file, section or key yields the default.
  [[nodiscard]] std::string ReadText(std::string_view section, std::string_view key,
                                     std::string_view default_value, std::string_view path);
  // Not a whole decimal number, or outside minimum to maximum: the default.
  [[nodiscard]] std::int64_t ReadInteger(
      std::string_view section, std::string_view key, std::int64_t default_value,
      std::string_view path, std::int64_t minimum = std::numeric_limits<std::int64_t>::min(),
      std::int64_t maximum = std::numeric_limits<std::int64_t>::max());
  [[nodiscard]] std::vector<ProfileEntry> ReadSection(std::string_view section,
                                                      std::string_view path);
  // Values of the keys "1", "2", ... (or "01", "02", ... with `key_digits` 2) up to the first
  // absent or empty one.
  [[nodiscard]] std::vector<std::string> ReadNumberedList(std::string_view section, int key_digits,
                                                          std::string_view path);
  void WriteText(std::string_view section, std::string_view key, std::string_view value,
                 std::string_view path);
  void RemoveSection(std::string_view section, std::string_view path);

  // --- Platform directories, without trailing backslash.
  [[nodiscard]] std::string Folder(SpecialFolder folder) const { return folders_.Folder(folder); }

  // --- Version text of a program file, see version_info.h.
  [[nodiscard]] std::string FileVersionText(std::string_view path) const;

 private:
  Registry& registry_;
  FileSystem& files_;
  ProfileFiles& profiles_;
  const SpecialFolders& folders_;
  ApplicationInfo application_;
};

// "01" to "99", then "100" and so on, with `digits` 2.
[[nodiscard]] std::string NumberedKey(std::size_t number, int digits);

// A whole decimal number with an optional sign and blanks around it; nothing for anything else and
// for what 64 bits cannot hold.
[[nodiscard]] std::optional<std::int64_t> ParseWholeNumber(std::string_view text);

}  // namespace txs
