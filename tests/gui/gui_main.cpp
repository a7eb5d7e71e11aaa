// The test program of the forms: connects to the display once, then runs the tests.
#include <gtest/gtest.h>
#include <wx/debug.h>

#include <iostream>

#include "ui/window_app.h"

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  if (!txs::ConnectToDisplay()) {
    std::cerr << "No display. Run the tests through tests/gui/with_display.sh or ctest -L gui.\n";
    return 1;
  }
  // The program passes over what the toolkit takes for a mistake in its use; a test must not.
  wxSetAssertHandler([](const wxString& file, int line, const wxString& /*function*/,
                        const wxString& condition, const wxString& message) {
    ADD_FAILURE_AT(file.utf8_string().c_str(), line)
        << condition.utf8_string() << ": " << message.utf8_string();
  });
  // A closed form must not end the program: the next test has another.
  wxTheApp->SetExitOnFrameDelete(false);
  return RUN_ALL_TESTS();
}
