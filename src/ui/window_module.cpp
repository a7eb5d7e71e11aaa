// The entry of the window module (ui/windows.h).
#include <wx/clipbrd.h>

#include <exception>

#include "strings/reason.h"
#include "ui/help_viewer.h"
#include "ui/window_app.h"
#include "ui/windows.h"
#include "ui/wx_message_boxes.h"
#include "ui/wx_shell.h"

namespace txs {
namespace {

constexpr long kMessageUnexpected = 1977;

// While this lives, message boxes and application object know the application: its language, its
// help, and where to tell of a fault.
class Attachment {
 public:
  Attachment(Application& application, WindowApp& app, WxMessageBoxes& boxes)
      : help_(application.platform.host_paths), app_(app), boxes_(boxes) {
    // The module has its own copy of what the program has set.
    SetReasonLanguage(application.texts.LanguageId());
    boxes_.Use(application.texts, [&application, this](int help_context) {
      ShowHelp(application, help_, help_context);
    });
    app_.ReportFaultsTo([&application](const std::string& reason) {
      ShowError(application, kMessageUnexpected, {}, RuntimeError(ErrorNumber::kInternal, reason));
    });
  }
  ~Attachment() {
    app_.ReportFaultsTo({});
    boxes_.Use(TextService(/*language_id=*/0), {});
  }
  Attachment(const Attachment&) = delete;
  Attachment& operator=(const Attachment&) = delete;

 private:
  DesktopHelpViewer help_;
  WindowApp& app_;
  WxMessageBoxes& boxes_;
};

class ModuleWindows : public InteractiveShell {
 public:
  ModuleWindows(const char* application_title, WindowApp& app)
      : app_(app), boxes_(application_title) {}

  [[nodiscard]] WxMessageBoxes& Boxes() { return boxes_; }

  [[nodiscard]] std::string ChooseProject(Application& application) override {
    const Attachment attachment(application, app_, boxes_);
    return forms_.ChooseProject(application);
  }

  void RunMainForm(Application& application) override {
    const Attachment attachment(application, app_, boxes_);
    forms_.RunMainForm(application);
    // What the user copied from a state window is to outlive the program.
    wxTheClipboard->Flush();
  }

 private:
  WindowApp& app_;
  WxMessageBoxes boxes_;
  WxShell forms_;
};

}  // namespace
}  // namespace txs

extern "C" __attribute__((visibility("default"))) txs::Windows* TxsOpenWindows(
    const char* application_title) {
  try {
    txs::WindowApp* const app = txs::ConnectToDisplay();
    if (app == nullptr) return nullptr;
    static txs::ModuleWindows forms(application_title, *app);
    static txs::Windows windows{forms.Boxes(), forms};
    return &windows;
  } catch (const std::exception&) {
    // Without windows the program still has standard error.
    return nullptr;
  }
}
