#include "document/work_border.h"

#include <exception>
#include <new>

#include "environment/runtime_error.h"
#include "strings/reason.h"

namespace txs {
namespace {

RuntimeError ThrownError() {
  try {
    throw;
  } catch (const RuntimeError& error) {
    return error;
  } catch (const std::bad_alloc&) {
    return RuntimeError(ErrorNumber::kOutOfMemory, Words(Reason::kOutOfMemory));
  } catch (const std::exception& error) {
    return RuntimeError(ErrorNumber::kInternal, error.what());
  }
}

}  // namespace

bool AtWorkBorder(Application& application, long id, const std::string& subject,
                  const std::function<bool()>& work) {
  try {
    return work();
  } catch (const std::exception&) {
    try {
      ShowError(application, id, {subject}, ThrownError());
    } catch (const std::exception&) {
      // Not even the message could be shown. The run still has to end as a failed one.
    }
    return false;
  }
}

}  // namespace txs
