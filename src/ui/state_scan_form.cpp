#include "ui/state_scan_form.h"

namespace txs {}  // namespace txs
