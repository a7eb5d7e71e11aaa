// Path arithmetic of Windows, on every platform: pure functions of texts, no file system.
//
// Paths are UTF-8 texts such as "C:\Projekte\Demo\Demo.txs", "\\server\share\x.dll" or "x.dll".
// Both "\" and "/" separate components (a Windows file name can hold neither); results are written
// with the separators they came with unless a function says otherwise.
#pragma once

#include <string>
#include <string_view>

namespace txs {

// The last component: "C:\Demo\x.dll" and "x.dll" give "x.dll"; "C:\Demo\" and "C:\" give "".
[[nodiscard]] std::string FileName(std::string_view path);

// The last component without its extension: "C:\Demo\a.b.txs" gives "a.b".
[[nodiscard]] std::string BaseName(std::string_view path);

// What follows the last dot of the last component, without the dot; "" when it has none.
[[nodiscard]] std::string Extension(std::string_view path);

// The directory, without trailing separators: "C:\Demo\x.dll" gives "C:\Demo", "C:\Demo.txs" gives
// "C:" (callers add the "\"), "C:\Demo\\Setup" gives "C:\Demo"; a bare name gives "".
[[nodiscard]] std::string ParentFolder(std::string_view path);

// directory + "\" + name; just the name when the directory is empty. The system writes paths as
// text + "\" + text, so a directory stored with a trailing "\" gives a doubled one, which every
// file operation accepts.
[[nodiscard]] std::string JoinPath(std::string_view directory, std::string_view name);

// Where a path begins, what is there only while its drive or share is: "C:\", "\\server\share"; ""
// when it is not absolute.
[[nodiscard]] std::string RootFolder(std::string_view path);

// "C:\..." or "\\server\...": names a place without regard to a current directory.
[[nodiscard]] bool IsAbsolutePath(std::string_view path);

// A drive letter (ASCII), a colon and a backslash, then anything.
[[nodiscard]] bool IsDriveDirectory(std::string_view text);

// How a directory box is tidied when it loses the focus: blanks trimmed, "/" to "\", doubled "\"
// joined (not a leading "\\"), trailing "\" dropped except behind the drive's colon.
[[nodiscard]] std::string NormalizeDirectory(std::string_view text);

// Windows wildcards: "*" any characters, "?" one; without regard to case; "*.*" matches every name.
[[nodiscard]] bool MatchesWildcard(std::string_view name, std::string_view pattern);

}  // namespace txs
