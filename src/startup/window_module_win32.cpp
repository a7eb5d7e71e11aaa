// On Windows the windows are part of the program: there is no toolkit that a computer may lack, and
// a program that is one file cannot lose half of itself. The toolkit is initialised by the first
// call, as on Linux.
#include "startup/window_module.h"

#include "startup/window_station_win32.h"

#ifdef TXS_WITH_WINDOWS
extern "C" txs::Windows* TxsOpenWindows(const char* application_title);
#endif

namespace txs {

OpenedWindows OpenWindowModule([[maybe_unused]] const char* application_title) {
#ifdef TXS_WITH_WINDOWS
  if (!WindowsCanBeSeen()) {
    return {.windows = nullptr, .fault = WindowFault::kNoDesktop, .reason = {}};
  }
  Windows* const windows = TxsOpenWindows(application_title);
  return {.windows = windows,
          .fault = windows == nullptr ? WindowFault::kNoDesktop : WindowFault::kNone,
          .reason = {}};
#else
  return {.windows = nullptr, .fault = WindowFault::kNoModule, .reason = {}};
#endif
}

}  // namespace txs
