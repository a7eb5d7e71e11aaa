#include "ui/window_app.h"

#include <gtest/gtest.h>
#include <wx/button.h>
#include <wx/frame.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "gui/gui_support.h"

namespace txs {
namespace {

// A form whose button throws.
struct WindowAppTest : ::testing::Test {
  WindowApp& app = dynamic_cast<WindowApp&>(*wxTheApp);
  wxFrame form{nullptr, wxID_ANY, "form"};
  wxButton& button = *new wxButton(&form, wxID_ANY, "button");
  std::vector<std::string> reasons;

  ~WindowAppTest() override { app.ReportFaultsTo({}); }

  template <typename Thrown>
  void PressThrowing(const Thrown& thrown) {
    button.Bind(wxEVT_BUTTON, [thrown](wxCommandEvent&) { throw thrown; });
    ShowAndActivate(form);
    Click(button);
  }
};

TEST_F(WindowAppTest, AnExceptionOfAHandlerIsReportedAndTheFormLivesOn) {
  app.ReportFaultsTo([this](const std::string& reason) { reasons.push_back(reason); });

  PressThrowing(std::runtime_error("the reason"));
  EXPECT_TRUE(WaitFor([this] { return reasons.size() == 1; }));
  Click(button);

  EXPECT_TRUE(WaitFor([this] { return reasons.size() == 2; }));
  EXPECT_EQ(reasons[0], "the reason");
  EXPECT_TRUE(form.IsShown());
}

TEST_F(WindowAppTest, WhatIsNoExceptionObjectIsReportedToo) {
  app.ReportFaultsTo([this](const std::string& reason) { reasons.push_back(reason); });

  PressThrowing(4711);

  EXPECT_TRUE(WaitFor([this] { return !reasons.empty(); }));
}

TEST_F(WindowAppTest, AFaultBehindTheMessageOfAFaultIsNotReportedAgain) {
  app.ReportFaultsTo([this](const std::string& reason) {
    reasons.push_back(reason);
    wxCommandEvent again(wxEVT_BUTTON);
    button.GetEventHandler()->SafelyProcessEvent(again);
  });

  PressThrowing(std::runtime_error("the reason"));

  EXPECT_TRUE(WaitFor([this] { return !reasons.empty(); }));
  EXPECT_EQ(reasons.size(), 1u);
}

}  // namespace
}  // namespace txs
