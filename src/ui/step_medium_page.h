// Step 5: the storage medium, and the button that builds the installation.
#pragma once

#include <wx/panel.h>
#include <wx/radiobut.h>

#include <array>

#include "ui/form_parts.h"

namespace txs {

class StepMediumPage : public wxPanel {
 public:
  StepMediumPage(wxWindow* parent, FormParts& parts);

  // The option that is chosen.
  [[nodiscard]] wxWindow* FirstControl() const;

  void ShowDocument();
  void ShowFigures();

 private:
  wxSizer* AddMedium();
  wxSizer* AddFigures();
  wxSizer* AddOptimisation();
  void BrowseDirectory();

  FormParts& parts_;
  std::array<wxRadioButton*, 2> sizes_{};  // optDiskSize
  DocumentBox* directory_ = nullptr;       // txtSetupDirectory
  wxStaticText* count_ = nullptr;
  wxStaticText* bytes_ = nullptr;
  wxStaticText* disks_ = nullptr;
  wxStaticText* approximately_ = nullptr;
  wxCheckBox* minimal_mdac_ = nullptr;
  wxCheckBox* service_pack_ = nullptr;
};

}  // namespace txs
