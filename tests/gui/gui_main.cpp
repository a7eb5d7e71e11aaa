// The test program of the forms: connects to the display once, then runs the tests.
#include <gtest/gtest.h>
#include <wx/app.h>
#include <wx/init.h>

#include <iostream>

#include "ui/wx_message_boxes.h"

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  if (!txs::ConnectToDisplay()) {
    std::cerr << "No display. Run the tests through tests/gui/with_display.sh or ctest -L gui.\n";
    return 1;
  }
  // A closed form must not end the program: the next test has another.
  wxTheApp->SetExitOnFrameDelete(false);
  return RUN_ALL_TESTS();
}
