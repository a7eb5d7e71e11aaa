#include "ui/step_controls.h"

namespace txs {}  // namespace txs
