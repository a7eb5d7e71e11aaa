// The two state windows as the main form uses them.
#pragma once

#include "create/create_view.h"
#include "scan/scan_view.h"
#include "ui/run_report.h"

namespace txs {

// What both have beyond the view of their run. The window appears with the run's Begin; a run that
// is refused before that shows no window. While the run lasts the window cannot be closed.
class StateWindow {
 public:
  virtual ~StateWindow() = default;

  // After the run: lists messages and missing files. Not called when there is nothing to tell.
  virtual void ShowReport(const RunReport& report) = 0;

  // Waits until the user presses OK. Returns at once when the window never appeared.
  virtual void WaitUntilClosed() = 0;
};

class ScanStateWindow : public ScanView, public StateWindow {};
class CreateStateWindow : public CreateView, public StateWindow {};

}  // namespace txs
