// `MText`: the text of a message id in the installation's language, with placeholders filled and
// escapes resolved.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace txs::MText {

// What is added to an id for the language: 10000 for 1033 (English), 20000 for 1034, which has no
// texts, so that every look-up falls back to German (kept on purpose), 0 for everything else.
[[nodiscard]] long LanguageOffset(long language_id);

// `GetText`. Never fails: a text that exists in the language is taken, else the German one, else
// the id followed by "@", so that a missing text shows by its number. Parameter 1 is the first
// element.
[[nodiscard]] std::string GetText(long language_id, long id,
                                  std::span<const std::string> parameters = {});

// Fills "@1@", "@2@", ... and resolves "\\", "\@", "\n", "\t" in one pass from the left; what was
// inserted is not looked at again. A backslash before any other character is dropped, a lone "@"
// too. A placeholder whose number is outside the list takes the value of the replacement before it,
// or nothing: the failing access is skipped and the replacement goes on.
[[nodiscard]] std::string ExpandTemplate(std::string_view text,
                                         std::span<const std::string> parameters);

}  // namespace txs::MText
