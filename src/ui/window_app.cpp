#include "ui/window_app.h"

#include <wx/init.h>
#include <wx/log.h>

#include <array>
#include <exception>
#include <iostream>

#include "ui/toolkit_messages.h"

namespace txs {

bool WindowApp::OnInit() {
  // Not the toolkit's own: that one reads the command line, which is the program's business.
  return true;
}

bool WindowApp::OnExceptionInMainLoop() {
  // The toolkit calls this in its handler of the exception.
  // cppcheck-suppress rethrowNoCurrentException
  if (!reporter_) throw;
  std::string reason;
  try {
    // cppcheck-suppress rethrowNoCurrentException
    throw;
  } catch (const std::exception& error) {
    reason = error.what();
  } catch (...) {
    reason = "unknown exception";
  }
  // A handler that fails at every repaint would fail behind its own message, too.
  if (reporting_) {
    std::cerr << reason << '\n';
    return true;
  }
  reporting_ = true;
  try {
    reporter_(reason);
  } catch (...) {
    // Not even the box could be shown; whatever leaves from here ends the program.
    std::cerr << reason << '\n';
  }
  reporting_ = false;
  return true;
}

void WindowApp::OnAssertFailure(const wxChar* file, int line, const wxChar* function,
                                const wxChar* condition, const wxChar* message) {
  // The toolkit would ask the user whether to stop the program.
  std::cerr << wxString(file).utf8_string() << ':' << line << ": "
            << wxString(function).utf8_string() << ": " << wxString(condition).utf8_string();
  if (message != nullptr) std::cerr << ": " << wxString(message).utf8_string();
  std::cerr << '\n';
}

WindowApp* ConnectToDisplay() {
  // Belongs to the toolkit from here on. Nothing is shut down: the connection ends with the
  // process.
  auto* const app = new WindowApp;
  wxApp::SetInstance(app);
  DropSizeComplaints();
  // The toolkit gets the name by which window managers know the program, and no argument: it would
  // take those that it knows for its own.
  static std::array<char, sizeof("TXSetupWizard")> name = {"TXSetupWizard"};
  static std::array<char*, 2> arguments = {name.data(), nullptr};
  int count = 1;
  if (!wxEntryStart(count, arguments.data())) return nullptr;
  // What the toolkit has to complain about is no message for the user: whoever called it tells what
  // failed.
  delete wxLog::SetActiveTarget(new wxLogStderr);
  return app->CallOnInit() ? app : nullptr;
}

}  // namespace txs
