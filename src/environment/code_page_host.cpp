// Windows-1252, the code page of the German and English Windows that the studio's files come from.

#include "environment/code_page_table.h"

namespace txs {
namespace {

// Bytes 0x80 to 0x9F; the rest is Latin-1. 0x81, 0x8D, 0x8F, 0x90 and 0x9D are unassigned and stand
// for the C1 control of the same number, as MultiByteToWideChar has it.
constexpr char16_t kUpperControls[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

constexpr CodePageTable MakeTable() {
  CodePageTable table{};
  for (std::size_t byte = 0; byte < table.size(); ++byte) {
    table[byte] =
        byte >= 0x80 && byte < 0xA0 ? kUpperControls[byte - 0x80] : static_cast<char16_t>(byte);
  }
  return table;
}

constexpr CodePageTable kWindows1252 = MakeTable();

}  // namespace

const CodePageTable& SystemCodePage() { return kWindows1252; }

}  // namespace txs
