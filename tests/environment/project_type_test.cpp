#include "environment/project_type.h"

#include <gtest/gtest.h>

#include <utility>

namespace txs {
namespace {

TEST(ProjectType, EveryTypeHasItsNumberAndItsName) {
  const std::pair<long, const char*> types[] = {{1, "Single"},           {2, "Server"},
                                                {4, "Client"},           {8, "Terminal Server"},
                                                {16, "Terminal Client"}, {32, "Group"}};
  for (const auto& [number, name] : types) {
    EXPECT_EQ(ProjectTypeNumber(name), number);
    EXPECT_EQ(ProjectTypeName(number), name);
    EXPECT_EQ(ProjectTypeConvert(name), std::to_string(number));
    EXPECT_EQ(ProjectTypeConvert(std::to_string(number)), name);
  }
}

TEST(ProjectType, ANameInAnotherCaseIsUnknown) {
  EXPECT_EQ(ProjectTypeNumber("group"), 0);
  EXPECT_EQ(ProjectTypeConvert("group"), "0");
}

TEST(ProjectType, ANumberThatIsNoSingleTypeHasNoName) {
  EXPECT_EQ(ProjectTypeName(3), "");
  EXPECT_EQ(ProjectTypeName(0), "");
  EXPECT_EQ(ProjectTypeName(kProjectTypeAll), "");
  EXPECT_EQ(ProjectTypeConvert("3"), "");
}

TEST(ProjectType, ANumericTextGivesTheName) {
  EXPECT_EQ(ProjectTypeConvert("8"), "Terminal Server");
  EXPECT_EQ(ProjectTypeConvert(" 8 "), "Terminal Server");
}

TEST(ProjectType, AnEmptyTextIsAnUnknownName) { EXPECT_EQ(ProjectTypeConvert(""), "0"); }

TEST(ProjectType, ANumberBeyondALongIsUnknown) {
  EXPECT_EQ(ProjectTypeConvert("4294967297"), "");
  EXPECT_EQ(ProjectTypeFromRegistry("4294967297"), 0);
}

TEST(ProjectType, TheRegistryMayHoldTheNumberOrTheName) {
  EXPECT_EQ(ProjectTypeFromRegistry("2"), kProjectTypeServer);
  EXPECT_EQ(ProjectTypeFromRegistry("Server"), kProjectTypeServer);
  EXPECT_EQ(ProjectTypeFromRegistry("server"), 0);
  EXPECT_EQ(ProjectTypeFromRegistry("3"), 0);
  EXPECT_EQ(ProjectTypeFromRegistry("-1"), 0);
  EXPECT_EQ(ProjectTypeFromRegistry(""), 0);
}

}  // namespace
}  // namespace txs
