// INI files: what is read and written back, and what a change leaves untouched.
//
// Input: the bytes of the file, then any number of changes. A change is a letter, the section, and
// what follows, each on a line of its own: "s" sets one key, "r" gives the section the entries that
// the following lines are (each "key=value"), "d" removes the section.

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "environment/code_page.h"
#include "environment/profile_document.h"
#include "environment/runtime_error.h"
#include "fuzz/fuzz_support.h"

namespace txs::fuzz {
namespace {

constexpr std::size_t kMostChanges = 8;

struct Contents {
  std::string section;
  std::vector<ProfileEntry> entries;

  bool operator==(const Contents&) const = default;
};

std::vector<Contents> ContentsOf(const ProfileDocument& document) {
  std::vector<Contents> all;
  for (std::string& name : document.SectionNames()) {
    std::vector<ProfileEntry> entries = document.Section(name);
    all.push_back({std::move(name), std::move(entries)});
  }
  return all;
}

// Value and Section are two ways to the same entries.
void CheckLookUp(const ProfileDocument& document, const std::vector<Contents>& contents) {
  for (const Contents& section : contents) {
    for (const ProfileEntry& entry : section.entries) {
      Require(document.Value(section.section, entry.name) == entry.value,
              "an entry of a section is found by its key");
    }
  }
}

// Section and key names as the file would hold them.
std::string Folded(std::string_view name) {
  constexpr std::string_view kTrimmed = " \t\v\f\x1A";
  const std::size_t begin = std::min(name.find_first_not_of(kTrimmed), name.size());
  const std::size_t end = name.find_last_not_of(kTrimmed);
  return FoldCase(begin == name.size() ? "" : name.substr(begin, end + 1 - begin));
}

void RequireOthersUntouched(const std::vector<Contents>& before, const std::vector<Contents>& after,
                            std::string_view changed) {
  std::vector<Contents> left = before;
  std::vector<Contents> right = after;
  for (std::vector<Contents>* list : {&left, &right}) {
    std::erase_if(*list,
                  [&](const Contents& one) { return FoldCase(one.section) == Folded(changed); });
  }
  Require(left == right, "a change leaves all other sections as they were");
}

// The lines with their ends. UTF-16 is compared as UTF-8, for a line end is not one byte there.
std::vector<std::string> LinesOf(std::string_view bytes) {
  const bool is_utf16 = bytes.starts_with("\xFF\xFE");
  std::string text = is_utf16 ? Utf16ToUtf8(bytes) : std::string(bytes);
  if (text.starts_with("\xEF\xBB\xBF")) text.erase(0, 3);  // the mark is no part of a line
  std::vector<std::string> lines;
  for (std::size_t begin = 0; begin < text.size();) {
    std::size_t end = std::min(text.find_first_of("\r\n", begin), text.size() - 1) + 1;
    if (text[end - 1] == '\r' && end < text.size() && text[end] == '\n') ++end;
    lines.push_back(text.substr(begin, end - begin));
    begin = end;
  }
  return lines;
}

// A last line without an end may be given one, for what is appended begins on a line of its own.
bool SameLine(const std::string& before, const std::string& after) {
  if (before == after) return true;
  const bool has_end = before.ends_with('\r') || before.ends_with('\n');
  return !has_end && after.starts_with(before) &&
         after.find_first_not_of("\r\n", before.size()) == std::string::npos;
}

// How many lines of `before` are neither in front nor at the end of `after`.
std::size_t LinesLost(std::string_view before, std::string_view after) {
  const std::vector<std::string> left = LinesOf(before);
  const std::vector<std::string> right = LinesOf(after);
  const std::size_t shorter = std::min(left.size(), right.size());
  std::size_t front = 0;
  while (front < shorter && SameLine(left[front], right[front])) ++front;
  std::size_t back = 0;
  while (back < shorter - front &&
         SameLine(left[left.size() - 1 - back], right[right.size() - 1 - back])) {
    ++back;
  }
  return left.size() - front - back;
}

void SetKey(ProfileDocument& document, std::string_view section, std::string_view key,
            std::string_view value) {
  const std::string bytes = document.Bytes();
  const std::vector<Contents> before = ContentsOf(document);
  const bool was_there = document.Value(section, key).has_value();

  const std::optional<ErrorNumber> error = ErrorFrom([&] { document.Set(section, key, value); });

  if (error) {
    Require(*error == ErrorNumber::kInvalidCall, "what cannot be held is an invalid call");
    Require(document.Bytes() == bytes, "a refused change changes nothing");
    return;
  }
  Require(document.Value(section, key) == value, "a key has the value that it was given");
  const std::vector<Contents> after = ContentsOf(document);
  RequireOthersUntouched(before, after, section);
  const std::string written = document.Bytes();
  // Marked as UTF-8 it was in ANSI nevertheless; without what made it so, all of it is UTF-8.
  const bool became_utf8 = bytes.starts_with("\xEF\xBB\xBF") && !IsUtf8(bytes) && IsUtf8(written);
  Require(became_utf8 || LinesLost(bytes, written) <= (was_there ? 1U : 0U),
          "setting a key rewrites its own line and no other");
  document.Set(section, key, value);
  Require(document.Bytes() == written, "setting a key to what it is changes nothing");
}

void ReplaceSection(ProfileDocument& document, std::string_view section, std::string_view lines) {
  std::vector<ProfileEntry> entries;
  while (!lines.empty()) {
    std::string_view line = TakeUntil(&lines, '\n');
    const std::string_view key = TakeUntil(&line, '=');
    entries.push_back({std::string(key), std::string(line)});
  }
  const std::string bytes = document.Bytes();
  const std::vector<Contents> before = ContentsOf(document);

  const std::optional<ErrorNumber> error =
      ErrorFrom([&] { document.ReplaceSection(section, entries); });

  if (error) {
    Require(*error == ErrorNumber::kInvalidCall, "what cannot be held is an invalid call");
    Require(document.Bytes() == bytes, "a refused change changes nothing");
    return;
  }
  RequireOthersUntouched(before, ContentsOf(document), section);
  std::vector<std::string> known;
  std::vector<std::string> wanted;
  for (const ProfileEntry& entry : entries) {
    const std::string folded = Folded(entry.name);
    if (std::find(known.begin(), known.end(), folded) != known.end()) continue;
    known.push_back(folded);
    wanted.push_back(entry.value);
  }
  const std::vector<ProfileEntry> read = document.Section(section);
  Require(read.size() == wanted.size(), "a section has the entries that it was given");
  for (std::size_t i = 0; i < read.size(); ++i) {
    Require(FoldCase(read[i].name) == known[i] && read[i].value == wanted[i],
            "a section has the entries that it was given, in their order");
  }
  const std::string written = document.Bytes();
  // Of a name that stands twice, the second line never counted, and its spelling is not kept.
  if (wanted.size() != entries.size()) return;
  document.ReplaceSection(section, entries);
  Require(document.Bytes() == written, "giving a section what it has changes nothing");
}

void RemoveSection(ProfileDocument& document, std::string_view section) {
  const std::string bytes = document.Bytes();
  const std::vector<Contents> before = ContentsOf(document);

  document.RemoveSection(section);

  RequireOthersUntouched(before, ContentsOf(document), section);
  const std::string written = document.Bytes();
  Require(written.size() <= bytes.size(), "removing a section adds nothing");
}

void FuzzProfileDocument(std::string_view input) {
  std::vector<std::string_view> parts = Parts(input, kMostChanges + 1);
  const std::string_view file = parts.front();

  const Allocations allocations;
  ProfileDocument document(file);
  allocations.RequireAtMost(file.size(), 600, "reading a profile takes memory as its size");
  const std::vector<Contents> contents = ContentsOf(document);
  allocations.RequireAtMost(file.size(), 1000, "listing a profile takes memory as its size");
  Require(document.Bytes() == file, "a profile that nobody changed is written as it was read");
  CheckLookUp(document, contents);

  for (std::size_t i = 1; i < parts.size(); ++i) {
    std::string_view change = parts[i];
    const std::string_view kind = TakeUntil(&change, '\n');
    const std::string_view section = TakeUntil(&change, '\n');
    if (kind == "s") {
      const std::string_view key = TakeUntil(&change, '\n');
      SetKey(document, section, key, change);
    } else if (kind == "r") {
      ReplaceSection(document, section, change);
    } else if (kind == "d") {
      RemoveSection(document, section);
    }
    const std::vector<Contents> now = ContentsOf(document);
    CheckLookUp(document, now);
    const std::string bytes = document.Bytes();
    const ProfileDocument again(bytes);
    Require(ContentsOf(again) == now, "what was written is read back");
    Require(again.Bytes() == bytes, "what was written is written again as it is");
  }
}

}  // namespace
}  // namespace txs::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  txs::fuzz::FuzzProfileDocument(txs::fuzz::AsText(data, size));
  return 0;
}
