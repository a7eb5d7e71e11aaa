#include "create/stage_view.h"

namespace txs {

bool CancelledMeanwhile(CreateView& view) {
  view.LetEventsRun();
  return view.IsCancelPressed();
}

}  // namespace txs
