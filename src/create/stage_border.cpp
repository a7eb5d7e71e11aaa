#include "create/stage_border.h"

#include <exception>
#include <new>

#include "environment/runtime_error.h"

namespace txs {
namespace {

void ShowThrown(Application& application, long id, const std::string& subject) {
  try {
    throw;
  } catch (const RuntimeError& error) {
    ShowError(application, id, {subject}, error);
  } catch (const std::bad_alloc&) {
    ShowError(application, id, {subject}, RuntimeError(ErrorNumber::kOutOfMemory, "Out of memory"));
  } catch (const std::exception& error) {
    ShowError(application, id, {subject}, RuntimeError(ErrorNumber::kInternal, error.what()));
  }
}

}  // namespace

bool AtStageBorder(Application& application, long id, const std::string& subject,
                   const std::function<bool()>& work) {
  try {
    return work();
  } catch (const std::exception&) {
    try {
      ShowThrown(application, id, subject);
    } catch (const std::exception&) {
      // Not even the message could be shown. The run still has to end as a failed one.
    }
    return false;
  }
}

bool CancelledMeanwhile(CreateView& view) {
  view.LetEventsRun();
  return view.IsCancelPressed();
}

}  // namespace txs
