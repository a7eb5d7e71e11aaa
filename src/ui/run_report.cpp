#include "ui/run_report.h"

namespace txs {}  // namespace txs
