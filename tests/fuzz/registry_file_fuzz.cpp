// Registry exports: what is read and written back, and what a change leaves untouched.
//
// Input: the bytes of the file, then any number of changes. A change is a letter, the key, the name
// and the value, each on a line of its own; the value is all the rest. "t" sets a text, "n" a
// number (the first four bytes), "d" removes the key.

#include <algorithm>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "environment/code_page.h"
#include "environment/registry_file.h"
#include "fuzz/fuzz_support.h"

namespace txs::fuzz {
namespace {

constexpr std::size_t kMostChanges = 6;
// Every key is looked at under every name, so that many of both would be slow.
constexpr std::size_t kMostNames = 40;

using Names = std::set<std::string>;

std::string Decoded(std::string_view bytes) {
  if (bytes.starts_with("\xFF\xFE")) return Utf16ToUtf8(bytes.substr(2));
  if (bytes.size() >= 2 && bytes[0] != '\0' && bytes[1] == '\0') return Utf16ToUtf8(bytes);
  return IsUtf8(bytes) ? std::string(bytes) : AnsiToUtf8(bytes);
}

// What the file might call a key or a value: between brackets and between quotes.
void CollectNames(std::string_view text, Names& keys, Names& values) {
  while (!text.empty()) {
    const std::string_view line = text.substr(0, text.find_first_of("\r\n"));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    const std::size_t begin = line.find_first_of("[\"");
    if (begin == std::string_view::npos) continue;
    const std::size_t end = line[begin] == '[' ? line.rfind(']') : line.find('"', begin + 1);
    if (end == std::string_view::npos || end <= begin) continue;
    Names& names = line[begin] == '[' ? keys : values;
    const std::string_view name = line.substr(begin + 1, end - begin - 1);
    if (names.size() < kMostNames && IsUtf8(name)) names.insert(FoldCase(name));
  }
}

struct KeyContents {
  bool exists = false;
  std::vector<std::string> subkeys;
  std::map<std::string, RegistryValue> values;

  bool operator==(const KeyContents&) const = default;
};
using Snapshot = std::map<std::string, KeyContents>;

Snapshot SnapshotOf(const RegistryFile& file, const Names& keys, const Names& values) {
  Snapshot snapshot;
  for (const std::string& key : keys) {
    KeyContents& contents = snapshot[key];
    contents.exists = file.HasKey(key);
    contents.subkeys = file.Subkeys(key);
    Require(contents.exists || contents.subkeys.empty(), "a key with subkeys exists");
    for (const std::string& name : values) {
      if (std::optional<RegistryValue> value = file.Value(key, name)) {
        Require(contents.exists, "a key with values exists");
        contents.values.emplace(name, *std::move(value));
      }
    }
  }
  return snapshot;
}

bool IsBelow(const std::string& key, const std::string& above) {
  return key == above || key.starts_with(above + "\\");
}

void SetValue(RegistryFile& file, std::string_view key, std::string_view name,
              const RegistryValue& value, const Names& keys, const Names& names) {
  const std::string bytes = file.Bytes();
  const Snapshot before = SnapshotOf(file, keys, names);

  const std::optional<ErrorNumber> error = ErrorFrom([&] { file.Set(key, name, value); });

  if (error) {
    Require(*error == ErrorNumber::kInvalidCall, "what cannot be held is an invalid call");
    Require(file.Bytes() == bytes, "a refused change changes nothing");
    Require(SnapshotOf(file, keys, names) == before, "a refused change changes nothing");
    return;
  }
  Require(file.Value(key, name) == value, "a value is what it was set to");
  Snapshot after = SnapshotOf(file, keys, names);
  for (const auto& [other_key, contents] : before) {
    for (const auto& [other_name, other_value] : contents.values) {
      if (other_key == FoldCase(key) && other_name == FoldCase(name)) continue;
      const auto found = after[other_key].values.find(other_name);
      Require(found != after[other_key].values.end() && found->second == other_value,
              "setting a value leaves all others as they were");
    }
  }
  const std::string written = file.Bytes();
  file.Set(key, name, value);
  Require(file.Bytes() == written, "setting a value to what it is changes nothing");
}

void RemoveKey(RegistryFile& file, std::string_view key, const Names& keys, const Names& names) {
  const std::string bytes = file.Bytes();
  const Snapshot before = SnapshotOf(file, keys, names);
  const bool was_there = file.HasKey(key);

  const bool removed = file.RemoveKey(key);

  Require(removed == was_there, "what is there is removed");
  Require(!file.HasKey(key), "a removed key is gone");
  if (!removed) Require(file.Bytes() == bytes, "removing nothing changes nothing");
  const Snapshot after = SnapshotOf(file, keys, names);
  const std::string folded = FoldCase(key);
  for (const auto& [other_key, contents] : before) {
    if (IsBelow(other_key, folded)) continue;
    const KeyContents& now = after.at(other_key);
    Require(now.exists == contents.exists, "removing a key keeps all others, its parent too");
    Require(now.values == contents.values, "removing a key keeps the values of all others");
  }
}

void FuzzRegistryFile(std::string_view input) {
  const std::vector<std::string_view> parts = Parts(input, kMostChanges + 1);
  const std::string_view bytes = parts.front();

  const Allocations allocations;
  std::unique_ptr<RegistryFile> file;
  const std::optional<ErrorNumber> error =
      ErrorFrom([&] { file = std::make_unique<RegistryFile>(bytes); });
  allocations.RequireAtMost(bytes.size(), 1500, "reading an export takes memory as its size");
  if (error) {
    Require(*error == ErrorNumber::kInvalidCall, "what is no export is an invalid call");
    return;
  }
  Require(file->Bytes() == bytes, "an export that nobody changed is written as it was read");

  Names keys = {"hkey_local_machine", "hkey_current_user"};
  Names names = {""};
  for (std::size_t i = 1; i < parts.size(); ++i) {
    std::string_view change = parts[i];
    static_cast<void>(TakeUntil(&change, '\n'));
    keys.insert(FoldCase(TakeUntil(&change, '\n')));
    names.insert(FoldCase(TakeUntil(&change, '\n')));
  }
  CollectNames(Decoded(bytes), keys, names);

  for (std::size_t i = 1; i < parts.size(); ++i) {
    std::string_view change = parts[i];
    const std::string_view kind = TakeUntil(&change, '\n');
    const std::string_view key = TakeUntil(&change, '\n');
    const std::string_view name = TakeUntil(&change, '\n');
    if (kind == "t") {
      SetValue(*file, key, name, std::string(change), keys, names);
    } else if (kind == "n") {
      std::uint32_t number = 0;
      for (const char c : change.substr(0, 4)) {
        number = number << 8 | static_cast<unsigned char>(c);
      }
      SetValue(*file, key, name, number, keys, names);
    } else if (kind == "d") {
      RemoveKey(*file, key, keys, names);
    }
    const std::string written = file->Bytes();
    const RegistryFile again(written);
    Require(again.Bytes() == written, "what was written is written again as it is");
    Require(SnapshotOf(again, keys, names) == SnapshotOf(*file, keys, names),
            "what was written is read back");
  }
}

}  // namespace
}  // namespace txs::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  txs::fuzz::FuzzRegistryFile(txs::fuzz::AsText(data, size));
  return 0;
}
