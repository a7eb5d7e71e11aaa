#include "ui/file_dialogs.h"

namespace txs {

std::string HostFilter(std::string_view filter) { return std::string(filter); }

}  // namespace txs
