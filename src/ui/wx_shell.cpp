#include "ui/wx_shell.h"

namespace txs {}  // namespace txs
