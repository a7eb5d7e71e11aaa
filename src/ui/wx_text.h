// Between the texts of the program, UTF-8, and those of wxWidgets.
#pragma once

#include <wx/string.h>

#include <string>
#include <string_view>

namespace txs {

// Text that is no UTF-8 (a system's words may be in another encoding) is taken byte by byte: never
// an empty text for one that is not.
[[nodiscard]] wxString ToWx(std::string_view utf8);

// The same, with CR LF as a single line break.
[[nodiscard]] wxString ToWxLines(std::string_view utf8);

[[nodiscard]] std::string FromWx(const wxString& text);

}  // namespace txs
