#include "startup/window_module.h"

namespace txs {

const OpenedWindows& WindowModule::Open() {
  if (!opened_) opened_ = open_();
  return *opened_;
}

}  // namespace txs
