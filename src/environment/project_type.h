// Project types of the studio: numbers (bit values) and names.
#pragma once

#include <string>
#include <string_view>

namespace txs {

inline constexpr long kProjectTypeSingle = 1;
inline constexpr long kProjectTypeServer = 2;
inline constexpr long kProjectTypeClient = 4;
inline constexpr long kProjectTypeTerminalServer = 8;
inline constexpr long kProjectTypeTerminalClient = 16;
inline constexpr long kProjectTypeGroup = 32;
inline constexpr long kProjectTypeAll = -1;  // every bit set

// `ProjectTypeConvert`, name to number: exact and case-sensitive; 0 for an unknown name.
[[nodiscard]] long ProjectTypeNumber(std::string_view name);

// `ProjectTypeConvert`, number to name: "" for an unknown number.
[[nodiscard]] std::string ProjectTypeName(long number);

// `ProjectTypeConvert` on a text as a variant would take it: a numeric text gives the name ("8"
// gives "Terminal Server"), any other the number as decimal text ("Group" gives "32", "group" gives
// "0").
[[nodiscard]] std::string ProjectTypeConvert(std::string_view text);

// The registry value `ProjectType` may hold the number or the name: the number in both cases, 0
// when unknown. A number that is no single type is unknown.
[[nodiscard]] long ProjectTypeFromRegistry(std::string_view text);

}  // namespace txs
