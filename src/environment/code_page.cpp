#include "environment/code_page.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

#include "environment/code_page_table.h"
#include "environment/runtime_error.h"
#include "strings/reason.h"

namespace txs {
namespace {

// Folding leans on one property of the letters below: each of them, and the letter it folds to,
// takes two bytes of UTF-8. So folding never changes a length, and equal texts have equal lengths.

constexpr char16_t FoldTwoByteCharacter(char16_t c) {
  const bool even = (c & 1) == 0;
  if (c >= 0xC0 && c <= 0xDE) return c == 0xD7 ? c : static_cast<char16_t>(c + 32);
  if (c >= 0x100 && c <= 0x17E) {
    // Dotted capital I and dotless small i have no partner that is one-to-one.
    if (c == 0x130 || c == 0x131) return c;
    const bool capitals_are_even = c <= 0x137 || (c >= 0x14A && c <= 0x177);
    const bool capitals_are_odd = (c >= 0x139 && c <= 0x148) || c >= 0x179;
    if ((capitals_are_even && even) || (capitals_are_odd && !even)) {
      return static_cast<char16_t>(c + 1);
    }
    return c == 0x178 ? char16_t{0xFF} : c;
  }
  if (c == 0x1A0 || c == 0x1AF || c == 0x490) return static_cast<char16_t>(c + 1);
  if (c >= 0x386 && c <= 0x3AB) {
    if (c == 0x386) return 0x3AC;
    if (c >= 0x388 && c <= 0x38A) return static_cast<char16_t>(c + 37);
    if (c == 0x38C) return 0x3CC;
    if (c == 0x38E || c == 0x38F) return static_cast<char16_t>(c + 63);
    return c >= 0x391 && c != 0x3A2 ? static_cast<char16_t>(c + 32) : c;
  }
  if (c >= 0x400 && c <= 0x40F) return static_cast<char16_t>(c + 80);
  if (c >= 0x410 && c <= 0x42F) return static_cast<char16_t>(c + 32);
  return c;
}

constexpr char16_t kTwoByteLimit = 0x800;
constexpr auto kFolded = [] {
  std::array<char16_t, kTwoByteLimit> table{};
  for (char16_t c = 0; c < kTwoByteLimit; ++c) table[c] = FoldTwoByteCharacter(c);
  return table;
}();

constexpr unsigned char Byte(char c) { return static_cast<unsigned char>(c); }

constexpr char FoldAscii(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

constexpr bool IsContinuation(char c) { return (Byte(c) & 0xC0) == 0x80; }

// A whole two-byte character starts at `at`.
bool IsTwoByteCharacter(std::string_view text, std::size_t at) {
  const unsigned char lead = Byte(text[at]);
  return lead >= 0xC2 && lead <= 0xDF && at + 1 < text.size() && IsContinuation(text[at + 1]);
}

char16_t TwoByteCharacter(std::string_view text, std::size_t at) {
  return static_cast<char16_t>(((Byte(text[at]) & 0x1F) << 6) | (Byte(text[at + 1]) & 0x3F));
}

void AppendUtf8(std::string& text, char32_t code) {
  const auto tail = [&](int shift) { text += static_cast<char>(0x80 | ((code >> shift) & 0x3F)); };
  if (code < 0x80) {
    text += static_cast<char>(code);
  } else if (code < 0x800) {
    text += static_cast<char>(0xC0 | (code >> 6));
    tail(0);
  } else if (code < 0x10000) {
    text += static_cast<char>(0xE0 | (code >> 12));
    tail(6);
    tail(0);
  } else {
    text += static_cast<char>(0xF0 | (code >> 18));
    tail(12);
    tail(6);
    tail(0);
  }
}

constexpr std::uint64_t kHighBits = 0x8080808080808080;

std::uint64_t LoadWord(const char* at) {
  std::uint64_t word = 0;
  std::memcpy(&word, at, sizeof word);
  return word;
}

// Eight ASCII characters to lower case at once. No addition carries into the next byte, since every
// byte is below 0x80.
std::uint64_t FoldAsciiWord(std::uint64_t word) {
  constexpr std::uint64_t kOnes = 0x0101010101010101;
  const std::uint64_t from_a = word + (0x80 - 'A') * kOnes;
  const std::uint64_t beyond_z = word + (0x7F - 'Z') * kOnes;
  const std::uint64_t capitals = from_a & ~beyond_z & kHighBits;
  return word | (capitals >> 2);  // 0x80 becomes the 0x20 that tells the cases apart
}

std::size_t AsciiPrefix(std::string_view text) {
  std::size_t at = 0;
  while (at + 8 <= text.size() && (LoadWord(text.data() + at) & kHighBits) == 0) at += 8;
  while (at < text.size() && Byte(text[at]) < 0x80) ++at;
  return at;
}

struct Utf8Character {
  char32_t code = 0;
  std::size_t length = 0;  // 0: malformed
};

Utf8Character DecodeUtf8(std::string_view text, std::size_t at) {
  const unsigned char lead = Byte(text[at]);
  std::size_t length = 0;
  char32_t code = 0;
  char32_t least = 0;
  if (lead < 0x80) return {lead, 1};
  if (lead >= 0xC2 && lead <= 0xDF) {
    length = 2, code = lead & 0x1F, least = 0x80;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    length = 3, code = lead & 0x0F, least = 0x800;
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    length = 4, code = lead & 0x07, least = 0x10000;
  } else {
    return {};
  }
  if (text.size() - at < length) return {};
  for (std::size_t i = 1; i < length; ++i) {
    if (!IsContinuation(text[at + i])) return {};
    code = (code << 6) | (Byte(text[at + i]) & 0x3F);
  }
  const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
  if (code < least || code > 0x10FFFF || surrogate) return {};
  return {code, length};
}

std::string Hex(unsigned value, int digits) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  std::string text;
  for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4)
    text += kDigits[(value >> shift) & 0xF];
  return text;
}

// The line of `text` around `at`, fit for an error description: valid UTF-8 and not too long.
std::string Surroundings(std::string_view text, std::size_t at) {
  constexpr std::size_t kReach = 100;
  std::size_t begin = text.find_last_of("\r\n", at);
  begin = begin == std::string_view::npos ? 0 : begin + 1;
  if (at - begin > kReach) {
    begin = at - kReach;
    while (begin < at && IsContinuation(text[begin])) ++begin;
  }
  const std::size_t end = std::min(text.find_first_of("\r\n", at), text.size());
  std::string result;
  while (begin < end && begin <= at + kReach) {
    const Utf8Character character = DecodeUtf8(text, begin);
    if (character.length == 0) {
      result += "\\x" + Hex(Byte(text[begin]), 2);
      ++begin;
    } else {
      result += text.substr(begin, character.length);
      begin += character.length;
    }
  }
  return result;
}

[[noreturn]] void ThrowNotInCodePage(std::string_view text, std::size_t at,
                                     const Utf8Character& character) {
  std::string description;
  if (character.length == 0) {
    description = Words(Reason::kNoUtf8Byte, {Hex(Byte(text[at]), 2)});
  } else {
    description = "U+" + Hex(character.code, character.code > 0xFFFF ? 6 : 4) + " '" +
                  std::string(text.substr(at, character.length)) + "'";
  }
  throw RuntimeError(ErrorNumber::kInvalidCall,
                     description + " in \"" + Surroundings(text, at) + "\"");
}

// Characters of the upper half, sorted for searching.
using ReverseTable = std::array<std::pair<char16_t, char>, 128>;

const ReverseTable& Reverse() {
  static const ReverseTable kTable = [] {
    ReverseTable result{};
    for (std::size_t i = 0; i < result.size(); ++i) {
      result[i] = {SystemCodePage()[128 + i], static_cast<char>(128 + i)};
    }
    std::sort(result.begin(), result.end());
    return result;
  }();
  return kTable;
}

}  // namespace

std::string AnsiToUtf8(std::string_view bytes) {
  const std::size_t ascii = AsciiPrefix(bytes);
  std::string text(bytes.substr(0, ascii));
  if (ascii == bytes.size()) return text;
  const CodePageTable& table = SystemCodePage();
  text.reserve(bytes.size() + bytes.size() / 8 + 8);
  for (const char byte : bytes.substr(ascii)) AppendUtf8(text, table[Byte(byte)]);
  return text;
}

std::string Utf8ToAnsi(std::string_view utf8) {
  std::size_t at = AsciiPrefix(utf8);
  std::string bytes(utf8.substr(0, at));
  if (at == utf8.size()) return bytes;
  const ReverseTable& reverse = Reverse();
  bytes.reserve(utf8.size());
  while (at < utf8.size()) {
    if (Byte(utf8[at]) < 0x80) {
      bytes += utf8[at++];
      continue;
    }
    const Utf8Character character = DecodeUtf8(utf8, at);
    if (character.length == 0 || character.code > 0xFFFF) ThrowNotInCodePage(utf8, at, character);
    const auto found = std::lower_bound(
        reverse.begin(), reverse.end(), static_cast<char16_t>(character.code),
        [](const std::pair<char16_t, char>& entry, char16_t code) { return entry.first < code; });
    if (found == reverse.end() || found->first != character.code) {
      ThrowNotInCodePage(utf8, at, character);
    }
    bytes += found->second;
    at += character.length;
  }
  return bytes;
}

std::string Utf16ToUtf8(std::string_view bytes) {
  const auto unit = [&](std::size_t at) {
    return static_cast<char32_t>(static_cast<unsigned char>(bytes[at]) |
                                 (static_cast<unsigned char>(bytes[at + 1]) << 8));
  };
  std::string text;
  text.reserve(bytes.size() / 2);
  for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
    char32_t code = unit(at);
    if (code >= 0xD800 && code < 0xDC00 && at + 3 < bytes.size()) {
      const char32_t low = unit(at + 2);
      if (low >= 0xDC00 && low < 0xE000) {
        code = 0x10000 + ((code - 0xD800) << 10) + (low - 0xDC00);
        at += 2;
      }
    }
    AppendUtf8(text, code);
  }
  return text;
}

std::string Utf8ToUtf16(std::string_view text) {
  std::string bytes;
  bytes.reserve(text.size() * 2);
  const auto append = [&](char32_t unit) {
    bytes += static_cast<char>(unit & 0xFF);
    bytes += static_cast<char>(unit >> 8);
  };
  std::size_t at = 0;
  while (at < text.size()) {
    const auto lead = static_cast<unsigned char>(text[at]);
    const std::size_t length = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    constexpr std::array<unsigned char, 5> kLeadBits = {0, 0x7F, 0x1F, 0x0F, 0x07};
    char32_t code = lead & kLeadBits[length];
    for (std::size_t i = 1; i < length && at + i < text.size(); ++i) {
      code = (code << 6) | (static_cast<unsigned char>(text[at + i]) & 0x3F);
    }
    at += length;
    if (code < 0x10000) {
      append(code);
    } else {
      append(0xD800 + ((code - 0x10000) >> 10));
      append(0xDC00 + ((code - 0x10000) & 0x3FF));
    }
  }
  return bytes;
}

bool IsUtf8(std::string_view bytes) {
  std::size_t at = AsciiPrefix(bytes);
  while (at < bytes.size()) {
    const std::size_t length = DecodeUtf8(bytes, at).length;
    if (length == 0) return false;
    at += length;
  }
  return true;
}

std::string FoldCase(std::string_view utf8) {
  std::string folded(utf8);
  for (std::size_t at = 0; at < folded.size(); ++at) {
    if (Byte(folded[at]) < 0x80) {
      folded[at] = FoldAscii(folded[at]);
    } else if (IsTwoByteCharacter(folded, at)) {
      const char16_t c = kFolded[TwoByteCharacter(folded, at)];
      folded[at] = static_cast<char>(0xC0 | (c >> 6));
      folded[++at] = static_cast<char>(0x80 | (c & 0x3F));
    }
  }
  return folded;
}

bool EqualNoCase(std::string_view left, std::string_view right) {
  const std::size_t size = left.size();
  if (size != right.size()) return false;
  std::size_t at = 0;
  while (at < size) {
    if (at + 8 <= size) {
      const std::uint64_t left_word = LoadWord(left.data() + at);
      const std::uint64_t right_word = LoadWord(right.data() + at);
      if (((left_word | right_word) & kHighBits) == 0) {
        if (left_word != right_word && FoldAsciiWord(left_word) != FoldAsciiWord(right_word)) {
          return false;
        }
        at += 8;
        continue;
      }
    }
    if (IsTwoByteCharacter(left, at) && IsTwoByteCharacter(right, at)) {
      if (kFolded[TwoByteCharacter(left, at)] != kFolded[TwoByteCharacter(right, at)]) return false;
      at += 2;
    } else {
      if (FoldAscii(left[at]) != FoldAscii(right[at])) return false;
      ++at;
    }
  }
  return true;
}

std::size_t FindNoCase(std::string_view text, std::string_view what, std::size_t from,
                       std::size_t* match_length) {
  if (from > text.size()) return std::string_view::npos;
  const std::size_t found = FoldCase(text.substr(from)).find(FoldCase(what));
  if (found == std::string::npos) return std::string_view::npos;
  if (match_length != nullptr) *match_length = what.size();
  return from + found;
}

std::string_view TrimBlanks(std::string_view text) {
  constexpr std::string_view kBlanks = " \t";
  const std::size_t begin = text.find_first_not_of(kBlanks);
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1);
}

}  // namespace txs
