// The single-byte code page that code_page.cpp converts with: one function per back-end.
#pragma once

#include <array>

namespace txs {

// The character (UTF-16 unit, never a surrogate) of each of the 256 bytes; no two bytes share one.
// Bytes 0 to 127 are ASCII.
using CodePageTable = std::array<char16_t, 256>;

// The ANSI code page of this system. Answers the same table on every call.
[[nodiscard]] const CodePageTable& SystemCodePage();

}  // namespace txs
