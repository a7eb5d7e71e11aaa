#include "ui/window_memory.h"

namespace txs {}  // namespace txs
