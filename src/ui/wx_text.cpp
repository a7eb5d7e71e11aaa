#include "ui/wx_text.h"

namespace txs {

wxString ToWx(std::string_view utf8) {
  wxString text = wxString::FromUTF8(utf8.data(), utf8.size());
  if (text.empty() && !utf8.empty()) text = wxString::From8BitData(utf8.data(), utf8.size());
  return text;
}

wxString ToWxLines(std::string_view utf8) {
  wxString text = ToWx(utf8);
  text.Replace("\r\n", "\n");
  return text;
}

std::string FromWx(const wxString& text) { return text.utf8_string(); }

}  // namespace txs
