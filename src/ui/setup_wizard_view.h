// What the main form shows and asks, as a passive view in plain types: the form implements it,
// tests script it.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "document/document_check.h"
#include "scan/search_file_dialog.h"
#include "ui/state_windows.h"
#include "ui/step_controls.h"

namespace txs {

// An open-file dialog: where it opens and what it offers. Directories and files are Windows names.
struct FileQuestion {
  std::string title;
  std::string filter;  // "All Files|*.*|Pictures|*.BMP;*.JPG"
  std::string directory;
  bool several = false;
};

class SetupWizardView {
 public:
  virtual ~SetupWizardView() = default;

  virtual void ShowTitle(const std::string& title) = 0;
  // Takes everything that the controls of the five steps hold from the document anew, including
  // what depends on the project's type and form designer. Selected rows and an open edit are
  // dropped.
  virtual void ShowDocument() = 0;
  // The rows of the file list changed: number, contents or marks. Keeps the selection where the
  // rows still exist.
  virtual void RefreshFileList() = 0;
  // The figures of step 5: count, bytes, disks.
  virtual void ShowFigures() = 0;
  virtual void ShowUserDirectories() = 0;
  virtual void SelectStep(Step step) = 0;
  // The step, the page within it, and the focus.
  virtual void SelectBox(const TextBox& box) = 0;
  virtual void SelectUserDirectory(std::size_t index) = 0;
  // Whether txtUserDirectory holds a text that was not added to the list.
  [[nodiscard]] virtual bool HoldsLooseText() const = 0;
  // Every control, menus included, is disabled while a run is under way.
  virtual void EnableControls(bool enabled) = 0;
  virtual void ShowBusy(bool busy) = 0;
  virtual void Beep() = 0;
  virtual void Close() = 0;

  // Modal dialogs.
  [[nodiscard]] virtual std::string ChooseProject() = 0;  // empty: none
  // Empty when the dialog was cancelled; names in the dialog's order.
  [[nodiscard]] virtual std::vector<std::string> ChooseFiles(const FileQuestion& question) = 0;
  virtual void ShowOptions() = 0;
  virtual void ShowInfo() = 0;
  virtual void ShowHelpContents() = 0;

  // A new window per run.
  [[nodiscard]] virtual std::unique_ptr<ScanStateWindow> MakeScanWindow() = 0;
  [[nodiscard]] virtual std::unique_ptr<CreateStateWindow> MakeCreateWindow() = 0;
  // Lives as long as the form.
  [[nodiscard]] virtual SearchFileDialog& SearchDialog() = 0;
};

}  // namespace txs
