#include "ui/label_for.h"

#include <gtest/gtest.h>
#include <wx/checkbox.h>
#include <wx/choice.h>
#include <wx/dataview.h>
#include <wx/frame.h>
#include <wx/listbox.h>
#include <wx/listctrl.h>
#include <wx/panel.h>
#include <wx/sizer.h>
#include <wx/textctrl.h>

#include <functional>
#include <string>

#include "gui/gui_support.h"

namespace txs {
namespace {

// A frame with a button, a label "&Ziel: Größe" and the control that the label belongs to.
struct LabelledControl {
  explicit LabelledControl(const std::function<wxWindow*(wxWindow*)>& make)
      : form(nullptr, wxID_ANY, "LabelFor") {
    auto* const panel = new wxPanel(&form);
    auto* const rows = new wxBoxSizer(wxVERTICAL);
    first = new wxTextCtrl(panel, wxID_ANY);
    auto* const label = new wxStaticText(panel, wxID_ANY, wxString::FromUTF8("&Ziel: Größe"));
    target = make(panel);
    for (wxWindow* const row : std::initializer_list<wxWindow*>{first, label, target}) {
      rows->Add(row, wxSizerFlags().Expand());
    }
    panel->SetSizer(rows);
    LabelFor(*label, *target);
    ShowAndActivate(form);
    first->SetFocus();
    EXPECT_TRUE(WaitFor([&] { return first->HasFocus(); }));
  }

  // Asked of the toolkit: wxWidgets does not know of the button in a drop-down list.
  [[nodiscard]] bool TargetHasFocus() { return FocusIsIn(*target); }

  wxFrame form;
  wxTextCtrl* first = nullptr;
  wxWindow* target = nullptr;
};

struct Kind {
  const char* name;
  std::function<wxWindow*(wxWindow*)> make;
};

class LabelForEveryKind : public testing::TestWithParam<Kind> {};

TEST_P(LabelForEveryKind, TheAccessKeyOfTheLabelMovesTheFocusToItsControl) {
  LabelledControl world(GetParam().make);

  PressKey('Z', wxMOD_ALT);

  EXPECT_TRUE(WaitFor([&] { return world.TargetHasFocus(); }));
}

TEST_P(LabelForEveryKind, TheControlIsAnnouncedByTheTextOfItsLabel) {
  LabelledControl world(GetParam().make);
  PressKey('Z', wxMOD_ALT);
  EXPECT_TRUE(WaitFor([&] { return world.TargetHasFocus(); }));

  EXPECT_EQ(NameOfFocus(world.form), "Ziel: Größe");
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, LabelForEveryKind,
    testing::Values(Kind{"TextCtrl",
                         [](wxWindow* parent) { return new wxTextCtrl(parent, wxID_ANY); }},
                    Kind{"MultilineTextCtrl",
                         [](wxWindow* parent) {
                           return new wxTextCtrl(parent, wxID_ANY, "", wxDefaultPosition,
                                                 wxDefaultSize, wxTE_MULTILINE);
                         }},
                    Kind{"Choice",
                         [](wxWindow* parent) {
                           auto* const choice = new wxChoice(parent, wxID_ANY);
                           choice->Append("C:");
                           return choice;
                         }},
                    Kind{"ListBox",
                         [](wxWindow* parent) {
                           auto* const list = new wxListBox(parent, wxID_ANY);
                           list->Append("row");
                           return list;
                         }},
                    Kind{"ListView",
                         [](wxWindow* parent) {
                           auto* const list = new wxListView(parent, wxID_ANY);
                           list->AppendColumn("column");
                           list->InsertItem(0, "row");
                           return list;
                         }},
                    Kind{"DataViewListCtrl",
                         [](wxWindow* parent) {
                           auto* const list = new wxDataViewListCtrl(parent, wxID_ANY);
                           list->AppendTextColumn("column");
                           return list;
                         }}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(SetAccessibleName, AnnouncesAControlWithoutALabel) {
  wxFrame form(nullptr, wxID_ANY, "SetAccessibleName");
  auto* const list = new wxListView(&form, wxID_ANY);
  SetAccessibleName(*list, wxString::FromUTF8("Größen"));
  ShowAndActivate(form);
  list->SetFocus();

  EXPECT_TRUE(WaitFor([&] { return NameOfFocus(form) == "Größen"; }));
}

}  // namespace
}  // namespace txs
