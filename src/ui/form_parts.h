// What the step pages of the main form are made of: captioned controls that show a field of the
// document and forward what the user does with it.
#pragma once

#include <wx/button.h>
#include <wx/checkbox.h>
#include <wx/radiobut.h>
#include <wx/statbox.h>
#include <wx/stattext.h>
#include <wx/textctrl.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "document/application.h"
#include "ui/form_captions.h"
#include "ui/setup_wizard_presenter.h"
#include "ui/step_controls.h"

namespace txs {

// A text box of the steps. Edits go to the presenter; a directory is normalised when the focus
// leaves it; a text that is longer than the box shows whole in a tooltip.
class DocumentBox : public wxTextCtrl {
 public:
  DocumentBox(wxWindow* parent, const TextBox& box, Application& application,
              SetupWizardPresenter& presenter);

  void ShowDocument();  // forwards nothing
  void TakeEdit();      // normalises a directory, as leaving the box does
  [[nodiscard]] const TextBox& Box() const { return box_; }

 private:
  void OnText();

  const TextBox& box_;
  Application& application_;
  SetupWizardPresenter& presenter_;
};

// Shows the text of `box` as its tooltip exactly while it is longer than the box.
void ShowCutText(wxTextCtrl& box);

// Makes the controls of one form. Every control is named as documented; controls belong to their
// parents.
class FormParts {
 public:
  FormParts(Application& application, SetupWizardPresenter& presenter, FormCaptions& captions)
      : application_(application), presenter_(presenter), captions_(captions) {}

  [[nodiscard]] Application& App() const { return application_; }
  [[nodiscard]] SetupWizardPresenter& Presenter() const { return presenter_; }
  [[nodiscard]] FormCaptions& Captions() const { return captions_; }

  // An explanation or a heading.
  wxStaticText* AddLabel(wxWindow* parent, long id);
  // The label of a control: make it first, so that it precedes the control in tab order, then Tie
  // both.
  void Tie(wxStaticText* label, wxWindow* target) { tied_.push_back({label, target}); }
  // A control that has no label of its own: `name` gives its name once captions are there.
  void Announce(wxWindow* target, std::function<wxString()> name);

  // `take` ends an edit that waits for the focus to leave it; does nothing without one.
  void AddEdit(std::function<void()> take) { edits_.push_back(std::move(take)); }
  // Ends all such edits. An access key or a key of the menu acts without moving the focus.
  void TakeEdits();

  wxStaticBox* AddFrame(wxWindow* parent, const std::string& name, long id);
  // `pressed` finds all edits taken.
  wxButton* AddButton(wxWindow* parent, const std::string& name, long id,
                      std::function<void()> pressed);
  wxCheckBox* AddCheckBox(wxWindow* parent, const std::string& name, long id,
                          std::function<void(bool checked)> clicked);
  DocumentBox* AddBox(wxWindow* parent, const std::string& name);
  // The one that AddBox made of `box`.
  [[nodiscard]] DocumentBox* ControlOf(const TextBox& box) const;

  // Loads all captions, then ties the labels, whose texts are their controls' names.
  void ShowCaptions();
  // Takes all text boxes from the document anew.
  void ShowBoxes();

 private:
  struct Tied {
    wxStaticText* label;
    wxWindow* target;
  };
  struct Announced {
    wxWindow* target;
    std::function<wxString()> name;
  };

  Application& application_;
  SetupWizardPresenter& presenter_;
  FormCaptions& captions_;
  std::vector<Tied> tied_;
  std::vector<Announced> announced_;
  std::vector<std::function<void()>> edits_;
  std::vector<DocumentBox*> boxes_;
};

}  // namespace txs
