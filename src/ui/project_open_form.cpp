#include "ui/project_open_form.h"

namespace txs {}  // namespace txs
