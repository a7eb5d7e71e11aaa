// Hostile installations with what only a disk of Windows holds: junctions. Wine cannot make them
// and shows links of the host instead, to files too.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "contract/junction_win32.h"
#include "tool/hostile_installations.h"

namespace txs {
namespace {

using ::testing::Contains;

// What is a junction below the installation. Each on a disk of its own: the standard library would
// follow it when it removes it.
class HostileJunctionOnDisk : public HostileInstallationOnDisk,
                              public testing::WithParamInterface<std::string> {};

TEST_P(HostileJunctionOnDisk, IsADamageAndNotFollowed) {
  const std::string& where = GetParam();
  Lay(OneDisk({{"x.zip", "<ProjectDir>\\x.txt", "6", "1"}}));
  std::filesystem::remove(Setup(where));
  ASSERT_NE(MakeJunction(disk_.At("Setup\\" + where), disk_.At("Secret")), Junction::kNone);

  EXPECT_THAT(VerifyWatched().damages, Contains(Damage{where, "is a link and not followed"}));
}
INSTANTIATE_TEST_SUITE_P(Junctions, HostileJunctionOnDisk,
                         testing::Values("DISK2", "DISK1\\more", "DISK1\\SETUP.STP"));

}  // namespace
}  // namespace txs
