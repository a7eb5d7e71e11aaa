#include "ui/setup_wizard_presenter.h"

namespace txs {}  // namespace txs
