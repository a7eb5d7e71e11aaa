// A registry in memory. Subkeys keep the order in which they were made, with the spelling they were
// made with.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "environment/registry.h"
#include "environment/runtime_error.h"

namespace txs {

class MemoryRegistry : public Registry {
 public:
  // While set, Write and RemoveKey throw this.
  std::optional<ErrorNumber> refuse_changes;
  // Called before Write and RemoveKey; may throw in the name of the registry.
  std::function<void(std::string_view operation, std::string_view key)> before_change;

  [[nodiscard]] std::optional<RegistryValue> Read(Hive hive, std::string_view key,
                                                  std::string_view name) const override;
  void Write(Hive hive, std::string_view key, std::string_view name,
             const RegistryValue& value) override;
  [[nodiscard]] std::vector<std::string> Subkeys(Hive hive, std::string_view key) const override;
  void RemoveKey(Hive hive, std::string_view key) override;

  // Every value by its address, and every key with its subkeys; to be compared with another time's.
  [[nodiscard]] std::map<std::string, std::string> Everything() const;

 private:
  struct Key {
    std::map<std::string, RegistryValue> values;  // by folded name
    std::vector<std::string> subkeys;             // as spelled
  };

  Key& Make(Hive hive, std::string_view key);

  std::map<std::string, Key> keys_;  // by hive and folded path
};

}  // namespace txs
