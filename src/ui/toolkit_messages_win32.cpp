#include "ui/toolkit_messages.h"

namespace txs {

// Windows does not complain.
void DropSizeComplaints() {}

}  // namespace txs
