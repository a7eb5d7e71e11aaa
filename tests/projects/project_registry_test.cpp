#include "projects/project_registry.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "environment/installation.h"
#include "environment/project_type.h"
#include "fakes/memory_platform.h"

namespace txs {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

class ProjectRegistry : public testing::Test {
 protected:
  [[nodiscard]] ProjectListModel Fill(long type_mask) {
    ProjectListModel list;
    FillRegisteredProjects(memory_.Get(), type_mask, list);
    return list;
  }
  [[nodiscard]] static std::vector<std::string> Names(const ProjectListModel& list) {
    std::vector<std::string> names;
    for (const ProjectRow& row : list.rows) names.push_back(row.name);
    return names;
  }
  [[nodiscard]] std::vector<std::string> Registered() {
    return memory_.registry.Subkeys(Hive::kLocalMachine, kProjectsKey);
  }

  MemoryPlatform memory_;
};

TEST_F(ProjectRegistry, ListsNothingWithoutProjects) {
  EXPECT_THAT(Fill(kProjectTypeAll).rows, IsEmpty());
  EXPECT_THAT(ListRegisteredProjects(memory_.Get()), IsEmpty());
}

TEST_F(ProjectRegistry, RowHasKeyNameDirectoryAndTypeName) {
  memory_.RegisterProject("Kläranlage ÖST", "C:\\Kläranlage", "2");

  const ProjectListModel list = Fill(kProjectTypeAll);

  ASSERT_EQ(list.rows.size(), 1u);
  EXPECT_EQ(list.rows[0].key, "S:kläranlage öst");
  EXPECT_EQ(list.rows[0].name, "Kläranlage ÖST");
  EXPECT_EQ(list.rows[0].directory, "C:\\Kläranlage");
  EXPECT_EQ(list.rows[0].type, "Server");
}

TEST_F(ProjectRegistry, TakesTheTypeAsNumberAndAsName) {
  memory_.RegisterProject("a", "C:\\a", "4");
  memory_.RegisterProject("b", "C:\\b", "Terminal Client");
  memory_.RegisterProject("c", "C:\\c", "");
  memory_.registry.Write(Hive::kLocalMachine, std::string(kProjectsKey) + "\\c", "ProjectType",
                         std::uint32_t{1});

  const ProjectListModel list = Fill(kProjectTypeAll);

  ASSERT_THAT(Names(list), ElementsAre("a", "b", "c"));
  EXPECT_EQ(list.rows[0].type, "Client");
  EXPECT_EQ(list.rows[1].type, "Terminal Client");
  EXPECT_EQ(list.rows[2].type, "Single");
}

TEST_F(ProjectRegistry, ListsTheTypesOfTheMaskInTheRegistrysOrder) {
  memory_.RegisterProject("z", "C:\\z", "Single");
  memory_.RegisterProject("m", "C:\\m", "Client");
  memory_.RegisterProject("a", "C:\\a", "Server");

  EXPECT_THAT(Names(Fill(kProjectTypeSingle | kProjectTypeServer)), ElementsAre("z", "a"));
  EXPECT_THAT(Names(Fill(kProjectTypeAll)), ElementsAre("z", "m", "a"));
  EXPECT_THAT(Fill(kProjectTypeGroup).rows, IsEmpty());
}

TEST_F(ProjectRegistry, ListsNoUnknownTypeButKeepsItsRegistration) {
  memory_.RegisterProject("x", "C:\\x", "group");

  EXPECT_THAT(Fill(kProjectTypeAll).rows, IsEmpty());
  EXPECT_THAT(Registered(), ElementsAre("x"));
}

TEST_F(ProjectRegistry, ListsAGroupWhoseGroupFileExists) {
  memory_.RegisterProject("g", "C:\\g", "Group");

  EXPECT_THAT(Names(Fill(kProjectTypeAll)), ElementsAre("g"));
}

TEST_F(ProjectRegistry, RemovesAGroupThatOnlyHasAStudioProjectFile) {
  memory_.RegisterProject("g", "C:\\g", "32");
  memory_.files.Vanish("C:\\g\\g.vbg");
  memory_.files.AddFile("C:\\g\\g.txs", "");

  EXPECT_THAT(Fill(kProjectTypeAll).rows, IsEmpty());
  EXPECT_THAT(Registered(), IsEmpty());
}

TEST_F(ProjectRegistry, RemovesRegistrationsWhoseFileHasGoneWhateverTheMask) {
  memory_.RegisterProject("gone", "C:\\gone", "Client");
  memory_.RegisterProject("here", "C:\\here", "Server");
  memory_.files.Vanish("C:\\gone");

  EXPECT_THAT(Names(Fill(kProjectTypeServer)), ElementsAre("here"));
  EXPECT_THAT(Registered(), ElementsAre("here"));
}

TEST_F(ProjectRegistry, KeepsARegistrationWhoseDriveOrShareIsAway) {
  memory_.RegisterProject("here", "C:\\here", "Server");
  for (const auto& [name, path] :
       {std::pair("share", "\\\\server\\plant\\share"), std::pair("stick", "X:\\stick")}) {
    memory_.registry.Write(Hive::kLocalMachine, std::string(kProjectsKey) + "\\" + name, "Path",
                           std::string(path));
  }

  EXPECT_THAT(Names(Fill(kProjectTypeAll)), ElementsAre("here"));
  EXPECT_THAT(Registered(), UnorderedElementsAre("here", "share", "stick"));
}

// An empty list would tell the user to create all projects anew.
TEST_F(ProjectRegistry, CountsTheProjectsOfTheMaskThatAreOutOfReach) {
  for (const auto& [name, type] :
       {std::pair("a", "Server"), std::pair("b", "Server"), std::pair("c", "Client")}) {
    const std::string key = std::string(kProjectsKey) + "\\" + name;
    memory_.registry.Write(Hive::kLocalMachine, key, "Path", std::string("F:\\") + name);
    memory_.registry.Write(Hive::kLocalMachine, key, "ProjectType", std::string(type));
  }
  memory_.RegisterProject("gone", "C:\\gone", "Server");
  memory_.files.Vanish("C:\\gone");
  ProjectListModel list;

  FillRegisteredProjects(memory_.Get(), kProjectTypeServer, list);
  FillRegisteredProjects(memory_.Get(), kProjectTypeServer, list);

  EXPECT_THAT(list.rows, IsEmpty());
  EXPECT_EQ(list.unreachable, 2u);
}

// The file is there, but the system says to everybody else that it is not.
TEST_F(ProjectRegistry, KeepsARegistrationInAFolderThatIsClosedToThisUser) {
  memory_.registry.Write(Hive::kLocalMachine, std::string(kProjectsKey) + "\\Demo", "Path",
                         "C:\\Closed\\Demo");
  memory_.files.AddFolder("C:\\Closed\\Demo");
  memory_.files.FailPath("C:\\Closed\\Demo", "List", ErrorNumber::kPermissionDenied);

  EXPECT_THAT(Fill(kProjectTypeAll).rows, IsEmpty());
  EXPECT_THAT(Registered(), ElementsAre("Demo"));
}

TEST_F(ProjectRegistry, KeepsARegistrationBehindALinkThatLeadsNowhere) {
  memory_.registry.Write(Hive::kLocalMachine, std::string(kProjectsKey) + "\\Demo", "Path",
                         "C:\\Link\\Plant\\Demo");
  memory_.files.AddFolder("C:\\Link");
  memory_.files.FailPath("C:\\Link", "List", ErrorNumber::kPathNotFound);

  EXPECT_THAT(Fill(kProjectTypeAll).rows, IsEmpty());
  EXPECT_THAT(Registered(), ElementsAre("Demo"));
}

TEST_F(ProjectRegistry, KeepsARegistrationWhoseFileIsListedButCannotBeAsked) {
  memory_.RegisterProject("Demo", "C:\\Demo", "1");
  memory_.files.FailPath("C:\\Demo\\Demo.txs", "FileExists", ErrorNumber::kPermissionDenied);

  EXPECT_THAT(Fill(kProjectTypeAll).rows, IsEmpty());
  EXPECT_THAT(Registered(), ElementsAre("Demo"));
}

TEST_F(ProjectRegistry, RemovesARegistrationWhoseFoldersHaveAllGone) {
  memory_.registry.Write(Hive::kLocalMachine, std::string(kProjectsKey) + "\\Demo", "Path",
                         "C:\\Projects\\Plant\\Demo\\");

  EXPECT_THAT(Fill(kProjectTypeAll).rows, IsEmpty());
  EXPECT_THAT(Registered(), IsEmpty());
}

TEST_F(ProjectRegistry, RemovesARegistrationWhoseFileIsAFolderByNow) {
  memory_.RegisterProject("Demo", "C:\\Demo", "1");
  memory_.files.Vanish("C:\\Demo\\Demo.txs");
  memory_.files.AddFolder("C:\\Demo\\Demo.txs");

  EXPECT_THAT(Fill(kProjectTypeAll).rows, IsEmpty());
  EXPECT_THAT(Registered(), IsEmpty());
}

TEST_F(ProjectRegistry, RemovesARegistrationWithoutAPath) {
  memory_.registry.Write(Hive::kLocalMachine, std::string(kProjectsKey) + "\\x", "ProjectType",
                         std::uint32_t{1});

  EXPECT_THAT(Fill(kProjectTypeAll).rows, IsEmpty());
  EXPECT_THAT(Registered(), IsEmpty());
}

TEST_F(ProjectRegistry, PassesOverARegistrationThatCannotBeRemoved) {
  memory_.RegisterProject("gone", "C:\\gone", "Client");
  memory_.RegisterProject("here", "C:\\here", "Server");
  memory_.files.Vanish("C:\\gone");
  memory_.registry.refuse_changes = ErrorNumber::kPermissionDenied;

  EXPECT_THAT(Names(Fill(kProjectTypeAll)), ElementsAre("here"));
  EXPECT_THAT(Registered(), ElementsAre("gone", "here"));
}

TEST_F(ProjectRegistry, ReplacesTheRowsAndSelectsNone) {
  memory_.RegisterProject("a", "C:\\a", "1");
  ProjectListModel list;
  list.rows.push_back({"S:old", "old", "C:\\old", "Single"});
  list.selected = 0;

  FillRegisteredProjects(memory_.Get(), kProjectTypeAll, list);

  EXPECT_THAT(Names(list), ElementsAre("a"));
  EXPECT_EQ(list.selected, -1);
}

// A registry that holds two subkeys of one name in different case, as a broken import may leave it.
class TwiceRegistry : public MemoryRegistry {
 public:
  [[nodiscard]] std::vector<std::string> Subkeys(Hive hive, std::string_view key) const override {
    std::vector<std::string> names = MemoryRegistry::Subkeys(hive, key);
    names.push_back("DEMO");
    return names;
  }
};

TEST(ProjectKeys, SecondNameThatDiffersOnlyInCaseIsLeftOut) {
  MemoryPlatform memory;
  memory.RegisterProject("Demo", "C:\\Demo", "1");
  TwiceRegistry registry;
  registry.Write(Hive::kLocalMachine, std::string(kProjectsKey) + "\\Demo", "Path", "C:\\Demo");
  registry.Write(Hive::kLocalMachine, std::string(kProjectsKey) + "\\Demo", "ProjectType", "1");
  SystemTools tools(registry, memory.files, memory.profiles, memory.folders);
  Platform& of_memory = memory.Get();
  Platform platform{registry,
                    memory.files,
                    of_memory.locks,
                    of_memory.host_paths,
                    memory.profiles,
                    memory.folders,
                    tools,
                    of_memory.archiver,
                    of_memory.clock,
                    memory.message_boxes,
                    of_memory.make_configurator};
  ProjectListModel list;

  FillRegisteredProjects(platform, kProjectTypeAll, list);

  ASSERT_EQ(list.rows.size(), 1u);
  EXPECT_EQ(list.rows[0].name, "Demo");
}

TEST_F(ProjectRegistry, ListingAloneRemovesNothing) {
  memory_.RegisterProject("gone", "C:\\gone", "Group");
  memory_.files.Vanish("C:\\gone");

  const std::vector<RegisteredProject> projects = ListRegisteredProjects(memory_.Get());

  ASSERT_EQ(projects.size(), 1u);
  EXPECT_EQ(projects[0].name, "gone");
  EXPECT_EQ(projects[0].directory, "C:\\gone");
  EXPECT_EQ(projects[0].type_text, "Group");
  EXPECT_EQ(projects[0].type, kProjectTypeGroup);
  EXPECT_EQ(projects[0].project_file, "C:\\gone\\gone.vbg");
  EXPECT_FALSE(projects[0].exists);
  EXPECT_THAT(Registered(), ElementsAre("gone"));
}

TEST_F(ProjectRegistry, LookUpOfAnUnknownNameIsEmpty) {
  const RegisteredProject project = LookUpProject(memory_.Get(), "Nichts");

  EXPECT_EQ(project.name, "Nichts");
  EXPECT_EQ(project.directory, "");
  EXPECT_EQ(project.type, 0);
  EXPECT_FALSE(project.exists);
}

// --- The Open-Project dialog without its window

class Choice : public testing::Test {
 protected:
  ProjectListModel list_{{{"S:a", "a", "C:\\a", "Single"}, {"S:b", "b", "C:\\b", "Server"}}, -1};
  ProjectChoice choice_;
};

TEST_F(Choice, BeginsEmptyWithOpenDisabled) {
  EXPECT_EQ(choice_.ProjectName(), "");
  EXPECT_FALSE(choice_.OpenEnabled());

  choice_.Cancel();

  EXPECT_EQ(choice_.ProjectName(), "");
}

TEST_F(Choice, OfARowEnablesOpen) {
  choice_.ClickRow(list_, 1);

  EXPECT_EQ(choice_.ProjectName(), "b");
  EXPECT_TRUE(choice_.OpenEnabled());
}

TEST_F(Choice, IsTakenBackByAClickOnEmptySpace) {
  choice_.ClickRow(list_, 0);

  choice_.ClickRow(list_, -1);

  EXPECT_EQ(choice_.ProjectName(), "");
  EXPECT_FALSE(choice_.OpenEnabled());
}

TEST_F(Choice, OfARowThatIsNotThereIsNone) {
  choice_.ClickRow(list_, 2);

  EXPECT_EQ(choice_.ProjectName(), "");
  EXPECT_FALSE(choice_.OpenEnabled());
}

TEST_F(Choice, SurvivesCancel) {
  choice_.ClickRow(list_, 0);

  choice_.Cancel();

  EXPECT_EQ(choice_.ProjectName(), "a");
}

TEST_F(Choice, IsClearedByTheCloseBox) {
  choice_.ClickRow(list_, 0);

  choice_.CloseByTitleBar();

  EXPECT_EQ(choice_.ProjectName(), "");
}

}  // namespace
}  // namespace txs
