#include "ui/info_form.h"

namespace txs {}  // namespace txs
