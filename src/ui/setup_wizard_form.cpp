#include "ui/setup_wizard_form.h"

#include <wx/panel.h>
#include <wx/sizer.h>

#include <cstddef>
#include <utility>

#include "ui/file_dialogs.h"
#include "ui/form_pictures.h"
#include "ui/info_form.h"
#include "ui/options_form.h"
#include "ui/project_open_form.h"
#include "ui/remembered_window.h"
#include "ui/state_create_form.h"
#include "ui/state_scan_form.h"
#include "ui/wx_text.h"

namespace txs {
namespace {

constexpr char kFormName[] = "FSetupWizard";
constexpr long kTitle = 1000;
constexpr long kFileMenu = 1010;
constexpr long kOpenProject = 1011;
constexpr long kSave = 1012;
constexpr long kEnd = 1013;
constexpr long kHelpMenu = 1020;
constexpr long kContent = 1021;
constexpr long kInfo = 1022;
constexpr long kExtrasMenu = 1030;
constexpr long kOptions = 1031;
constexpr long kClearSettings = 1032;
constexpr int kStepCount = 5;

// Steps count from 1, pages from 0.
std::size_t PageOf(Step step) { return static_cast<std::size_t>(step) - 1; }
Step StepOf(int page) { return static_cast<Step>(page + 1); }
// Text 1100 is the caption of step 1, 1200 that of step 2.
long CaptionOf(Step step) { return 1000 + 100 * static_cast<long>(step); }

}  // namespace

FSetupWizard::FSetupWizard(Application& application, HelpViewer& help)
    : wxFrame(nullptr, wxID_ANY, wxString()),
      application_(application),
      help_(help),
      presenter_(application, *this),
      captions_(*this, kTitle),
      parts_(application, presenter_, captions_),
      search_(application, help) {
  SetName(kFormName);
  SetIcons(ApplicationIcons());
  AddMenus();
  AddSteps();
  parts_.ShowCaptions();

  auto* const rows = new wxBoxSizer(wxVERTICAL);
  rows->Add(tab_step_, wxSizerFlags(1).Expand().Border(wxALL, FromDIP(8)));
  root_->SetSizer(rows);
  auto* const outer = new wxBoxSizer(wxVERTICAL);
  outer->Add(root_, wxSizerFlags(1).Expand());
  SetSizer(outer);

  presenter_.Load();
  // A page has no room until it is shown for the first time, and its controls would be squeezed
  // into it until then.
  for (wxWindow* const page : tab_step_->GetChildren()) page->SetSize(page->GetBestSize());
  outer->SetSizeHints(this);
  wxSize size = FromDIP(wxSize(960, 640));
  size.IncTo(GetMinSize());
  SetSize(size);
  files_->Grid().SetColumnWidths(RestoreWindow(*this, application.platform.registry, kFormName));
  CentreOnScreen();
  FocusStep();

  Bind(wxEVT_CLOSE_WINDOW, &FSetupWizard::OnClose, this);
  Bind(wxEVT_CHAR_HOOK, &FSetupWizard::OnKey, this);
  tab_step_->Bind(wxEVT_NOTEBOOK_PAGE_CHANGED, &FSetupWizard::OnStepChanged, this);
}

FSetupWizard::~FSetupWizard() {
  tab_step_->Unbind(wxEVT_NOTEBOOK_PAGE_CHANGED, &FSetupWizard::OnStepChanged, this);
  // The steps' events end in the presenter: they go first.
  delete root_;
}

void FSetupWizard::AddMenus() {
  SetMenuBar(new wxMenuBar);
  wxMenu* const file = AddMenu(kFileMenu);
  AddCommand(file, "Ctrl+O", kOpenProject, [this] { presenter_.OpenProject(); });
  AddCommand(file, "Ctrl+S", kSave, [this] { static_cast<void>(presenter_.Save()); });
  file->AppendSeparator();
  AddCommand(file, wxString(), kEnd, [this] { presenter_.End(); });
  wxMenu* const extras = AddMenu(kExtrasMenu);
  AddCommand(extras, wxString(), kOptions, [this] { presenter_.ShowOptions(); });
  AddCommand(extras, wxString(), kClearSettings, [this] { presenter_.ClearSettings(); });
  wxMenu* const help = AddMenu(kHelpMenu);
  AddCommand(help, "F1", kContent, [this] { presenter_.ShowHelpContents(); });
  help->AppendSeparator();
  AddCommand(help, wxString(), kInfo, [this] { presenter_.ShowInfo(); });
}

wxMenu* FSetupWizard::AddMenu(long caption) {
  auto* const menu = new wxMenu;
  const std::size_t index = GetMenuBar()->GetMenuCount();
  GetMenuBar()->Append(menu, ToWx(application_.texts.GetText(caption)));
  captions_.Add(caption,
                [this, index](const wxString& text) { GetMenuBar()->SetMenuLabel(index, text); });
  return menu;
}

void FSetupWizard::AddCommand(wxMenu* menu, const wxString& key, long caption,
                              std::function<void()> command) {
  wxMenuItem* const item = menu->Append(wxID_ANY, ToWx(application_.texts.GetText(caption)));
  captions_.Add(caption, [item, key](const wxString& text) {
    item->SetItemLabel(key.empty() ? text : text + "\t" + key);
  });
  Bind(
      wxEVT_MENU,
      [this, command = std::move(command)](wxCommandEvent&) {
        // Keys reach a menu that is disabled on some desktops.
        if (closed_ || presenter_.IsRunning()) return;
        parts_.TakeEdits();
        command();
      },
      item->GetId());
  commands_.push_back(item);
}

void FSetupWizard::AddSteps() {
  root_ = new wxPanel(this);
  tab_step_ = new wxNotebook(root_, wxID_ANY);
  tab_step_->SetName("tabStep");
  texts_ = new StepTextsPage(tab_step_, parts_);
  directories_ = new StepDirectoriesPage(tab_step_, parts_);
  functions_ = new StepFunctionsPage(tab_step_, parts_);
  files_ = new StepFilesPage(tab_step_, parts_);
  medium_ = new StepMediumPage(tab_step_, parts_);
  for (wxWindow* const page :
       std::initializer_list<wxWindow*>{texts_, directories_, functions_, files_, medium_}) {
    const std::size_t index = tab_step_->GetPageCount();
    tab_step_->AddPage(page, wxString());
    captions_.Add(CaptionOf(StepOf(static_cast<int>(index))),
                  [this, index](const wxString& text) { tab_step_->SetPageText(index, text); });
  }
}

void FSetupWizard::ShowTitle(const std::string& title) { SetTitle(ToWx(title)); }

void FSetupWizard::ShowDocument() {
  parts_.ShowBoxes();
  directories_->ShowDocument();
  functions_->ShowDocument();
  files_->ShowDocument();
  medium_->ShowDocument();
}

void FSetupWizard::RefreshFileList() { files_->RefreshFileList(); }

void FSetupWizard::ShowFigures() { medium_->ShowFigures(); }

void FSetupWizard::ShowUserDirectories() { directories_->ShowUserDirectories(); }

void FSetupWizard::SelectStep(Step step) {
  if (step == Step::kAll) return;
  step_ = step;
  tab_step_->ChangeSelection(PageOf(step));
  if (step == Step::kFiles) files_->Grid().ShowFirstMark();
  FocusStep();
}

void FSetupWizard::SelectBox(const TextBox& box) {
  SelectStep(box.step);
  wxWindow* const control = parts_.ControlOf(box);
  if (box.step == Step::kTexts) texts_->ShowPageOf(*control);
  CallAfter([control] { control->SetFocus(); });
}

void FSetupWizard::SelectUserDirectory(std::size_t index) {
  SelectStep(Step::kDirectories);
  CallAfter([this, index] { directories_->SelectDirectory(index); });
}

bool FSetupWizard::HoldsLooseText() const { return directories_->HoldsLooseText(); }

void FSetupWizard::EnableControls(bool enabled) {
  if (!enabled) focus_before_run_ = FindFocus();
  root_->Enable(enabled);
  for (wxMenuItem* const item : commands_) item->Enable(enabled);
  if (!enabled) return;
  wxWindow* const focus = focus_before_run_.get();
  // What a Scan found is what comes next.
  if (focus != nullptr && focus->IsShownOnScreen() && step_ != Step::kFiles) {
    focus->SetFocus();
  } else {
    FocusStep();
  }
}

void FSetupWizard::ShowBusy(bool busy) {
  if (!busy) {
    busy_.reset();
  } else if (!busy_) {
    busy_.emplace();
  }
}

void FSetupWizard::Beep() { wxBell(); }

void FSetupWizard::Close() { wxFrame::Close(); }

std::string FSetupWizard::ChooseProject() {
  return FProjectOpen(this, application_, &help_).ProjectName();
}

std::vector<std::string> FSetupWizard::ChooseFiles(const FileQuestion& question) {
  return AskForFiles(this, application_, question);
}

void FSetupWizard::ShowOptions() { FOptions(this, application_, help_).ShowModal(); }

void FSetupWizard::ShowInfo() { FInfo(this, application_, &help_).ShowModal(); }

void FSetupWizard::ShowHelpContents() { ShowHelp(application_, help_, kHelpContents); }

std::unique_ptr<ScanStateWindow> FSetupWizard::MakeScanWindow() {
  auto window = std::make_unique<FStateScan>(this, application_);
  scan_window_ = window.get();
  return window;
}

SearchFileDialog& FSetupWizard::SearchDialog() {
  // A single file that is added by hand has no state window.
  search_.SetParent(scan_window_ ? scan_window_.get() : this);
  return search_;
}

std::unique_ptr<CreateStateWindow> FSetupWizard::MakeCreateWindow() {
  return std::make_unique<FStateCreate>(this, application_, help_);
}

void FSetupWizard::OnClose(wxCloseEvent& event) {
  if (closed_) return;
  if (presenter_.IsRunning()) {
    // The run works on what would be destroyed; its own window has Cancel.
    if (event.CanVeto()) event.Veto();
    return;
  }
  parts_.TakeEdits();
  if (!presenter_.MayClose() && event.CanVeto()) {
    event.Veto();
    return;
  }
  KeepWindow(*this, application_.platform.registry, kFormName, files_->Grid().ColumnWidths());
  // The form lives until the toolkit is idle. A key that waits by then must not open a box below
  // which it goes.
  closed_ = true;
  Disable();
  Hide();
  Destroy();
}

void FSetupWizard::OnKey(wxKeyEvent& event) {
  if (closed_ || presenter_.IsRunning() || !TakeKey(event)) event.Skip();
}

bool FSetupWizard::TakeKey(const wxKeyEvent& event) {
  const int key = event.GetKeyCode();
  if (event.GetModifiers() == wxMOD_ALT) {
    if (key >= '1' && key < '1' + kStepCount) {
      tab_step_->SetSelection(static_cast<std::size_t>(key - '1'));
      return true;
    }
    return step_ == Step::kTexts && texts_->TakeAccessKey(static_cast<wxChar>(key));
  }
  if (event.GetModifiers() == wxMOD_CONTROL && (key == WXK_PAGEUP || key == WXK_PAGEDOWN)) {
    // The inner tabs would take them for themselves.
    tab_step_->AdvanceSelection(/*forward=*/key == WXK_PAGEDOWN);
    return true;
  }
  if (FindFocus() == tab_step_) {
    keys_on_tabs_ = true;
    CallAfter([this] { keys_on_tabs_ = false; });
  }
  return event.GetModifiers() == wxMOD_NONE && step_ == Step::kFiles && files_->TakeKey(key);
}

void FSetupWizard::OnStepChanged(wxBookCtrlEvent& event) {
  // Those of the inner tabs come along here too.
  if (event.GetEventObject() != tab_step_) {
    event.Skip();
    return;
  }
  const Step entered = StepOf(event.GetSelection());
  if (entered == step_) return;
  // Back, until the check has passed: its messages are about what the step shows.
  tab_step_->ChangeSelection(PageOf(step_));
  parts_.TakeEdits();
  if (!presenter_.ChangeStep(step_, entered)) return;
  step_ = entered;
  tab_step_->ChangeSelection(PageOf(step_));
  if (step_ == Step::kFiles) files_->Layout();
  if (keys_on_tabs_) {
    tab_step_->SetFocus();  // The way back and forth has taken it.
  } else {
    FocusStep();
  }
}

void FSetupWizard::FocusStep() {
  // After the toolkit has moved the focus in its own way.
  CallAfter([this] {
    wxWindow* control = tab_step_;
    switch (step_) {
      case Step::kAll:
        break;
      case Step::kTexts:
        control = texts_->FirstControl();
        break;
      case Step::kDirectories:
        control = directories_->FirstControl();
        break;
      case Step::kFunctions:
        if (functions_->FirstControl() != nullptr) control = functions_->FirstControl();
        break;
      case Step::kFiles:
        control = files_->FirstControl();
        break;
      case Step::kMedium:
        control = medium_->FirstControl();
        break;
    }
    control->SetFocus();
  });
}

}  // namespace txs
