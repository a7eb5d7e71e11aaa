#include "document/trailing_number.h"

#include <gtest/gtest.h>

#include <string>

namespace txs {
namespace {

TEST(TrailingNumber, OneIsAddedToTheNumberAtTheEnd) {
  EXPECT_EQ(IncrementTrailingNumber("DISK1"), "DISK2");
  EXPECT_EQ(IncrementTrailingNumber("7"), "8");
}

TEST(TrailingNumber, TheWidthIsKeptWithLeadingZeros) {
  EXPECT_EQ(IncrementTrailingNumber("A09"), "A10");
  EXPECT_EQ(IncrementTrailingNumber("A009"), "A010");
  EXPECT_EQ(IncrementTrailingNumber("000"), "001");
}

TEST(TrailingNumber, ANumberThatNeedsMoreDigitsIsWrittenInFull) {
  EXPECT_EQ(IncrementTrailingNumber("X99"), "X100");
  EXPECT_EQ(IncrementTrailingNumber("9"), "10");
  EXPECT_EQ(IncrementTrailingNumber("099"), "100");
}

TEST(TrailingNumber, TextWithoutATrailingDigitComesBackUnchanged) {
  EXPECT_EQ(IncrementTrailingNumber("ABC"), "ABC");
  EXPECT_EQ(IncrementTrailingNumber(""), "");
  EXPECT_EQ(IncrementTrailingNumber("1A"), "1A");
}

TEST(TrailingNumber, OnlyTheLastRunOfDigitsCounts) {
  EXPECT_EQ(IncrementTrailingNumber("A9B9"), "A9B10");
  EXPECT_EQ(IncrementTrailingNumber("-9"), "-10");
  EXPECT_EQ(IncrementTrailingNumber("C:\\Out 2\\DISK9"), "C:\\Out 2\\DISK10");
}

TEST(TrailingNumber, ANumberLongerThanAnyIntegerTypeIsIncremented) {
  const std::string nines(50, '9');

  EXPECT_EQ(IncrementTrailingNumber("DISK" + nines), "DISK1" + std::string(50, '0'));
}

TEST(TrailingNumber, DigitsOfOtherScriptsAreNoDigits) {
  EXPECT_EQ(IncrementTrailingNumber("DISK\u0663"), "DISK\u0663");
}

}  // namespace
}  // namespace txs
