// What every event of the main form does: the form forwards its events and knows nothing else.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "document/application.h"
#include "document/document_check.h"
#include "ui/setup_wizard_view.h"
#include "ui/step_controls.h"

namespace txs {

// Nothing here throws: every failure shows its message. While a run is under way nothing happens
// and every question is answered with "no". `application` and `view` must outlive it.
class SetupWizardPresenter {
 public:
  SetupWizardPresenter(Application& application, SetupWizardView& view)
      : application_(application), view_(view) {}

  // The form has been built: shows title, document and figures of the project that is open.
  void Load();

  // --- Menus
  // Asks 1706 when the document has changed, then for a project; opens it, at step 1, when one was
  // chosen.
  void OpenProject();
  // False after its message when the settings could not be written. A directory that was typed and
  // not added is not among them, and counts as a change again.
  bool Save();
  void End();  // closes the form, which asks MayClose
  void ShowHelpContents();
  void ShowInfo();
  void ShowOptions();
  void ClearSettings();  // asks 1704

  // The form is about to close: asks 1703 while the document has changed. False keeps it open.
  [[nodiscard]] bool MayClose();

  // --- Steps
  // Checks the document for the step that is left, which the form still shows, since a message may
  // be about what is seen there. False (after its message) when the form stays there; the view was
  // then told where to select what is wrong. Entering step 5 measures the files, unless leaving
  // step 4 has just done so.
  [[nodiscard]] bool ChangeStep(Step left, Step entered);

  // The text of a text box was edited. Sets the changed flag.
  void TextEdited(const TextBox& box, const std::string& text);
  // txtUserDirectory and txtRenameUserDir hold no setting yet, but an edit counts as a change.
  void LooseTextEdited();
  // What a directory text box must hold when the focus leaves it.
  [[nodiscard]] std::string LeaveDirectory(const std::string& text) const;
  // "..." beside a background picture: the chosen file with path variables, or nothing when
  // cancelled. The caller puts it into the box.
  [[nodiscard]] std::string BrowsePicture(const TextBox& box);

  // --- Step 2. Indexes are those of StepSettings::user_directories, from 0.
  // False (after a beep) when the list has that directory already; else the box is to be emptied.
  // Blanks add nothing.
  [[nodiscard]] bool AddUserDirectory(const std::string& text);
  void DeleteUserDirectory(std::size_t index);
  void RenameUserDirectory(std::size_t index, const std::string& text);

  // --- Steps 3 and 5
  void SetUseJet(bool checked);       // checked: notice 1714
  void SetUseOdbc(bool checked);      // checked: notice 1714
  void SetMinimalMdac(bool checked);  // checked: notice 1715
  void SetServicePack(bool checked);
  void SetDiskSize(long index);  // recomputes the disks needed

  // --- Step 4. Rows count from 1.
  void Scan();
  void AddFiles();
  // What AddFiles does with the chosen files; also the files that were dropped onto the list. Full
  // Windows paths; anything else is passed over. Folders are not added, and named in message 1927.
  // A file that cannot be added does not keep the following ones out.
  void AddFiles(const std::vector<std::string>& paths);
  void DeleteRows(const std::vector<std::size_t>& rows);
  // A cell was edited: takes the text, clears the row's mark, sets the changed flag. The grid shows
  // its own edit.
  void EditCell(std::size_t row, FileColumn column, const std::string& text);

  // --- Step 5. Selects step 4 when the run has marked rows there.
  void Create();

  // Whether a run is under way, or files are being added: closing, a second run and everything else
  // must wait.
  [[nodiscard]] bool IsRunning() const { return running_; }

 private:
  // The border of the events: runs `work` unless a run is under way. What it throws becomes message
  // 1913 and false.
  bool Act(const std::function<bool()>& work);
  [[nodiscard]] MessageResult Ask(long id, const std::vector<std::string>& parameters, int buttons);
  // Selects what a check of `step` found wrong: one of the step settings, or null for rows.
  void SelectWrong(Step step, const std::string* wrong);
  // Saves when the answer to question `id` is Yes; false on Cancel or when saving failed.
  [[nodiscard]] bool SaveOnRequest(long id);
  void ShowAll();
  // Takes the state of a check box; whether the user has just checked it.
  [[nodiscard]] bool Check(bool& setting, bool checked);
  void ShowNotice(long id, int icon);
  [[nodiscard]] std::string PictureDirectory(const TextBox& box) const;
  void AddEach(const std::vector<std::string>& paths);

  Application& application_;
  SetupWizardView& view_;
  bool running_ = false;
};

}  // namespace txs
