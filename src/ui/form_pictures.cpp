#include "ui/form_pictures.h"

#include <wx/icon.h>
#include <wx/image.h>

namespace txs {
namespace {

// Each stage picture is a filled shape that brings its own contrast, so that it reads on light and
// on dark windows alike; they differ in shape as well as in colour.

constexpr char kRunning[] = R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 16 16">
<circle cx="8" cy="8" r="7.5" fill="#1c71d8"/>
<path d="M6 4.2 L12 8 L6 11.8 Z" fill="#ffffff"/>
</svg>)";

constexpr char kDone[] = R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 16 16">
<circle cx="8" cy="8" r="7.5" fill="#26893f"/>
<path d="M4.4 8.4 L7 11 L11.8 5.4" fill="none" stroke="#ffffff" stroke-width="1.9"
 stroke-linecap="round" stroke-linejoin="round"/>
</svg>)";

constexpr char kError[] = R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 16 16">
<path d="M5 0.6 H11 L15.4 5 V11 L11 15.4 H5 L0.6 11 V5 Z" fill="#c81e2c"/>
<path d="M5.2 5.2 L10.8 10.8 M10.8 5.2 L5.2 10.8" fill="none" stroke="#ffffff" stroke-width="1.9"
 stroke-linecap="round"/>
</svg>)";

constexpr char kNotice[] = R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 32 32">
<path d="M16 3.2 L30 28 H2 Z" fill="#f6b73c" stroke="#a86a00" stroke-width="2"
 stroke-linejoin="round"/>
<path d="M14.1 11 H17.9 L17.2 20.4 H14.8 Z" fill="#33291a"/>
<circle cx="16" cy="23.9" r="1.9" fill="#33291a"/>
</svg>)";

// Two setup disks, one behind the other, with the wizard's star. The light outline keeps the dark
// shapes visible on a dark window.
constexpr char kApplication[] = R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 48 48">
<path d="M15 3 H42 Q45 3 45 6 V33 Q45 36 42 36 H15 Q12 36 12 33 V6 Q12 3 15 3 Z" fill="#8aa9cf"
 stroke="#e8eef6" stroke-width="1.5"/>
<path d="M6 11 H33 L37 15 V42 Q37 45 34 45 H6 Q3 45 3 42 V14 Q3 11 6 11 Z" fill="#1f5fa8"
 stroke="#e8eef6" stroke-width="1.5"/>
<path d="M11 11.8 H28 V21 Q28 22 27 22 H12 Q11 22 11 21 Z" fill="#d5dbe3"/>
<path d="M21.5 13.6 H25.5 V20 H21.5 Z" fill="#1f5fa8"/>
<path d="M8.5 28 Q8.5 27 9.5 27 H30.5 Q31.5 27 31.5 28 V44.2 H8.5 Z" fill="#ffffff"/>
<path d="M12 32.2 H28 M12 36.2 H28 M12 40.2 H22" fill="none" stroke="#8aa9cf" stroke-width="1.8"/>
<path d="M37 15.5 L39.6 22.4 L46.5 25 L39.6 27.6 L37 34.5 L34.4 27.6 L27.5 25 L34.4 22.4 Z"
 fill="#ffcf3f" stroke="#a86a00" stroke-width="1.2" stroke-linejoin="round"/>
</svg>)";

constexpr int kStageSize = 16;
constexpr int kNoticeSize = 32;
constexpr int kApplicationSize = 48;
constexpr int kIconSizes[] = {16, 24, 32, 48, 64, 128, 256};

wxBitmapBundle Draw(const char* picture, int size) {
  return wxBitmapBundle::FromSVG(picture, wxSize(size, size));
}

}  // namespace

wxBitmapBundle StageRunningPicture() { return Draw(kRunning, kStageSize); }

wxBitmapBundle StageDonePicture() { return Draw(kDone, kStageSize); }

wxBitmapBundle StageErrorPicture() { return Draw(kError, kStageSize); }

wxBitmapBundle NoticePicture() { return Draw(kNotice, kNoticeSize); }

wxBitmapBundle ApplicationPicture() { return Draw(kApplication, kApplicationSize); }

wxIconBundle ApplicationIcons() {
  const wxBitmapBundle picture = ApplicationPicture();
  wxIconBundle icons;
  for (const int size : kIconSizes) {
    // By way of an image: the bundle's own bitmap claims the bundle's size, whatever it was drawn
    // in.
    const wxImage drawn = picture.GetBitmap(wxSize(size, size)).ConvertToImage();
    wxIcon icon;
    icon.CopyFromBitmap(wxBitmap(drawn));
    icons.AddIcon(icon);
  }
  return icons;
}

}  // namespace txs
