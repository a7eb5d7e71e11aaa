// Icons and stage pictures, drawn as vectors so that they are sharp on every scale.
#pragma once

#include <wx/bmpbndl.h>
#include <wx/iconbndl.h>

namespace txs {

[[nodiscard]] wxBitmapBundle StageRunningPicture();  // 16 x 16 device-independent pixels
[[nodiscard]] wxBitmapBundle StageDonePicture();
[[nodiscard]] wxBitmapBundle StageErrorPicture();
[[nodiscard]] wxBitmapBundle NoticePicture();       // 32 x 32, Take-note dialog
[[nodiscard]] wxBitmapBundle ApplicationPicture();  // 48 x 48, Info dialog

// The program's icon in the usual sizes, for title bars.
[[nodiscard]] wxIconBundle ApplicationIcons();

}  // namespace txs
