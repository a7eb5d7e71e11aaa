// What every stage asks of its view.
#pragma once

#include "create/create_view.h"

namespace txs {

// Lets pending window events run; whether Cancel has been pressed by then.
[[nodiscard]] bool CancelledMeanwhile(CreateView& view);

// The hourglass pointer for as long as this lives.
class BusyPointer {
 public:
  explicit BusyPointer(CreateView& view) : view_(view) { view_.ShowBusy(/*busy=*/true); }
  ~BusyPointer() { view_.ShowBusy(/*busy=*/false); }
  BusyPointer(const BusyPointer&) = delete;
  BusyPointer& operator=(const BusyPointer&) = delete;

 private:
  CreateView& view_;
};

}  // namespace txs
