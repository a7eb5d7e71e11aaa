// Registered type libraries: from the GUID in a project's line to the library's file.
#pragma once

#include <string>
#include <string_view>

#include "environment/system_tools.h"

namespace txs {

// The file registered for the type library, empty when there is none. `version` ("2.0", "6.A") and
// `locale` ("0", "409") are hexadecimal, as the registry keeps them. Where that version is not
// registered, the first registered version that fits is taken.
[[nodiscard]] std::string TypeLibraryFile(const SystemTools& tools, std::string_view guid,
                                          std::string_view version, std::string_view locale);

// A component built against `asked` works with `registered`: the same major version, a minor one
// that is not lower, all hexadecimal. A text that is no version fits nothing.
[[nodiscard]] bool TypeLibraryVersionFits(std::string_view asked, std::string_view registered);

// What registrations write around a file: quotes and blanks go, "%SystemRoot%" and the like become
// the platform's directories (an unknown name stays), the index of a resource behind the file goes
// ("C:\Windows\System32\vbscript.dll\3").
[[nodiscard]] std::string FileOfRegisteredPath(const SystemTools& tools, std::string_view text);

}  // namespace txs
