// The registry of a Linux host: a registry export that stands for the registry of the developer's
// Windows computer.
//
// The 32-bit view of an export from 64-bit Windows: below HKEY_LOCAL_MACHINE\Software a value under
// Software\Wow6432Node is seen first, the plain key where that has none; subkeys are those of both,
// the 32-bit ones first. HKEY_CLASSES_ROOT is what the file says under that name, then the user's
// and the machine's Software\Classes. Writing below HKEY_LOCAL_MACHINE goes to Wow6432Node when the
// file has the key or one above it there ("ORBEKA GmbH"), as the studio of that computer would; a
// class goes to the first of its keys that exists; else the key is made as named. Removing a key
// removes it in all these places.
//
// The file is read again when it has changed. Writing takes a lock (the file with ".lock" behind
// its name, which stays), reads what is there by then, and replaces the file atomically: two
// processes do not lose each other's values.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "environment/registry.h"

namespace txs {

class HostRegistry : public Registry {
 public:
  // `path` is the host path of the export; a missing one is an empty registry and is made by the
  // first write. Throws RuntimeError kPathFileAccess when it exists and cannot be read,
  // kInvalidCall when it is no registry export.
  explicit HostRegistry(std::string path);
  ~HostRegistry() override;

  // Of a file that is gone or has become unreadable since, readers see what it was when it was
  // last read.
  [[nodiscard]] std::optional<RegistryValue> Read(Hive hive, std::string_view key,
                                                  std::string_view name) const override;
  [[nodiscard]] std::vector<std::string> Subkeys(Hive hive, std::string_view key) const override;

  // Throw kPathNotFound when the folder of the file is missing, kPermissionDenied when another
  // process keeps the lock for ten seconds, kPathFileAccess when the file is read-only, cannot be
  // read, or was there and is gone, kInvalidCall when it is no registry export or cannot hold the
  // value; the file is then as it was.
  void Write(Hive hive, std::string_view key, std::string_view name,
             const RegistryValue& value) override;
  // An empty key is a whole hive: kInvalidCall.
  void RemoveKey(Hive hive, std::string_view key) override;

 private:
  struct State;

  std::string path_;
  std::unique_ptr<State> state_;
};

}  // namespace txs
