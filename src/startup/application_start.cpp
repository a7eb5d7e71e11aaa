#include "startup/application_start.h"

#include <exception>
#include <utility>

#include "environment/installation.h"
#include "projects/open_project.h"
#include "projects/project_registry.h"
#include "strings/reason.h"

namespace txs {
namespace {

constexpr long kMessageNoConfigurator = 94;
constexpr long kMessageCannotEdit = 901;

std::unique_ptr<ProjectConfigurator> MakeConfigurator(const Platform& platform) {
  try {
    return platform.make_configurator();
  } catch (const std::exception&) {
    // A component that fails while it is created is one that cannot be created.
    return nullptr;
  }
}

}  // namespace

std::unique_ptr<Application> StartApplication(Platform& platform, MessageService& messages,
                                              const std::function<void(const Message&)>& show) {
  EnvironmentCheck check = CheckEnvironment(platform.tools, platform.files);
  const TextService texts(check.settings.language_id);
  SetReasonLanguage(check.settings.language_id);
  if (check.fault) {
    show(texts.ComposeForStart(check.fault->message_id, {check.fault->parameter}));
    return nullptr;
  }
  std::unique_ptr<ProjectConfigurator> configurator = MakeConfigurator(platform);
  if (configurator == nullptr) {
    show(texts.ComposeForStart(kMessageNoConfigurator));
    return nullptr;
  }
  return std::unique_ptr<Application>(new Application{.platform = platform,
                                                      .messages = messages,
                                                      .texts = texts,
                                                      .installation = std::move(check.settings),
                                                      // The member is set, the variable read.
                                                      // cppcheck-suppress accessMoved
                                                      .configurator = std::move(configurator),
                                                      .project = {},
                                                      .document = {}});
}

void SelectProject(Application& application, std::string_view name, std::string_view directory) {
  const RegisteredProject registered = LookUpProject(application.platform, name);
  CurrentProject& project = application.project;
  project.name = name;
  project.type = registered.type;
  if (directory.empty()) {
    project.directory = registered.directory;
    project.file = name;
  } else {
    project.directory = directory;
    project.file = project.StudioProjectFile();
  }
}

bool LoadSelectedProject(Application& application) {
  const auto failed = [&application](const RuntimeError& error) {
    ShowError(application, kMessageCannotEdit, {application.project.name}, error);
    return false;
  };
  try {
    LoadMainFormState(application);
    // Without a directory "\Demo.swz" of whatever drive is current would be read. Create refuses
    // the empty document.
    if (!application.project.directory.empty()) LoadCurrentProject(application);
    return true;
  } catch (const RuntimeError& error) {
    return failed(error);
  } catch (const std::bad_alloc&) {
    return failed(RuntimeError(ErrorNumber::kOutOfMemory, Words(Reason::kOutOfMemory)));
  } catch (const std::exception& error) {
    return failed(RuntimeError(ErrorNumber::kInternal, error.what()));
  }
}

}  // namespace txs
