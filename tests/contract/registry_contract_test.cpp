// What every Registry promises. Registry::Write of the back-ends is asked for the error of a
// refused change in their own tests, since each is refused in its own way.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "contract/real_worlds.h"
#include "environment/registry.h"
#include "fakes/memory_registry.h"

namespace txs {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class MemoryWorld {
 public:
  [[nodiscard]] Registry& Get() { return registry_; }
  [[nodiscard]] std::unique_ptr<Registry> Reopened() const {
    return std::make_unique<MemoryRegistry>(registry_);
  }
  static constexpr bool kSortsSubkeys = false;

 private:
  MemoryRegistry registry_;
};

template <typename World>
class RegistryContract : public testing::Test {
 protected:
  World world;
  Registry& registry = world.Get();
};

using Worlds = testing::Types<MemoryWorld, RealRegistryWorld>;
TYPED_TEST_SUITE(RegistryContract, Worlds);

constexpr Hive kUser = Hive::kCurrentUser;
constexpr Hive kMachine = Hive::kLocalMachine;

TYPED_TEST(RegistryContract, NothingIsReadFromAnEmptyRegistry) {
  EXPECT_FALSE(this->registry.Read(kUser, "Software\\Demo", "Path"));
  EXPECT_THAT(this->registry.Subkeys(kUser, "Software"), IsEmpty());
}

TYPED_TEST(RegistryContract, TextsAndNumbersComeBackAsTheyWereWritten) {
  const std::string awkward = "C:\\D\xC3\xA4mo\\ \"q\" %x%\\";
  this->registry.Write(kMachine, "Software\\Demo", "Path", awkward);
  this->registry.Write(kMachine, "Software\\Demo", "Lines", "one\r\ntwo");
  this->registry.Write(kMachine, "Software\\Demo", "LCID", std::uint32_t{0xFFFFFFFF});
  this->registry.Write(kMachine, "Software\\Demo", "", "");

  const auto reopened = this->world.Reopened();
  for (const Registry* each :
       std::initializer_list<const Registry*>{&this->registry, reopened.get()}) {
    EXPECT_EQ(each->Read(kMachine, "Software\\Demo", "Path"), RegistryValue(awkward));
    EXPECT_EQ(each->Read(kMachine, "Software\\Demo", "Lines"), RegistryValue("one\r\ntwo"));
    EXPECT_EQ(each->Read(kMachine, "Software\\Demo", "LCID"),
              RegistryValue(std::uint32_t{0xFFFFFFFF}));
    EXPECT_EQ(each->Read(kMachine, "Software\\Demo", ""), RegistryValue(""));
  }
}

TYPED_TEST(RegistryContract, KeysAndNamesAreFoundInAnyCase) {
  this->registry.Write(kMachine,
                       "Software\\Gr\xC3\xB6\xC3\x9F"
                       "e",
                       "Wert", "1");
  this->registry.Write(kMachine,
                       "SOFTWARE\\GR\xC3\x96\xC3\x9F"
                       "E",
                       "WERT", "2");

  EXPECT_EQ(this->registry.Read(kMachine,
                                "software\\gr\xC3\xB6\xC3\x9F"
                                "e",
                                "wert"),
            RegistryValue("2"));
  EXPECT_THAT(this->registry.Subkeys(kMachine, "software"), ElementsAre("Gr\xC3\xB6\xC3\x9F"
                                                                        "e"));
}

TYPED_TEST(RegistryContract, AValueMayChangeItsType) {
  this->registry.Write(kUser, "Software\\Demo", "x", "text");
  this->registry.Write(kUser, "Software\\Demo", "x", std::uint32_t{5});

  EXPECT_EQ(this->registry.Read(kUser, "Software\\Demo", "x"), RegistryValue(std::uint32_t{5}));
}

TYPED_TEST(RegistryContract, WritingMakesTheParentsAndSubkeysComeInTheRegistrysOrder) {
  this->registry.Write(kUser, "Software\\p\\Zeta\\deep\\deeper", "x", "1");
  this->registry.Write(kUser, "Software\\p\\alpha", "x", "1");
  this->registry.Write(kUser, "Software\\p\\Zeta", "x", "1");

  const std::vector<std::string> in_order = TypeParam::kSortsSubkeys
                                                ? std::vector<std::string>{"alpha", "Zeta"}
                                                : std::vector<std::string>{"Zeta", "alpha"};
  EXPECT_EQ(this->registry.Subkeys(kUser, "Software\\p"), in_order);
  EXPECT_EQ(this->world.Reopened()->Subkeys(kUser, "Software\\p"), in_order);
  EXPECT_THAT(this->registry.Subkeys(kUser, "Software\\p\\Zeta"), ElementsAre("deep"));
  EXPECT_THAT(this->registry.Subkeys(kUser, "Software\\p\\alpha"), IsEmpty());
}

TYPED_TEST(RegistryContract, TheHivesAreApart) {
  this->registry.Write(kUser, "Software\\Demo", "x", "user");
  this->registry.Write(kMachine, "Software\\Demo", "x", "machine");
  this->registry.Write(Hive::kClassesRoot, "Software\\Demo", "x", "classes");

  EXPECT_EQ(this->registry.Read(kUser, "Software\\Demo", "x"), RegistryValue("user"));
  EXPECT_EQ(this->registry.Read(kMachine, "Software\\Demo", "x"), RegistryValue("machine"));
  EXPECT_EQ(this->registry.Read(Hive::kClassesRoot, "Software\\Demo", "x"),
            RegistryValue("classes"));
}

TYPED_TEST(RegistryContract, RemovingAKeyTakesValuesAndSubkeysAndNothingElse) {
  this->registry.Write(kUser, "Software\\p\\a", "x", "1");
  this->registry.Write(kUser, "Software\\p\\a\\sub\\deep", "x", "1");
  this->registry.Write(kUser, "Software\\p\\ab", "x", "1");
  this->registry.Write(kUser, "Software\\p", "x", "1");

  this->registry.RemoveKey(kUser, "Software\\P\\A");

  const auto reopened = this->world.Reopened();
  for (const Registry* each :
       std::initializer_list<const Registry*>{&this->registry, reopened.get()}) {
    EXPECT_FALSE(each->Read(kUser, "Software\\p\\a", "x"));
    EXPECT_FALSE(each->Read(kUser, "Software\\p\\a\\sub\\deep", "x"));
    EXPECT_EQ(each->Read(kUser, "Software\\p\\ab", "x"), RegistryValue("1"));
    EXPECT_EQ(each->Read(kUser, "Software\\p", "x"), RegistryValue("1"));
    EXPECT_THAT(each->Subkeys(kUser, "Software\\p"), ElementsAre("ab"));
  }
}

TYPED_TEST(RegistryContract, AParentThatNothingWasWrittenToOutlivesItsOnlySubkey) {
  this->registry.Write(kUser, "Software\\p\\q\\a", "x", "1");

  this->registry.RemoveKey(kUser, "Software\\p\\q\\a");

  EXPECT_THAT(this->world.Reopened()->Subkeys(kUser, "Software\\p"), ElementsAre("q"));
}

TYPED_TEST(RegistryContract, ARemovedKeyCanBeWrittenAgainAndHasOnlyWhatIsNew) {
  this->registry.Write(kUser, "Software\\p\\a", "old", "1");
  this->registry.RemoveKey(kUser, "Software\\p\\a");
  this->registry.Write(kUser, "Software\\p\\a", "new", "1");

  EXPECT_FALSE(this->world.Reopened()->Read(kUser, "Software\\p\\a", "old"));
  EXPECT_EQ(this->world.Reopened()->Read(kUser, "Software\\p\\a", "new"), RegistryValue("1"));
}

TYPED_TEST(RegistryContract, RemovingAMissingKeyDoesNothing) {
  this->registry.Write(kUser, "Software\\p", "x", "1");

  this->registry.RemoveKey(kUser, "Software\\q");
  this->registry.RemoveKey(kUser, "Software\\p\\x");

  EXPECT_EQ(this->registry.Read(kUser, "Software\\p", "x"), RegistryValue("1"));
}

}  // namespace
}  // namespace txs
