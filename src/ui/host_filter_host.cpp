// The dialogs of GTK tell upper and lower case apart.
#include <cctype>

#include "ui/file_dialogs.h"

namespace txs {
namespace {

// "*.BMP" as "*.[bB][mM][pP]".
std::string AnyCase(std::string_view pattern) {
  std::string result;
  for (const char character : pattern) {
    const auto byte = static_cast<unsigned char>(character);
    if (std::isalpha(byte) == 0) {
      result += character;
      continue;
    }
    result += '[';
    result += static_cast<char>(std::tolower(byte));
    result += static_cast<char>(std::toupper(byte));
    result += ']';
  }
  return result;
}

// Patterns are parted by ";".
std::string HostPatterns(std::string_view patterns) {
  std::string result;
  for (;;) {
    const std::size_t end = patterns.find(';');
    const std::string_view pattern = patterns.substr(0, end);
    result += pattern == "*.*" ? std::string("*") : AnyCase(pattern);
    if (end == std::string_view::npos) return result;
    result += ';';
    patterns.remove_prefix(end + 1);
  }
}

}  // namespace

std::string HostFilter(std::string_view filter) {
  std::string result;
  bool is_pattern = false;
  for (;;) {
    const std::size_t end = filter.find('|');
    const std::string_view part = filter.substr(0, end);
    result += is_pattern ? HostPatterns(part) : std::string(part);
    if (end == std::string_view::npos) return result;
    result += '|';
    is_pattern = !is_pattern;
    filter.remove_prefix(end + 1);
  }
}

}  // namespace txs
