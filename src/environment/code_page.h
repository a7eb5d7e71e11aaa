// The ANSI code page of the system's files, and comparison without regard to case.
//
// Inside the program text is UTF-8. Settings, projects, dependency files, the control file, the log
// and the kit list are in the ANSI code page: Windows-1252 on Linux, the system's on Windows. These
// functions are the only place where the two meet. Every byte has a character (the five bytes that
// Windows-1252 leaves unassigned stand for the C1 controls, as on Windows), so reading a file and
// writing it back changes no byte that was not meant.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace txs {

// Bytes of the ANSI code page as UTF-8. Never fails.
[[nodiscard]] std::string AnsiToUtf8(std::string_view bytes);

// UTF-8 as bytes of the ANSI code page. Throws RuntimeError kInvalidCall naming the first character
// that the code page lacks ("U+010C 'Č' in \"Čapek.dll\""), also for malformed UTF-8; never writes
// a replacement character.
[[nodiscard]] std::string Utf8ToAnsi(std::string_view utf8);

// Little-endian UTF-16, of even length, as UTF-8 and back. Half a surrogate pair becomes three
// bytes that are no UTF-8, from which Utf8ToUtf16 makes the same half again: damaged text survives
// a rewrite of the file it came from.
[[nodiscard]] std::string Utf16ToUtf8(std::string_view bytes);
// `text` is UTF-8, or came from Utf16ToUtf8.
[[nodiscard]] std::string Utf8ToUtf16(std::string_view text);

// Well-formed UTF-8 throughout: no stray or overlong bytes, no surrogates. ASCII and "" are.
[[nodiscard]] bool IsUtf8(std::string_view bytes);

// Lower case by simple one-to-one folding of the letters that any single-byte ANSI code page holds
// (Latin, Greek, Cyrillic; "Ä" and "ä", "Š" and "š"), so that two names are the same for this
// program exactly when FoldCase of both is the same. Bytes that are not UTF-8 stay as they are.
[[nodiscard]] std::string FoldCase(std::string_view utf8);

// FoldCase(left) == FoldCase(right), without allocating for ASCII text.
[[nodiscard]] bool EqualNoCase(std::string_view left, std::string_view right);

// Position of the first occurrence of `what` in `text` at or after `from`, compared without regard
// to case; npos when there is none. Positions are bytes of `text`. *match_length (may be null) gets
// the number of bytes of `text` that matched, which folding may make differ from what.size().
[[nodiscard]] std::size_t FindNoCase(std::string_view text, std::string_view what, std::size_t from,
                                     std::size_t* match_length);

// Blanks and tabs removed at both ends.
[[nodiscard]] std::string_view TrimBlanks(std::string_view text);

}  // namespace txs
