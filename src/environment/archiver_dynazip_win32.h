// The archiver that the product brings: dzipVB of dzip32.dll.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "environment/archiver.h"
#include "environment/file_system.h"
#include "environment/system_tools.h"

namespace txs {

// The library in the first of `directories` that has one which this program can load (a 64-bit
// program cannot load the 32-bit library of the product); null when there is none, and where the
// code page of the process is none of single bytes (the UTF-8 option of Windows 10). The library's
// result codes are answered as they are. What its record cannot hold (see dynazip_record.h), and
// files of 2 GiB and more, are packed by `built_in`. `files` and `built_in` must outlive the
// archiver.
[[nodiscard]] std::unique_ptr<Archiver> LoadDynaZipArchiver(
    FileSystem& files, Archiver& built_in, const std::vector<std::string>& directories);

// The library where the product has it, else `built_in`. Looked for at the first file, so that who
// packs nothing loads nothing. `files` and `tools` must outlive the archiver.
[[nodiscard]] std::unique_ptr<Archiver> MakeProductArchiver(FileSystem& files,
                                                            const SystemTools& tools,
                                                            std::unique_ptr<Archiver> built_in);

}  // namespace txs
