// Templates of messages.
//
// Input: the template, then up to eight parameters.

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "environment/code_page.h"
#include "fuzz/fuzz_support.h"
#include "strings/m_text.h"

namespace txs::fuzz {
namespace {

constexpr std::size_t kMostParameters = 8;

// Once more by its description, character by character.
std::string ExpandByTheWord(std::string_view text, const std::vector<std::string>& parameters) {
  std::string result;
  std::string last;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] == '\\') {
      if (++at == text.size()) break;
      const char c = text[at];
      result += c == 'n' || c == 'N' ? '\n' : c == 't' || c == 'T' ? '\t' : c;
    } else if (text[at] == '@') {
      const std::size_t end = text.find('@', at + 1);
      if (end == std::string_view::npos) continue;
      std::string digits;
      for (std::size_t i = at + 1; i < end && text[i] >= '0' && text[i] <= '9'; ++i) {
        if (text[i] != '0' || !digits.empty()) digits += text[i];
      }
      if (digits.size() == 1 && static_cast<std::size_t>(digits[0] - '0') <= parameters.size()) {
        last = parameters[static_cast<std::size_t>(digits[0] - '1')];
      }
      result += last;
      at = end;
    } else {
      result += text[at];
    }
  }
  return result;
}

void FuzzTextTemplate(std::string_view input) {
  const std::vector<std::string_view> parts = Parts(input, kMostParameters + 1);
  const std::string_view text = parts.front();
  const std::vector<std::string> parameters(parts.begin() + 1, parts.end());
  std::size_t longest = 0;
  for (const std::string& parameter : parameters) longest = std::max(longest, parameter.size());

  const Allocations allocations;
  const std::string expanded = MText::ExpandTemplate(text, parameters);

  const auto marks = static_cast<std::size_t>(std::ranges::count(text, '@'));
  const std::size_t most = text.size() + marks / 2 * longest;
  Require(expanded.size() <= most, "a text grows by its parameters only");
  allocations.RequireAtMost(most, 8, "expanding takes memory as its result");
  Require(expanded == ExpandByTheWord(text, parameters), "a template is expanded as described");
  if (text.find_first_of("@\\") == std::string_view::npos) {
    Require(expanded == text, "a text without marks stays as it is");
  }

  // Any number may be asked for, in any language.
  long id = 0;
  long language = 0;
  for (const char c : text.substr(0, 9)) id = id * 128 + (static_cast<unsigned char>(c) & 0x7F);
  for (const char c : parts.back().substr(0, 2)) language = language * 256 + (c & 0x7F);
  for (const long asked : {id, -id, id % 2000, id % 2000 + 10000}) {
    const std::string got = MText::GetText(language, asked, parameters);
    Require(!got.empty(), "every number has a text, if only itself");
  }
}

}  // namespace
}  // namespace txs::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  txs::fuzz::FuzzTextTemplate(txs::fuzz::AsText(data, size));
  return 0;
}
