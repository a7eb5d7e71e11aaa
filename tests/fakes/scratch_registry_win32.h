// A key of the user's that stands for all hives of the registry, so that no test touches the real
// one.
#pragma once

#include <memory>

namespace txs {

// From its making to its end, this process sees an empty registry.
class ScratchRegistry {
 public:
  ScratchRegistry();
  ~ScratchRegistry();
  ScratchRegistry(const ScratchRegistry&) = delete;
  ScratchRegistry& operator=(const ScratchRegistry&) = delete;

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace txs
