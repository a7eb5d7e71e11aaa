#include "ui/form_parts.h"

#include <algorithm>
#include <utility>

#include "text/captions.h"
#include "ui/label_for.h"
#include "ui/wx_text.h"

namespace txs {
namespace {

// What the toolkit draws around the text of a box, on both sides together.
constexpr int kBoxMargins = 20;

}  // namespace

void ShowCutText(wxTextCtrl& box) {
  const wxString text = box.GetValue();
  const bool cut =
      box.GetTextExtent(text).GetWidth() > box.GetSize().GetWidth() - box.FromDIP(kBoxMargins);
  if (!cut) {
    if (box.GetToolTip() != nullptr) box.UnsetToolTip();
  } else if (box.GetToolTipText() != text) {
    box.SetToolTip(text);
  }
}

DocumentBox::DocumentBox(wxWindow* parent, const TextBox& box, Application& application,
                         SetupWizardPresenter& presenter)
    : wxTextCtrl(parent, wxID_ANY), box_(box), application_(application), presenter_(presenter) {
  SetName(ToWx(box.name));
  Bind(wxEVT_TEXT, [this](wxCommandEvent&) { OnText(); });
  Bind(wxEVT_SIZE, [this](wxSizeEvent& event) {
    ShowCutText(*this);
    event.Skip();
  });
  if (box.is_directory) {
    Bind(wxEVT_KILL_FOCUS, [this](wxFocusEvent& event) {
      TakeEdit();
      event.Skip();
    });
  }
}

void DocumentBox::ShowDocument() {
  const wxString text = ToWx(box_.field(application_.document.steps));
  if (GetValue() != text) ChangeValue(text);
  ShowCutText(*this);
}

void DocumentBox::OnText() {
  presenter_.TextEdited(box_, FromWx(GetValue()));
  ShowCutText(*this);
}

void DocumentBox::TakeEdit() {
  if (!box_.is_directory) return;
  const wxString text = ToWx(presenter_.LeaveDirectory(FromWx(GetValue())));
  // An edit like any other: the document holds the normalised text too.
  if (text != GetValue()) SetValue(text);
}

wxStaticText* FormParts::AddLabel(wxWindow* parent, long id) {
  auto* const label = new wxStaticText(parent, wxID_ANY, wxString());
  captions_.Add(*label, id);
  return label;
}

void FormParts::Announce(wxWindow* target, std::function<wxString()> name) {
  announced_.push_back({target, std::move(name)});
}

wxStaticBox* FormParts::AddFrame(wxWindow* parent, const std::string& name, long id) {
  auto* const frame = new wxStaticBox(parent, wxID_ANY, wxString());
  frame->SetName(ToWx(name));
  captions_.Add(*frame, id);
  return frame;
}

wxButton* FormParts::AddButton(wxWindow* parent, const std::string& name, long id,
                               std::function<void()> pressed) {
  // A button without a text would be taken for one of the toolkit's own.
  auto* const button = new wxButton(parent, wxID_ANY, ToWx(application_.texts.GetText(id)));
  button->SetName(ToWx(name));
  button->Bind(wxEVT_BUTTON, [this, pressed = std::move(pressed)](wxCommandEvent&) {
    TakeEdits();
    pressed();
  });
  captions_.Add(*button, id);
  return button;
}

wxCheckBox* FormParts::AddCheckBox(wxWindow* parent, const std::string& name, long id,
                                   std::function<void(bool checked)> clicked) {
  auto* const box = new wxCheckBox(parent, wxID_ANY, wxString());
  box->SetName(ToWx(name));
  box->Bind(wxEVT_CHECKBOX,
            [clicked = std::move(clicked)](wxCommandEvent& event) { clicked(event.IsChecked()); });
  captions_.Add(*box, id);
  return box;
}

DocumentBox* FormParts::AddBox(wxWindow* parent, const std::string& name) {
  auto* const box = new DocumentBox(parent, FindTextBox(name), application_, presenter_);
  boxes_.push_back(box);
  if (box->Box().is_directory) {
    // The others have been left, or never entered: what nobody touched is no edit.
    AddEdit([box] {
      if (box->HasFocus()) box->TakeEdit();
    });
  }
  return box;
}

DocumentBox* FormParts::ControlOf(const TextBox& box) const {
  return *std::find_if(boxes_.begin(), boxes_.end(),
                       [&box](const DocumentBox* control) { return &control->Box() == &box; });
}

void FormParts::TakeEdits() {
  for (const std::function<void()>& take : edits_) take();
}

void FormParts::ShowCaptions() {
  LoadCaptions(captions_, application_.texts);
  for (const Tied& tied : tied_) LabelFor(*tied.label, *tied.target);
  for (const Announced& announced : announced_) {
    SetAccessibleName(*announced.target, announced.name());
  }
}

void FormParts::ShowBoxes() {
  for (DocumentBox* const box : boxes_) box->ShowDocument();
}

}  // namespace txs
