#include "ui/file_grid.h"

namespace txs {}  // namespace txs
