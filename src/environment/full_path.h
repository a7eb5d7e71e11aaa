// One spelling for every path that is compared, so that a file is listed once however it was named.
#pragma once

#include <string>
#include <string_view>

namespace txs {

// "/" to "\", doubled "\" joined (not a leading "\\"), "." and ".." resolved where a directory
// precedes them, no trailing "\". "C:\Demo\Sub\\..\x.dll" gives "C:\Demo\x.dll"; ".." above the
// drive or the share is dropped. Blanks stay.
[[nodiscard]] std::string FullPath(std::string_view path);

// FullPath of `path`, taken from `directory` unless it is absolute already.
[[nodiscard]] std::string FullPathFrom(std::string_view directory, std::string_view path);

}  // namespace txs
