// What the stage labels of the state window say while a stage runs. These words are the same in
// both languages, as they always were; all other texts come from the string table.
#pragma once

namespace txs {

inline constexpr char kCaptionStudioProject[] = "TavixStudio";
inline constexpr char kCaptionStudioFile[] = "TXS-Datei";
inline constexpr char kCaptionServerComponents[] = "Server-Komponenten";
inline constexpr char kCaptionDrivers[] = "Treiberprogramme";
inline constexpr char kCaptionVisualBasic[] = "Visual Basic";
inline constexpr char kCaptionExtraFunctions[] = "Zusatzfunktionen";
inline constexpr char kCaptionProgram[] = "EXE-Datei";

}  // namespace txs
