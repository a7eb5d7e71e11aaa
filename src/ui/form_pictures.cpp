#include "ui/form_pictures.h"

namespace txs {}  // namespace txs
