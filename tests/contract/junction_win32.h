// A folder that is another.
#pragma once

#include <string>

namespace txs {

enum class Junction { kNone, kReal, kLinkOfTheHost };

// Makes the folder `path` a junction to the folder `target`. Where Windows is Wine, which knows no
// junctions, a symbolic link of the host serves.
[[nodiscard]] Junction MakeJunction(const std::string& path, const std::string& target);

}  // namespace txs
