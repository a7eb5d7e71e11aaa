// The editor that lies over a cell of a list: the toolkit's own, which no test finds by a name.
#pragma once

#include <wx/dataview.h>

#include <string>

namespace txs {

// Puts a text into the editor that is open in `list`, as if it had been typed; throws when there is
// none.
void SetEditorText(wxDataViewCtrl& list, const std::string& text);

}  // namespace txs
