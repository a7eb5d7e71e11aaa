#include "ui/clipboard.h"

#include <wx/clipbrd.h>
#include <wx/dataobj.h>
#include <wx/utils.h>

namespace txs {

void CopyToClipboard(const wxString& text) {
  const wxClipboardLocker locker;
  if (!locker || !wxTheClipboard->SetData(new wxTextDataObject(text))) {
    wxBell();
    return;
  }
  wxTheClipboard->Flush();
}

}  // namespace txs
