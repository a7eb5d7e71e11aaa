#include "ui/window_memory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <stdexcept>
#include <string>

#include "environment/installation.h"
#include "fakes/memory_registry.h"

namespace txs {
namespace {

constexpr char kKey[] = "Software\\ORBEKA GmbH\\Tavix\\4.0\\TX4SetupWizard\\Windows\\FSetupWizard";

// Counts what is written.
class CountingRegistry : public MemoryRegistry {
 public:
  int writes = 0;

  void Write(Hive hive, std::string_view key, std::string_view name,
             const RegistryValue& value) override {
    ++writes;
    MemoryRegistry::Write(hive, key, name, value);
  }
};

// Reading never fails by contract; memory may run out all the same.
class ThrowingRegistry : public MemoryRegistry {
 public:
  [[nodiscard]] std::optional<RegistryValue> Read(Hive, std::string_view,
                                                  std::string_view) const override {
    throw std::bad_alloc();
  }
};

class WindowMemory : public testing::Test {
 public:
  [[nodiscard]] std::optional<RememberedWindow> RecallFrom(const RegistryValue& kept) {
    registry.Write(Hive::kCurrentUser, kKey, "Placement", kept);
    return RecallWindow(registry, "FSetupWizard");
  }

  CountingRegistry registry;
};

TEST_F(WindowMemory, GivesBackWhatWasRemembered) {
  const RememberedWindow wide{1200, 800, /*maximized=*/true, {300, 120, 60, 40, 90, 70}};
  const RememberedWindow plain{640, 480, /*maximized=*/false, {}};

  RememberWindow(registry, "FSetupWizard", wide);
  RememberWindow(registry, "FOptions", plain);

  EXPECT_EQ(RecallWindow(registry, "FSetupWizard"), wide);
  EXPECT_EQ(RecallWindow(registry, "FOptions"), plain);
}

TEST_F(WindowMemory, StandsBelowTheWizardsOwnKey) {
  RememberWindow(registry, "FSetupWizard", {640, 480, /*maximized=*/false, {100, 50}});

  EXPECT_EQ(registry.Read(Hive::kCurrentUser, kKey, "Placement"),
            RegistryValue(std::string("640,480,0,100,50")));
}

TEST_F(WindowMemory, HasNothingOfAFormThatWasNeverOpen) {
  RememberWindow(registry, "FOptions", {640, 480, /*maximized=*/false, {}});

  EXPECT_EQ(RecallWindow(registry, "FSetupWizard"), std::nullopt);
}

TEST_F(WindowMemory, ReplacesWhatItRemembered) {
  RememberWindow(registry, "FSetupWizard", {640, 480, /*maximized=*/false, {100, 50}});

  RememberWindow(registry, "FSetupWizard", {800, 600, /*maximized=*/false, {70}});

  EXPECT_EQ(RecallWindow(registry, "FSetupWizard"),
            (RememberedWindow{800, 600, /*maximized=*/false, {70}}));
}

TEST_F(WindowMemory, WritesNothingWhenTheSameIsKept) {
  const RememberedWindow window{640, 480, /*maximized=*/false, {100, 50}};
  RememberWindow(registry, "FSetupWizard", window);
  const int writes = registry.writes;

  RememberWindow(registry, "FSetupWizard", window);

  EXPECT_EQ(registry.writes, writes);
}

TEST_F(WindowMemory, WritesOnceForEverythingOfAWindow) {
  RememberWindow(registry, "FSetupWizard", {640, 480, /*maximized=*/true, {100, 50}});

  EXPECT_EQ(registry.writes, 1);
}

TEST_F(WindowMemory, TakesSizesFrom1To32767) {
  EXPECT_EQ(RecallFrom("1,32767,0,1,32767"),
            (RememberedWindow{1, 32767, /*maximized=*/false, {1, 32767}}));
}

TEST_F(WindowMemory, PassesOverWhatMakesNoSense) {
  for (const char* kept :
       {"", "640", "640,480", "640,480,", "640,480,2", "640,480,yes", "0,480,0", "640,0,0",
        "-640,480,0", "32768,480,0", "640,99999999999999999999,0", "640,48O,0", "640;480;0",
        "640,480,0,", "640,480,0,0", "640,480,0,100,", "640,480,0,x", "640,480,0,40000", ",,,"}) {
    EXPECT_EQ(RecallFrom(std::string(kept)), std::nullopt) << kept;
  }
  EXPECT_EQ(RecallFrom(std::uint32_t{640}), std::nullopt);
}

TEST_F(WindowMemory, ReplacesWhatMakesNoSense) {
  EXPECT_EQ(RecallFrom(std::string("nonsense")), std::nullopt);

  RememberWindow(registry, "FSetupWizard", {640, 480, /*maximized=*/false, {}});

  EXPECT_EQ(RecallWindow(registry, "FSetupWizard"),
            (RememberedWindow{640, 480, /*maximized=*/false, {}}));
}

TEST_F(WindowMemory, PassesOverARegistryThatRefuses) {
  registry.refuse_changes = ErrorNumber::kPermissionDenied;

  EXPECT_NO_THROW(RememberWindow(registry, "FSetupWizard", {640, 480, /*maximized=*/false, {}}));

  EXPECT_EQ(registry.writes, 1);
  EXPECT_EQ(RecallWindow(registry, "FSetupWizard"), std::nullopt);
}

TEST_F(WindowMemory, NeverThrows) {
  ThrowingRegistry throwing;

  EXPECT_EQ(RecallWindow(throwing, "FSetupWizard"), std::nullopt);
  EXPECT_NO_THROW(RememberWindow(throwing, "FSetupWizard", {640, 480, /*maximized=*/false, {}}));
}

}  // namespace
}  // namespace txs
