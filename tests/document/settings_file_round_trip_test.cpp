// What is read from a file that the writer wrote is what was written: checked over random documents
// that use every freedom of the format.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "document/document_world.h"
#include "document/settings_file.h"
#include "environment/code_page.h"

namespace txs {
namespace {

class RandomDocument {
 public:
  explicit RandomDocument(unsigned seed) : random_(seed) {}

  SetupDocument Make() {
    SetupDocument document;
    StepSettings& steps = document.steps;
    for (std::string& line : steps.info.german) line = Text();
    for (std::string& line : steps.info.english) line = Text();
    for (std::string* text :
         {&steps.background_picture.german, &steps.background_picture.english,
          &steps.startmenu_folder.german, &steps.startmenu_folder.english,
          &steps.startmenu_link.german, &steps.startmenu_link.english, &steps.tavix_directory,
          &steps.project_directory, &steps.setup_directory, &document.program_name}) {
      *text = Text();
    }
    for (long number = 0; number < 12; ++number) {
      if (Chance(50)) steps.user_directories.push_back({number * number, Text()});
    }
    std::shuffle(steps.user_directories.begin(), steps.user_directories.end(), random_);
    steps.use_jet = Chance(50);
    steps.use_odbc = Chance(50);
    steps.disk_size_index = Chance(50) ? 1 : 0;
    steps.minimal_mdac = Chance(50);

    const int ini_files = Number(0, 130);
    for (int i = 0; i < ini_files; ++i) {
      std::string name = Text();
      if (!name.empty()) AddUnique(document.ini_files, name);
    }
    const int rows = Chance(20) ? 0 : Number(0, 150);
    for (int i = 0; i < rows; ++i) {
      document.files.Append(Trimmed(WithoutCommas(Text())), WithoutCommas(Text()), Trimmed(Text()));
    }
    return document;
  }

 private:
  bool Chance(int percent) { return Number(1, 100) <= percent; }
  int Number(int from, int to) { return std::uniform_int_distribution<int>(from, to)(random_); }

  // Often empty; otherwise of pieces that the format gives a meaning, and of ordinary ones.
  std::string Text() {
    static const std::vector<std::string> kPieces = {" ",
                                                     "\t",
                                                     ",",
                                                     ";",
                                                     "=",
                                                     "\"",
                                                     "'",
                                                     "[",
                                                     "]",
                                                     "\\",
                                                     "#",
                                                     "01",
                                                     "ä",
                                                     "Ü",
                                                     "ß",
                                                     "€",
                                                     "Š",
                                                     "\v",
                                                     "\x1A",
                                                     "\f",
                                                     "C:",
                                                     ".",
                                                     "-",
                                                     "<",
                                                     "<WinDir>",
                                                     "<ProjectDir>",
                                                     "abc",
                                                     "X",
                                                     "dll",
                                                     "\xC2\x81",
                                                     "|",
                                                     "@",
                                                     "%s",
                                                     "//",
                                                     "Mischanlage Süd"};
    if (Chance(20)) return "";
    std::string text;
    const int count = Number(1, 8);
    for (int i = 0; i < count; ++i) {
      text += kPieces[static_cast<std::size_t>(Number(0, static_cast<int>(kPieces.size()) - 1))];
    }
    return text;
  }

  static std::string WithoutCommas(std::string text) {
    std::erase(text, ',');
    return text;
  }
  static std::string Trimmed(const std::string& text) { return std::string(TrimBlanks(text)); }

  std::mt19937 random_;
};

void ExpectSameSettings(const SetupDocument& read, const SetupDocument& written) {
  EXPECT_EQ(read.steps, written.steps);
  EXPECT_EQ(read.program_name, written.program_name);
  EXPECT_EQ(read.ini_files, written.ini_files);
  EXPECT_EQ(read.files.Rows(), written.files.Rows());
}

class SettingsRoundTrip : public testing::TestWithParam<unsigned> {};

TEST_P(SettingsRoundTrip, GivesBackWhatWasWritten) {
  RandomDocument random(GetParam());
  DocumentWorld world;
  // Every document is written over the one before, as in the life of a project.
  for (int save = 0; save < 4; ++save) {
    SetupDocument written = random.Make();
    written.settings_source = SettingsSource::kCleared;
    world.application.document = written;
    world.application.document.path_variables = world.path_variables;
    WriteSettings(world.application);
    world.application.document = SetupDocument();
    world.application.document.path_variables = world.path_variables;

    ReadSettings(world.application);

    ExpectSameSettings(world.application.document, written);
    if (testing::Test::HasFailure()) return;
  }
}

INSTANTIATE_TEST_SUITE_P(RandomDocuments, SettingsRoundTrip, testing::Range(1u, 61u));

TEST(SettingsRoundTrip, IsSilentAboutWhatTheFileDoesNotKeep) {
  DocumentWorld world;
  ReadSettings(world.application);
  FileRow& row = world.application.document.files.Rows().emplace_back();
  row = {"a.dll", "<WinSysDir>", 12, "|1", "a.dll.zip", "1", /*marked=*/true};
  WriteSettings(world.application);

  ReadSettings(world.application);

  const FileRow expected{"a.dll", "<WinSysDir>", {}, "", "", "1", /*marked=*/false};
  EXPECT_EQ(world.application.document.files.Row(1), expected);
}

}  // namespace
}  // namespace txs
