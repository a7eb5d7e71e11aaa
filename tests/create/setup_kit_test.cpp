#include "create/setup_kit.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "create/create_world.h"
#include "environment/runtime_error.h"

namespace txs {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;

constexpr char kDisk1[] = "C:\\Demo\\Setup\\DISK1";

class SetupKit : public testing::Test {
 protected:
  bool Copy() {
    state_ = world_.MakeState();
    state_.medium_bytes = medium_bytes_;
    return CopySetupKit(world_.application, world_.view, state_);
  }
  // The one message that was shown.
  [[nodiscard]] std::string Prompt() const {
    return world_.messages.shown.size() == 1 ? world_.messages.shown[0].prompt
                                             : "not one message but another number of them";
  }
  [[nodiscard]] std::optional<ErrorNumber> ListError() {
    try {
      static_cast<void>(ReadSetupKitList(world_.application));
      return std::nullopt;
    } catch (const RuntimeError& error) {
      return error.Number();
    }
  }

  CreateWorld world_;
  CreateState state_;
  std::uint64_t medium_bytes_ = 1457152;
};

// --- The list

TEST_F(SetupKit, TheListIsReadFromCountAndTheNumberedKeys) {
  world_.SetKitList("[SetupFiles]\r\nCount=2\r\n1=SETUP.EXE\r\n2=README.TXT\r\n3=not.counted\r\n");

  EXPECT_THAT(ReadSetupKitList(world_.application), ElementsAre("SETUP.EXE", "README.TXT"));
}

TEST_F(SetupKit, ACountOf0IsAnEmptyKit) {
  world_.SetKitList("[SetupFiles]\r\nCount=0\r\n");

  EXPECT_THAT(ReadSetupKitList(world_.application), IsEmpty());
}

TEST_F(SetupKit, AMissingListIsAnError) {
  world_.files.Vanish(std::string(kKitFolder) + "\\TXSTPKIT.INI");

  EXPECT_EQ(ListError(), ErrorNumber::kFileNotFound);
}

TEST_F(SetupKit, AListWithoutAUsableCountIsAnError) {
  for (const char* const count : {"", "Count=\r\n", "Count=two\r\n", "Count=-1\r\n",
                                  "Count=99999999999\r\n", "Count=2x\r\n"}) {
    world_.SetKitList(std::string("[SetupFiles]\r\n") + count + "1=SETUP.EXE\r\n");

    EXPECT_EQ(ListError(), ErrorNumber::kTypeMismatch) << count;
  }
}

TEST_F(SetupKit, AMissingKeyIsAnEmptyName) {
  world_.SetKitList("[SetupFiles]\r\nCount=2\r\n2=README.TXT\r\n");

  EXPECT_THAT(ReadSetupKitList(world_.application), ElementsAre("", "README.TXT"));
}

// --- The stage

TEST_F(SetupKit, TheFilesAreCopiedAndTheScriptsRoomIsKeptByBlanks) {
  world_.SetKit({{"SETUP.EXE", "engine"}, {"README.TXT", "read"}});

  EXPECT_TRUE(Copy());

  EXPECT_EQ(world_.files.Contents(std::string(kDisk1) + "\\SETUP.EXE"), "engine");
  EXPECT_EQ(world_.files.Contents(std::string(kDisk1) + "\\README.TXT"), "read");
  EXPECT_EQ(world_.files.Contents(std::string(kDisk1) + "\\SETUP.STP"), std::string(32000, ' '));
  EXPECT_THAT(world_.messages.shown, IsEmpty());
}

TEST_F(SetupKit, EveryFileTakesWholeUnitsOf1024Bytes) {
  world_.SetKit({{"1.EXE", Noise(1)}, {"2.EXE", Noise(1024)}, {"3.EXE", Noise(1025)}, {"4", ""}});

  EXPECT_TRUE(Copy());

  EXPECT_EQ(state_.reserved_bytes, 1024u + 1024u + 2048u + 0u + 32000u);
}

TEST_F(SetupKit, TheViewSeesTheActionsTheFilesAndTheProgress) {
  world_.SetKit({{"A.EXE", Noise(60)}, {"B.EXE", Noise(20)}});

  EXPECT_TRUE(Copy());

  EXPECT_THAT(
      world_.view.diary,
      ElementsAre("action Copying", "progress 0 / 2, 0 %", "file A.EXE", "progress 1 / 2, 75 %",
                  "file B.EXE", "progress 2 / 2, 100 %", "action Writing", "file setup.stp"));
}

TEST_F(SetupKit, AListThatCannotBeReadIsMessage910) {
  world_.files.Vanish(std::string(kKitFolder) + "\\TXSTPKIT.INI");

  EXPECT_FALSE(Copy());

  EXPECT_THAT(Prompt(), StartsWith("Error reading the file 'TXSTPKIT.INI'!\r\n(53: "));
}

TEST_F(SetupKit, AFileThatIsMissingIsMessage909WithItsName) {
  world_.SetKit({{"A.EXE", "a"}, {"B.EXE", "b"}});
  world_.files.Vanish(std::string(kKitFolder) + "\\B.EXE");

  EXPECT_FALSE(Copy());

  EXPECT_THAT(Prompt(), StartsWith("Error copying the file 'B.EXE'!\r\n(53: "));
}

TEST_F(SetupKit, AFileThatCannotBeCopiedIsMessage909WithItsName) {
  world_.SetKit({{"A.EXE", "a"}, {"B.EXE", "b"}});
  world_.files.FailPath(std::string(kKitFolder) + "\\A.EXE", "CopyWhole",
                        ErrorNumber::kPermissionDenied);

  EXPECT_FALSE(Copy());

  EXPECT_THAT(Prompt(), StartsWith("Error copying the file 'A.EXE'!\r\n(70: "));
}

TEST_F(SetupKit, AMissingKeyIsMessage909WithItsNumber) {
  world_.SetKit({{"A.EXE", "a"}});
  world_.SetKitList("[SetupFiles]\r\nCount=2\r\n1=A.EXE\r\n");

  EXPECT_FALSE(Copy());

  EXPECT_EQ(Prompt(),
            "Error copying the file '2'!\r\n"
            "(52: TXSTPKIT.INI: Key 2 of section SetupFiles is missing)");
}

TEST_F(SetupKit, APlaceholderThatCannotBeWrittenIsMessage911) {
  world_.files.FailPath(std::string(kDisk1) + "\\SETUP.STP", "CreateForWriting",
                        ErrorNumber::kDiskFull);

  EXPECT_FALSE(Copy());

  EXPECT_THAT(Prompt(), StartsWith("Error on writing the file 'setup.stp'!\r\n(61: "));
}

TEST_F(SetupKit, APlaceholderThatDoesNotFitTheDriveIsMessage911) {
  state_ = world_.MakeState();
  world_.files.SetFreeSpace(31'999);

  EXPECT_FALSE(Copy());

  EXPECT_THAT(Prompt(), StartsWith("Error on writing the file 'setup.stp'!\r\n(61: "));
}

TEST_F(SetupKit, AKitLargerThanTheMediumIsMessage912) {
  medium_bytes_ = 32000 + 1024;
  world_.SetKit({{"A.EXE", Noise(1025)}});

  EXPECT_FALSE(Copy());

  EXPECT_EQ(Prompt(),
            "The size of the system files exceed the size of the medium!\r\n"
            "Select a larger medium format!");
}

TEST_F(SetupKit, AKitThatJustFillsTheMediumFits) {
  medium_bytes_ = 32000 + 1024;
  world_.SetKit({{"A.EXE", Noise(1024)}});

  EXPECT_TRUE(Copy());

  EXPECT_EQ(state_.reserved_bytes, medium_bytes_);
}

TEST_F(SetupKit, CancelIsNoticedBeforeEachFile) {
  world_.SetKit({{"A.EXE", "a"}, {"B.EXE", "b"}});
  world_.view.on_events = [](RecordingCreateView& view) {
    if (view.files.size() == 2) view.PressCancel();
  };

  EXPECT_FALSE(Copy());

  EXPECT_TRUE(world_.files.Has(std::string(kDisk1) + "\\A.EXE"));
  EXPECT_FALSE(world_.files.Has(std::string(kDisk1) + "\\B.EXE"));
  EXPECT_FALSE(world_.files.Has(std::string(kDisk1) + "\\SETUP.STP"));
  EXPECT_THAT(world_.messages.shown, IsEmpty());
}

// --- Measuring without copying

TEST_F(SetupKit, MeasuringTakesTheSameRoomAndCopiesNothing) {
  world_.SetKit({{"A.EXE", Noise(1025)}});

  const std::optional<SetupKitRoom> room =
      MeasureSetupKit(world_.application, /*medium_bytes=*/1457152);

  ASSERT_TRUE(room.has_value());
  EXPECT_EQ(room->bytes, 2048u + 32000u);
  EXPECT_TRUE(room->fits);
  EXPECT_EQ(world_.files.Times("CopyWhole"), 0u);
}

TEST_F(SetupKit, MeasuringAKitThatDoesNotFitShowsMessage912) {
  world_.SetKit({{"A.EXE", Noise(1025)}});

  const std::optional<SetupKitRoom> room =
      MeasureSetupKit(world_.application, /*medium_bytes=*/33000);

  ASSERT_TRUE(room.has_value());
  EXPECT_FALSE(room->fits);
  EXPECT_THAT(Prompt(), StartsWith("The size of the system files exceed"));
}

TEST_F(SetupKit, MeasuringAMissingFileShowsMessage909) {
  world_.SetKit({{"A.EXE", "a"}});
  world_.files.Vanish(std::string(kKitFolder) + "\\A.EXE");

  EXPECT_FALSE(MeasureSetupKit(world_.application, /*medium_bytes=*/1457152).has_value());

  EXPECT_THAT(Prompt(), StartsWith("Error copying the file 'A.EXE'!"));
}

}  // namespace
}  // namespace txs
