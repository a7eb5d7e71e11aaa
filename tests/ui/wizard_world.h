// A studio computer in memory with an open project and the presenter of its main form.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "document/application.h"
#include "environment/code_page.h"
#include "environment/installation.h"
#include "fakes/memory_platform.h"
#include "fakes/recording_messages.h"
#include "fakes/scripted_setup_wizard_view.h"
#include "projects/open_project.h"
#include "ui/setup_wizard_presenter.h"

namespace txs {

inline constexpr long kGerman = 1031;
inline constexpr long kEnglish = 1033;
inline constexpr char kDemoSettings[] = "C:\\Demo\\Demo.swz";

// The project "Demo" in C:\Demo: designed with Visual Basic 6.0, its program built, two rows in the
// list, one user directory, the unlimited medium. "Süd" in C:\Anlagen\Süd is registered too.
class WizardWorld {
 public:
  explicit WizardWorld(long language_id = kGerman)
      : application{platform.Get(),
                    messages,
                    TextService(language_id),
                    /*installation=*/{},
                    /*configurator=*/MakeBuiltInConfigurator(platform.tools),
                    /*project=*/{},
                    /*document=*/{}},
        presenter(application, view) {
    platform.InstallStudio();
    application.installation = CheckEnvironment(platform.tools, platform.files).settings;
    platform.RegisterProject("Demo", "C:\\Demo", "Single");
    platform.RegisterProject("Süd", "C:\\Anlagen\\Süd", "Server");
    Put("C:\\Demo\\Demo.txs",
        "[Global]\r\nDesigner=Visual Basic 6.0\r\nDesignerProject=Demo.vbp\r\n");
    Put("C:\\Demo\\Demo.vbp", "Type=Exe\r\nExeName32=\"Demo.exe\"\r\n");
    Put("C:\\Demo\\Demo.exe", std::string(5000, 'x'));
    Put("C:\\Demo\\Trend.ocx", std::string(700, 'y'));
    Put(kDemoSettings,
        "[program]\r\nname=Demo.exe\r\n"
        "[path]\r\ntavix=C:\\TavixStudio\r\nproject=C:\\Demo\r\n1=D:\\Rezepte\r\n"
        "[destination]\r\nsize=1\r\n"
        "[file]\r\n01=<ProjectDir>\\Demo.exe,<ProjectDir>,0\r\n"
        "02=<ProjectDir>\\Trend.ocx,<WinSysDir>,1\r\n");
    LoadMainFormState(application);
    application.use_runtime_setup = false;
    static_cast<void>(txs::OpenProject(application, "Demo"));
  }
  WizardWorld(const WizardWorld&) = delete;
  WizardWorld& operator=(const WizardWorld&) = delete;

  // Files in the ANSI code page, given and taken as UTF-8.
  void Put(std::string_view path, std::string_view text) {
    platform.files.AddFile(path, Utf8ToAnsi(text));
  }
  [[nodiscard]] std::string Get(std::string_view path) const {
    return AnsiToUtf8(platform.files.Contents(path));
  }

  [[nodiscard]] std::vector<std::string> Sources() const {
    std::vector<std::string> sources;
    for (const FileRow& row : application.document.files.Rows()) sources.push_back(row.source);
    return sources;
  }

  MemoryPlatform platform;
  RecordingMessages messages;
  Application application;
  ScriptedSetupWizardView view;
  SetupWizardPresenter presenter;
};

}  // namespace txs
