#include "projects/open_project.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <new>
#include <stdexcept>
#include <vector>

#include "document/document_world.h"
#include "environment/project_type.h"

namespace txs {
namespace {

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

// Another project than the world's own, registered in C:\Anlagen\Süd.
class OpeningAProject : public testing::Test {
 protected:
  OpeningAProject() { world_.Memory().RegisterProject("Süd", "C:\\Anlagen\\Süd", "Server"); }

  static constexpr char kSettings[] = "C:\\Anlagen\\Süd\\Süd.swz";

  DocumentWorld world_;
  Application& application_ = world_.application;
};

TEST_F(OpeningAProject, SetsTheCurrentProjectFromTheRegistry) {
  EXPECT_TRUE(OpenProject(application_, "Süd"));

  EXPECT_EQ(application_.project.name, "Süd");
  EXPECT_EQ(application_.project.directory, "C:\\Anlagen\\Süd");
  EXPECT_EQ(application_.project.type, kProjectTypeServer);
  EXPECT_EQ(application_.project.file, "Süd");
}

TEST_F(OpeningAProject, BuildsThePathVariablesInTheirOrder) {
  world_.Put(kSettings, "[path]\r\n3=D:\\Drei\r\n1=D:\\Eins\r\n");

  EXPECT_TRUE(OpenProject(application_, "Süd"));

  EXPECT_THAT(
      application_.document.path_variables,
      ElementsAre(PathVariable{"<ProjectDir>", "C:\\Anlagen\\Süd"},
                  PathVariable{"<TavixCommonDir>", "C:\\TavixStudio\\Common"},
                  PathVariable{"<TavixStudioDir>", "C:\\TavixStudio\\Studio"},
                  PathVariable{"<TavixMainDir>", "C:\\TavixStudio"},
                  PathVariable{"<WinSysDir>", "C:\\Windows\\System32"},
                  PathVariable{"<FontDir>", "C:\\Windows\\Fonts"},
                  PathVariable{"<WinDir>", "C:\\Windows"},
                  PathVariable{"<CommonFilesDir>", "C:\\Program Files\\Common Files"},
                  PathVariable{"<ProgramFilesDir>", "C:\\Program Files"},
                  PathVariable{"<TempDir>", "C:\\Anlagen\\Süd\\~TEMP"},
                  PathVariable{"<UserDir1>", "D:\\Eins"}, PathVariable{"<UserDir3>", "D:\\Drei"}));
}

TEST_F(OpeningAProject, ReadsItsSettings) {
  world_.Put(kSettings, "[setup]\r\ntext1=Mischanlage\r\n[file]\r\n01=a.dll,<WinSysDir>,1\r\n");

  EXPECT_TRUE(OpenProject(application_, "Süd"));

  EXPECT_EQ(application_.document.steps.info.german[0], "Mischanlage");
  EXPECT_EQ(application_.document.files.RowCount(), 1u);
  EXPECT_EQ(application_.document.steps.startmenu_link.german, "Süd");
}

TEST_F(OpeningAProject, LeavesNothingOfTheProjectBefore) {
  world_.Put(kSettingsPath, "[path]\r\n1=D:\\Alt\r\n[file]\r\n01=old.dll,<WinSysDir>,1\r\n");
  LoadCurrentProject(application_);

  EXPECT_TRUE(OpenProject(application_, "Süd"));

  EXPECT_EQ(application_.document.files.RowCount(), 0u);
  EXPECT_THAT(application_.document.steps.user_directories, IsEmpty());
  EXPECT_EQ(FromVariableForm(application_.document.path_variables, "<UserDir1>"), "<UserDir1>");
}

TEST_F(OpeningAProject, ThatIsNotRegisteredGivesEmptyDirectoryAndTypeZero) {
  EXPECT_TRUE(OpenProject(application_, "Nichts"));

  EXPECT_EQ(application_.project.name, "Nichts");
  EXPECT_EQ(application_.project.directory, "");
  EXPECT_EQ(application_.project.type, 0);
  EXPECT_THAT(world_.MessageIds(), IsEmpty());
}

TEST_F(OpeningAProject, WhoseSettingsCannotBeReadShowsAMessageAndGivesTheDefaults) {
  world_.Put(kSettings, "[file]\r\n01=a.dll,<WinSysDir>,1\r\n");
  world_.Files().FailPath(kSettings, "OpenForReading", ErrorNumber::kPermissionDenied);

  EXPECT_FALSE(OpenProject(application_, "Süd"));

  EXPECT_THAT(world_.MessageIds(), ElementsAre(901));
  EXPECT_THAT(world_.Prompts().front(), HasSubstr("'Süd'"));
  EXPECT_THAT(world_.Prompts().front(), HasSubstr("(70: "));
  EXPECT_EQ(application_.document.files.RowCount(), 0u);
  EXPECT_EQ(application_.document.steps.startmenu_link.german, "Süd");
}

// The extra to-do lines of the project before went into the script of this one.
TEST_F(OpeningAProject, DropsTheToDoLinesOfTheProjectBefore) {
  application_.document.extra_todo_lines = {"SetVar(Reboot|1)"};

  EXPECT_TRUE(OpenProject(application_, "Süd"));

  EXPECT_THAT(application_.document.extra_todo_lines, IsEmpty());
}

TEST_F(OpeningAProject, MayBeTheCurrentOne) {
  EXPECT_TRUE(OpenProject(application_, "Süd"));

  EXPECT_TRUE(OpenProject(application_, application_.project.name));

  EXPECT_EQ(application_.project.name, "Süd");
  EXPECT_EQ(application_.project.directory, "C:\\Anlagen\\Süd");
}

// A component of the studio, which is not this program's own.
class FailingConfigurator : public ProjectConfigurator {
 public:
  explicit FailingConfigurator(std::function<void()> fail) : fail_(std::move(fail)) {}
  [[nodiscard]] std::string OpenProject(std::string_view) override {
    fail_();
    return {};
  }

 private:
  std::function<void()> fail_;
};

TEST_F(OpeningAProject, ShowsWhateverIsThrownAndGivesTheDefaults) {
  struct Case {
    std::function<void()> fail;
    const char* suffix;
  };
  const std::vector<Case> cases = {
      {[] { throw std::logic_error("component broken"); }, "(51: component broken)"},
      {[] { throw std::bad_alloc(); }, "(7: Out of memory)"},
      {[] { throw RuntimeError(ErrorNumber::kDeviceIo, "component lost"); },
       "(57: component lost)"}};
  world_.Put(kSettings, "[file]\r\n01=a.dll,<WinSysDir>,1\r\n");
  for (const Case& c : cases) {
    world_.ForgetMessages();
    application_.configurator = std::make_unique<FailingConfigurator>(c.fail);

    EXPECT_FALSE(OpenProject(application_, "Süd"));

    EXPECT_THAT(world_.MessageIds(), ElementsAre(901));
    EXPECT_THAT(world_.Prompts().front(), HasSubstr("'Süd'"));
    EXPECT_THAT(world_.Prompts().front(), EndsWith(c.suffix));
    EXPECT_EQ(application_.project.name, "Süd");
    EXPECT_EQ(application_.document.files.RowCount(), 0u);
    EXPECT_EQ(application_.document.steps.startmenu_link.german, "Süd");
  }
}

TEST_F(OpeningAProject, WithoutRegistryKeepsTheDirectoryThatWasGiven) {
  world_.Put("C:\\Kopie\\Süd.swz", "[setup]\r\ntext1=Kopie\r\n");
  application_.project = {"Süd", "C:\\Kopie", kProjectTypeServer, "C:\\Kopie\\Süd.txs"};

  LoadCurrentProject(application_);

  EXPECT_EQ(application_.project.directory, "C:\\Kopie");
  EXPECT_EQ(application_.document.steps.info.german[0], "Kopie");
  EXPECT_EQ(application_.document.path_variables.front().value, "C:\\Kopie");
}

TEST_F(OpeningAProject, ThatCannotBeReadHasItsOwnTemporaryDirectoryAndNoUserDirectories) {
  world_.Put("C:\\Demo\\Demo.swz", "[path]\r\n1=D:\\Rezepte\r\n");
  world_.Memory().RegisterProject("Demo", "C:\\Demo", "Single");
  ASSERT_TRUE(OpenProject(application_, "Demo"));
  world_.Files().AddFolder(kSettings);

  EXPECT_FALSE(OpenProject(application_, "Süd"));

  EXPECT_EQ(FromVariableForm(application_.document.path_variables, "<TempDir>|<UserDir1>"),
            "C:\\Anlagen\\Süd\\~TEMP|<UserDir1>");
}

TEST_F(OpeningAProject, WithoutRegistryThrowsWhenTheSettingsCannotBeRead) {
  world_.Files().AddFolder(kSettingsPath);

  EXPECT_EQ(world_.NumberOfErrorFrom([&] { LoadCurrentProject(application_); }),
            ErrorNumber::kPathFileAccess);
  EXPECT_THAT(world_.MessageIds(), IsEmpty());
}

TEST(TypeDependentControls, AreEnabledForSingleAndServerOnly) {
  EXPECT_TRUE(TypeDependentControlsEnabled(kProjectTypeSingle));
  EXPECT_TRUE(TypeDependentControlsEnabled(kProjectTypeServer));
  for (const long type : {0L, kProjectTypeClient, kProjectTypeTerminalServer,
                          kProjectTypeTerminalClient, kProjectTypeGroup}) {
    EXPECT_FALSE(TypeDependentControlsEnabled(type)) << type;
  }
}

}  // namespace
}  // namespace txs
