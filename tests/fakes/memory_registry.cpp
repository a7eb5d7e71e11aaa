#include "fakes/memory_registry.h"

#include <algorithm>
#include <cstdint>
#include <variant>

#include "environment/code_page.h"

namespace txs {
namespace {

std::string Address(Hive hive, std::string_view key) {
  return std::to_string(static_cast<int>(hive)) + "\\" + FoldCase(key);
}

}  // namespace

std::optional<RegistryValue> MemoryRegistry::Read(Hive hive, std::string_view key,
                                                  std::string_view name) const {
  const auto found = keys_.find(Address(hive, key));
  if (found == keys_.end()) return std::nullopt;
  const auto value = found->second.values.find(FoldCase(name));
  if (value == found->second.values.end()) return std::nullopt;
  return value->second;
}

void MemoryRegistry::Write(Hive hive, std::string_view key, std::string_view name,
                           const RegistryValue& value) {
  if (before_change) before_change("Registry.Write", key);
  if (refuse_changes) throw RuntimeError(*refuse_changes, std::string(key) + ": refused");
  Make(hive, key).values[FoldCase(name)] = value;
}

std::vector<std::string> MemoryRegistry::Subkeys(Hive hive, std::string_view key) const {
  const auto found = keys_.find(Address(hive, key));
  return found == keys_.end() ? std::vector<std::string>() : found->second.subkeys;
}

void MemoryRegistry::RemoveKey(Hive hive, std::string_view key) {
  if (before_change) before_change("Registry.RemoveKey", key);
  if (refuse_changes) throw RuntimeError(*refuse_changes, std::string(key) + ": refused");
  const std::string address = Address(hive, key);
  if (keys_.erase(address) == 0) return;
  const std::string inside = address + "\\";
  for (auto below = keys_.lower_bound(inside);
       below != keys_.end() && below->first.starts_with(inside);) {
    below = keys_.erase(below);
  }
  const std::size_t separator = key.rfind('\\');
  if (separator == std::string_view::npos) return;
  const auto parent = keys_.find(Address(hive, key.substr(0, separator)));
  if (parent == keys_.end()) return;
  std::erase_if(parent->second.subkeys, [&](const std::string& name) {
    return EqualNoCase(name, key.substr(separator + 1));
  });
}

std::map<std::string, std::string> MemoryRegistry::Everything() const {
  std::map<std::string, std::string> everything;
  for (const auto& [address, key] : keys_) {
    std::string& subkeys = everything[address];
    for (const std::string& name : key.subkeys) subkeys += name + "\n";
    for (const auto& [name, value] : key.values) {
      const auto* const text = std::get_if<std::string>(&value);
      everything[address + " " + name] =
          text != nullptr ? *text : std::to_string(std::get<std::uint32_t>(value));
    }
  }
  return everything;
}

MemoryRegistry::Key& MemoryRegistry::Make(Hive hive, std::string_view key) {
  const auto [made, is_new] = keys_.try_emplace(Address(hive, key));
  if (is_new) {
    const std::size_t separator = key.rfind('\\');
    if (separator != std::string_view::npos) {
      Make(hive, key.substr(0, separator)).subkeys.emplace_back(key.substr(separator + 1));
    }
  }
  return made->second;
}

}  // namespace txs
