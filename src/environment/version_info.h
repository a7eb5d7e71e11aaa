// The file version of a Windows program file, read from its image: the same text on every platform.
#pragma once

#include <string>
#include <string_view>

#include "environment/file_system.h"

namespace txs {

// "a.b.c.d" in decimal from the fixed version information (VS_FIXEDFILEINFO) of a PE (32 and 64
// bit) or NE (16 bit) image; empty when the file is no image, has no version resource, or is
// damaged: hostile offsets and sizes are refused, never followed. Reads headers and the resource
// only, not the whole file. Throws RuntimeError only when the file cannot be opened or read.
[[nodiscard]] std::string FileVersion(const FileReader& files, std::string_view path);

}  // namespace txs
