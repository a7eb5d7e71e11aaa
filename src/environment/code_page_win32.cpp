// The ANSI code page of this Windows.
//
// Where that is none of single bytes, which Windows-1252 stands in for: the studio's files come
// from German and English Windows, whatever the system here is set to. On systems whose code page
// is UTF-8 (an option of Windows 10) the one that the system's language had before is meant.

#include "environment/code_page_win32.h"

#include <windows.h>

#include "environment/code_page_table.h"

namespace txs {
namespace {

constexpr UINT kWindows1252 = 1252;

UINT AnsiCodePage() {
  if (IsSingleByteCodePage(GetACP())) return GetACP();
  DWORD of_language = 0;
  const int read = GetLocaleInfoEx(
      LOCALE_NAME_SYSTEM_DEFAULT, LOCALE_IDEFAULTANSICODEPAGE | LOCALE_RETURN_NUMBER,
      reinterpret_cast<wchar_t*>(&of_language), sizeof of_language / sizeof(wchar_t));
  return read != 0 && IsSingleByteCodePage(of_language) ? of_language : kWindows1252;
}

CodePageTable MakeTable() {
  const UINT code_page = AnsiCodePage();
  CodePageTable table = {};
  for (std::size_t i = 0; i < table.size(); ++i) {
    const char byte = static_cast<char>(i);
    wchar_t character = 0;
    // Without flags every byte has a character: what the code page leaves unassigned becomes a C1
    // control or one for private use, as every program on this system reads it.
    const bool is_read = MultiByteToWideChar(code_page, 0, &byte, 1, &character, 1) == 1;
    table[i] = static_cast<char16_t>(is_read ? character : i);
  }
  return table;
}

}  // namespace

bool IsSingleByteCodePage(unsigned code_page) {
  CPINFO info = {};
  return GetCPInfo(code_page, &info) && info.MaxCharSize == 1;
}

const CodePageTable& SystemCodePage() {
  static const CodePageTable kTable = MakeTable();
  return kTable;
}

}  // namespace txs
