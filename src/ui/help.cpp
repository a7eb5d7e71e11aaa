#include "ui/help.h"

namespace txs {}  // namespace txs
