// Conversions between code pages, and comparison without regard to case.
//
// Input: one text, or two of which the first is compared with and searched in the second.

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "environment/code_page.h"
#include "fuzz/fuzz_support.h"

namespace txs::fuzz {
namespace {

// Well-formed UTF-8 by the table of the Unicode standard, which lists the allowed second bytes.
bool IsWellFormed(std::string_view text) {
  const auto byte = [&](std::size_t at) {
    return at < text.size() ? static_cast<unsigned char>(text[at]) : 0U;
  };
  const auto within = [&](std::size_t at, unsigned least, unsigned most) {
    return byte(at) >= least && byte(at) <= most;
  };
  for (std::size_t at = 0; at < text.size();) {
    if (within(at, 0, 0x7F)) {
      at += 1;
    } else if (within(at, 0xC2, 0xDF) && within(at + 1, 0x80, 0xBF)) {
      at += 2;
    } else if (((within(at, 0xE0, 0xE0) && within(at + 1, 0xA0, 0xBF)) ||
                (within(at, 0xE1, 0xEC) && within(at + 1, 0x80, 0xBF)) ||
                (within(at, 0xED, 0xED) && within(at + 1, 0x80, 0x9F)) ||
                (within(at, 0xEE, 0xEF) && within(at + 1, 0x80, 0xBF))) &&
               within(at + 2, 0x80, 0xBF)) {
      at += 3;
    } else if (((within(at, 0xF0, 0xF0) && within(at + 1, 0x90, 0xBF)) ||
                (within(at, 0xF1, 0xF3) && within(at + 1, 0x80, 0xBF)) ||
                (within(at, 0xF4, 0xF4) && within(at + 1, 0x80, 0x8F))) &&
               within(at + 2, 0x80, 0xBF) && within(at + 3, 0x80, 0xBF)) {
      at += 4;
    } else {
      return false;
    }
  }
  return true;
}

void CheckAnsi(std::string_view text) {
  const std::string utf8 = AnsiToUtf8(text);
  Require(IsUtf8(utf8), "every byte of the code page has a character");
  Require(Utf8ToAnsi(utf8) == text, "ANSI becomes UTF-8 and the same ANSI again");

  std::string ansi;
  if (const auto error = ErrorFrom([&] { ansi = Utf8ToAnsi(text); })) {
    Require(*error == ErrorNumber::kInvalidCall,
            "a character that is not there is an invalid call");
  } else {
    Require(IsUtf8(text), "only UTF-8 becomes ANSI");
    Require(AnsiToUtf8(ansi) == text, "UTF-8 becomes ANSI and the same UTF-8 again");
  }
}

void CheckUtf16(std::string_view text) {
  const std::string_view even = text.substr(0, text.size() / 2 * 2);
  const std::string utf8 = Utf16ToUtf8(even);
  Require(utf8.size() <= even.size() / 2 * 3, "UTF-16 grows by half at most");
  Require(Utf8ToUtf16(utf8) == even, "UTF-16 becomes UTF-8 and the same UTF-16 again");
  if (IsUtf8(text)) {
    const std::string utf16 = Utf8ToUtf16(text);
    Require(utf16.size() % 2 == 0, "UTF-16 has an even number of bytes");
    Require(Utf16ToUtf8(utf16) == text, "UTF-8 becomes UTF-16 and the same UTF-8 again");
  }
}

void CheckFolding(std::string_view text) {
  const std::string folded = FoldCase(text);
  Require(folded.size() == text.size(), "folding keeps the length");
  Require(FoldCase(folded) == folded, "what is folded stays as it is");
  Require(IsUtf8(folded) == IsUtf8(text), "folding keeps UTF-8");
  Require(EqualNoCase(text, folded), "a text equals its folded form");
  const std::string_view trimmed = TrimBlanks(text);
  Require(TrimBlanks(trimmed) == trimmed, "what is trimmed stays as it is");
  Require(trimmed.empty() || text.find(trimmed) != std::string_view::npos, "trimming only takes");
}

void CheckSearch(std::string_view what, std::string_view text) {
  const std::string folded_what = FoldCase(what);
  const std::string folded_text = FoldCase(text);
  Require(EqualNoCase(what, text) == (folded_what == folded_text),
          "two texts are equal exactly when they fold alike");
  const std::size_t from = std::min<std::size_t>(what.size(), text.size()) / 2;
  std::size_t length = 0;
  const std::size_t found = FindNoCase(text, what, from, &length);
  if (found == std::string_view::npos) return;
  Require(found >= from && length <= text.size() - found, "what is found lies in the text");
  // Half a character is found within a folded one; nobody looks for that.
  Require(!IsUtf8(what) || EqualNoCase(text.substr(found, length), what),
          "what is found is what was looked for");
}

void FuzzCodePage(std::string_view input) {
  const std::vector<std::string_view> parts = Parts(input, 2);
  const Allocations allocations;
  for (const std::string_view text : parts) {
    Require(IsUtf8(text) == IsWellFormed(text), "well-formed UTF-8 is what the standard says");
    CheckAnsi(text);
    CheckUtf16(text);
    CheckFolding(text);
  }
  CheckSearch(parts.front(), parts.back());
  allocations.RequireAtMost(input.size(), 200, "conversions take memory as their input");
}

}  // namespace
}  // namespace txs::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  txs::fuzz::FuzzCodePage(txs::fuzz::AsText(data, size));
  return 0;
}
