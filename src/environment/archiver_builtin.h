// The archiver that every build has: deflate by libdeflate for files up to 64 MiB, streaming zlib
// above, stored when deflate does not shrink, ZIP64 from 4 GiB. Memory stays below 150 MiB whatever
// the size of the file.
#pragma once

#include <memory>

#include "environment/archiver.h"
#include "environment/clock.h"
#include "environment/file_system.h"

namespace txs {

// `files` and `clock` (for the entry's local time) must outlive the archiver.
[[nodiscard]] std::unique_ptr<Archiver> MakeBuiltInArchiver(FileSystem& files, const Clock& clock);

}  // namespace txs
