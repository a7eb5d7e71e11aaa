#include "startup/window_station_win32.h"

#include <windows.h>

namespace txs {

bool WindowsCanBeSeen() {
  USEROBJECTFLAGS station = {};
  if (!GetUserObjectInformationW(GetProcessWindowStation(), UOI_FLAGS, &station, sizeof station,
                                 nullptr)) {
    return true;
  }
  return (station.dwFlags & WSF_VISIBLE) != 0;
}

}  // namespace txs
