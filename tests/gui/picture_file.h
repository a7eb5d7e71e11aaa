// The files that pictures of the screen are saved in.
#pragma once

#include <wx/bitmap.h>

#include <string>

namespace txs {

// Writes a picture to `path` with the ending of the format that the toolkit has on this system,
// ".png" or
// ".bmp". False when it cannot be written.
bool SavePicture(const wxBitmap& picture, const std::string& path);

}  // namespace txs
