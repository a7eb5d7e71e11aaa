#include <windows.h>
// After windows.h, which they build on.
#include <shellapi.h>

#include <string>

#include "environment/runtime_error.h"
#include "ui/help_viewer.h"
#include "ui/wx_text.h"

namespace txs {
namespace {

// Of htmlhelp.h, which only Microsoft's compilers bring.
constexpr UINT kDisplayTopic = 0x0000;
constexpr UINT kHelpContext = 0x000F;
using HtmlHelpFunction = HWND(WINAPI*)(HWND caller, LPCWSTR file, UINT command, DWORD_PTR data);

// Null where Windows has no HTML Help, as its small editions. Stays loaded: the help window belongs
// to this process.
HtmlHelpFunction FindHtmlHelp() {
  static const HMODULE library =
      LoadLibraryExW(L"hhctrl.ocx", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
  if (library == nullptr) return nullptr;
  return reinterpret_cast<HtmlHelpFunction>(
      reinterpret_cast<void*>(GetProcAddress(library, "HtmlHelpW")));
}

bool ShowInHtmlHelp(const std::wstring& file, int topic) {
  const HtmlHelpFunction show = FindHtmlHelp();
  if (show == nullptr) return false;
  // The desktop as the window's owner: with a form as owner the help would always lie over it.
  return topic == kHelpContents
             ? show(nullptr, file.c_str(), kDisplayTopic, 0) != nullptr
             : show(nullptr, file.c_str(), kHelpContext, static_cast<DWORD_PTR>(topic)) != nullptr;
}

bool ShowInItsProgram(const std::wstring& file) {
  // A value above 32 says that it was started; the handle is none.
  const HINSTANCE result =
      ShellExecuteW(nullptr, L"open", file.c_str(), nullptr, nullptr, SW_SHOWNORMAL);
  return reinterpret_cast<INT_PTR>(result) > 32;
}

}  // namespace

bool DesktopHelpViewer::Open(const std::string& help_file, int topic) {
  try {
    const std::wstring file = ToWx(paths_.HostPath(help_file)).ToStdWstring();
    return ShowInHtmlHelp(file, topic) || ShowInItsProgram(file);
  } catch (const RuntimeError&) {
    return false;
  }
}

}  // namespace txs
