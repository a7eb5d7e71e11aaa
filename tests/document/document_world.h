// A project "Demo" in C:\Demo on a computer in memory, opened by nobody yet: what the tests of the
// document begin with.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "document/application.h"
#include "document/path_variables.h"
#include "environment/code_page.h"
#include "fakes/memory_platform.h"
#include "fakes/recording_messages.h"

namespace txs {

inline constexpr char kSettingsPath[] = "C:\\Demo\\Demo.swz";
inline constexpr char kStudioProjectPath[] = "C:\\Demo\\Demo.txs";

class DocumentWorld {
 public:
  DocumentWorld()
      : application{.platform = memory_.Get(),
                    .messages = messages_,
                    .texts = TextService(kEnglish),
                    .installation = {},
                    .configurator = MakeBuiltInConfigurator(memory_.tools),
                    .project = {"Demo", "C:\\Demo", /*type=*/1, "Demo"},
                    .document = {}} {
    memory_.InstallStudio();
    memory_.files.AddFolder("C:\\Demo");
    application.installation.language_id = kEnglish;
    application.installation.studio_directory = "C:\\TavixStudio\\Studio";
    application.installation.main_directory = "C:\\TavixStudio";
    application.installation.common_directory = "C:\\TavixStudio\\Common";
    path_variables =
        BuildPathVariables(application.installation, memory_.tools, application.project.directory);
    application.document.path_variables = path_variables;
  }
  DocumentWorld(const DocumentWorld&) = delete;
  DocumentWorld& operator=(const DocumentWorld&) = delete;

  [[nodiscard]] MemoryPlatform& Memory() { return memory_; }
  [[nodiscard]] MemoryFileSystem& Files() { return memory_.files; }

  // Files in the ANSI code page, given and taken as UTF-8.
  void Put(std::string_view path, std::string_view text) {
    memory_.files.AddFile(path, Utf8ToAnsi(text));
  }
  [[nodiscard]] std::string Get(std::string_view path) const {
    return AnsiToUtf8(memory_.files.Contents(path));
  }
  [[nodiscard]] bool Has(std::string_view path) const { return memory_.files.Has(path); }

  [[nodiscard]] const std::vector<Message>& Messages() const { return messages_.shown; }
  [[nodiscard]] std::vector<long> MessageIds() const {
    std::vector<long> ids;
    for (const Message& message : messages_.shown) ids.push_back(message.id);
    return ids;
  }
  [[nodiscard]] std::vector<std::string> Prompts() const {
    std::vector<std::string> prompts;
    for (const Message& message : messages_.shown) prompts.push_back(message.prompt);
    return prompts;
  }
  void ForgetMessages() { messages_.shown.clear(); }

  // The number of the error that `act` throws; a test failure when it throws none.
  template <typename Act>
  [[nodiscard]] ErrorNumber NumberOfErrorFrom(Act act) const {
    try {
      act();
    } catch (const RuntimeError& error) {
      return error.Number();
    }
    ADD_FAILURE() << "no error was thrown";
    return ErrorNumber::kInternal;
  }

 private:
  static constexpr long kEnglish = 1033;

  MemoryPlatform memory_;
  RecordingMessages messages_;

 public:
  PathVariableList path_variables;  // of the project, before any user directory
  Application application;
};

}  // namespace txs
