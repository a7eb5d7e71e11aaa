// Copying a text.
#pragma once

#include <wx/string.h>

namespace txs {

// Puts `text` onto the clipboard; where the desktop keeps that, the text outlives the program. A
// bell says that nothing was copied, since another program holds the clipboard.
void CopyToClipboard(const wxString& text);

}  // namespace txs
