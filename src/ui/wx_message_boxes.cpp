#include "ui/wx_message_boxes.h"

#include <wx/app.h>
#include <wx/init.h>
#include <wx/msgdlg.h>

namespace txs {
namespace {

constexpr int kButtonsMask = 0xF;
constexpr int kIconMask = 0xF0;

long ButtonStyle(int buttons) {
  switch (buttons & kButtonsMask) {
    case kButtonsYesNoCancel:
      return wxYES_NO | wxCANCEL;
    case kButtonsYesNo:
      return wxYES_NO;
    default:
      return wxOK;
  }
}

long IconStyle(int buttons) {
  switch (buttons & kIconMask) {
    case kIconCritical:
      return wxICON_ERROR;
    case kIconQuestion:
      return wxICON_QUESTION;
    case kIconExclamation:
      return wxICON_EXCLAMATION;
    case kIconInformation:
      return wxICON_INFORMATION;
    default:
      return wxICON_NONE;
  }
}

MessageResult ResultOf(int pressed) {
  switch (pressed) {
    case wxID_YES:
      return MessageResult::kYes;
    case wxID_NO:
      return MessageResult::kNo;
    case wxID_CANCEL:
      return MessageResult::kCancel;
    default:
      return MessageResult::kOk;
  }
}

wxString ToBoxText(const std::string& utf8) {
  wxString text = wxString::FromUTF8(utf8);
  // Never an empty box: a system's words may be in another encoding.
  if (text.empty() && !utf8.empty()) text = wxString::From8BitData(utf8.data(), utf8.size());
  text.Replace("\r\n", "\n");
  return text;
}

}  // namespace

MessageResult WxMessageBoxes::Show(const std::string& prompt, int buttons, const std::string& title,
                                   const std::string& help_file, int help_context) {
  long style = ButtonStyle(buttons) | IconStyle(buttons) | wxCENTRE;
  if ((buttons & kButtonHelp) != 0 && open_help_ && !help_file.empty()) style |= wxHELP;
  for (;;) {
    wxMessageDialog dialog(nullptr, ToBoxText(prompt),
                           ToBoxText(title.empty() ? application_title_ : title), style);
    const int pressed = dialog.ShowModal();
    if (pressed != wxID_HELP) return ResultOf(pressed);
    open_help_(help_file, help_context);
  }
}

bool ConnectToDisplay() {
  // The application object belongs to wxWidgets from here on. Nothing is shut down: the connection
  // ends with the process.
  wxApp::SetInstance(new wxApp);
  int argc = 0;
  char** const no_arguments = nullptr;
  return wxEntryStart(argc, no_arguments) && wxTheApp->CallOnInit();
}

}  // namespace txs
