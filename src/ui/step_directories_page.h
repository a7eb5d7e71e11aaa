// Step 2: the directories of the target computer.
#pragma once

#include <wx/button.h>
#include <wx/listctrl.h>
#include <wx/panel.h>
#include <wx/textctrl.h>

#include <cstddef>
#include <optional>
#include <vector>

#include "ui/form_parts.h"

namespace txs {

class StepDirectoriesPage : public wxPanel {
 public:
  StepDirectoriesPage(wxWindow* parent, FormParts& parts);

  [[nodiscard]] wxWindow* FirstControl() const { return first_box_; }

  // The other document was opened or this one cleared: no selection, no text that waits to be
  // added.
  void ShowDocument();
  // Takes the list from the document anew; the selected row stays selected while it exists. An open
  // edit is dropped.
  void ShowUserDirectories();
  // The row, counted from 0, and the focus with it.
  void SelectDirectory(std::size_t index);
  // Whether txtUserDirectory holds a text, which is in no list.
  [[nodiscard]] bool HoldsLooseText() const { return !text_->IsEmpty(); }

 private:
  wxSizer* AddUserDirectories();
  void BindList();
  void BindEditBoxes();

  // Index of the selected row.
  [[nodiscard]] std::optional<std::size_t> Selected() const;
  void EnableButtons();
  // The last column takes what the first one leaves.
  void FillColumns();

  void AddDirectory();
  void DeleteDirectory();
  void BeginRename();
  void TakeRename();
  void DropRename();
  void LeaveUserDirectory();

  FormParts& parts_;
  wxWindow* first_box_ = nullptr;
  wxListView* list_ = nullptr;  // lvwUserDirectories
  wxWindow* rows_ = nullptr;    // the part of the list that shows the rows and takes the keys
  wxButton* delete_ = nullptr;
  wxButton* rename_ = nullptr;
  wxButton* add_ = nullptr;
  wxTextCtrl* text_ = nullptr;          // txtUserDirectory
  wxTextCtrl* edit_ = nullptr;          // txtRenameUserDir
  std::vector<long> numbers_;           // of the rows that the list shows
  std::optional<std::size_t> renamed_;  // the row that `edit_` lies on
  bool stays_unselected_ = false;       // a row was deleted, and the list takes the focus
};

}  // namespace txs
