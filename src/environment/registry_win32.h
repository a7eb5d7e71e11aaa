// The registry of Windows, as the studio's 32-bit programs see it.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "environment/registry.h"

namespace txs {

// Keeps no key open. Subkeys come in the order of the system: by name.
class WindowsRegistry : public Registry {
 public:
  [[nodiscard]] std::optional<RegistryValue> Read(Hive hive, std::string_view key,
                                                  std::string_view name) const override;
  [[nodiscard]] std::vector<std::string> Subkeys(Hive hive, std::string_view key) const override;

  // Throw kPermissionDenied where the user may not (below HKEY_LOCAL_MACHINE as a rule only
  // administrators may), kInvalidCall for keys, names and texts that the registry cannot hold: zero
  // characters, empty key names or such of more than 255 characters, malformed UTF-8.
  void Write(Hive hive, std::string_view key, std::string_view name,
             const RegistryValue& value) override;
  // An empty key is a whole hive: kInvalidCall.
  void RemoveKey(Hive hive, std::string_view key) override;
};

}  // namespace txs
