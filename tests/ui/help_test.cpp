#include "ui/help.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "ui/wizard_world.h"

namespace txs {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr char kHelpFile[] = "C:\\TavixStudio\\Common\\HelpFiles\\Projektmanagement.chm";

class Viewer : public HelpViewer {
 public:
  std::vector<std::string> opened;
  bool succeeds = true;
  bool throws = false;

  [[nodiscard]] bool Open(const std::string& help_file, int topic) override {
    if (throws) throw std::runtime_error("no browser");
    opened.push_back(help_file + "#" + std::to_string(topic));
    return succeeds;
  }
};

class Help : public testing::TestWithParam<long> {
 public:
  [[nodiscard]] bool IsGerman() const { return GetParam() == kGerman; }

  WizardWorld world{GetParam()};
  Viewer viewer;
};

TEST_P(Help, OpensTheFileOfTheCommonDirectoryAtTheTopic) {
  world.Put(kHelpFile, "help");

  ShowHelp(world.application, viewer, kHelpContents);
  ShowHelp(world.application, viewer, /*topic=*/42);

  EXPECT_THAT(viewer.opened,
              ElementsAre(std::string(kHelpFile) + "#0", std::string(kHelpFile) + "#42"));
  EXPECT_THAT(world.messages.Ids(), IsEmpty());
}

TEST_P(Help, SaysWhichFileIsNotThere) {
  ShowHelp(world.application, viewer, kHelpContents);

  ASSERT_THAT(world.messages.Ids(), ElementsAre(1910));
  EXPECT_EQ(world.messages.shown[0].prompt,
            IsGerman() ? "Die Hilfedatei '" + std::string(kHelpFile) + "' wurde nicht gefunden!"
                       : "The help file '" + std::string(kHelpFile) + "' was not found!");
  EXPECT_THAT(viewer.opened, IsEmpty());
}

TEST_P(Help, SaysForWhichFileNoViewerCouldBeStarted) {
  world.Put(kHelpFile, "help");
  viewer.succeeds = false;

  ShowHelp(world.application, viewer, kHelpContents);

  ASSERT_THAT(world.messages.Ids(), ElementsAre(1911));
  EXPECT_EQ(world.messages.shown[0].prompt,
            IsGerman()
                ? "Für die Hilfedatei '" + std::string(kHelpFile) +
                      "' konnte kein Anzeigeprogramm gestartet werden!"
                : "No viewer could be started for the help file '" + std::string(kHelpFile) + "'!");
}

TEST_P(Help, ShowsWhatAViewerThrows) {
  world.Put(kHelpFile, "help");
  viewer.throws = true;

  ShowHelp(world.application, viewer, kHelpContents);

  ASSERT_THAT(world.messages.Ids(), ElementsAre(1911));
  EXPECT_THAT(world.messages.shown[0].prompt, HasSubstr("no browser"));
}

INSTANTIATE_TEST_SUITE_P(InBothLanguages, Help, testing::Values(kGerman, kEnglish));

}  // namespace
}  // namespace txs
