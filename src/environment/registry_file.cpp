#include "environment/registry_file.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <utility>

#include "environment/code_page.h"
#include "environment/runtime_error.h"
#include "strings/reason.h"

namespace txs {
namespace {

constexpr std::string_view kVersion5 = "Windows Registry Editor Version 5.00";
constexpr std::string_view kVersion4 = "REGEDIT4";
constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kUtf16Mark = "\xFF\xFE";

// What Windows allows. It also keeps the recursion over a tree of keys shallow, whatever a damaged
// file says.
constexpr std::size_t kDeepestKey = 512;

[[noreturn]] void Refuse(Reason reason, const std::vector<std::string>& parameters = {}) {
  throw RuntimeError(ErrorNumber::kInvalidCall, Words(reason, parameters));
}

bool IsLineEnd(char c) { return c == '\r' || c == '\n'; }

// Where the line that begins at `begin` ends, without and with its line end.
std::size_t ContentEnd(std::string_view text, std::size_t begin) {
  return std::min(text.find_first_of("\r\n", begin), text.size());
}

std::size_t NextLine(std::string_view text, std::size_t content_end) {
  if (content_end == text.size()) return content_end;
  const bool is_pair =
      text[content_end] == '\r' && content_end + 1 < text.size() && text[content_end + 1] == '\n';
  return content_end + (is_pair ? 2 : 1);
}

// `line` may have its line end.
bool IsBlank(std::string_view line) {
  return line.find_first_not_of(" \t\r\n") == std::string_view::npos;
}

bool IsBlankOrComment(std::string_view line) {
  if (IsBlank(line)) return true;
  line = TrimBlanks(line);
  return line.front() == ';';
}

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// The text in quotes at the front of `line`, which is moved behind it; nothing when the closing
// quote is missing. A backslash that escapes neither itself nor a quote is taken as it stands.
std::optional<std::string> TakeQuoted(std::string_view& line) {
  if (!line.starts_with('"')) return std::nullopt;
  std::string text;
  for (std::size_t at = 1; at < line.size(); ++at) {
    if (line[at] == '"') {
      line.remove_prefix(at + 1);
      return text;
    }
    if (line[at] == '\\' && at + 1 < line.size() && (line[at + 1] == '\\' || line[at + 1] == '"')) {
      ++at;
    }
    text += line[at];
  }
  return std::nullopt;
}

std::string Quoted(std::string_view text) {
  std::string quoted = "\"";
  for (const char c : text) {
    if (c == '\\' || c == '"') quoted += '\\';
    quoted += c;
  }
  return quoted + '"';
}

std::optional<std::uint32_t> HexNumber(std::string_view digits) {
  if (digits.empty() || digits.size() > 8) return std::nullopt;
  std::uint32_t number = 0;
  for (const char c : digits) {
    const int digit = HexDigit(c);
    if (digit < 0) return std::nullopt;
    number = number << 4 | static_cast<std::uint32_t>(digit);
  }
  return number;
}

// Adds the bytes of one line of "0a,1b,\" to *bytes. Nothing when it is no such line; otherwise
// whether it says that it goes on. A comment among the continuation lines adds nothing.
std::optional<bool> TakeHexLine(std::string_view line, bool is_continuation, std::string* bytes) {
  const std::size_t comment = line.find(';');
  line = TrimBlanks(line.substr(0, comment));
  if (is_continuation && line.empty()) {
    return comment == std::string_view::npos ? std::nullopt : std::optional<bool>(true);
  }
  const bool goes_on = line.ends_with('\\');
  if (goes_on) line = TrimBlanks(line.substr(0, line.size() - 1));
  while (!line.empty()) {
    const std::size_t comma = std::min(line.find(','), line.size());
    const std::string_view item = TrimBlanks(line.substr(0, comma));
    const std::optional<std::uint32_t> number = HexNumber(item);
    if (!number || item.size() > 2) return std::nullopt;
    *bytes += static_cast<char>(*number);
    line = TrimBlanks(line.substr(std::min(comma + 1, line.size())));
  }
  return goes_on;
}

bool HoldsLineBreakOrZero(std::string_view text) {
  return text.find_first_of(std::string_view("\r\n\0", 3)) != std::string_view::npos;
}

}  // namespace

struct RegistryFile::Key {
  std::string name;  // as spelled first
  Key* parent = nullptr;
  std::size_t order = 0;                          // under which the parent keeps it
  std::vector<std::size_t> blocks;                // ascending
  std::unordered_map<std::string, Place> values;  // by folded name
  // Deleting a key must not cost a walk over its siblings, hence the map.
  std::map<std::size_t, std::unique_ptr<Key>> subkeys;          // in the order they were made
  std::unordered_map<std::string, std::size_t> subkey_by_name;  // order by folded name
  std::size_t next_order = 0;
};

RegistryFile::RegistryFile() : root_(std::make_unique<Key>()) {}
RegistryFile::RegistryFile(RegistryFile&&) noexcept = default;
RegistryFile& RegistryFile::operator=(RegistryFile&&) noexcept = default;
RegistryFile::~RegistryFile() = default;

RegistryFile::RegistryFile(std::string_view bytes) : root_(std::make_unique<Key>()) {
  // The first letter of an export is ASCII.
  const bool looks_like_utf16 = bytes.size() >= 2 && bytes[0] != '\0' && bytes[1] == '\0';
  std::string text;
  if (bytes.starts_with(kUtf16Mark) || looks_like_utf16) {
    encoding_ = Encoding::kUtf16;
    has_byte_order_mark_ = !looks_like_utf16;
    if (has_byte_order_mark_) bytes.remove_prefix(kUtf16Mark.size());
    if (bytes.size() % 2 != 0) Refuse(Reason::kHalfCharacter);
    text = Utf16ToUtf8(bytes);
    is_all_utf8_ = IsUtf8(text);
  } else if (bytes.starts_with(kUtf8Mark)) {
    has_byte_order_mark_ = true;
    text = bytes.substr(kUtf8Mark.size());
    is_all_utf8_ = IsUtf8(text);
  } else if (IsUtf8(bytes)) {
    text = bytes;
  } else {
    encoding_ = Encoding::kAnsi;
    text = AnsiToUtf8(bytes);
  }
  if (text.find('\0') != std::string::npos) Refuse(Reason::kZeroCharacters);

  ReadText(text);

  // A REGEDIT4 file is an ANSI file; with ASCII only it looked like UTF-8 as well.
  const bool is_ascii =
      std::ranges::all_of(bytes, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
  if (!is_version_5_ && encoding_ == Encoding::kUtf8 && is_ascii) encoding_ = Encoding::kAnsi;
}

void RegistryFile::ReadText(const std::string& text) {
  if (const std::size_t end = text.find_first_of("\r\n"); end != std::string::npos) {
    line_end_ = text.substr(end, NextLine(text, end) - end);
  }
  Key* current = nullptr;  // the key that values belong to
  std::size_t next = 0;
  for (std::size_t begin = 0; begin < text.size(); begin = next) {
    const std::size_t content_end = ContentEnd(text, begin);
    next = NextLine(text, content_end);
    const std::string_view content =
        TrimBlanks(std::string_view(text).substr(begin, content_end - begin));
    if (!has_header_ && !IsBlankOrComment(content)) {
      if (content != kVersion5 && content != kVersion4) {
        Refuse(Reason::kNoRegistryHeader, {std::string(kVersion5), std::string(kVersion4)});
      }
      has_header_ = true;
      is_version_5_ = content == kVersion5;
    } else if (content.starts_with('[')) {
      blocks_.emplace_back();
      ReadHeader(content, &current);
    } else if (content.starts_with('"') || content.starts_with('@')) {
      next = ReadValue(text, begin, content_end, current);
      continue;
    }
    blocks_.back().lines.push_back({text.substr(begin, next - begin)});
  }
}

void RegistryFile::ReadHeader(std::string_view line, Key** current) {
  *current = nullptr;
  const std::size_t end = line.rfind(']');
  if (end == std::string_view::npos) return;
  std::string_view path = line.substr(1, end - 1);
  const bool deletes = path.starts_with('-');
  if (deletes) path.remove_prefix(1);
  if (!IsKeyPath(path) || (!is_all_utf8_ && !IsUtf8(path))) return;
  if (deletes) {
    if (Key* const key = Find(path)) static_cast<void>(Detach(*key));
    return;
  }
  *current = Make(path);
  (*current)->blocks.push_back(blocks_.size() - 1);
}

std::size_t RegistryFile::ReadValue(const std::string& text, std::size_t begin, std::size_t end,
                                    Key* key) {
  Block& block = blocks_.back();
  std::size_t next = NextLine(text, end);
  const auto keep = [&](bool is_value) {
    block.lines.push_back({text.substr(begin, next - begin), is_value});
    if (is_value) block.last_value = block.lines.size() - 1;
    return next;
  };

  std::string_view rest = TrimBlanks(std::string_view(text).substr(begin, end - begin));
  std::optional<std::string> name;
  if (rest.starts_with('@')) {
    name.emplace();
    rest.remove_prefix(1);
  } else {
    name = TakeQuoted(rest);
  }
  rest = TrimBlanks(rest);
  if (!name || !rest.starts_with('=')) return keep(/*is_value=*/false);
  if (!is_all_utf8_ && !IsUtf8(std::string_view(text).substr(begin, end - begin))) {
    return keep(/*is_value=*/false);
  }
  rest = TrimBlanks(rest.substr(1));

  std::optional<RegistryValue> value;
  bool deletes = false;
  if (rest.starts_with('"')) {
    std::optional<std::string> string = TakeQuoted(rest);
    if (!string || !IsBlankOrComment(rest)) return keep(/*is_value=*/false);
    value = std::move(*string);
  } else if (rest.starts_with('-')) {
    if (!IsBlankOrComment(rest.substr(1))) return keep(/*is_value=*/false);
    deletes = true;
  } else if (EqualNoCase(rest.substr(0, 6), "dword:")) {
    const std::string_view digits = TrimBlanks(rest.substr(6, rest.find(';') - 6));
    const std::optional<std::uint32_t> number = HexNumber(digits);
    if (!number) return keep(/*is_value=*/false);
    value = *number;
  } else if (EqualNoCase(rest.substr(0, 3), "hex")) {
    const std::size_t colon = rest.find(':');
    if (colon == std::string_view::npos) return keep(/*is_value=*/false);
    const std::string_view kind = rest.substr(3, colon - 3);
    std::string bytes;
    std::optional<bool> goes_on =
        TakeHexLine(rest.substr(colon + 1), /*is_continuation=*/false, &bytes);
    while (goes_on && *goes_on && next < text.size()) {
      const std::size_t content_end = ContentEnd(text, next);
      const std::string_view line = std::string_view(text).substr(next, content_end - next);
      // A header or value where bytes should be: the end got lost, what follows counts again.
      goes_on = TakeHexLine(line, /*is_continuation=*/true, &bytes);
      if (goes_on) next = NextLine(text, content_end);
    }
    if (!goes_on || *goes_on) return keep(/*is_value=*/false);
    if (kind == "(1)" || kind == "(2)") {
      if (std::optional<std::string> string = TextOfHex(bytes)) value = std::move(*string);
    } else if (kind == "(4)" && bytes.size() == 4) {
      std::uint32_t number = 0;
      for (std::size_t i = bytes.size(); i > 0; --i) {
        number = number << 8 | static_cast<unsigned char>(bytes[i - 1]);
      }
      value = number;
    }
  } else {
    return keep(/*is_value=*/false);
  }

  static_cast<void>(keep(/*is_value=*/true));
  if (key == nullptr) return next;
  if (deletes) {
    key->values.erase(FoldCase(*name));
  } else {
    key->values[FoldCase(*name)] =
        Place{blocks_.size() - 1, block.lines.size() - 1, std::move(value)};
  }
  return next;
}

// What Windows stores for a text: UTF-16 in version 5.00, ANSI before, up to a zero character.
// Nothing for bytes that are no text.
std::optional<std::string> RegistryFile::TextOfHex(std::string_view bytes) const {
  if (is_version_5_ && bytes.size() % 2 != 0) return std::nullopt;
  std::string text = is_version_5_ ? Utf16ToUtf8(bytes) : AnsiToUtf8(bytes);
  text.resize(std::min(text.find('\0'), text.size()));
  if (!IsUtf8(text)) return std::nullopt;
  return text;
}

bool RegistryFile::IsKeyPath(std::string_view key) {
  if (key.empty() || key.front() == '\\' || key.back() == '\\') return false;
  if (key.find("\\\\") != std::string_view::npos) return false;
  return static_cast<std::size_t>(std::ranges::count(key, '\\')) < kDeepestKey;
}

RegistryFile::Key* RegistryFile::Find(std::string_view key) const {
  Key* found = root_.get();
  for (std::size_t begin = 0; begin <= key.size();) {
    const std::size_t end = std::min(key.find('\\', begin), key.size());
    const auto place = found->subkey_by_name.find(FoldCase(key.substr(begin, end - begin)));
    if (place == found->subkey_by_name.end()) return nullptr;
    found = found->subkeys.find(place->second)->second.get();
    begin = end + 1;
  }
  return found;
}

RegistryFile::Key* RegistryFile::Make(std::string_view key) {
  Key* made = root_.get();
  for (std::size_t begin = 0; begin <= key.size();) {
    const std::size_t end = std::min(key.find('\\', begin), key.size());
    const std::string_view name = key.substr(begin, end - begin);
    const auto [place, is_new] = made->subkey_by_name.try_emplace(FoldCase(name), made->next_order);
    std::unique_ptr<Key>& subkey = made->subkeys[place->second];
    if (is_new) {
      subkey = std::make_unique<Key>();
      subkey->name = name;
      subkey->parent = made;
      subkey->order = made->next_order++;
    }
    made = subkey.get();
    begin = end + 1;
  }
  return made;
}

// Takes the key out of the tree; false when its parent has no other trace in the file.
bool RegistryFile::Detach(Key& key) {
  Key& parent = *key.parent;
  parent.subkey_by_name.erase(FoldCase(key.name));
  parent.subkeys.erase(key.order);
  return parent.parent == nullptr || !parent.blocks.empty() || !parent.subkeys.empty();
}

std::string RegistryFile::PathOf(const Key& key) const {
  std::vector<const Key*> chain;
  for (const Key* at = &key; at->parent != nullptr; at = at->parent) chain.push_back(at);
  std::string path;
  for (auto at = chain.rbegin(); at != chain.rend(); ++at) {
    if (!path.empty()) path += '\\';
    path += (*at)->name;
  }
  return path;
}

std::optional<RegistryValue> RegistryFile::Value(std::string_view key,
                                                 std::string_view name) const {
  const Key* const found = Find(key);
  if (found == nullptr) return std::nullopt;
  const auto place = found->values.find(FoldCase(name));
  return place == found->values.end() ? std::nullopt : place->second.value;
}

bool RegistryFile::HasKey(std::string_view key) const { return Find(key) != nullptr; }

std::vector<std::string> RegistryFile::Subkeys(std::string_view key) const {
  std::vector<std::string> names;
  if (const Key* const found = Find(key)) {
    for (const auto& [order, subkey] : found->subkeys) names.push_back(subkey->name);
  }
  return names;
}

std::string RegistryFile::ValueLine(std::string_view name, const RegistryValue& value) const {
  std::string line = (name.empty() ? std::string("@") : Quoted(name)) + "=";
  const auto append_hex = [&](unsigned number, int digits) {
    std::array<char, 16> text;
    static_cast<void>(std::snprintf(text.data(), text.size(), "%0*x", digits, number));
    line += text.data();
  };
  if (const auto* number = std::get_if<std::uint32_t>(&value)) {
    line += "dword:";
    append_hex(*number, /*digits=*/8);
    return line;
  }
  const std::string& text = std::get<std::string>(value);
  if (!HoldsLineBreakOrZero(text)) return line + Quoted(text);
  line += "hex(1):";
  const std::string bytes =
      is_version_5_ ? Utf8ToUtf16(text) + std::string(2, '\0') : Utf8ToAnsi(text) + '\0';
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (i > 0) line += ',';
    append_hex(static_cast<unsigned char>(bytes[i]), /*digits=*/2);
  }
  return line;
}

void RegistryFile::RequireEncodable(std::string_view text) const {
  if (!IsUtf8(text)) Refuse(Reason::kMalformedText);
  if (encoding_ == Encoding::kAnsi) static_cast<void>(Utf8ToAnsi(text));
}

RegistryFile::Line* RegistryFile::LastLine() {
  for (auto block = blocks_.rbegin(); block != blocks_.rend(); ++block) {
    if (!block->lines.empty()) return &block->lines.back();
  }
  return nullptr;
}

void RegistryFile::EndLastLine() {
  Line* const last = LastLine();
  if (last != nullptr && !IsLineEnd(last->text.back())) last->text += line_end_;
}

void RegistryFile::Set(std::string_view key, std::string_view name, const RegistryValue& value) {
  if (!IsKeyPath(key) || key.starts_with('-') || HoldsLineBreakOrZero(key) ||
      HoldsLineBreakOrZero(name)) {
    Refuse(Reason::kNotForTheRegistry, {std::string(key) + ": " + std::string(name)});
  }
  RequireEncodable(key);
  RequireEncodable(name);
  if (const auto* text = std::get_if<std::string>(&value)) {
    RequireEncodable(*text);
    if (text->find('\0') != std::string::npos)
      Refuse(Reason::kNotForTheRegistry, {std::string(name)});
  }
  const std::string line = ValueLine(name, value) + line_end_;

  Key& target = *Make(key);
  const std::string folded_name = FoldCase(name);
  const auto present = target.values.find(folded_name);
  if (present != target.values.end()) {
    Place& place = present->second;
    if (place.value == value) return;
    blocks_[place.block].lines[place.line].text = line;
    place.value = value;
    return;
  }

  EndLastLine();
  if (target.blocks.empty()) {
    if (!has_header_) {
      blocks_.front().lines.insert(
          blocks_.front().lines.begin(),
          Line{std::string(is_version_5_ ? kVersion5 : kVersion4) + line_end_});
      has_header_ = true;
    }
    if (!IsBlank(LastLine()->text)) blocks_.back().lines.push_back({line_end_});
    blocks_.emplace_back();
    blocks_.back().lines.push_back({"[" + std::string(key) + "]" + line_end_});
    target.blocks.push_back(blocks_.size() - 1);
  }
  // The key's last block: what deletes a value before must not take the new one away. Only lines
  // that are no values move, so the other places hold.
  Block& block = blocks_[target.blocks.back()];
  const std::size_t at = block.last_value + 1;
  block.lines.insert(block.lines.begin() + static_cast<std::ptrdiff_t>(at), Line{line, true});
  block.last_value = at;
  target.values[folded_name] = Place{target.blocks.back(), at, value};
}

void RegistryFile::Reach(Key& from, std::vector<std::size_t>& blocks) {
  blocks.insert(blocks.end(), from.blocks.begin(), from.blocks.end());
  for (const auto& [order, subkey] : from.subkeys) Reach(*subkey, blocks);
}

bool RegistryFile::RemoveKey(std::string_view key) {
  Key* const found = Find(key);
  if (found == nullptr) return false;
  std::vector<std::size_t> blocks;
  Reach(*found, blocks);
  std::ranges::sort(blocks);
  Key& parent = *found->parent;
  const bool parent_stays = Detach(*found);

  EndLastLine();
  for (const std::size_t index : blocks) {
    Block& block = blocks_[index];
    std::size_t count = block.lines.size();
    while (count > 0 && IsBlankOrComment(block.lines[count - 1].text)) --count;
    if (count < block.lines.size() && IsBlank(block.lines[count].text)) ++count;
    block.lines.erase(block.lines.begin(),
                      block.lines.begin() + static_cast<std::ptrdiff_t>(count));
    block.last_value = 0;
  }
  // A parent that only its subkey's line told of gets a line of its own, in the place of that one.
  if (!parent_stays && !blocks.empty()) {
    Block& block = blocks_[blocks.front()];
    block.lines.insert(block.lines.begin(),
                       {Line{"[" + PathOf(parent) + "]" + line_end_}, Line{line_end_}});
    parent.blocks.push_back(blocks.front());
  }
  return true;
}

std::string RegistryFile::Bytes() const {
  std::string text;
  for (const Block& block : blocks_) {
    for (const Line& line : block.lines) text += line.text;
  }
  std::string mark;
  if (has_byte_order_mark_) mark = encoding_ == Encoding::kUtf16 ? kUtf16Mark : kUtf8Mark;
  switch (encoding_) {
    case Encoding::kUtf16:
      return mark + Utf8ToUtf16(text);
    case Encoding::kUtf8:
      return mark + text;
    case Encoding::kAnsi:
      break;
  }
  std::string bytes = Utf8ToAnsi(text);
  return IsUtf8(bytes) ? text : bytes;
}

}  // namespace txs
