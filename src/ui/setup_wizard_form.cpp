#include "ui/setup_wizard_form.h"

namespace txs {}  // namespace txs
