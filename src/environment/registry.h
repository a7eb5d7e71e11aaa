// The Windows registry as the program needs it: the 32-bit view, text and number values.
//
// Key paths are UTF-8 with "\" between names and no leading or trailing "\"
// ("Software\ORBEKA GmbH\Tavix\4.0"); keys and value names are compared without regard to case. The
// value name "" is a key's default value.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace txs {

enum class Hive { kClassesRoot, kCurrentUser, kLocalMachine };

// REG_SZ (REG_EXPAND_SZ is read as text, not expanded) or REG_DWORD.
using RegistryValue = std::variant<std::string, std::uint32_t>;

class Registry {
 public:
  virtual ~Registry() = default;

  // Nothing when the key or value is missing, of another type, or cannot be read: reading the
  // registry never fails.
  [[nodiscard]] virtual std::optional<RegistryValue> Read(Hive hive, std::string_view key,
                                                          std::string_view name) const = 0;

  // Creates the key and its parents as needed. Throws RuntimeError kPermissionDenied,
  // kPathFileAccess, ...; the registry is then as it was.
  virtual void Write(Hive hive, std::string_view key, std::string_view name,
                     const RegistryValue& value) = 0;

  // Names of the direct subkeys, in the registry's order; empty when the key is missing.
  [[nodiscard]] virtual std::vector<std::string> Subkeys(Hive hive, std::string_view key) const = 0;

  // Deletes the key with its values and subkeys; nothing happens when it is missing. Throws as
  // Write.
  virtual void RemoveKey(Hive hive, std::string_view key) = 0;
};

}  // namespace txs
