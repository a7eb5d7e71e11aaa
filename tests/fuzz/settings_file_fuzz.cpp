// Settings files: read, written, and read again.
//
// Input: the settings file, then the studio project.

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "document/application.h"
#include "document/path_variables.h"
#include "document/settings_file.h"
#include "environment/code_page.h"
#include "fakes/memory_platform.h"
#include "fakes/recording_messages.h"
#include "fuzz/fuzz_support.h"

namespace txs::fuzz {
namespace {

constexpr char kSettings[] = "C:\\Demo\\Demo.swz";

class World {
 public:
  World() : application{platform.Get(), messages, TextService(1031), {}, nullptr, {}, {}} {
    platform.InstallStudio();
    application.configurator = MakeBuiltInConfigurator(platform.tools);
    application.project = {"Demo", "C:\\Demo", /*type=*/1, "C:\\Demo\\Demo.txs"};
    application.installation.studio_directory = "C:\\TavixStudio\\Studio";
    application.installation.main_directory = "C:\\TavixStudio";
    application.installation.common_directory = "C:\\TavixStudio\\Common";
    application.document.path_variables =
        BuildPathVariables(application.installation, platform.tools, "C:\\Demo");
    platform.files.AddFolder("C:\\Demo");
  }

  MemoryPlatform platform;
  RecordingMessages messages;
  Application application;
};

bool SameRows(const FileList& left, const FileList& right) { return left.Rows() == right.Rows(); }

bool SameDocument(const SetupDocument& left, const SetupDocument& right) {
  return left.steps == right.steps && SameRows(left.files, right.files) &&
         SameRows(left.hidden_files, right.hidden_files) && left.ini_files == right.ini_files &&
         left.hidden_ini_files == right.hidden_ini_files &&
         left.program_name == right.program_name &&
         left.configurator_value == right.configurator_value;
}

// Half a surrogate pair, which only UTF-16 can hold.
bool HoldsHalfCharacters(std::string_view file) {
  return file.starts_with("\xFF\xFE") && !IsUtf8(Utf16ToUtf8(file.substr(2)));
}

bool IsUnreadable(std::string_view file) {
  if (file.starts_with("\xFF\xFE") || file.starts_with("\xEF\xBB\xBF")) return false;
  return file.starts_with("\xFE\xFF") || file.find('\0') != std::string_view::npos;
}

void FuzzSettingsFile(std::string_view input) {
  const std::vector<std::string_view> parts = Parts(input, 2);
  World world;
  MemoryFileSystem& files = world.platform.files;
  files.AddFile(kSettings, parts[0]);
  files.AddFile("C:\\Demo\\Demo.txs", parts.size() > 1 ? parts[1] : "");
  SetupDocument& document = world.application.document;

  const Allocations allocations;
  if (const auto error = ErrorFrom([&] { ReadSettings(world.application); })) {
    Require(*error == ErrorNumber::kInvalidCall &&
                std::ranges::any_of(parts.begin(),
                                    parts.begin() + std::min<std::ptrdiff_t>(std::ssize(parts), 2),
                                    IsUnreadable),
            "every file is read that is no unmarked or big-endian UTF-16");
    Require(ErrorFrom([&] { WriteSettings(world.application); }) == ErrorNumber::kAlreadyExists,
            "what was not read is not replaced");
    Require(files.Contents(kSettings) == parts[0], "what was not read stays as it was");
    return;
  }
  allocations.RequireAtMost(input.size(), 1500, "reading settings takes memory as their size");
  Require(files.Contents(kSettings) == parts[0], "reading settings changes no byte");
  Require(!document.changed, "what was just read is not changed");
  const SetupDocument read = document;
  ExtendPathVariables(world.application);

  const std::optional<ErrorNumber> error = ErrorFrom([&] { WriteSettings(world.application); });
  allocations.RequireAtMost(input.size(), 6000, "writing settings takes memory as their size");
  if (error) {
    Require(*error == ErrorNumber::kInvalidCall && HoldsHalfCharacters(parts[0]),
            "what was read can be written");
    Require(files.Contents(kSettings) == parts[0], "refused settings leave the file as it was");
    return;
  }
  const std::string written = files.Contents(kSettings);

  // A new process knows nothing of what this one keeps.
  World second;
  second.platform.files.AddFile(kSettings, written);
  second.platform.files.AddFile("C:\\Demo\\Demo.txs", parts.size() > 1 ? parts[1] : "");
  ReadSettings(second.application);
  Require(SameDocument(second.application.document, read),
          "settings are read as they were written");
  WriteSettings(second.application);
  Require(second.platform.files.Contents(kSettings) == written,
          "settings that did not change are written as they are");
  ClearSettings(second.application);
  Require(second.platform.files.Contents(kSettings) == written, "clearing writes nothing");
}

}  // namespace
}  // namespace txs::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  txs::fuzz::FuzzSettingsFile(txs::fuzz::AsText(data, size));
  return 0;
}
