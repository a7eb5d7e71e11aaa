#include "tool/project_argument.h"

#include <gtest/gtest.h>

#include "fakes/memory_platform.h"

namespace txs {
namespace {

struct ReadProjectArgumentTest : ::testing::Test {
  MemoryPlatform world;

  ReadProjectArgumentTest() {
    world.RegisterProject("Demo", "C:\\Projects\\Demo\\", "Single");
    world.RegisterProject("Linie 2.1", "C:\\Projects\\Linie\\", "Single");
  }

  ProjectArgument Read(const std::string& argument) {
    return ReadProjectArgument(world.Get(), argument,
                               [](const std::string& path) -> std::optional<std::string> {
                                 if (path == "/srv/My Demo") return "Z:\\srv\\My Demo";
                                 if (path == ".") return "Z:\\here";
                                 if (path == "/") return "Z:\\";
                                 return std::nullopt;
                               });
  }
};

TEST_F(ReadProjectArgumentTest, RegisteredNameIsTakenWhole) {
  EXPECT_EQ(Read("Linie 2.1").name, "Linie 2.1");
  EXPECT_EQ(Read("Linie 2.1").directory, "");
}

TEST_F(ReadProjectArgumentTest, BareNameLosesItsExtension) {
  EXPECT_EQ(Read("Demo.txs").name, "Demo");
  EXPECT_EQ(Read("Demo.txs").directory, "");
  EXPECT_EQ(Read("Linie 2.2").name, "Linie 2");
}

TEST_F(ReadProjectArgumentTest, WindowsPathIsTakenApartAsInTheWizard) {
  EXPECT_EQ(Read("C:\\P\\De mo.swz").name, "De mo");
  EXPECT_EQ(Read("C:\\P\\De mo.swz").directory, "C:\\P");
  EXPECT_EQ(Read("\"C:\\P\\Demo\"").name, "Demo");
}

TEST_F(ReadProjectArgumentTest, PathOfTheHostGetsItsWindowsName) {
  EXPECT_EQ(Read("/srv/My Demo/Demo.txs").name, "Demo");
  EXPECT_EQ(Read("/srv/My Demo/Demo.txs").directory, "Z:\\srv\\My Demo");
  EXPECT_EQ(Read("./Demo.swz").directory, "Z:\\here");
  EXPECT_EQ(Read("/Demo.swz").directory, "Z:\\");
}

TEST_F(ReadProjectArgumentTest, SlashesThatLeadNowhereOnTheHostArePartOfAWindowsPath) {
  EXPECT_EQ(Read("C:/P/Demo.txs").name, "Demo");
  EXPECT_EQ(Read("C:/P/Demo.txs").directory, "C:/P");
}

}  // namespace
}  // namespace txs
