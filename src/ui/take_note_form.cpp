#include "ui/take_note_form.h"

namespace txs {}  // namespace txs
