#include "startup/window_station_win32.h"

#include <gtest/gtest.h>

#include <windows.h>

namespace txs {
namespace {

TEST(WindowStation, OfAUserShowsWindowsAndOneOfAServiceDoesNot) {
  const HWINSTA own = GetProcessWindowStation();
  const HWINSTA unseen = CreateWindowStationW(nullptr, 0, GENERIC_ALL, nullptr);
  ASSERT_NE(unseen, nullptr);

  const bool seen_before = WindowsCanBeSeen();
  ASSERT_TRUE(SetProcessWindowStation(unseen));
  const bool seen_in_service = WindowsCanBeSeen();
  ASSERT_TRUE(SetProcessWindowStation(own));
  CloseWindowStation(unseen);

  EXPECT_TRUE(seen_before);
  EXPECT_FALSE(seen_in_service);
}

}  // namespace
}  // namespace txs
