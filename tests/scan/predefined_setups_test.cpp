#include "scan/predefined_setups.h"

#include <gtest/gtest.h>

namespace txs {
namespace {

constexpr LocalTime kOnTheDay{2003, 9, 30, 23, 59, 59};
constexpr LocalTime kDayAfter{2003, 10, 1, 0, 0, 0};

PredefinedSetups Using(std::string_view description) {
  PredefinedSetups setups;
  setups.Use(ProfileDocument(description));
  return setups;
}

TEST(PredefinedSetups, CoverNothingUntilOneIsUsed) {
  EXPECT_FALSE(PredefinedSetups().Covers("C:\\x.dll", kOnTheDay));
}

TEST(PredefinedSetups, CoverAListedNameInAnyDirectoryAndCase) {
  const PredefinedSetups setups = Using("[Files]\n1=Data.dll\n");

  EXPECT_TRUE(setups.Covers("C:\\Other\\DATA.DLL", kDayAfter));
  EXPECT_FALSE(setups.Covers("C:\\Other\\Data2.dll", kDayAfter));
}

TEST(PredefinedSetups, CoverADatedFileUpToItsDay) {
  const PredefinedSetups setups = Using("[Files]\n1=Data.dll#2003-09-30\n");

  EXPECT_TRUE(setups.Covers("C:\\Data.dll", kOnTheDay));
  EXPECT_FALSE(setups.Covers("C:\\Data.dll", kDayAfter));
}

TEST(PredefinedSetups, DoNotCoverWhatHasAnUnreadableDate) {
  const PredefinedSetups setups =
      Using("[Files]\n1=a.dll#soon\n2=b.dll#2003-13-01\n3=c.dll#\n4=d.dll\n");

  EXPECT_FALSE(setups.Covers("a.dll", kOnTheDay));
  EXPECT_FALSE(setups.Covers("b.dll", kOnTheDay));
  EXPECT_FALSE(setups.Covers("c.dll", kOnTheDay));
  EXPECT_TRUE(setups.Covers("d.dll", kOnTheDay));
}

TEST(PredefinedSetups, EndAtTheFirstMissingNumber) {
  const PredefinedSetups setups = Using("[Files]\n1=a.dll\n3=c.dll\n");

  EXPECT_FALSE(setups.Covers("c.dll", kOnTheDay));
}

TEST(PredefinedSetups, TakeTheYoungerOfTwoDates) {
  PredefinedSetups setups = Using("[Files]\n1=a.dll#2003-10-01\n");
  setups.Use(ProfileDocument("[Files]\n1=a.dll#2001-01-01\n"));

  EXPECT_TRUE(setups.Covers("a.dll", kDayAfter));
}

}  // namespace
}  // namespace txs
