#include "document/document_check.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "document/document_world.h"

namespace txs {
namespace {

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

// A document that passes every check: two rows whose files exist, one of them hidden.
class DocumentCheck : public testing::Test {
 protected:
  DocumentCheck() {
    world_.Put("C:\\Demo\\Demo.exe", std::string(1000, 'x'));
    world_.Put("C:\\Demo\\h.dll", std::string(234, 'x'));
    document_.files.Append("<ProjectDir>\\Demo.exe", "<ProjectDir>", "0");
    document_.hidden_files.Append("<ProjectDir>\\h.dll", "<WinSysDir>", "1");
    steps_.tavix_directory = "C:\\TavixStudio";
    steps_.project_directory = "C:\\Demo";
  }

  [[nodiscard]] bool Check(Step step = Step::kAll) {
    world_.Files().diary.clear();
    return CheckDocument(world_.application, step);
  }

  void ExpectMessage(long id) { EXPECT_THAT(world_.MessageIds(), ElementsAre(id)); }

  DocumentWorld world_;
  SetupDocument& document_ = world_.application.document;
  StepSettings& steps_ = world_.application.document.steps;
};

TEST_F(DocumentCheck, PassesASoundDocumentWithoutAMessage) {
  EXPECT_TRUE(Check());

  EXPECT_THAT(world_.MessageIds(), IsEmpty());
}

TEST_F(DocumentCheck, PassesAnEmptyList) {
  document_.files.Clear();
  document_.hidden_files.Clear();

  EXPECT_TRUE(Check());
  EXPECT_EQ(steps_.file_count_label, "0");
  EXPECT_EQ(steps_.total_bytes_label, "0");
  EXPECT_EQ(steps_.disks_needed_label, "1");
}

// --- Background pictures

TEST_F(DocumentCheck, FindsABackgroundPictureThatIsMissing) {
  for (std::string* picture :
       {&steps_.background_picture.german, &steps_.background_picture.english}) {
    world_.ForgetMessages();
    *picture = "<ProjectDir>\\Bild.bmp";

    EXPECT_FALSE(Check());

    ExpectMessage(1707);
    EXPECT_THAT(world_.Prompts(), ElementsAre(HasSubstr("C:\\Demo\\Bild.bmp")));
    picture->clear();
  }
}

TEST_F(DocumentCheck, NamesTheGermanPictureFirst) {
  steps_.background_picture = {"C:\\Süd.bmp", "C:\\South.bmp"};

  EXPECT_FALSE(Check());

  ExpectMessage(1707);
  EXPECT_THAT(world_.Prompts(), ElementsAre(HasSubstr("C:\\Süd.bmp")));
}

TEST_F(DocumentCheck, PassesPicturesThatExist) {
  world_.Put("C:\\Demo\\Bild.bmp", "x");
  steps_.background_picture = {"<ProjectDir>\\BILD.BMP", "C:\\Demo\\Bild.bmp"};

  EXPECT_TRUE(Check());
}

TEST_F(DocumentCheck, TakesAFolderForNoPicture) {
  steps_.background_picture.german = "C:\\Demo";

  EXPECT_FALSE(Check());

  ExpectMessage(1707);
}

// --- Destination directories

TEST_F(DocumentCheck, AsksForBothDestinationDirectories) {
  for (std::string* directory : {&steps_.tavix_directory, &steps_.project_directory}) {
    for (const char* blank : {"", "  "}) {
      world_.ForgetMessages();
      const std::string before = *directory;
      *directory = blank;

      EXPECT_FALSE(Check());

      ExpectMessage(1708);
      *directory = before;
    }
  }
}

TEST_F(DocumentCheck, AsksForDirectoriesThatBeginWithADrive) {
  for (const char* directory : {"Demo", "C:", "C:Demo", "\\\\server\\share", "1:\\Demo",
                                " C:\\Demo", "<ProjectDir>\\Demo", "C:/Demo"}) {
    world_.ForgetMessages();
    steps_.project_directory = directory;

    EXPECT_FALSE(Check()) << directory;

    ExpectMessage(1712);
    EXPECT_THAT(world_.Prompts(), ElementsAre(HasSubstr("'" + std::string(directory) + "'")));
  }
}

TEST_F(DocumentCheck, PassesTheRootOfADriveAndAnyLetter) {
  steps_.tavix_directory = "z:\\";
  steps_.project_directory = "D:\\Kläranlage, Süd";

  EXPECT_TRUE(Check());
}

TEST_F(DocumentCheck, NamesTheFirstDirectoryThatIsWrong) {
  steps_.tavix_directory = "eins";
  steps_.project_directory = "zwei";
  steps_.user_directories = {{1, "drei"}};

  EXPECT_FALSE(Check());
  EXPECT_THAT(world_.Prompts(), ElementsAre(HasSubstr("'eins'")));

  world_.ForgetMessages();
  steps_.tavix_directory = "C:\\eins";
  EXPECT_FALSE(Check());
  EXPECT_THAT(world_.Prompts(), ElementsAre(HasSubstr("'zwei'")));

  world_.ForgetMessages();
  steps_.project_directory = "C:\\zwei";
  EXPECT_FALSE(Check());
  EXPECT_THAT(world_.Prompts(), ElementsAre(HasSubstr("'drei'")));
}

TEST_F(DocumentCheck, FindsAnEmptyUserDirectory) {
  steps_.user_directories = {{1, "D:\\Messwerte"}, {2, ""}};

  EXPECT_FALSE(Check());

  ExpectMessage(1712);
}

// The script takes it for the end of what it belongs to, and Create ended well.
TEST_F(DocumentCheck, FindsTheCharacterThatTheScriptSeparatesBy) {
  StepSettings& steps = steps_;
  steps.user_directories = {{1, "D:\\Messwerte"}};
  for (std::string* text :
       {&steps.startmenu_folder.german, &steps.startmenu_folder.english,
        &steps.startmenu_link.german, &steps.startmenu_link.english, &steps.tavix_directory,
        &steps.project_directory, &steps.user_directories[0].directory,
        &document_.files.Row(1).destination, &document_.hidden_files.Row(1).destination}) {
    world_.ForgetMessages();
    const std::string before = *text;
    *text += "C:\\a|b";

    EXPECT_FALSE(Check());

    ExpectMessage(1935);
    EXPECT_THAT(world_.Prompts(), ElementsAre(HasSubstr("'" + *text + "'")));
    *text = before;
    EXPECT_TRUE(Check());
  }
}

TEST_F(DocumentCheck, MarksTheRowWhoseDestinationHoldsTheSeparator) {
  document_.files.Append("<ProjectDir>\\Demo.exe", "D:\\a|b", "0");

  EXPECT_FALSE(Check(Step::kFiles));

  EXPECT_FALSE(document_.files.Row(1).marked);
  EXPECT_TRUE(document_.files.Row(2).marked);
}

// --- Files

TEST_F(DocumentCheck, MarksEveryRowWhoseFileIsMissing) {
  document_.files.Append("<ProjectDir>\\fehlt.dll", "<WinSysDir>", "1");
  document_.files.Append("", "<WinSysDir>", "1");
  document_.hidden_files.Append("C:\\fehlt.dll", "<WinSysDir>", "1");

  EXPECT_FALSE(Check());

  ExpectMessage(1709);
  EXPECT_FALSE(document_.files.Row(1).marked);
  EXPECT_TRUE(document_.files.Row(2).marked);
  EXPECT_TRUE(document_.files.Row(3).marked);
  EXPECT_FALSE(document_.hidden_files.Row(1).marked);
  EXPECT_TRUE(document_.hidden_files.Row(2).marked);
}

TEST_F(DocumentCheck, TakesAFolderForNoFile) {
  document_.files.Append("<ProjectDir>", "<WinSysDir>", "1");

  EXPECT_FALSE(Check());

  ExpectMessage(1709);
  EXPECT_TRUE(document_.files.Row(2).marked);
}

TEST_F(DocumentCheck, MarksEveryRowWithoutADestination) {
  document_.files.Row(1).destination = "";
  document_.hidden_files.Row(1).destination = "";
  world_.Put("C:\\Demo\\b.dll", "x");
  document_.files.Append("<ProjectDir>\\b.dll", "<WinSysDir>", "1");

  EXPECT_FALSE(Check());

  ExpectMessage(1710);
  EXPECT_TRUE(document_.files.Row(1).marked);
  EXPECT_FALSE(document_.files.Row(2).marked);
  EXPECT_TRUE(document_.hidden_files.Row(1).marked);
}

TEST_F(DocumentCheck, NamesMissingFilesBeforeMissingDestinations) {
  document_.files.Row(1).destination = "";
  document_.files.Append("C:\\fehlt.dll", "", "1");

  EXPECT_FALSE(Check());

  ExpectMessage(1709);
  EXPECT_FALSE(document_.files.Row(1).marked);
  EXPECT_TRUE(document_.files.Row(2).marked);
}

TEST_F(DocumentCheck, TakesOldMarksAwayWhenItPasses) {
  document_.files.Row(1).marked = true;
  document_.hidden_files.Row(1).marked = true;

  EXPECT_TRUE(Check());

  EXPECT_FALSE(document_.files.Row(1).marked);
  EXPECT_FALSE(document_.hidden_files.Row(1).marked);
}

TEST_F(DocumentCheck, TakesLengthsAfreshFromTheFiles) {
  document_.files.Row(1).length_bytes = 5;

  EXPECT_TRUE(Check());

  EXPECT_EQ(document_.files.Row(1).length_bytes, 1000u);
  EXPECT_EQ(document_.hidden_files.Row(1).length_bytes, 234u);
}

TEST_F(DocumentCheck, UnsetsTheLengthOfAMissingFile) {
  document_.files.Append("C:\\fehlt.dll", "<WinSysDir>", "1");
  document_.files.Row(2).length_bytes = 5;

  EXPECT_FALSE(Check());

  EXPECT_EQ(document_.files.Row(2).length_bytes, std::nullopt);
}

TEST_F(DocumentCheck, AsksTheFileSystemOncePerRow) {
  EXPECT_TRUE(Check());

  EXPECT_EQ(world_.Files().diary.size(), 2u);
  EXPECT_EQ(world_.Files().Times("Stamp"), 2u);
}

// --- Names of the files

// The log of an unattended run shows no marks.
TEST_F(DocumentCheck, OfAnUnattendedRunNamesTheFiles) {
  world_.application.unattended = true;
  document_.files.Append("<ProjectDir>\\fehlt.dll", "<WinSysDir>", "1");
  document_.files.Append("", "<WinSysDir>", "1");
  document_.hidden_files.Append("D:\\fehlt.ocx", "<WinSysDir>", "1");

  EXPECT_FALSE(Check());

  const TextService& texts = world_.application.texts;
  EXPECT_EQ(world_.Prompts().back(),
            texts.GetText(1709) + "\r\n" +
                texts.GetText(1940, {"\r\nC:\\Demo\\fehlt.dll\r\n\"\"\r\nD:\\fehlt.ocx"}));
}

TEST_F(DocumentCheck, OfAnUnattendedRunNamesTheFilesWithoutADestination) {
  world_.application.unattended = true;
  document_.files.Row(1).destination = "";

  EXPECT_FALSE(Check());

  EXPECT_THAT(world_.Prompts().back(), EndsWith(":\r\nC:\\Demo\\Demo.exe"));
}

TEST_F(DocumentCheck, NamesTheFilesOfRowsThatTheListDoesNotShow) {
  document_.hidden_files.Append("C:\\fehlt.dll", "<WinSysDir>", "1");

  EXPECT_FALSE(Check());

  EXPECT_THAT(world_.Prompts().back(), EndsWith(":\r\nC:\\fehlt.dll"));
}

TEST_F(DocumentCheck, LeavesItToTheMarksWhereAllOfThemAreSeen) {
  document_.files.Append("C:\\fehlt.dll", "<WinSysDir>", "1");

  EXPECT_FALSE(Check());

  EXPECT_EQ(world_.Prompts().back(), world_.application.texts.GetText(1709));
}

TEST_F(DocumentCheck, NamesAHundredFilesAndThenNoMore) {
  world_.application.unattended = true;
  for (int i = 1; i <= 101; ++i) {
    document_.files.Append("C:\\" + std::to_string(i) + ".dll", "<WinSysDir>", "1");
  }

  EXPECT_FALSE(Check());

  EXPECT_THAT(world_.Prompts().back(), EndsWith("\r\nC:\\100.dll\r\n..."));
}

// --- Order and parts

TEST_F(DocumentCheck, FollowsTheOrderOfTheSteps) {
  steps_.background_picture.german = "C:\\fehlt.bmp";
  steps_.project_directory = "";
  steps_.tavix_directory = "falsch";
  document_.files.Append("C:\\fehlt.dll", "", "1");

  for (const long id : {1707, 1708, 1712, 1709, 1710}) {
    world_.ForgetMessages();
    EXPECT_FALSE(Check());
    ExpectMessage(id);
    switch (id) {
      case 1707:
        steps_.background_picture.german = "";
        break;
      case 1708:
        steps_.project_directory = "C:\\Demo";
        break;
      case 1712:
        steps_.tavix_directory = "C:\\TavixStudio";
        break;
      default:
        world_.Put("C:\\fehlt.dll", "x");
    }
  }
}

TEST_F(DocumentCheck, OfOneStepLooksAtThatStepOnly) {
  steps_.background_picture.german = "C:\\fehlt.bmp";
  steps_.project_directory = "";
  document_.files.Append("C:\\fehlt.dll", "", "1");

  EXPECT_TRUE(Check(Step::kFunctions));
  EXPECT_TRUE(Check(Step::kMedium));
  EXPECT_THAT(world_.MessageIds(), IsEmpty());

  EXPECT_FALSE(Check(Step::kTexts));
  ExpectMessage(1707);
  world_.ForgetMessages();
  EXPECT_FALSE(Check(Step::kDirectories));
  ExpectMessage(1708);
  world_.ForgetMessages();
  EXPECT_FALSE(Check(Step::kFiles));
  ExpectMessage(1709);
}

TEST_F(DocumentCheck, OfStepsWithoutFilesLeavesMarksAndLengthsAlone) {
  document_.files.Row(1).marked = true;
  for (const Step step : {Step::kTexts, Step::kDirectories, Step::kFunctions, Step::kMedium}) {
    EXPECT_TRUE(Check(step));

    EXPECT_TRUE(document_.files.Row(1).marked);
    EXPECT_EQ(document_.files.Row(1).length_bytes, std::nullopt);
    EXPECT_THAT(world_.Files().diary, IsEmpty());
  }
}

// --- Figures of step 5

TEST_F(DocumentCheck, RefreshesTheFigures) {
  steps_.disks_needed_label = "7";
  steps_.disks_needed_is_estimate = false;

  EXPECT_TRUE(Check());

  EXPECT_EQ(steps_.file_count_label, "2");
  EXPECT_EQ(steps_.total_bytes_label, "1234");
  EXPECT_EQ(steps_.disks_needed_label, "1");
  EXPECT_TRUE(steps_.disks_needed_is_estimate);
}

TEST_F(DocumentCheck, RefreshesTheFiguresOnLeavingStepFive) {
  document_.files.Row(1).length_bytes = 2185728;

  EXPECT_TRUE(Check(Step::kMedium));

  EXPECT_EQ(steps_.total_bytes_label, "2185728");
  EXPECT_EQ(steps_.disks_needed_label, "2");
}

TEST_F(DocumentCheck, EstimatesByTheChosenMedium) {
  document_.files.Row(1).length_bytes = 30'000'000;
  RefreshFigures(world_.application);
  EXPECT_EQ(steps_.disks_needed_label, "15");

  steps_.disk_size_index = 1;
  RefreshFigures(world_.application);

  EXPECT_EQ(steps_.disks_needed_label, "1");
}

TEST_F(DocumentCheck, SumsLengthsBeyondTwoGibibytes) {
  document_.files.Row(1).length_bytes = 5'000'000'000;
  document_.hidden_files.Row(1).length_bytes = 6'000'000'000;

  RefreshFigures(world_.application);

  EXPECT_EQ(steps_.total_bytes_label, "11000000000");
}

TEST_F(DocumentCheck, SumOfAbsurdLengthsStaysTheLargestNumber) {
  document_.files.SetCell(1, FileColumn::kLength, "18446744073709551615");
  document_.hidden_files.Row(1).length_bytes = 1;

  RefreshFigures(world_.application);

  EXPECT_EQ(steps_.total_bytes_label, "18446744073709551615");
}

TEST_F(DocumentCheck, MeasuringTakesLengthsAfreshWithoutMarksAndMessages) {
  document_.files.Append("<ProjectDir>\\gone.dll", "", "0");
  document_.files.Row(1).length_bytes = 7;
  document_.files.Row(1).marked = true;
  document_.files.Row(2).length_bytes = 500;

  MeasureFiles(world_.application);

  EXPECT_EQ(document_.files.Row(1).length_bytes, 1000u);
  EXPECT_TRUE(document_.files.Row(1).marked);
  EXPECT_EQ(document_.files.Row(2).length_bytes, std::nullopt);
  EXPECT_FALSE(document_.files.Row(2).marked);
  EXPECT_EQ(steps_.file_count_label, "3");
  EXPECT_EQ(steps_.total_bytes_label, "1234");
  EXPECT_THAT(world_.MessageIds(), IsEmpty());
}

TEST_F(DocumentCheck, MeasuringPassesOverAPathThatCannotBeResolved) {
  document_.path_variables.clear();
  for (int n = 1; n <= 60; ++n) {
    const std::string next = "<V" + std::to_string(n + 1) + ">";
    document_.path_variables.push_back({"<V" + std::to_string(n) + ">", next + next});
  }
  document_.path_variables.push_back({"<ProjectDir>", "C:\\Demo"});
  document_.files.Row(1).source = "<V1>";
  document_.files.Row(1).length_bytes = 7;

  MeasureFiles(world_.application);

  EXPECT_EQ(document_.files.Row(1).length_bytes, std::nullopt);
  EXPECT_EQ(steps_.total_bytes_label, "234");
}

// --- Errors

TEST_F(DocumentCheck, CountsAFileThatCannotBeAskedAsMissing) {
  world_.Files().FailPath("C:\\Demo\\Demo.exe", "Stamp", ErrorNumber::kDeviceIo);

  EXPECT_FALSE(Check());

  ExpectMessage(1709);
  EXPECT_TRUE(document_.files.Row(1).marked);
}

TEST_F(DocumentCheck, ShowsAnErrorUnderTheMessageOfWhatItWasDoing) {
  document_.path_variables.clear();
  for (int n = 1; n <= 60; ++n) {
    const std::string next = "<V" + std::to_string(n + 1) + ">";
    document_.path_variables.push_back({"<V" + std::to_string(n) + ">", next + next});
  }
  document_.files.Row(1).source = "<V1>";
  document_.hidden_files.Row(1).marked = true;

  EXPECT_FALSE(Check());
  ExpectMessage(1709);
  EXPECT_FALSE(document_.hidden_files.Row(1).marked);
  EXPECT_THAT(world_.Prompts(), ElementsAre(HasSubstr("(7: ")));

  world_.ForgetMessages();
  steps_.background_picture.german = "<V1>";
  EXPECT_FALSE(Check());
  ExpectMessage(1707);
  EXPECT_THAT(world_.Prompts(), ElementsAre(HasSubstr("(7: ")));
}

}  // namespace
}  // namespace txs
