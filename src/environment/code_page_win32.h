// Which of the code pages of Windows our files can be in.
#pragma once

namespace txs {

// Whether each byte of the code page is a character. False for UTF-8 and for those of East Asia,
// in which our files never are, even where the system's own code page is one of them.
[[nodiscard]] bool IsSingleByteCodePage(unsigned code_page);

}  // namespace txs
