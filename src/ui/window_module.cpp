// The entry of the window module, found by its name (startup/window_module.h).
#include <exception>

#include "ui/wx_message_boxes.h"

extern "C" __attribute__((visibility("default"))) txs::MessageBoxes* TxsOpenMessageBoxes(
    const char* application_title) {
  try {
    if (!txs::ConnectToDisplay()) return nullptr;
    static txs::WxMessageBoxes boxes(application_title, /*open_help=*/{});
    return &boxes;
  } catch (const std::exception&) {
    // Without windows the program still has standard error.
    return nullptr;
  }
}
