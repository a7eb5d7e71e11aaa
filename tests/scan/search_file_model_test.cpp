#include "scan/search_file_model.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "environment/runtime_error.h"
#include "fakes/memory_file_system.h"

namespace txs {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// A computer with the file in two places, neither of which is shown first.
class TwoCopies : public MemoryFileSystem {
 public:
  TwoCopies() {
    AddDrive('D');
    AddFile("C:\\Demo\\Sub\\Comp.DLL", "");
    AddFile("C:\\Demo\\Other.dll", "");
    AddFile("D:\\comp.dll", "");
  }
};

class SearchFileModelTest : public testing::Test {
 protected:
  TwoCopies files;
  SearchFileModel model{files, {"comp.dll", {"Demo.vbp", "comp.dll"}}, "C:\\Demo"};
};

TEST_F(SearchFileModelTest, ShowsDrivesFoldersAndOnlyFilesOfTheName) {
  EXPECT_THAT(model.Drives(), ElementsAre("C:", "D:"));
  EXPECT_EQ(model.Drive(), "C:");
  EXPECT_EQ(model.Directory(), "C:\\Demo");
  EXPECT_THAT(model.Folders(), ElementsAre("..", "Sub"));
  EXPECT_THAT(model.Files(), IsEmpty());
}

TEST_F(SearchFileModelTest, ShowsTheFileAsSoonAsItsDirectoryIsChosen) {
  model.ChangeDirectory("Sub");

  EXPECT_EQ(model.Directory(), "C:\\Demo\\Sub");
  EXPECT_THAT(model.Files(), ElementsAre("Comp.DLL"));
}

TEST_F(SearchFileModelTest, GoesUpToTheDriveAndNoFurther) {
  model.ChangeDirectory("..");

  EXPECT_EQ(model.Directory(), "C:\\");
  EXPECT_THAT(model.Folders(), ElementsAre("Demo"));
}

TEST_F(SearchFileModelTest, ChangesTheDrive) {
  model.ChangeDrive("D:");

  EXPECT_EQ(model.Drive(), "D:");
  EXPECT_THAT(model.Files(), ElementsAre("comp.dll"));
}

TEST_F(SearchFileModelTest, StaysWhereItIsWhenTheDirectoryDoesNotExist) {
  model.ChangeDirectory("Nowhere");
  model.ChangeDrive("X:");

  EXPECT_EQ(model.Directory(), "C:\\Demo");
}

TEST_F(SearchFileModelTest, AnswersCancelUntilAButtonIsPressed) {
  EXPECT_EQ(model.Answer().result, SearchFileResult::kCancel);
}

TEST_F(SearchFileModelTest, AnswersOkWithTheDirectoryShown) {
  model.ChangeDirectory("Sub");
  model.PressOk();

  EXPECT_EQ(model.Answer().result, SearchFileResult::kOk);
  EXPECT_EQ(model.Answer().directory, "C:\\Demo\\Sub");
}

TEST_F(SearchFileModelTest, DoesNotAnswerOkWhereTheFileIsNot) {
  EXPECT_FALSE(model.OkEnabled());
  model.PressOk();

  EXPECT_EQ(model.Answer().result, SearchFileResult::kCancel);
}

TEST_F(SearchFileModelTest, AnswersIgnoreAndCancel) {
  model.PressIgnore();
  EXPECT_EQ(model.Answer().result, SearchFileResult::kIgnore);

  model.PressCancel();
  EXPECT_EQ(model.Answer().result, SearchFileResult::kCancel);
}

TEST_F(SearchFileModelTest, OpensInTheFirstDriveWhenItsDirectoryIsGone) {
  const SearchFileModel lost(files, {"x.dll", {}}, "E:\\Gone");

  EXPECT_EQ(lost.Directory(), "C:\\");
}

TEST_F(SearchFileModelTest, ShowsNothingOfADirectoryThatCannotBeListed) {
  files.FailPath("C:\\Demo\\Sub", "List", ErrorNumber::kPermissionDenied);

  model.ChangeDirectory("Sub");

  EXPECT_THAT(model.Files(), IsEmpty());
}

TEST(SearchFileResultNumbers, AreThoseOfTheMessageBox) {
  EXPECT_EQ(static_cast<int>(SearchFileResult::kOk), 1);
  EXPECT_EQ(static_cast<int>(SearchFileResult::kCancel), 2);
  EXPECT_EQ(static_cast<int>(SearchFileResult::kIgnore), 5);
}

}  // namespace
}  // namespace txs
