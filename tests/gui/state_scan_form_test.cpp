#include "ui/state_scan_form.h"

#include <gmock/gmock.h>
#include <wx/timer.h>

#include <string>
#include <vector>

#include "gui/state_form_support.h"
#include "scan/scan_world.h"
#include "ui/form_pictures.h"
#include "ui/search_file_form.h"
#include "ui/wx_message_boxes.h"

namespace txs {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

const MissingItem kMissing = {"COMCAT.DLL", {"Demo.vbp", "MSCOMCTL.OCX", "COMCAT.DLL"}};

class StateScan : public StateFormTest<FStateScan> {
 protected:
  explicit StateScan(long language_id = kGerman) {
    world_.Speak(language_id);
    form_ = std::make_unique<FStateScan>(parent_, world_.application);
  }

  void Begin() {
    form_->Begin(/*use_runtime_setup=*/true, world_.application.texts.GetText(730));
    ExpectOnScreen();
  }
  void End(bool succeeded) {
    form_->End(succeeded, world_.application.texts.GetText(succeeded ? 725 : 724));
  }

  void LookAtEveryState(const std::string& language);

  ScanWorld world_;
};

class StateScanEnglish : public StateScan {
 protected:
  StateScanEnglish() : StateScan(kEnglish) {}
};

// Does something as soon as another window has taken the focus from the state window.
class WhenInactive : public wxTimer {
 public:
  WhenInactive(wxTopLevelWindow& form, std::function<void()> action)
      : form_(form), action_(std::move(action)) {
    Start(/*milliseconds=*/5);
  }

  bool acted = false;

  void Notify() override {
    if (acted || form_.IsActive()) return;
    acted = true;
    action_();
  }

 private:
  wxTopLevelWindow& form_;
  std::function<void()> action_;
};

TEST_F(StateScan, AppearsWhenTheRunBegins) {
  EXPECT_FALSE(form_->IsShown());

  Begin();

  EXPECT_EQ(form_->GetTitle(), wxString::FromUTF8("TavixStudio - Setup-Assistent: "
                                                  "Status von 'Durchsuchen'"));
  EXPECT_FALSE(form_->IsModal());
  EXPECT_TRUE(Button("cmdCancel").IsEnabled());
  EXPECT_TRUE(FocusIsIn(*FindControl(*form_, "picState")));
  EXPECT_FALSE(Button("cmdOK").IsEnabled());
  EXPECT_FALSE(form_->IsCancelPressed());
  EXPECT_EQ(Text("lblCount"), "0");
}

TEST_F(StateScan, DisablesTheOtherWindowsUntilOk) {
  Begin();
  EXPECT_FALSE(parent_->IsEnabled());

  End(/*succeeded=*/true);
  WaitWhile([&] { Click(Button("cmdOK")); });

  EXPECT_TRUE(parent_->IsEnabled());
  EXPECT_FALSE(form_->IsShown());
  EXPECT_TRUE(WaitFor([&] { return parent_->IsActive(); }));
}

TEST_F(StateScan, MarksAStageWhileItRuns) {
  Begin();
  EXPECT_FALSE(Picture("imgState0").IsShown());

  form_->StageStarted(ScanStage::kStudioProject);
  form_->StageCaption(ScanStage::kStudioProject, "TXS-Datei");

  EXPECT_TRUE(Shows(Picture("imgState0"), StageRunningPicture()));
  EXPECT_FALSE(Picture("imgState1").IsShown());
  EXPECT_TRUE(IsBold(Label("lblStateInfo0")));
  EXPECT_FALSE(IsBold(Label("lblStateInfo1")));
  EXPECT_EQ(Text("lblStateInfo0"), "TXS-Datei");
}

TEST_F(StateScan, ShowsHowAStageEndedBesideItsOwnCaption) {
  Begin();
  form_->StageStarted(ScanStage::kStudioProject);
  form_->StageCaption(ScanStage::kStudioProject, "TXS-Datei");
  form_->StageEnded(ScanStage::kStudioProject, /*succeeded=*/true);
  form_->StageStarted(ScanStage::kVisualBasic);
  form_->StageEnded(ScanStage::kVisualBasic, /*succeeded=*/false);

  EXPECT_TRUE(Shows(Picture("imgState0"), StageDonePicture()));
  EXPECT_TRUE(Shows(Picture("imgState1"), StageErrorPicture()));
  EXPECT_FALSE(IsBold(Label("lblStateInfo0")));
  EXPECT_EQ(Text("lblStateInfo0"), "TavixStudio-Projekt durchsuchen");
}

TEST_F(StateScan, RunsTheVisualBasicStageAgainForEveryProjectOfAGroup) {
  Begin();
  form_->StageStarted(ScanStage::kVisualBasic);
  form_->StageEnded(ScanStage::kVisualBasic, /*succeeded=*/true);

  form_->StageStarted(ScanStage::kVisualBasic);

  EXPECT_TRUE(Shows(Picture("imgState1"), StageRunningPicture()));
  EXPECT_TRUE(IsBold(Label("lblStateInfo1")));
}

TEST_F(StateScan, ShowsFileAndCountWhileEventsRun) {
  Begin();

  form_->ShowFile("C:\\Demo\\Trend.ocx");
  form_->ShowCount(17);

  EXPECT_TRUE(BecomesTrueInTheRun(
      [&] { return Text("lblFile") == "C:\\Demo\\Trend.ocx" && Text("lblCount") == "17"; }));
}

TEST_F(StateScan, PaintsTheFileWithoutWaitingForEvents) {
  Begin();
  const std::string before = Pixels(Label("lblFile"));

  EXPECT_TRUE(BecomesTrueWithoutEvents([&] {
    form_->ShowFile("C:\\Demo\\Trend.ocx");
    return Pixels(Label("lblFile")) != before;
  }));
}

TEST_F(StateScan, PaintsTheStageWhenEventsRunOnceAfterItsBegin) {
  Begin();
  const std::string label_before = Pixels(Label("lblStateInfo1"));
  const std::string picture_before = Pixels(Picture("imgState1"));

  form_->StageStarted(ScanStage::kVisualBasic);
  form_->LetEventsRun();

  EXPECT_TRUE(Pixels(Label("lblStateInfo1")) != label_before);
  EXPECT_TRUE(Pixels(Picture("imgState1")) != picture_before);
}

TEST_F(StateScan, CutsALongPathInTheMiddleAndHasItWholeAsTooltip) {
  Begin();
  const wxSize before = form_->GetSize();

  form_->ShowFile(kLongPath);
  End(/*succeeded=*/false);

  EXPECT_EQ(Text("lblFile"), kLongPath);
  EXPECT_TRUE(Label("lblFile").IsEllipsized());
  EXPECT_EQ(Label("lblFile").GetToolTipText(), wxString(kLongPath));
  EXPECT_EQ(form_->GetSize(), before);
}

TEST_F(StateScan, WritesInBoldThatThePredefinedSetupIsNotUsed) {
  form_->Begin(/*use_runtime_setup=*/false, world_.application.texts.GetText(731));
  EXPECT_TRUE(IsBold(Label("lblUseRuntimeSetup")));
  EXPECT_EQ(Text("lblUseRuntimeSetup"), world_.application.texts.GetText(731));

  form_->Begin(/*use_runtime_setup=*/true, world_.application.texts.GetText(730));
  EXPECT_FALSE(IsBold(Label("lblUseRuntimeSetup")));
  EXPECT_EQ(Text("lblUseRuntimeSetup"), world_.application.texts.GetText(730));
}

TEST_F(StateScan, NoticesAClickOnCancelWhileEventsRun) {
  Begin();

  ClickUnhandled(Button("cmdCancel"));
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (!form_->IsCancelPressed() && std::chrono::steady_clock::now() < end) {
    form_->LetEventsRun();
  }

  EXPECT_TRUE(form_->IsCancelPressed());
  EXPECT_TRUE(form_->IsShown());
  EXPECT_FALSE(Button("cmdOK").IsEnabled());
}

TEST_F(StateScan, EscapePressesCancelWhileTheRunLasts) {
  Begin();

  PressKey(WXK_ESCAPE);

  EXPECT_TRUE(WaitFor([&] { return form_->IsCancelPressed(); }));
  EXPECT_TRUE(form_->IsShown());
}

// They come too soon after a message, or were pressed twice.
TEST_F(StateScan, EnterAndBlankDoNotEndTheRun) {
  Begin();
  std::vector<int> keys;
  form_->Bind(wxEVT_CHAR_HOOK, [&](wxKeyEvent& event) {
    keys.push_back(event.GetKeyCode());
    event.Skip();
  });

  PressKey(WXK_RETURN);
  PressKey(WXK_NUMPAD_ENTER);
  PressKey(WXK_SPACE);

  // One that is heard shows that those before it were, too.
  PressKey('A');
  EXPECT_TRUE(WaitFor([&] { return !keys.empty() && keys.back() == 'A'; }));
  EXPECT_THAT(keys, ElementsAre(WXK_RETURN, WXK_NUMPAD_ENTER, WXK_SPACE, 'A'));
  EXPECT_FALSE(form_->IsCancelPressed());
  EXPECT_TRUE(form_->IsShown());
}

TEST_F(StateScan, EnterAfterAMessageDoesNotEndTheRun) {
  Begin();
  WxMessageBoxes boxes("Setup");
  WhenInactive answer(*form_, [] {
    PressKey(WXK_RETURN);
    PressKey(WXK_RETURN);
  });

  static_cast<void>(
      boxes.Show("A message", kButtonsOk | kIconExclamation, "Setup", /*help_file=*/{}, 0));
  ExpectOnScreen();
  PressKey(WXK_RETURN);
  LetEventsRun();

  EXPECT_TRUE(answer.acted);
  EXPECT_FALSE(form_->IsCancelPressed());
  EXPECT_TRUE(FocusIsIn(*FindControl(*form_, "picState")));
}

TEST_F(StateScan, TabLeadsToCancelWhichEnterThenPresses) {
  Begin();

  PressKey(WXK_TAB);
  EXPECT_TRUE(WaitFor([&] { return Button("cmdCancel").HasFocus(); }));
  PressKey(WXK_RETURN);

  EXPECT_TRUE(WaitFor([&] { return form_->IsCancelPressed(); }));
  EXPECT_TRUE(form_->IsShown());
}

TEST_F(StateScan, RefusesToBeClosedWhileTheRunLasts) {
  Begin();

  ExpectRefusesToBeClosed();
}

TEST_F(StateScan, EndsWithTheResultInBoldAndOkUnderTheKeys) {
  Begin();
  form_->ShowFile("C:\\Demo\\Trend.ocx");

  End(/*succeeded=*/true);

  EXPECT_EQ(Text("lblState"), "OK: Projekt erfolgreich durchsucht!");
  EXPECT_TRUE(IsBold(Label("lblState")));
  EXPECT_TRUE(Shows(Picture("imgResult"), StageDonePicture()));
  EXPECT_EQ(Text("lblFile"), "");
  EXPECT_TRUE(Button("cmdOK").IsEnabled());
  EXPECT_TRUE(WaitFor([&] { return Button("cmdOK").HasFocus(); }));
  EXPECT_FALSE(Button("cmdCancel").IsEnabled());
  EXPECT_TRUE(form_->IsShown());
}

TEST_F(StateScan, KeepsTheFileWhereAFailedRunStopped) {
  Begin();
  form_->ShowFile("C:\\Demo\\Trend.ocx");

  End(/*succeeded=*/false);

  EXPECT_EQ(Text("lblState"), "STOP: 'Durchsuchen' abgebrochen oder fehlerhaft!");
  EXPECT_TRUE(Shows(Picture("imgResult"), StageErrorPicture()));
  EXPECT_EQ(Text("lblFile"), "C:\\Demo\\Trend.ocx");
}

TEST_F(StateScan, EnterClosesItAfterTheRun) {
  Begin();
  End(/*succeeded=*/true);

  WaitWhile([&] { PressKey(WXK_RETURN); });

  EXPECT_FALSE(form_->IsShown());
}

TEST_F(StateScan, EscapeClosesItAfterTheRun) {
  Begin();
  End(/*succeeded=*/true);

  WaitWhile([&] { PressKey(WXK_ESCAPE); });

  EXPECT_FALSE(form_->IsShown());
  EXPECT_FALSE(form_->IsCancelPressed());
}

TEST_F(StateScan, TheCloseBoxClosesItAfterTheRun) {
  Begin();
  End(/*succeeded=*/true);

  WaitWhile([&] { PressKey(WXK_F4, wxMOD_ALT); });

  EXPECT_FALSE(form_->IsShown());
}

TEST_F(StateScan, WaitsForNobodyWhenItNeverAppeared) {
  form_->ShowMissing({kMissing});

  form_->WaitUntilClosed();

  EXPECT_FALSE(form_->IsShown());
}

TEST_F(StateScan, CanBeClosedWhenTheRunBrokeOffWithoutAnEnd) {
  Begin();

  WaitWhile([&] {
    EXPECT_EQ(Text("lblState"), "STOP: 'Durchsuchen' abgebrochen oder fehlerhaft!");
    PressKey(WXK_RETURN);
  });

  EXPECT_FALSE(form_->IsShown());
}

TEST_F(StateScan, TheBusyPointerComesBack) {
  Begin();

  form_->ShowBusy(/*busy=*/true);
  EXPECT_TRUE(wxIsBusy());
  form_->ShowBusy(/*busy=*/false);
  EXPECT_FALSE(wxIsBusy());
}

TEST_F(StateScan, TheBusyPointerComesBackWhenTheWindowGoes) {
  Begin();
  form_->ShowBusy(/*busy=*/true);

  form_.reset();

  EXPECT_FALSE(wxIsBusy());
  EXPECT_TRUE(parent_->IsEnabled());
}

TEST_F(StateScan, EventsThatLetEventsRunAreHandledOnce) {
  Begin();
  int handled = 0;
  form_->CallAfter([&] {
    form_->LetEventsRun();
    ++handled;
    form_->LetEventsRun();
  });

  EXPECT_TRUE(BecomesTrueInTheRun([&] { return handled > 0; }));
  EXPECT_EQ(handled, 1);
}

TEST_F(StateScan, ListsTheReportAndGrowsForIt) {
  Begin();
  End(/*succeeded=*/false);
  const int height = form_->GetSize().GetHeight();
  EXPECT_FALSE(Report().IsShown());

  form_->ShowReport({{"Fehler beim Durchsuchen!"}, {kMissing}});

  EXPECT_TRUE(Report().IsShownOnScreen());
  EXPECT_FALSE(Report().IsEditable());
  EXPECT_THAT(Report().GetValue().utf8_string(), HasSubstr("Fehler beim Durchsuchen!"));
  EXPECT_THAT(Report().GetValue().utf8_string(), HasSubstr("COMCAT.DLL"));
  EXPECT_GT(form_->GetSize().GetHeight(), height);
  EXPECT_TRUE(WaitFor([&] { return Button("cmdOK").HasFocus(); }));
}

TEST_F(StateScan, CanBeMadeLargerWithItsReport) {
  Begin();
  End(/*succeeded=*/false);
  form_->ShowReport({{"Fehler beim Durchsuchen!"}, {}});
  LetEventsRun();
  const int before = Report().GetSize().GetHeight();

  form_->SetSize(form_->GetSize() + wxSize(100, 200));

  EXPECT_TRUE(WaitFor([&] { return Report().GetSize().GetHeight() >= before + 200; }));
}

TEST_F(StateScan, ListsWhatWasMissingOnce) {
  Begin();
  form_->ShowMissing({kMissing});
  End(/*succeeded=*/true);
  form_->ShowReport({{"Eine Meldung"}, {kMissing}});

  WaitWhile([&] {
    const std::string text = Report().GetValue().utf8_string();
    EXPECT_NE(text.find("COMCAT.DLL"), std::string::npos);
    EXPECT_EQ(text.find("COMCAT.DLL"), text.rfind("COMCAT.DLL"));
    PressKey(WXK_RETURN);
  });
}

TEST_F(StateScan, ListsWhatWasMissingWithoutAReport) {
  Begin();
  form_->ShowMissing({kMissing});
  End(/*succeeded=*/true);

  WaitWhile([&] {
    EXPECT_TRUE(Report().IsShown());
    EXPECT_THAT(Report().GetValue().utf8_string(), HasSubstr("COMCAT.DLL"));
    PressKey(WXK_RETURN);
  });
}

TEST_F(StateScan, CopiesTheReport) {
  Begin();
  End(/*succeeded=*/false);
  form_->ShowReport({{"Größe unbekannt"}, {kMissing}});

  std::string copied;
  WaitWhile([&] {
    copied = TextCopiedBy([&] { Click(Button("cmdCopy")); });
    PressKey(WXK_ESCAPE);
  });

  EXPECT_EQ(copied, Report().GetValue().utf8_string());
  EXPECT_THAT(copied, HasSubstr("Größe unbekannt"));
}

TEST_F(StateScan, CopiesTheReportByItsAccessKey) {
  Begin();
  End(/*succeeded=*/false);
  form_->ShowReport({{"By key"}, {}});

  std::string copied;
  WaitWhile([&] {
    copied = TextCopiedBy([] { PressKey('K', wxMOD_ALT); });
    PressKey(WXK_ESCAPE);
  });

  EXPECT_THAT(copied, StartsWith("By key"));
}

TEST_F(StateScan, TheReportIsReachedAndLeftByTheKeyboard) {
  Begin();
  End(/*succeeded=*/false);
  form_->ShowReport({{"Eine Meldung"}, {}});

  WaitWhile([&] {
    PressKey('M', wxMOD_ALT);
    EXPECT_TRUE(WaitFor([&] { return Report().HasFocus(); }));
    PressKey(WXK_TAB);
    EXPECT_TRUE(WaitFor([&] { return Button("cmdCopy").HasFocus(); }));
    PressKey(WXK_TAB);
    EXPECT_TRUE(WaitFor([&] { return Button("cmdOK").HasFocus(); }));
    PressKey(WXK_RETURN);
  });
}

// Not each of them is painted: that would cost more than the files.
TEST_F(StateScan, OfThousandsOfFilesTheLastOneIsShownInTheEnd) {
  Begin();
  constexpr int kFiles = 20000;

  for (int i = 1; i <= kFiles; ++i) {
    form_->ShowFile("C:\\Demo\\file" + std::to_string(i) + ".dll");
    form_->ShowCount(static_cast<std::size_t>(i));
    form_->LetEventsRun();
  }

  EXPECT_TRUE(BecomesTrueInTheRun(
      [&] { return Text("lblFile") == "C:\\Demo\\file20000.dll" && Text("lblCount") == "20000"; }));
}

// --- Windows in front of it

TEST_F(StateScan, AMessageBoxInTheMiddleOfTheRunIsAnswered) {
  Begin();
  form_->ShowBusy(/*busy=*/true);
  WxMessageBoxes boxes("Setup");
  WhenInactive answer(*form_, [] { PressKey(WXK_RETURN); });

  const MessageResult result =
      boxes.Show("A message", kButtonsOk | kIconExclamation, "Setup", /*help_file=*/{}, 0);

  EXPECT_EQ(result, MessageResult::kOk);
  EXPECT_TRUE(answer.acted);
  EXPECT_FALSE(form_->IsCancelPressed());
  ExpectOnScreen();
  PressKey(WXK_ESCAPE);
  EXPECT_TRUE(WaitFor([&] { return form_->IsCancelPressed(); }));
}

TEST_F(StateScan, TheSearchFileDialogOfARunIsAnswered) {
  world_.SetProductFile({"[Tavix4]", "Uses1=COMCAT.DLL"});
  RecordingHelp help;
  SearchFileForms search(world_.application, help);
  int asked = 0;
  wxTimer timer;
  timer.Bind(wxEVT_TIMER, [&](wxTimerEvent&) {
    for (wxWindow* const window : wxTopLevelWindows) {
      auto* const dialog = dynamic_cast<FSearchFile*>(window);
      if (dialog == nullptr || !dialog->IsModal() || !dialog->IsActive()) continue;
      ++asked;
      Click(*FindControl(*dialog, "cmdIgnore"));
      return;
    }
  });
  timer.Start(/*milliseconds=*/20);

  const ScanResult result = RunScan(world_.application, *form_, search);
  timer.Stop();

  EXPECT_EQ(asked, 1);
  ASSERT_EQ(result.missing.size(), 1U);
  EXPECT_TRUE(Button("cmdOK").IsEnabled());
  WaitWhile([&] {
    EXPECT_THAT(Report().GetValue().utf8_string(), HasSubstr("COMCAT.DLL"));
    PressKey(WXK_RETURN);
  });
}

// --- Whole runs

TEST_F(StateScan, ShowsAWholeRun) {
  const ScanResult result = RunScan(world_.application, *form_, world_.dialog);

  EXPECT_TRUE(result.succeeded);
  EXPECT_EQ(Text("lblState"), "OK: Projekt erfolgreich durchsucht!");
  EXPECT_EQ(Text("lblCount"), std::to_string(world_.application.document.files.RowCount()));
  EXPECT_TRUE(Shows(Picture("imgState0"), StageDonePicture()));
  EXPECT_TRUE(Shows(Picture("imgState1"), StageDonePicture()));
  EXPECT_FALSE(wxIsBusy());
  WaitWhile([&] { Click(Button("cmdOK")); });
}

// Clicks on Cancel while the run is at its third line or file.
class ClickingScan : public FStateScan {
 public:
  using FStateScan::FStateScan;

  int steps = 0;
  int steps_after_press = 0;

  void LetEventsRun() override {
    if (++steps == 3) {
      EXPECT_TRUE(WaitFor([&] { return IsActive(); }));
      Click(*FindControl(*this, "cmdCancel"));
      EXPECT_TRUE(WaitFor([&] { return IsCancelPressed(); }));
    } else if (steps > 3) {
      ++steps_after_press;
    }
    FStateScan::LetEventsRun();
  }
};

TEST_F(StateScan, AClickOnCancelEndsTheRun) {
  auto clicking = std::make_unique<ClickingScan>(parent_, world_.application);
  ClickingScan& form = *clicking;
  form_ = std::move(clicking);

  const ScanResult result = RunScan(world_.application, form, world_.dialog);

  EXPECT_TRUE(result.cancelled);
  EXPECT_LE(form.steps_after_press, 1);
  EXPECT_EQ(Text("lblState"), "STOP: 'Durchsuchen' abgebrochen oder fehlerhaft!");
  EXPECT_TRUE(Shows(Picture("imgState0"), StageErrorPicture()));
  EXPECT_FALSE(Picture("imgState1").IsShown());
  WaitWhile([&] { PressKey(WXK_RETURN); });
}

// --- Both languages

void StateScan::LookAtEveryState(const std::string& language) {
  const TextService& texts = world_.application.texts;
  const std::string name = "_" + language;
  form_->Begin(/*use_runtime_setup=*/false, texts.GetText(731));
  form_->StageStarted(ScanStage::kStudioProject);
  form_->StageEnded(ScanStage::kStudioProject, /*succeeded=*/true);
  form_->StageStarted(ScanStage::kVisualBasic);
  form_->StageCaption(ScanStage::kVisualBasic, "Visual Basic");
  form_->ShowFile(kLongPath);
  form_->ShowCount(4711);
  EXPECT_TRUE(
      BecomesTrueInTheRun([&] { return form_->IsActive() && Text("lblFile") == kLongPath; }));
  ExpectNothingClipped("state_scan_running" + name);

  form_->StageEnded(ScanStage::kVisualBasic, /*succeeded=*/true);
  End(/*succeeded=*/true);
  ExpectNothingClipped("state_scan_done" + name);

  End(/*succeeded=*/false);
  ExpectNothingClipped("state_scan_failed" + name);

  form_->ShowReport({{texts.GetText(914, {kGuid1})}, {kMissing}});
  ExpectNothingClipped("state_scan_report" + name);
}

TEST_F(StateScan, ClipsNothing) { LookAtEveryState("german"); }

TEST_F(StateScanEnglish, ClipsNothing) {
  LookAtEveryState("english");
  EXPECT_EQ(form_->GetTitle(), "TavixStudio - Setup Wizard: State of 'Scan'");
}

}  // namespace
}  // namespace txs
