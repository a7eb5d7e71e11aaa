#include "environment/project_configurator.h"

#include <gtest/gtest.h>

#include "environment/runtime_error.h"
#include "fakes/fixed_special_folders.h"
#include "fakes/memory_file_system.h"
#include "fakes/memory_registry.h"

namespace txs {
namespace {

class ProjectConfiguratorTest : public testing::Test {
 protected:
  ProjectConfiguratorTest() { files_.MakeFolder("C:\\Demo"); }

  MemoryRegistry registry_;
  MemoryFileSystem files_;
  ProfileFiles profiles_{files_};
  FixedSpecialFolders folders_;
  SystemTools tools_{registry_, files_, profiles_, folders_};
};

TEST_F(ProjectConfiguratorTest, AStudioProjectAnswersItsVersion) {
  files_.ReplaceWhole("C:\\Demo\\Demo.txs", "[Global]\r\nDesigner=x\r\nVersion=4.0.7\r\n");

  EXPECT_EQ(MakeBuiltInConfigurator(tools_)->OpenProject("C:\\Demo\\Demo.txs"), "4.0.7");
}

TEST_F(ProjectConfiguratorTest, AMissingProjectFileAnswersNothing) {
  EXPECT_EQ(MakeBuiltInConfigurator(tools_)->OpenProject("C:\\Demo\\Demo.txs"), "");
}

TEST_F(ProjectConfiguratorTest, AProjectFileThatCannotBeReadIsAnError) {
  EXPECT_THROW((void)MakeBuiltInConfigurator(tools_)->OpenProject("C:\\Demo"), RuntimeError);
}

}  // namespace
}  // namespace txs
