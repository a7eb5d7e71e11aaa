#include "environment/windows_path.h"

#include "environment/code_page.h"

namespace txs {
namespace {

constexpr std::string_view kSeparators = "\\/";

bool IsSeparator(char c) { return c == '\\' || c == '/'; }

bool IsDriveLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

bool StartsWithDrive(std::string_view path) {
  return path.size() >= 2 && IsDriveLetter(path[0]) && path[1] == ':';
}

// Where the last component begins. "C:" in front is no component ("C:x.dll" names x.dll).
std::size_t LastComponent(std::string_view path) {
  const std::size_t separator = path.find_last_of(kSeparators);
  if (separator != std::string_view::npos) return separator + 1;
  return StartsWithDrive(path) ? 2 : 0;
}

std::string_view LastComponentText(std::string_view path) {
  return path.substr(LastComponent(path));
}

// Bytes of the UTF-8 character that begins `text`; 1 for a byte that begins none.
std::size_t CharacterLength(std::string_view text) {
  std::size_t length = 1;
  if (static_cast<unsigned char>(text[0]) < 0xC0) return length;
  while (length < text.size() && (static_cast<unsigned char>(text[length]) & 0xC0) == 0x80) {
    ++length;
  }
  return length;
}

}  // namespace

std::string FileName(std::string_view path) { return std::string(LastComponentText(path)); }

std::string BaseName(std::string_view path) {
  const std::string_view name = LastComponentText(path);
  return std::string(name.substr(0, name.rfind('.')));
}

std::string Extension(std::string_view path) {
  const std::string_view name = LastComponentText(path);
  const std::size_t dot = name.rfind('.');
  return dot == std::string_view::npos ? std::string() : std::string(name.substr(dot + 1));
}

std::string ParentFolder(std::string_view path) {
  std::string_view parent = path.substr(0, LastComponent(path));
  if (parent.size() == path.size() && StartsWithDrive(path) && path.size() == 2) return {};
  while (!parent.empty() && IsSeparator(parent.back())) parent.remove_suffix(1);
  return std::string(parent);
}

std::string JoinPath(std::string_view directory, std::string_view name) {
  if (directory.empty()) return std::string(name);
  std::string path;
  path.reserve(directory.size() + 1 + name.size());
  path += directory;
  path += '\\';
  path += name;
  return path;
}

bool IsAbsolutePath(std::string_view path) {
  if (StartsWithDrive(path)) return path.size() >= 3 && IsSeparator(path[2]);
  return path.size() >= 3 && IsSeparator(path[0]) && IsSeparator(path[1]) && !IsSeparator(path[2]);
}

std::string RootFolder(std::string_view path) {
  if (!IsAbsolutePath(path)) return {};
  if (StartsWithDrive(path)) return std::string(path.substr(0, 2)) + '\\';
  std::size_t end = 2;
  for (int names = 0; names < 2 && end < path.size(); ++names) {
    if (names > 0) ++end;
    while (end < path.size() && !IsSeparator(path[end])) ++end;
  }
  return std::string(path.substr(0, end));
}

bool IsDriveDirectory(std::string_view text) {
  return StartsWithDrive(text) && text.size() >= 3 && text[2] == '\\';
}

std::string NormalizeDirectory(std::string_view text) {
  text = TrimBlanks(text);
  std::string path;
  path.reserve(text.size());
  for (const char c : text) {
    const bool joined = IsSeparator(c) && path.size() > 1 && path.back() == '\\';
    if (!joined) path += IsSeparator(c) ? '\\' : c;
  }
  // Blanks before a dropped "\" go too, so that tidying a tidy text changes nothing.
  while (!path.empty() && (path.back() == '\\' || path.back() == ' ' || path.back() == '\t')) {
    if (path.size() == 3 && IsDriveDirectory(path)) break;
    path.pop_back();
  }
  return path;
}

bool MatchesWildcard(std::string_view name, std::string_view pattern) {
  if (pattern == "*" || pattern == "*.*") return true;
  const std::string folded_name = FoldCase(name);
  const std::string folded_pattern = FoldCase(pattern);
  const std::string_view text = folded_name;
  const std::string_view mask = folded_pattern;

  // Only the last "*" ever has to be tried again: an earlier one that took more would leave less
  // for all that follows.
  std::size_t at = 0;
  std::size_t mask_at = 0;
  std::size_t star = std::string_view::npos;
  std::size_t star_end = 0;  // where the text goes on behind what the star took
  while (at < text.size()) {
    if (mask_at < mask.size() && mask[mask_at] == '*') {
      star = mask_at++;
      star_end = at;
    } else if (mask_at < mask.size() && mask[mask_at] == '?') {
      ++mask_at;
      at += CharacterLength(text.substr(at));
    } else if (mask_at < mask.size() && mask[mask_at] == text[at]) {
      ++mask_at;
      ++at;
    } else if (star != std::string_view::npos) {
      star_end += CharacterLength(text.substr(star_end));
      at = star_end;
      mask_at = star + 1;
    } else {
      return false;
    }
  }
  while (mask_at < mask.size() && mask[mask_at] == '*') ++mask_at;
  return mask_at == mask.size();
}

}  // namespace txs
