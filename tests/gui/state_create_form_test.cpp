#include "ui/state_create_form.h"

#include <gmock/gmock.h>
#include <wx/evtloop.h>

#include <string>
#include <vector>

#include "create/create_run.h"
#include "fakes/demo_project.h"
#include "gui/state_form_support.h"
#include "projects/open_project.h"
#include "ui/form_pictures.h"
#include "ui/take_note_form.h"

namespace txs {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr std::uint64_t kGigabyte = std::uint64_t{1} << 30;

// Presses OK in the Take-note dialog when it is shown. `shown` counts.
class TakeNoteCloser : public wxTimer {
 public:
  int shown = 0;

  TakeNoteCloser() { Start(/*milliseconds=*/5); }

  void Notify() override {
    for (wxWindow* const window : wxTopLevelWindows) {
      auto* const note = dynamic_cast<FTakeNote*>(window);
      if (note == nullptr || !note->IsModal()) continue;
      ++shown;
      note->EndModal(wxID_OK);
      return;
    }
  }
};

class StateCreate : public StateFormTest<FStateCreate> {
 protected:
  explicit StateCreate(long language_id = kGerman) : world_(language_id) {
    InstallDemoProject(world_.platform);
    EXPECT_TRUE(OpenProject(world_.application, "Demo"));
    form_ = std::make_unique<FStateCreate>(parent_, world_.application, help_);
  }

  void Begin() {
    form_->Begin();
    ExpectOnScreen();
  }
  void End(bool succeeded) {
    form_->End(succeeded, world_.application.texts.GetText(succeeded ? 425 : 424));
  }
  void LookAtEveryState(const std::string& language);
  ProgressBar& Bar(const std::string& name) { return Control<ProgressBar>(*form_, name); }

  GuiWorld world_;
  RecordingHelp help_;
};

class StateCreateEnglish : public StateCreate {
 protected:
  StateCreateEnglish() : StateCreate(kEnglish) {}
};

TEST_F(StateCreate, AppearsWhenTheRunBegins) {
  EXPECT_FALSE(form_->IsShown());

  Begin();

  EXPECT_EQ(form_->GetTitle(), "TavixStudio - Setup-Assistent: Status von 'Erstellen'");
  EXPECT_EQ(Text("lblCountPercent"), "0 / 0");
  EXPECT_EQ(Text("lblSizePercent"), "0 %");
  EXPECT_EQ(Bar("picCount").Filled(), 0);
  EXPECT_TRUE(FocusIsIn(*FindControl(*form_, "picState")));
  EXPECT_FALSE(Button("cmdOK").IsEnabled());
}

TEST_F(StateCreate, HasALineForEveryStage) {
  std::vector<std::string> lines;
  for (int i = 0; i < 5; ++i) lines.push_back(Text("lblStateInfo" + std::to_string(i)));

  EXPECT_THAT(lines, ElementsAre("Installationsverzeichnisse anlegen", "Dateien komprimieren",
                                 "Systemdateien kopieren/komprimieren",
                                 "Dateien auf Disketten verteilen", "Setup-Steuerdatei erstellen"));
}

TEST_F(StateCreate, MarksTheStageThatRuns) {
  Begin();
  form_->StageStarted(CreateStage::kDirectories);
  form_->StageEnded(CreateStage::kDirectories, /*succeeded=*/true);

  form_->StageStarted(CreateStage::kCompress);

  EXPECT_TRUE(Shows(Picture("imgState0"), StageDonePicture()));
  EXPECT_FALSE(IsBold(Label("lblStateInfo0")));
  EXPECT_TRUE(Shows(Picture("imgState1"), StageRunningPicture()));
  EXPECT_TRUE(IsBold(Label("lblStateInfo1")));
  EXPECT_FALSE(Picture("imgState2").IsShown());
}

TEST_F(StateCreate, PaintsBothBarsAndTheirTextsWithoutWaitingForEvents) {
  Begin();
  for (const std::uint64_t done : {3, 4, 17}) {
    const std::string count_before = Pixels(Bar("picCount"));
    const std::string size_before = Pixels(Bar("picSize"));
    const std::string text_before = Pixels(Label("lblCountPercent"));

    EXPECT_TRUE(BecomesTrueWithoutEvents([&] {
      form_->ShowProgress(MakeCreateProgress(done, 17, done * 5, 85));
      return Pixels(Bar("picCount")) != count_before && Pixels(Bar("picSize")) != size_before &&
             Pixels(Label("lblCountPercent")) != text_before;
    }));
    EXPECT_EQ(Text("lblCountPercent"), std::to_string(done) + " / 17");
  }
  EXPECT_EQ(Text("lblSizePercent"), "100 %");
}

TEST_F(StateCreate, FillsTheBarsOfSizesBeyondTwoGigabytes) {
  Begin();

  form_->ShowProgress(MakeCreateProgress(1, 4, 3 * kGigabyte, 6 * kGigabyte));
  End(/*succeeded=*/false);

  EXPECT_DOUBLE_EQ(Bar("picSize").Filled(), 0.5);
  EXPECT_DOUBLE_EQ(Bar("picCount").Filled(), 0.25);
}

TEST(ProgressBarShare, IsWholeOnlyWhenEverythingIsDone) {
  constexpr std::uint64_t kLarge = ~std::uint64_t{0};

  EXPECT_EQ(FilledShare(0, 0), 0);
  EXPECT_EQ(FilledShare(0, 7), 0);
  EXPECT_LT(FilledShare(kLarge - 1, kLarge), 1);
  EXPECT_EQ(FilledShare(kLarge, kLarge), 1);
}

TEST_F(StateCreate, MakesRoomForLargeCounts) {
  Begin();

  form_->ShowProgress(MakeCreateProgress(123456789, 987654321, 1, 2));
  End(/*succeeded=*/false);
  LetEventsRun();

  EXPECT_EQ(Text("lblCountPercent"), "123456789 / 987654321");
  EXPECT_EQ(ClippedControls(*form_), "");
}

TEST_F(StateCreate, ShowsActionAndFile) {
  Begin();

  form_->ShowAction("Komprimieren");
  form_->ShowFile(kLongPath);
  End(/*succeeded=*/false);

  EXPECT_EQ(Text("lblAction"), "Komprimieren");
  EXPECT_EQ(Text("lblFile"), kLongPath);
  EXPECT_EQ(Label("lblFile").GetToolTipText(), wxString(kLongPath));
}

TEST_F(StateCreate, SaysNothingOfFilesWhenEverythingIsDone) {
  Begin();
  form_->ShowAction("Schreiben");
  form_->ShowFile("SETUP.STP");

  End(/*succeeded=*/true);

  EXPECT_EQ(Text("lblState"), "OK: Installationsdisketten erstellt!");
  EXPECT_TRUE(Shows(Picture("imgResult"), StageDonePicture()));
  EXPECT_EQ(Text("lblAction"), "");
  EXPECT_EQ(Text("lblFile"), "");
}

TEST_F(StateCreate, RefusesToBeClosedWhileTheRunLasts) {
  Begin();

  ExpectRefusesToBeClosed();
}

TEST_F(StateCreate, StartsAfreshWithAnotherRun) {
  Begin();
  form_->StageStarted(CreateStage::kDirectories);
  form_->StageEnded(CreateStage::kDirectories, /*succeeded=*/false);
  PressKey(WXK_ESCAPE);
  EXPECT_TRUE(WaitFor([&] { return form_->IsCancelPressed(); }));
  End(/*succeeded=*/false);
  form_->ShowReport({{"Eine Meldung"}, {}});

  form_->Begin();

  EXPECT_FALSE(form_->IsCancelPressed());
  EXPECT_FALSE(Picture("imgState0").IsShown());
  EXPECT_FALSE(Picture("imgResult").IsShown());
  EXPECT_FALSE(Report().IsShown());
  EXPECT_EQ(Text("lblState"), "");
  EXPECT_EQ(Text("lblFile"), "");
  EXPECT_TRUE(Button("cmdCancel").IsEnabled());
  EXPECT_FALSE(Button("cmdOK").IsEnabled());
}

TEST_F(StateCreate, TheTakeNoteDialogIsModal) {
  Begin();
  End(/*succeeded=*/true);
  TakeNoteCloser closer;

  form_->ShowTakeNote();

  EXPECT_EQ(closer.shown, 1);
  EXPECT_TRUE(form_->IsShown());
  WaitWhile([&] { PressKey(WXK_RETURN); });
  EXPECT_FALSE(form_->IsShown());
}

// --- Whole runs

TEST_F(StateCreate, ShowsAWholeRun) {
  TakeNoteCloser closer;

  const CreateResult result = RunCreate(world_.application, *form_);

  EXPECT_TRUE(result.succeeded);
  EXPECT_EQ(closer.shown, 1);
  EXPECT_EQ(Text("lblState"), "OK: Installationsdisketten erstellt!");
  for (int i = 0; i < 5; ++i) {
    EXPECT_TRUE(Shows(Picture("imgState" + std::to_string(i)), StageDonePicture())) << i;
  }
  EXPECT_EQ(Text("lblSizePercent"), "100 %");
  EXPECT_FALSE(wxIsBusy());
  WaitWhile([&] { Click(Button("cmdOK")); });
}

TEST_F(StateCreate, AClickOnCancelEndsTheRunWithTheFileThatIsBeingCompressed) {
  TakeNoteCloser closer;
  std::vector<std::string> compressed;
  world_.platform.archiver.before = [&](std::string_view, std::string_view source) {
    compressed.emplace_back(source);
    if (compressed.size() > 1) return;
    EXPECT_TRUE(WaitFor([&] { return form_->IsActive(); }));
    EXPECT_TRUE(wxIsBusy());
    Click(Button("cmdCancel"));
    EXPECT_TRUE(WaitFor([&] { return form_->IsCancelPressed(); }));
  };

  const CreateResult result = RunCreate(world_.application, *form_);

  EXPECT_FALSE(result.succeeded);
  EXPECT_EQ(compressed.size(), 1U);
  EXPECT_EQ(Text("lblState"), "STOP: Installationserstellung abgebrochen oder fehlerhaft!");
  EXPECT_TRUE(Shows(Picture("imgResult"), StageErrorPicture()));
  EXPECT_TRUE(Shows(Picture("imgState1"), StageErrorPicture()));
  EXPECT_FALSE(Picture("imgState2").IsShown());
  EXPECT_TRUE(Button("cmdOK").IsEnabled());
  EXPECT_FALSE(wxIsBusy());
  WaitWhile([&] { PressKey(WXK_RETURN); });
}

// The mouse is pressed and nothing but the run itself handles events.
TEST_F(StateCreate, TheRunNoticesAPressOfCancelWithinOneFile) {
  TakeNoteCloser closer;
  for (int i = 0; i < 50; ++i) {
    const std::string name = "C:\\Projects\\Demo\\file" + std::to_string(i) + ".dat";
    world_.platform.files.AddFile(name, "bytes");
    world_.application.document.files.Append(name, "<ProjectDir>", "");
  }
  int files = 0;
  int files_after_press = 0;
  bool pressed = false;
  Button("cmdCancel").Bind(wxEVT_LEFT_UP, [&](wxMouseEvent& event) {
    pressed = true;
    event.Skip();
  });
  world_.platform.archiver.before = [&](std::string_view, std::string_view) {
    if (++files == 3) ClickUnhandled(Button("cmdCancel"));
    if (pressed) ++files_after_press;
    // As long as a file takes: time for the window system to pass the press on.
    wxMilliSleep(20);
  };

  const CreateResult result = RunCreate(world_.application, *form_);

  EXPECT_FALSE(result.succeeded);
  EXPECT_TRUE(form_->IsCancelPressed());
  EXPECT_TRUE(pressed);
  EXPECT_EQ(files_after_press, 0);
  EXPECT_LT(files, 50);
}

TEST_F(StateCreate, ARunInsideAnEventOfTheMainFormIsCancelledToo) {
  TakeNoteCloser closer;
  world_.platform.archiver.before = [&](std::string_view, std::string_view) {
    EXPECT_TRUE(WaitFor([&] { return form_->IsActive(); }));
    Click(Button("cmdCancel"));
    EXPECT_TRUE(WaitFor([&] { return form_->IsCancelPressed(); }));
  };
  wxEventLoop main_loop;
  CreateResult result;
  parent_->CallAfter([&] {
    result = RunCreate(world_.application, *form_);
    form_->CallAfter([&] { PressKey(WXK_RETURN); });
    form_->WaitUntilClosed();
    main_loop.ScheduleExit();
  });

  main_loop.Run();

  EXPECT_FALSE(result.succeeded);
  EXPECT_EQ(Text("lblState"), "STOP: Installationserstellung abgebrochen oder fehlerhaft!");
  EXPECT_FALSE(form_->IsShown());
}

// --- Both languages

void StateCreate::LookAtEveryState(const std::string& language) {
  const TextService& texts = world_.application.texts;
  const std::string name = "_" + language;
  Begin();
  form_->StageStarted(CreateStage::kDirectories);
  form_->StageEnded(CreateStage::kDirectories, /*succeeded=*/true);
  form_->StageStarted(CreateStage::kCompress);
  form_->ShowAction(texts.GetText(428));
  form_->ShowFile(kLongPath);
  form_->ShowProgress(MakeCreateProgress(3, 17, 42, 100));
  EXPECT_TRUE(BecomesTrueInTheRun([&] { return Text("lblFile") == kLongPath; }));
  ExpectNothingClipped("state_create_running" + name);

  for (const CreateStage stage : {CreateStage::kSetupKit, CreateStage::kDistribute}) {
    // The line that is longest in bold.
    form_->StageStarted(stage);
    form_->LetEventsRun();
    EXPECT_EQ(ClippedControls(*form_), "");
    form_->StageEnded(stage, /*succeeded=*/true);
  }
  form_->StageEnded(CreateStage::kCompress, /*succeeded=*/true);
  form_->StageEnded(CreateStage::kControlFile, /*succeeded=*/true);
  form_->ShowProgress(MakeCreateProgress(17, 17, 100, 100));
  End(/*succeeded=*/true);
  ExpectNothingClipped("state_create_done" + name);

  form_->StageEnded(CreateStage::kControlFile, /*succeeded=*/false);
  End(/*succeeded=*/false);
  ExpectNothingClipped("state_create_failed" + name);

  form_->ShowReport({{texts.GetText(902, {"C:\\Demo\\Trend.ocx"})}, {}});
  ExpectNothingClipped("state_create_report" + name);
}

TEST_F(StateCreate, ClipsNothing) { LookAtEveryState("german"); }

TEST_F(StateCreateEnglish, ClipsNothing) {
  LookAtEveryState("english");
  EXPECT_EQ(form_->GetTitle(), "TavixStudio - Setup-Assistent: State of 'Create'");
}

}  // namespace
}  // namespace txs
