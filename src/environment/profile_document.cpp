#include "environment/profile_document.h"

#include <algorithm>
#include <utility>

#include "environment/code_page.h"
#include "environment/runtime_error.h"
#include "strings/reason.h"

namespace txs {
namespace {

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kUtf16Mark = "\xFF\xFE";

// What is trimmed: blanks, and the Ctrl-Z that old editors put at the end of a file.
constexpr std::string_view kTrimmed = " \t\v\f\x1A";

struct Range {
  std::size_t begin;
  std::size_t end;
};

bool IsTrimmed(char c) { return kTrimmed.find(c) != std::string_view::npos; }

Range Trimmed(std::string_view bytes, Range range) {
  while (range.begin < range.end && IsTrimmed(bytes[range.begin])) ++range.begin;
  while (range.begin < range.end && IsTrimmed(bytes[range.end - 1])) --range.end;
  return range;
}

std::string_view Trimmed(std::string_view text) {
  const Range range = Trimmed(text, {0, text.size()});
  return text.substr(range.begin, range.end - range.begin);
}

bool IsQuoted(std::string_view value) {
  return value.size() >= 2 && value.front() == value.back() &&
         (value.front() == '"' || value.front() == '\'');
}

// Length of the line end that `bytes` has at `at`: 0, 1 or 2.
std::size_t LineEndLength(std::string_view bytes, std::size_t at) {
  if (at >= bytes.size()) return 0;
  if (bytes[at] == '\n') return 1;
  if (bytes[at] != '\r') return 0;
  return at + 1 < bytes.size() && bytes[at + 1] == '\n' ? 2 : 1;
}

std::size_t ContentLength(std::string_view line) {
  while (!line.empty() && (line.back() == '\r' || line.back() == '\n')) line.remove_suffix(1);
  return line.size();
}

// The name in a header line; nothing when the line is none.
std::optional<std::string_view> HeaderName(std::string_view line) {
  const Range range = Trimmed(line, {0, line.size()});
  if (range.begin == range.end || line[range.begin] != '[') return std::nullopt;
  const std::size_t close = line.find(']', range.begin);
  if (close == std::string_view::npos) return std::nullopt;
  return Trimmed(line.substr(range.begin + 1, close - range.begin - 1));
}

std::string FoldedName(std::string_view name) { return FoldCase(Trimmed(name)); }

[[noreturn]] void ThrowUnwritable(Reason reason, std::string_view text) {
  throw RuntimeError(ErrorNumber::kInvalidCall, Words(reason, {std::string(text)}));
}

bool HasLineBreak(std::string_view text) {
  return text.find_first_of("\r\n") != std::string_view::npos;
}

}  // namespace

std::string_view ProfileDocument::Line::NameBytes() const {
  return std::string_view(bytes).substr(name_begin, name_end - name_begin);
}

std::string_view ProfileDocument::Line::ValueBytes() const {
  return std::string_view(bytes).substr(value_begin, value_end - value_begin);
}

ProfileDocument::ProfileDocument(std::string_view bytes) {
  std::string text;
  if (bytes.starts_with(kUtf16Mark)) {
    byte_order_mark_ = kUtf16Mark;
    if (bytes.size() % 2 != 0) {
      half_unit_ = bytes.back();
      bytes.remove_suffix(1);
    }
    text = Utf16ToUtf8(bytes.substr(kUtf16Mark.size()));
    bytes = text;
    is_utf8_ = true;
    is_utf16_ = true;
  } else if (bytes.substr(0, kUtf8Mark.size()) == kUtf8Mark) {
    byte_order_mark_ = kUtf8Mark;
    bytes.remove_prefix(kUtf8Mark.size());
    is_utf8_ = IsUtf8(bytes);
  }
  bool line_end_known = false;
  SectionBlock current;
  std::string current_folded;
  // The head of the file goes where the constructor put an empty one.
  const auto finish_section = [&](bool is_head) {
    if (is_head) {
      sections_[0] = std::move(current);
    } else {
      AppendSection(std::move(current));
    }
    current = SectionBlock();
  };

  bool in_head = true;
  for (std::size_t begin = 0; begin < bytes.size();) {
    const std::size_t end = std::min(bytes.find_first_of("\r\n", begin), bytes.size());
    const std::size_t line_end_length = LineEndLength(bytes, end);
    if (!line_end_known && line_end_length > 0) {
      line_end_ = bytes.substr(end, line_end_length);
      line_end_known = true;
    }
    Line line;
    line.bytes = bytes.substr(begin, end + line_end_length - begin);
    const std::string_view content = std::string_view(line.bytes).substr(0, end - begin);
    if (const std::optional<std::string_view> name = HeaderName(content)) {
      finish_section(in_head);
      in_head = false;
      current.name = Decode(*name);
      current.lines.push_back(std::move(line));
    } else {
      ReadEntry(line, end - begin);
      AddLine(current, std::move(line));
    }
    begin = end + line_end_length;
  }
  finish_section(in_head);
  // A new line that ends in CR alone would make one line end with a blank line that is just an LF.
  if (line_end_ == "\r" && bytes.find('\n') != std::string_view::npos) line_end_ = "\r\n";
}

void ProfileDocument::ReadEntry(Line& line, std::size_t length) {
  const std::string_view content = std::string_view(line.bytes).substr(0, length);
  const Range whole = Trimmed(content, {0, length});
  if (whole.begin == whole.end) return;
  if (content[whole.begin] == ';' || content[whole.begin] == '[') return;
  const std::size_t equals = content.find('=', whole.begin);
  if (equals == std::string_view::npos) return;
  const Range name = Trimmed(content, {whole.begin, equals});
  if (name.begin == name.end) return;
  Range value = Trimmed(content, {equals + 1, length});
  if (IsQuoted(content.substr(value.begin, value.end - value.begin))) {
    ++value.begin;
    --value.end;
  }
  line.name_begin = name.begin;
  line.name_end = name.end;
  line.value_begin = value.begin;
  line.value_end = value.end;
}

std::string ProfileDocument::Decode(std::string_view bytes) const {
  return is_utf8_ ? std::string(bytes) : AnsiToUtf8(bytes);
}

std::string ProfileDocument::Encode(std::string_view text) const {
  if (!is_utf8_) return Utf8ToAnsi(text);
  if (!IsUtf8(text)) {
    throw RuntimeError(ErrorNumber::kInvalidCall, Words(Reason::kMalformedText));
  }
  return std::string(text);
}

const ProfileDocument::SectionBlock* ProfileDocument::Find(std::string_view section) const {
  const auto found = first_of_section_.find(FoldedName(section));
  return found == first_of_section_.end() ? nullptr : &sections_[found->second];
}

// Keeps what SectionBlock knows about its lines.
void ProfileDocument::AddLine(SectionBlock& section, Line line) const {
  if (line.IsEntry()) {
    section.last_entry = section.lines.size();
    section.first_of_key.try_emplace(FoldCase(Decode(line.NameBytes())), section.lines.size());
  }
  section.lines.push_back(std::move(line));
}

void ProfileDocument::AppendSection(SectionBlock section) {
  const std::size_t index = sections_.size();
  const auto [found, is_first] = first_of_section_.try_emplace(FoldCase(section.name), index);
  if (!is_first) {
    SectionBlock& first = sections_[found->second];
    sections_[first.last_of_name == kNone ? found->second : first.last_of_name].next_of_name =
        index;
    first.last_of_name = index;
  }
  sections_.push_back(std::move(section));
}

void ProfileDocument::EndLine(Line& line) const {
  if (ContentLength(line.bytes) == line.bytes.size()) line.bytes += line_end_;
}

std::optional<std::string> ProfileDocument::Value(std::string_view section,
                                                  std::string_view key) const {
  const SectionBlock* const block = Find(section);
  if (block == nullptr) return std::nullopt;
  const auto found = block->first_of_key.find(FoldedName(key));
  if (found == block->first_of_key.end()) return std::nullopt;
  return Decode(block->lines[found->second].ValueBytes());
}

std::vector<ProfileEntry> ProfileDocument::Section(std::string_view section) const {
  std::vector<ProfileEntry> entries;
  const SectionBlock* const block = Find(section);
  if (block == nullptr) return entries;
  entries.reserve(block->first_of_key.size());
  for (std::size_t i = 0; i < block->lines.size(); ++i) {
    const Line& line = block->lines[i];
    if (!line.IsEntry()) continue;
    std::string name = Decode(line.NameBytes());
    if (block->first_of_key.find(FoldCase(name))->second != i) continue;
    entries.push_back({std::move(name), Decode(line.ValueBytes())});
  }
  return entries;
}

std::vector<std::string> ProfileDocument::SectionNames() const {
  std::vector<std::string> names;
  for (std::size_t i = 1; i < sections_.size(); ++i) {
    if (sections_[i].lines.empty()) continue;
    const auto first = first_of_section_.find(FoldCase(sections_[i].name));
    if (first->second == i) names.push_back(sections_[i].name);
  }
  return names;
}

ProfileDocument::Line ProfileDocument::MakeEntry(std::string_view key,
                                                 std::string_view value) const {
  const std::string_view name = Trimmed(key);
  const bool holdable = !name.empty() && name.front() != ';' && name.front() != '[' &&
                        name.find('=') == std::string_view::npos && !HasLineBreak(key);
  if (!holdable) ThrowUnwritable(Reason::kUnwritableKey, key);
  if (HasLineBreak(value)) ThrowUnwritable(Reason::kUnwritableLineBreak, value);

  const bool needs_quotes = Trimmed(value).size() != value.size() || IsQuoted(value);
  Line line;
  line.bytes = Encode(name);
  line.name_end = line.bytes.size();
  line.bytes += needs_quotes ? "=\"" : "=";
  line.value_begin = line.bytes.size();
  line.bytes += Encode(value);
  line.value_end = line.bytes.size();
  if (needs_quotes) line.bytes += '"';
  line.bytes += line_end_;
  return line;
}

ProfileDocument::SectionBlock ProfileDocument::MakeSection(std::string_view section) const {
  const std::string_view name = Trimmed(section);
  if (name.find(']') != std::string_view::npos || HasLineBreak(section)) {
    ThrowUnwritable(Reason::kUnwritableSection, section);
  }
  SectionBlock block;
  block.name = name;
  Line header;
  header.bytes = "[" + Encode(name) + "]" + line_end_;
  block.lines.push_back(std::move(header));
  return block;
}

bool ProfileDocument::SameEntry(const Line& line, const ProfileEntry& entry) const {
  return Decode(line.NameBytes()) == Trimmed(entry.name) &&
         Decode(line.ValueBytes()) == entry.value;
}

void ProfileDocument::Set(std::string_view section, std::string_view key, std::string_view value) {
  Line entry = MakeEntry(key, value);
  const auto found_section = first_of_section_.find(FoldedName(section));
  if (found_section == first_of_section_.end()) {
    SectionBlock block = MakeSection(section);
    AddLine(block, std::move(entry));
    CompleteLastLine();
    AppendSection(std::move(block));
    return;
  }
  SectionBlock& block = sections_[found_section->second];
  const std::string folded_key = FoldedName(key);
  const auto found_key = block.first_of_key.find(folded_key);
  if (found_key != block.first_of_key.end()) {
    ReplaceValue(block.lines[found_key->second], entry);
    return;
  }
  const std::size_t at = InsertionPoint(block);
  EndLine(block.lines[at - 1]);
  block.lines.insert(block.lines.begin() + static_cast<std::ptrdiff_t>(at), std::move(entry));
  block.last_entry = at;
  block.first_of_key.emplace(folded_key, at);
}

// Behind the last entry; without one, behind the comments, before the blank lines that set the next
// section apart. No entry stands behind this point, so no index of an entry moves.
std::size_t ProfileDocument::InsertionPoint(const SectionBlock& block) {
  if (block.last_entry != 0) return block.last_entry + 1;
  std::size_t at = block.lines.size();
  while (at > 1 && Trimmed(std::string_view(block.lines[at - 1].bytes)
                               .substr(0, ContentLength(block.lines[at - 1].bytes)))
                       .empty()) {
    --at;
  }
  return at;
}

// The name and the blanks around "=" stay as the file has them.
void ProfileDocument::ReplaceValue(Line& line, const Line& entry) {
  if (line.ValueBytes() == entry.ValueBytes()) return;
  const std::size_t content = ContentLength(line.bytes);
  std::size_t begin = line.bytes.find('=', line.name_end) + 1;
  while (begin < content && IsTrimmed(line.bytes[begin])) ++begin;
  const std::size_t written_begin = entry.bytes.find('=', entry.name_end) + 1;
  const std::string_view written =
      std::string_view(entry.bytes)
          .substr(written_begin, ContentLength(entry.bytes) - written_begin);
  line.bytes = line.bytes.substr(0, begin) + std::string(written) + line.bytes.substr(content);
  line.value_begin = begin + entry.value_begin - written_begin;
  line.value_end = line.value_begin + entry.ValueBytes().size();
}

void ProfileDocument::ReplaceSection(std::string_view section,
                                     const std::vector<ProfileEntry>& entries) {
  std::vector<Line> fresh;
  fresh.reserve(entries.size());
  for (const ProfileEntry& entry : entries) fresh.push_back(MakeEntry(entry.name, entry.value));

  const auto found = first_of_section_.find(FoldedName(section));
  if (found == first_of_section_.end()) {
    SectionBlock block = MakeSection(section);
    block.lines.reserve(entries.size() + 1);
    for (Line& line : fresh) AddLine(block, std::move(line));
    CompleteLastLine();
    AppendSection(std::move(block));
    return;
  }

  SectionBlock& before = sections_[found->second];
  for (std::size_t i = 0; i < entries.size(); ++i) {
    const auto old = before.first_of_key.find(FoldedName(entries[i].name));
    if (old != before.first_of_key.end() && SameEntry(before.lines[old->second], entries[i])) {
      fresh[i] = before.lines[old->second];
    }
  }

  // The new entries take the places of the old ones, in order, so that the comments between them
  // stay; those that are left over follow the last.
  SectionBlock after;
  after.name = before.name;
  after.next_of_name = before.next_of_name;
  after.last_of_name = before.last_of_name;
  after.lines.reserve(before.lines.size() + entries.size());
  const std::size_t insertion = InsertionPoint(before);
  std::size_t next = 0;
  for (std::size_t i = 0; i <= before.lines.size(); ++i) {
    if (i == insertion) {
      while (next < fresh.size()) AddLine(after, std::move(fresh[next++]));
    }
    if (i == before.lines.size()) break;
    if (!before.lines[i].IsEntry()) {
      AddLine(after, std::move(before.lines[i]));
    } else if (next < fresh.size()) {
      AddLine(after, std::move(fresh[next++]));
    }
  }
  for (std::size_t i = 0; i + 1 < after.lines.size(); ++i) EndLine(after.lines[i]);
  before = std::move(after);
}

void ProfileDocument::RemoveSection(std::string_view section) {
  const auto found = first_of_section_.find(FoldedName(section));
  if (found == first_of_section_.end()) return;
  SectionBlock& block = sections_[found->second];
  const std::size_t next = block.next_of_name;
  const std::size_t last = block.last_of_name;
  block = SectionBlock();
  if (next == kNone) {
    first_of_section_.erase(found);
  } else {
    sections_[next].last_of_name = last == next ? kNone : last;
    found->second = next;
  }
}

// A file need not end in a line end; what is appended to it must begin on a line of its own.
void ProfileDocument::CompleteLastLine() {
  for (std::size_t i = sections_.size(); i-- > 0;) {
    if (sections_[i].lines.empty()) continue;
    EndLine(sections_[i].lines.back());
    return;
  }
}

std::string ProfileDocument::Bytes() const {
  std::size_t size = 0;
  for (const SectionBlock& section : sections_) {
    for (const Line& line : section.lines) size += line.bytes.size();
  }
  std::string bytes;
  bytes.reserve(size);
  for (const SectionBlock& section : sections_) {
    for (const Line& line : section.lines) bytes += line.bytes;
  }
  if (is_utf16_) return byte_order_mark_ + Utf8ToUtf16(bytes) + half_unit_;
  if (byte_order_mark_.empty()) return bytes;
  // What made a file with the mark an ANSI file may have been changed or removed. Its other texts
  // would then be taken for UTF-8, so they become that.
  if (!is_utf8_ && IsUtf8(bytes)) bytes = AnsiToUtf8(bytes);
  return byte_order_mark_ + bytes;
}

}  // namespace txs
