#include "ui/setup_wizard_presenter.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <limits>
#include <memory>
#include <string_view>
#include <utility>

#include "create/create_run.h"
#include "document/path_variables.h"
#include "document/settings_file.h"
#include "document/work_border.h"
#include "environment/code_page.h"
#include "environment/windows_path.h"
#include "projects/open_project.h"
#include "projects/project_registry.h"
#include "scan/scan_run.h"
#include "scan/scan_view.h"
#include "ui/run_report.h"

namespace txs {
namespace {

constexpr long kTitleWithoutProject = 1000;
constexpr long kTitleWithProject = 1001;
constexpr long kTitleAddFile = 1600;
constexpr long kTitlePicture = 1914;
constexpr long kMessageCannotEdit = 901;
constexpr long kAskAddAgain = 1702;
constexpr long kAskSaveBeforeClosing = 1703;
constexpr long kAskClearSettings = 1704;
constexpr long kMessageSystemFile = 1705;
constexpr long kAskSaveBeforeOpening = 1706;
constexpr long kNoticeScanAgain = 1714;
constexpr long kNoticeMinimalMdac = 1715;
constexpr long kMessageNotCompleted = 1913;
constexpr long kMessageFolders = 1927;
// A box that names more would not fit on the screen.
constexpr std::size_t kMostNamed = 10;

// Runs `undo` at the end of the scope, whatever ends it.
class AtEnd {
 public:
  explicit AtEnd(std::function<void()> undo) : undo_(std::move(undo)) {}
  ~AtEnd() {
    try {
      undo_();
    } catch (const std::exception&) {
      // Often enough an error is on its way already; a second one would end the program.
    }
  }
  AtEnd(const AtEnd&) = delete;
  AtEnd& operator=(const AtEnd&) = delete;

 private:
  std::function<void()> undo_;
};

bool SameDirectory(std::string_view left, std::string_view right) {
  return EqualNoCase(NormalizeDirectory(left), NormalizeDirectory(right));
}

// One more than that of the last row. A settings file may list its numbers in any order, though,
// and two rows of one number would be one after the next start.
long NextNumber(const std::vector<UserDirectory>& directories) {
  constexpr long kLargest = std::numeric_limits<std::int32_t>::max();
  const auto is_taken = [&](long number) {
    return std::any_of(directories.begin(), directories.end(),
                       [&](const UserDirectory& row) { return row.number == number; });
  };
  long number = directories.empty() ? 0 : directories.back().number;
  do {
    number = number >= kLargest ? 1 : number + 1;
  } while (is_taken(number));
  return number;
}

// A run in its window: the controls stay locked until the user has closed the window, and what the
// run changed is shown behind it before. `work` gives what was missing.
template <typename Window, typename Work>
void RunIn(Window& window, Application& application, SetupWizardView& view, Work work) {
  const AtEnd unlock([&] { view.EnableControls(/*enabled=*/true); });
  view.EnableControls(/*enabled=*/false);
  RunReport report;
  {
    const MessageCollector messages(application.messages);
    report.missing = work(window);
    report.messages = messages.Prompts();
  }
  view.RefreshFileList();
  view.ShowFigures();
  if (!report.IsEmpty()) window.ShowReport(report);
  window.WaitUntilClosed();
}

bool HasMarks(const FileList& list) {
  return std::any_of(list.Rows().begin(), list.Rows().end(),
                     [](const FileRow& row) { return row.marked; });
}

}  // namespace

bool SetupWizardPresenter::Act(const std::function<bool()>& work) {
  if (running_) return false;
  const std::string no_subject;
  return AtWorkBorder(application_, kMessageNotCompleted, no_subject, work);
}

MessageResult SetupWizardPresenter::Ask(long id, const std::vector<std::string>& parameters,
                                        int buttons) {
  return application_.messages.ShowMessage(
      application_.texts.Compose(id, parameters, buttons | kIconQuestion));
}

bool SetupWizardPresenter::SaveOnRequest(long id) {
  if (!application_.document.changed) return true;
  switch (Ask(id, {}, kButtonsYesNoCancel)) {
    case MessageResult::kYes:
      return Save();
    case MessageResult::kNo:
      return true;
    default:
      return false;
  }
}

void SetupWizardPresenter::ShowAll() {
  const std::string& project = application_.project.name;
  view_.ShowTitle(project.empty() ? application_.texts.GetText(kTitleWithoutProject)
                                  : application_.texts.GetText(kTitleWithProject, {project}));
  view_.ShowDocument();
  view_.ShowFigures();
}

void SetupWizardPresenter::Load() {
  Act([this] {
    ShowAll();
    return true;
  });
}

// --- Menus

void SetupWizardPresenter::OpenProject() {
  Act([this] {
    if (!SaveOnRequest(kAskSaveBeforeOpening)) return false;
    const std::string name = view_.ChooseProject();
    if (name.empty()) return false;
    // Unregistered since it was listed: without a directory "\Demo.swz" of whatever drive is
    // current would be read.
    if (LookUpProject(application_.platform, name).directory.empty()) {
      ShowWarning(application_, kMessageCannotEdit, {name});
      return false;
    }
    // What a Scan of the project before learned of system files goes too.
    LoadMainFormState(application_);
    txs::ClearSettings(application_);
    // Unreadable settings were reported; the form then shows the defaults.
    const bool opened = txs::OpenProject(application_, name);
    ShowAll();
    view_.SelectStep(Step::kTexts);
    return opened;
  });
}

bool SetupWizardPresenter::Save() {
  if (running_ || !SaveSettings(application_)) return false;
  if (view_.HoldsLooseText()) application_.document.changed = true;
  return true;
}

void SetupWizardPresenter::End() {
  Act([this] {
    view_.Close();
    return true;
  });
}

void SetupWizardPresenter::ShowHelpContents() {
  Act([this] {
    view_.ShowHelpContents();
    return true;
  });
}

void SetupWizardPresenter::ShowInfo() {
  Act([this] {
    view_.ShowInfo();
    return true;
  });
}

void SetupWizardPresenter::ShowOptions() {
  Act([this] {
    view_.ShowOptions();
    return true;
  });
}

void SetupWizardPresenter::ClearSettings() {
  Act([this] {
    if (Ask(kAskClearSettings, {}, kButtonsYesNo) != MessageResult::kYes) return false;
    txs::ClearSettings(application_);
    ExtendPathVariables(application_);
    RefreshFigures(application_);
    ShowAll();
    return true;
  });
}

bool SetupWizardPresenter::MayClose() {
  return Act([this] { return SaveOnRequest(kAskSaveBeforeClosing); });
}

// --- Steps

bool SetupWizardPresenter::ChangeStep(Step left, Step entered) {
  return Act([&] {
    const std::string* wrong = nullptr;
    if (!CheckDocument(application_, left, &wrong)) {
      view_.RefreshFileList();
      view_.ShowFigures();
      SelectWrong(left, wrong);
      return false;
    }
    if (entered == Step::kFiles) view_.RefreshFileList();
    if (entered == Step::kMedium) {
      if (left != Step::kFiles) MeasureFiles(application_);
      view_.ShowFigures();
    }
    return true;
  });
}

void SetupWizardPresenter::SelectWrong(Step step, const std::string* wrong) {
  StepSettings& steps = application_.document.steps;
  for (const TextBox& box : TextBoxes()) {
    if (&box.field(steps) == wrong) return view_.SelectBox(box);
  }
  for (std::size_t index = 0; index < steps.user_directories.size(); ++index) {
    if (&steps.user_directories[index].directory == wrong) return view_.SelectUserDirectory(index);
  }
  view_.SelectStep(step);
}

void SetupWizardPresenter::TextEdited(const TextBox& box, const std::string& text) {
  Act([&] {
    std::string& field = box.field(application_.document.steps);
    if (field == text) return false;
    field = text;
    application_.document.changed = true;
    return true;
  });
}

void SetupWizardPresenter::LooseTextEdited() {
  if (!running_) application_.document.changed = true;
}

std::string SetupWizardPresenter::LeaveDirectory(const std::string& text) const {
  return NormalizeDirectory(text);
}

std::string SetupWizardPresenter::PictureDirectory(const TextBox& box) const {
  try {
    const SetupDocument& document = application_.document;
    StepSettings steps = document.steps;
    std::string directory =
        ParentFolder(FromVariableForm(document.path_variables, box.field(steps)));
    if (directory.ends_with(':')) directory += '\\';
    if (IsAbsolutePath(directory) && application_.platform.files.FolderExists(directory)) {
      return directory;
    }
  } catch (const RuntimeError&) {
    // Variables that name each other without end lead nowhere.
  }
  return application_.project.directory;
}

std::string SetupWizardPresenter::BrowsePicture(const TextBox& box) {
  std::string chosen;
  Act([&] {
    const TextService& texts = application_.texts;
    const std::vector<std::string> files = view_.ChooseFiles({.title = texts.GetText(kTitlePicture),
                                                              .filter = PictureFilter(texts),
                                                              .directory = PictureDirectory(box),
                                                              .several = false});
    if (files.empty()) return false;
    // Without the user directories: those are of the target computer, and may be renamed there.
    const PathVariableList variables = BuildPathVariables(
        application_.installation, application_.platform.tools, application_.project.directory);
    chosen = ToVariableForm(variables, files.front(), VariableForm::kWholePath);
    return true;
  });
  return chosen;
}

// --- Step 2

bool SetupWizardPresenter::AddUserDirectory(const std::string& text) {
  return Act([&] {
    SetupDocument& document = application_.document;
    std::vector<UserDirectory>& directories = document.steps.user_directories;
    std::string directory = NormalizeDirectory(text);
    if (directory.empty()) return true;
    for (const UserDirectory& row : directories) {
      if (!SameDirectory(row.directory, directory)) continue;
      view_.Beep();
      return false;
    }
    directories.push_back({NextNumber(directories), std::move(directory)});
    document.changed = true;
    ExtendPathVariables(application_);
    view_.ShowUserDirectories();
    return true;
  });
}

void SetupWizardPresenter::DeleteUserDirectory(std::size_t index) {
  Act([&] {
    SetupDocument& document = application_.document;
    std::vector<UserDirectory>& directories = document.steps.user_directories;
    if (index >= directories.size()) return false;
    directories.erase(directories.begin() + static_cast<std::ptrdiff_t>(index));
    document.changed = true;
    ExtendPathVariables(application_);
    view_.ShowUserDirectories();
    return true;
  });
}

void SetupWizardPresenter::RenameUserDirectory(std::size_t index, const std::string& text) {
  Act([&] {
    SetupDocument& document = application_.document;
    std::vector<UserDirectory>& directories = document.steps.user_directories;
    if (index >= directories.size()) return false;
    std::string directory = NormalizeDirectory(text);
    if (directory.empty() || EqualNoCase(directory, directories[index].directory)) return false;
    directories[index].directory = std::move(directory);
    document.changed = true;
    ExtendPathVariables(application_);
    view_.ShowUserDirectories();
    return true;
  });
}

// --- Steps 3 and 5

bool SetupWizardPresenter::Check(bool& setting, bool checked) {
  return Act([&] {
    if (setting == checked) return false;
    setting = checked;
    application_.document.changed = true;
    return checked;
  });
}

void SetupWizardPresenter::ShowNotice(long id, int icon) {
  application_.messages.ShowMessage(application_.texts.Compose(id, {}, kButtonsOk | icon));
}

void SetupWizardPresenter::SetUseJet(bool checked) {
  if (!Check(application_.document.steps.use_jet, checked)) return;
  ShowNotice(kNoticeScanAgain, kIconInformation);
}

void SetupWizardPresenter::SetUseOdbc(bool checked) {
  if (!Check(application_.document.steps.use_odbc, checked)) return;
  ShowNotice(kNoticeScanAgain, kIconInformation);
}

void SetupWizardPresenter::SetMinimalMdac(bool checked) {
  if (!Check(application_.document.steps.minimal_mdac, checked)) return;
  ShowNotice(kNoticeMinimalMdac, kIconExclamation);
}

void SetupWizardPresenter::SetServicePack(bool checked) {
  static_cast<void>(Check(application_.document.steps.service_pack, checked));
}

void SetupWizardPresenter::SetDiskSize(long index) {
  Act([&] {
    long& chosen = application_.document.steps.disk_size_index;
    if (chosen != index) application_.document.changed = true;
    chosen = index;
    RefreshFigures(application_);
    view_.ShowFigures();
    return true;
  });
}

// --- Step 4

void SetupWizardPresenter::Scan() {
  Act([this] {
    const AtEnd ended([this] { running_ = false; });
    running_ = true;
    const std::unique_ptr<ScanStateWindow> window = view_.MakeScanWindow();
    RunIn(*window, application_, view_, [this](ScanView& state) {
      ScanResult result = RunScan(application_, state, view_.SearchDialog());
      RefreshFigures(application_);
      return std::move(result.missing);
    });
    return true;
  });
}

void SetupWizardPresenter::AddFiles() {
  Act([this] {
    const TextService& texts = application_.texts;
    const std::vector<std::string> files =
        view_.ChooseFiles({.title = texts.GetText(kTitleAddFile),
                           .filter = AddFileFilter(texts),
                           .directory = application_.project.directory,
                           .several = true});
    if (!files.empty()) AddFiles(files);
    return true;
  });
}

void SetupWizardPresenter::AddFiles(const std::vector<std::string>& paths) {
  Act([&] {
    const AtEnd ended([this] { running_ = false; });
    running_ = true;
    // Its own border: what was added before an error is shown all the same.
    const std::string no_subject;
    const bool added = AtWorkBorder(application_, kMessageNotCompleted, no_subject, [&] {
      AddEach(paths);
      return true;
    });
    RefreshFigures(application_);
    view_.RefreshFileList();
    view_.ShowFigures();
    return added;
  });
}

void SetupWizardPresenter::AddEach(const std::vector<std::string>& paths) {
  const AtEnd ready([this] { view_.ShowBusy(/*busy=*/false); });
  view_.ShowBusy(/*busy=*/true);
  // The pointer is that of a program that waits while a box is on the screen.
  const auto while_ready = [this](const auto& show) {
    view_.ShowBusy(/*busy=*/false);
    const MessageResult answer = show();
    view_.ShowBusy(/*busy=*/true);
    return answer;
  };

  SilentScanView silent;
  AddingByHand adding(application_, silent, view_.SearchDialog());
  std::string folders;
  std::size_t folder_count = 0;
  for (const std::string& path : paths) {
    if (!IsAbsolutePath(path)) continue;
    if (application_.platform.files.FolderExists(path)) {
      if (++folder_count <= kMostNamed) folders += "\r\n" + path;
      continue;
    }
    if (IsSystemFile(application_.document.system_files, path)) {
      while_ready([&] {
        return application_.messages.ShowMessage(
            application_.texts.Compose(kMessageSystemFile, {path}));
      });
      continue;
    }
    if (adding.IsListed(path)) {
      const MessageResult answer =
          while_ready([&] { return Ask(kAskAddAgain, {path}, kButtonsYesNoCancel); });
      if (answer == MessageResult::kNo) continue;
      if (answer != MessageResult::kYes) return;
    }
    // A failure has shown its message; the other files were chosen all the same.
    static_cast<void>(adding.Add(path));
  }
  if (folder_count == 0) return;
  if (folder_count > kMostNamed) folders += "\r\n...";
  while_ready([&] {
    return application_.messages.ShowMessage(
        application_.texts.Compose(kMessageFolders, {folders}));
  });
}

void SetupWizardPresenter::DeleteRows(const std::vector<std::size_t>& rows) {
  Act([&] {
    SetupDocument& document = application_.document;
    const std::size_t before = document.files.RowCount();
    document.files.DeleteRows(rows);
    if (document.files.RowCount() == before) return false;
    document.changed = true;
    RefreshFigures(application_);
    view_.RefreshFileList();
    view_.ShowFigures();
    return true;
  });
}

void SetupWizardPresenter::EditCell(std::size_t row, FileColumn column, const std::string& text) {
  Act([&] {
    application_.document.files.SetCell(row, column, text);
    application_.document.changed = true;
    return true;
  });
}

// --- Step 5

void SetupWizardPresenter::Create() {
  Act([this] {
    const AtEnd ended([this] { running_ = false; });
    running_ = true;
    {
      const std::unique_ptr<CreateStateWindow> window = view_.MakeCreateWindow();
      RunIn(*window, application_, view_, [this](CreateView& state) {
        static_cast<void>(RunCreate(application_, state));  // Its window has shown how it ended.
        return std::vector<MissingItem>();
      });
    }
    // The run's check leaves marks only where it found something wrong.
    if (HasMarks(application_.document.files)) {
      view_.SelectStep(Step::kFiles);
      view_.RefreshFileList();
    }
    return true;
  });
}

}  // namespace txs
