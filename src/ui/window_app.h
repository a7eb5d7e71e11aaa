// The application object of the window toolkit.
#pragma once

#include <wx/app.h>

#include <functional>
#include <string>

namespace txs {

class WindowApp : public wxApp {
 public:
  using FaultReporter = std::function<void(const std::string& reason)>;

  // Who tells the user of an exception that got as far as the toolkit, which would end the program
  // and everything that was not saved. Empty: the exception goes on to whoever runs the event loop.
  void ReportFaultsTo(FaultReporter reporter) { reporter_ = std::move(reporter); }

  bool OnInit() override;
  bool OnExceptionInMainLoop() override;
  void OnAssertFailure(const wxChar* file, int line, const wxChar* function,
                       const wxChar* condition, const wxChar* message) override;

 private:
  FaultReporter reporter_;
  bool reporting_ = false;
};

// Initialises the toolkit for the rest of the process. Null when the display cannot be reached; the
// toolkit then writes the reason to standard error. The result belongs to the toolkit. To be called
// once.
[[nodiscard]] WindowApp* ConnectToDisplay();

}  // namespace txs
