#include "ui/state_create_form.h"

namespace txs {}  // namespace txs
