#include "ui/options_form.h"

namespace txs {}  // namespace txs
