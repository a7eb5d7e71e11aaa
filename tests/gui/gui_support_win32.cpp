// What only Windows itself can tell a test.
#include <windows.h>
// After windows.h, which they build on.
#include <commctrl.h>
#include <oleacc.h>
#include <wx/dataview.h>
#include <wx/image.h>
#include <wx/textctrl.h>

#include <array>
#include <iterator>
#include <stdexcept>

#include "gui/cell_editor.h"
#include "gui/gui_support.h"
#include "gui/picture_file.h"

namespace txs {
namespace {

std::string NameOf(HWND window) {
  IAccessible* accessible = nullptr;
  const HRESULT found =
      AccessibleObjectFromWindow(window, static_cast<DWORD>(OBJID_CLIENT), IID_IAccessible,
                                 reinterpret_cast<void**>(&accessible));
  if (FAILED(found) || accessible == nullptr) return "";
  VARIANT self = {};
  self.vt = VT_I4;
  self.lVal = CHILDID_SELF;
  BSTR name = nullptr;
  std::string text;
  if (accessible->get_accName(self, &name) == S_OK && name != nullptr) {
    text = wxString(name).utf8_string();
  }
  SysFreeString(name);
  accessible->Release();
  return text;
}

BOOL CALLBACK FindTooltip(HWND window, LPARAM found) {
  std::array<wchar_t, 64> name{};
  GetClassNameW(window, name.data(), static_cast<int>(name.size()));
  if (std::wstring(name.data()) != TOOLTIPS_CLASSW || IsWindowVisible(window) == FALSE) return TRUE;
  std::array<wchar_t, 1024> text{};
  TTTOOLINFOW tool = {};
  tool.cbSize = sizeof tool;
  if (SendMessageW(window, TTM_GETCURRENTTOOLW, 0, reinterpret_cast<LPARAM>(&tool)) == 0) {
    return TRUE;
  }
  tool.lpszText = text.data();
  SendMessageW(window, TTM_GETTEXTW, text.size(), reinterpret_cast<LPARAM>(&tool));
  *reinterpret_cast<std::string*>(found) = wxString(text.data()).utf8_string();
  return FALSE;
}

}  // namespace

// Windows gives a window its frame and its place at once.
bool IsInPlace(wxTopLevelWindow& form) { return form.IsShownOnScreen(); }

// Nor does it put off a layout.
void SetEditorText(wxDataViewCtrl& list, const std::string& text) {
  for (unsigned int i = 0; i < list.GetColumnCount(); ++i) {
    auto* const editor =
        dynamic_cast<wxTextCtrl*>(list.GetColumn(i)->GetRenderer()->GetEditorCtrl());
    if (editor == nullptr) continue;
    editor->SetValue(wxString::FromUTF8(text));
    return;
  }
  throw std::runtime_error("no editor is open");
}

bool WaitForFrame(wxTopLevelWindow& form) {
  LetEventsRun();
  form.Update();
  return form.IsShownOnScreen();
}

std::string ShownTooltip() {
  std::string text;
  EnumThreadWindows(GetCurrentThreadId(), FindTooltip, reinterpret_cast<LPARAM>(&text));
  return text;
}

unsigned long ClipboardChanges() { return GetClipboardSequenceNumber(); }

bool FocusIsIn(wxWindow& window) {
  const HWND focus = GetFocus();
  return focus != nullptr &&
         (focus == window.GetHWND() || IsChild(window.GetHWND(), focus) != FALSE);
}

std::string NameOfFocus(wxTopLevelWindow& /*form*/) {
  const wxWindow* const focus = wxWindow::FindFocus();
  if (focus == nullptr) return "";
  // The list's rows are a window of their own; what happens in it is announced of the list.
  const bool is_list = dynamic_cast<wxDataViewCtrl*>(focus->GetParent()) != nullptr;
  return NameOf(is_list ? focus->GetParent()->GetHWND() : focus->GetHWND());
}

void ForgetPictureOfScreen(void* /*cairo_context*/) {}

bool SavePicture(const wxBitmap& picture, const std::string& path) {
  wxImage image = picture.ConvertToImage();
  // What Windows draws without transparency is not marked as opaque.
  image.ClearAlpha();
  return image.SaveFile(wxString::FromUTF8(path + ".bmp"), wxBITMAP_TYPE_BMP);
}

}  // namespace txs
