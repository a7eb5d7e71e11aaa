// The border of the stages: where what a stage threw becomes its message.
#pragma once

#include <functional>
#include <string>

#include "create/create_view.h"
#include "document/application.h"

namespace txs {

// Runs `work` and gives its result. What it throws is shown as message `id` about `subject`,
// followed by text 99, and gives false; without this border one unreadable file would end the
// process. `subject` is read only then, so that it names what the stage was busy with; it is not
// used by messages without a placeholder.
[[nodiscard]] bool AtStageBorder(Application& application, long id, const std::string& subject,
                                 const std::function<bool()>& work);

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
