// What every SpecialFolders promises.

#include <gtest/gtest.h>

#include <string>

#include "contract/real_worlds.h"
#include "environment/code_page.h"
#include "fakes/fixed_special_folders.h"

namespace txs {
namespace {

class FixedWorld {
 public:
  [[nodiscard]] const SpecialFolders& Get() const { return folders_; }

 private:
  FixedSpecialFolders folders_;
};

template <typename World>
class SpecialFoldersContract : public testing::Test {
 protected:
  World world;
};

using Worlds = testing::Types<FixedWorld, RealFoldersWorld>;
TYPED_TEST_SUITE(SpecialFoldersContract, Worlds);

TYPED_TEST(SpecialFoldersContract, AnOrdinaryComputerHasTheUsualFolders) {
  const SpecialFolders& folders = this->world.Get();

  EXPECT_PRED2(EqualNoCase, folders.Folder(SpecialFolder::kWindows), "C:\\Windows");
  EXPECT_PRED2(EqualNoCase, folders.Folder(SpecialFolder::kSystem), "C:\\Windows\\System32");
  EXPECT_PRED2(EqualNoCase, folders.Folder(SpecialFolder::kFonts), "C:\\Windows\\Fonts");
  EXPECT_PRED2(EqualNoCase, folders.Folder(SpecialFolder::kProgramFiles), "C:\\Program Files");
  EXPECT_PRED2(EqualNoCase, folders.Folder(SpecialFolder::kCommonFiles),
               "C:\\Program Files\\Common Files");
}

}  // namespace
}  // namespace txs
