#include "startup/module_shell.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "fakes/memory_platform.h"
#include "fakes/recording_messages.h"
#include "fakes/scripted_windows.h"

namespace txs {
namespace {

using ::testing::HasSubstr;

struct ModuleShellTest : ::testing::Test {
  MemoryPlatform platform;
  RecordingMessages messages;
  ScriptedWindows windows;
  ModuleShell shell{windows.module};

  Application Speaking(long language_id) {
    return Application{.platform = platform.Get(),
                       .messages = messages,
                       .texts = TextService(language_id),
                       .installation = {},
                       .configurator = nullptr,
                       .project = {},
                       .document = {}};
  }
};

TEST_F(ModuleShellTest, OpensTheModuleForTheFirstWindowAndKeepsIt) {
  Application application = Speaking(1031);
  windows.shell.choice = "Demo";
  EXPECT_EQ(windows.opened, 0);

  const std::string chosen = shell.ChooseProject(application);
  shell.RunMainForm(application);

  EXPECT_EQ(chosen, "Demo");
  EXPECT_EQ(windows.shell.forms, 1);
  EXPECT_EQ(windows.opened, 1);
  EXPECT_TRUE(messages.shown.empty());
}

struct FaultCase {
  WindowFault fault;
  long message;
  const char* german;
  const char* english;
};

class ModuleShellFault : public ModuleShellTest, public ::testing::WithParamInterface<FaultCase> {};

TEST_P(ModuleShellFault, IsSaidInBothLanguagesWithAWayOut) {
  windows.fault = GetParam().fault;
  windows.reason = "libtoolkit.so: not there";
  Application german = Speaking(1031);
  Application english = Speaking(1033);

  const std::string chosen = shell.ChooseProject(german);
  shell.RunMainForm(english);

  EXPECT_EQ(chosen, "");
  EXPECT_EQ(messages.Ids(), (std::vector<long>{GetParam().message, GetParam().message}));
  EXPECT_THAT(messages.shown[0].prompt, HasSubstr(GetParam().german));
  EXPECT_THAT(messages.shown[0].prompt, HasSubstr("/c=Projektname"));
  EXPECT_THAT(messages.shown[1].prompt, HasSubstr(GetParam().english));
  EXPECT_THAT(messages.shown[1].prompt, HasSubstr("/c=ProjectName"));
  EXPECT_EQ(windows.shell.forms, 0);
}

INSTANTIATE_TEST_SUITE_P(
    Faults, ModuleShellFault,
    ::testing::Values(FaultCase{WindowFault::kNoModule, 1900, "nicht enthalten", "not part of"},
                      FaultCase{WindowFault::kNoDesktop, 1974, "von einem Dienst", "a service"},
                      FaultCase{WindowFault::kNoDisplay, 1975, "Desktop-Sitzung", "'ssh -X'"},
                      FaultCase{WindowFault::kNotLoaded, 1976, "libtoolkit.so: not there",
                                "libtoolkit.so: not there"}));

}  // namespace
}  // namespace txs
