// The main form.
#pragma once

#include <wx/frame.h>
#include <wx/menu.h>
#include <wx/notebook.h>
#include <wx/utils.h>
#include <wx/weakref.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "document/application.h"
#include "ui/form_captions.h"
#include "ui/form_parts.h"
#include "ui/help.h"
#include "ui/search_file_form.h"
#include "ui/setup_wizard_presenter.h"
#include "ui/setup_wizard_view.h"
#include "ui/step_directories_page.h"
#include "ui/step_files_page.h"
#include "ui/step_functions_page.h"
#include "ui/step_medium_page.h"
#include "ui/step_texts_page.h"

namespace txs {

class FSetupWizard : public wxFrame, public SetupWizardView {
 public:
  // Shows the project that is open in `application`.
  FSetupWizard(Application& application, HelpViewer& help);
  ~FSetupWizard() override;
  FSetupWizard(const FSetupWizard&) = delete;
  FSetupWizard& operator=(const FSetupWizard&) = delete;

  // --- SetupWizardView
  void ShowTitle(const std::string& title) override;
  void ShowDocument() override;
  void RefreshFileList() override;
  void ShowFigures() override;
  void ShowUserDirectories() override;
  void SelectStep(Step step) override;
  void SelectBox(const TextBox& box) override;
  void SelectUserDirectory(std::size_t index) override;
  [[nodiscard]] bool HoldsLooseText() const override;
  void EnableControls(bool enabled) override;
  void ShowBusy(bool busy) override;
  void Beep() override;
  void Close() override;
  [[nodiscard]] std::string ChooseProject() override;
  [[nodiscard]] std::vector<std::string> ChooseFiles(const FileQuestion& question) override;
  void ShowOptions() override;
  void ShowInfo() override;
  void ShowHelpContents() override;
  [[nodiscard]] std::unique_ptr<ScanStateWindow> MakeScanWindow() override;
  [[nodiscard]] std::unique_ptr<CreateStateWindow> MakeCreateWindow() override;
  [[nodiscard]] SearchFileDialog& SearchDialog() override;

 private:
  void AddMenus();
  wxMenu* AddMenu(long caption);
  // `key`: "Ctrl+O", or empty.
  void AddCommand(wxMenu* menu, const wxString& key, long caption, std::function<void()> command);
  void AddSteps();

  void OnClose(wxCloseEvent& event);
  void OnKey(wxKeyEvent& event);
  [[nodiscard]] bool TakeKey(const wxKeyEvent& event);
  void OnStepChanged(wxBookCtrlEvent& event);
  void FocusStep();

  Application& application_;
  HelpViewer& help_;
  SetupWizardPresenter presenter_;
  FormCaptions captions_;
  FormParts parts_;
  SearchFileForms search_;

  std::vector<wxMenuItem*> commands_;
  wxPanel* root_ = nullptr;
  wxNotebook* tab_step_ = nullptr;
  StepTextsPage* texts_ = nullptr;
  StepDirectoriesPage* directories_ = nullptr;
  StepFunctionsPage* functions_ = nullptr;
  StepFilesPage* files_ = nullptr;
  StepMediumPage* medium_ = nullptr;

  Step step_ = Step::kTexts;
  bool keys_on_tabs_ = false;  // the arrow keys are walking along the tabs
  wxWeakRef<wxWindow> focus_before_run_;
  wxWeakRef<wxWindow> scan_window_;
  bool closed_ = false;  // waits for the toolkit to delete it
  std::optional<wxBusyCursor> busy_;
};

}  // namespace txs
