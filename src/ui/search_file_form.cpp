#include "ui/search_file_form.h"

namespace txs {}  // namespace txs
