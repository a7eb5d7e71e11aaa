#include "environment/dynazip_record.h"

#include <cstdint>
#include <cstring>

#include "environment/code_page.h"
#include "environment/installation.h"
#include "environment/runtime_error.h"

namespace txs {
namespace {

constexpr std::uint32_t kAddFiles = 4;
constexpr std::uint32_t kFactor = 5;
constexpr std::uint32_t kTrue = 0xFFFFFFFF;  // -1, as Basic has it

void PutNumber(std::vector<std::byte>& record, std::size_t at, std::uint32_t number) {
  for (std::size_t i = 0; i < 4; ++i) record[at + i] = static_cast<std::byte>(number >> (8 * i));
}

// False when the field cannot hold the text and the zero that ends it.
bool PutText(std::vector<std::byte>& record, std::size_t field, std::string_view ansi) {
  if (ansi.size() >= kDynaZipTextBytes[field]) return false;
  std::memcpy(record.data() + DynaZipTextAt(field), ansi.data(), ansi.size());
  return true;
}

}  // namespace

std::optional<std::vector<std::byte>> MakeDynaZipRecord(std::string_view archive_path,
                                                        std::string_view source_path) {
  std::vector<std::byte> record(kDynaZipRecordBytes);
  PutNumber(record, kDynaZipRecordSizeAt, kDynaZipNumericBytes);
  PutNumber(record, kDynaZipFunctionAt, kAddFiles);
  PutNumber(record, kDynaZipFactorAt, kFactor);
  PutNumber(record, kDynaZipNoFolderNamesAt, kTrue);
  // The library opens the source by its path, which no system of its time takes longer than an
  // archive's.
  if (source_path.size() >= kDynaZipTextBytes[kDynaZipArchiveField]) return std::nullopt;
  try {
    if (!PutText(record, kDynaZipArchiveField, Utf8ToAnsi(archive_path)) ||
        !PutText(record, kDynaZipItemsField, "\"" + Utf8ToAnsi(source_path) + "\"")) {
      return std::nullopt;
    }
  } catch (const RuntimeError&) {
    return std::nullopt;
  }
  return record;
}

std::vector<std::string> DynaZipDirectories(const SystemTools& tools) {
  const std::string studio = tools.RegistryText(Hive::kLocalMachine, kStudioKey, "Path", "");
  std::vector<std::string> directories = {tools.Application().directory, studio};
  if (!studio.empty()) directories.push_back(studio + "\\System");
  directories.push_back(tools.RegistryText(Hive::kLocalMachine, kVendorKey, "MainDir", ""));
  directories.push_back(tools.RegistryText(Hive::kLocalMachine, kVendorKey, "Common", ""));
  std::erase(directories, std::string());
  return directories;
}

}  // namespace txs
