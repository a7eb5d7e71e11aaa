#include "ui/wx_message_boxes.h"

#include <gtest/gtest.h>
#include <wx/app.h>
#include <wx/button.h>
#include <wx/display.h>
#include <wx/frame.h>
#include <wx/scrolwin.h>
#include <wx/stattext.h>
#include <wx/utils.h>

#include <functional>
#include <string>
#include <vector>

#include "fakes/message_ids.h"
#include "gui/gui_support.h"
#include "ui/wx_text.h"

namespace txs {
namespace {

constexpr long kGerman = 1031;
constexpr long kEnglish = 1033;

wxTopLevelWindow* OpenBox() {
  for (wxWindow* const window : wxTopLevelWindows) {
    auto* const form = dynamic_cast<wxTopLevelWindow*>(window);
    if (form != nullptr && form->GetName() == "FMessage" && form->IsActive()) return form;
  }
  return nullptr;
}

struct Box {
  std::string prompt = "prompt";
  int buttons = kButtonsOk;
  std::string title = "title";
  std::string help_file = {};
};

struct WxMessageBoxesTest : ::testing::Test {
  WxMessageBoxes boxes{"TavixStudio"};
  std::vector<int> helps;

  void Speak(long language_id) {
    boxes.Use(TextService(language_id), [this](int context) { helps.push_back(context); });
  }

  // Runs `action` on the box once it is active.
  MessageResult ShowAnd(const Box& box, const std::function<void(wxTopLevelWindow&)>& action) {
    bool acted = false;
    wxTheApp->CallAfter([&] {
      wxTopLevelWindow* open = nullptr;
      acted = WaitFor([&open] { return (open = OpenBox()) != nullptr; });
      if (!acted) return;
      action(*open);
      auto& dialog = dynamic_cast<wxDialog&>(*open);
      const bool answered = WaitFor([&dialog] { return !dialog.IsModal(); });
      EXPECT_TRUE(answered);
      if (!answered) dialog.EndModal(wxID_CANCEL);
    });
    const MessageResult result =
        boxes.Show(box.prompt, box.buttons, box.title, box.help_file, /*help_context=*/7);
    EXPECT_TRUE(acted);
    return result;
  }
};

// --- Answers

struct AnswerCase {
  const char* name;
  int buttons;
  long language_id;
  int key;
  int modifiers;
  MessageResult answer;
};

class BoxAnswer : public WxMessageBoxesTest, public ::testing::WithParamInterface<AnswerCase> {};

TEST_P(BoxAnswer, IsThatOfTheKey) {
  const AnswerCase& test = GetParam();
  Speak(test.language_id);

  const MessageResult answer = ShowAnd({.buttons = test.buttons}, [&test](wxTopLevelWindow&) {
    PressKey(test.key, test.modifiers);
  });

  EXPECT_EQ(answer, test.answer);
}

INSTANTIATE_TEST_SUITE_P(
    Keys, BoxAnswer,
    ::testing::Values(
        AnswerCase{"EnterIsOk", kButtonsOk, kGerman, WXK_RETURN, 0, MessageResult::kOk},
        AnswerCase{"EscIsOk", kButtonsOk, kGerman, WXK_ESCAPE, 0, MessageResult::kOk},
        AnswerCase{"EnterIsYes", kButtonsYesNo, kGerman, WXK_RETURN, 0, MessageResult::kYes},
        AnswerCase{"EscIsNo", kButtonsYesNo, kGerman, WXK_ESCAPE, 0, MessageResult::kNo},
        AnswerCase{"GermanYes", kButtonsYesNo, kGerman, 'J', wxMOD_ALT, MessageResult::kYes},
        AnswerCase{"GermanNo", kButtonsYesNo, kGerman, 'N', wxMOD_ALT, MessageResult::kNo},
        AnswerCase{"EnglishYes", kButtonsYesNo, kEnglish, 'Y', wxMOD_ALT, MessageResult::kYes},
        AnswerCase{"EscIsCancel", kButtonsYesNoCancel, kEnglish, WXK_ESCAPE, 0,
                   MessageResult::kCancel},
        AnswerCase{"EnglishNo", kButtonsYesNoCancel, kEnglish, 'N', wxMOD_ALT, MessageResult::kNo}),
    [](const auto& test) { return test.param.name; });

TEST_F(WxMessageBoxesTest, AClickAnswersAsItsButton) {
  Speak(kGerman);

  const MessageResult answer =
      ShowAnd({.buttons = kButtonsYesNoCancel | kIconQuestion},
              [](wxTopLevelWindow& box) { Click(*FindControl(box, "cmdNo")); });

  EXPECT_EQ(answer, MessageResult::kNo);
}

// --- Looks

TEST_F(WxMessageBoxesTest, TheBoxIsWideEnoughForTheNumberInItsTitle) {
  const std::string title = TextService(kGerman).Compose(1703).title;

  ShowAnd({.prompt = "!", .title = title}, [&title](wxTopLevelWindow& box) {
    EXPECT_EQ(FromWx(box.GetTitle()), title);
    EXPECT_GT(box.GetSize().x, box.GetTextExtent(box.GetTitle()).x + box.FromDIP(100));
    TakePicture(box, "message-short");
    PressKey(WXK_RETURN);
  });
}

TEST_F(WxMessageBoxesTest, AnEmptyTitleShowsTheApplicationsTitle) {
  ShowAnd({.title = ""}, [](wxTopLevelWindow& box) {
    EXPECT_EQ(box.GetTitle(), "TavixStudio");
    PressKey(WXK_RETURN);
  });
}

// As long as paths get, with no blank to break it at.
std::string LongestPath(const std::string& name) {
  std::string path = "C:";
  while (path.size() + name.size() < 250) path += "\\Visualisierung_Mischanlage";
  return path.substr(0, 249 - name.size()) + "\\" + name;
}

// The text of the box without its line breaks, and so without those at which it was wrapped.
std::string Unbroken(std::string text) {
  std::erase_if(text, [](char c) { return c == '\r' || c == '\n'; });
  return text;
}

TEST_F(WxMessageBoxesTest, EveryMessageOfTheTableFitsItsBoxInBothLanguages) {
  const std::string path = LongestPath("Förderregler.dll");
  const RuntimeError error(ErrorNumber::kPathFileAccess,
                           LongestPath("Förderregler.zip") + ": Permission denied");
  for (const long language : {kGerman, kEnglish}) {
    Speak(language);
    for (const long id : MessageIds()) {
      SCOPED_TRACE(std::to_string(id) + " in " + std::to_string(language));
      const Message message = TextService(language).ComposeError(id, {path, path}, error);

      ShowAnd({.prompt = message.prompt,
               .buttons = kButtonsYesNoCancel | kIconExclamation | kButtonHelp,
               .title = message.title,
               .help_file = "C:\\Help.chm"},
              [&](wxTopLevelWindow& box) {
                EXPECT_EQ(ClippedControls(box), "");
                EXPECT_EQ(Unbroken(FromWx(Control<wxStaticText>(box, "lblMessage").GetLabelText())),
                          Unbroken(message.prompt));
                EXPECT_GE(box.GetSize().x, box.GetTextExtent(box.GetTitle()).x);
                EXPECT_LE(box.GetSize().x, box.FromDIP(700));
                EXPECT_LE(box.GetSize().y, box.FromDIP(500));
                TakePicture(box, "message-" + std::to_string(id) + "-" + std::to_string(language));
                PressKey(WXK_ESCAPE);
              });
    }
  }
}

TEST_F(WxMessageBoxesTest, ATextThatIsTooHighForTheScreenIsScrolledAndTheButtonsStayInReach) {
  std::string prompt = "first";
  for (int i = 0; i < 200; ++i) prompt += "\r\nline " + std::to_string(i);
  Speak(kGerman);

  const MessageResult answer =
      ShowAnd({.prompt = prompt, .buttons = kButtonsYesNo}, [](wxTopLevelWindow& box) {
        const wxRect screen = wxDisplay(&box).GetClientArea();
        EXPECT_TRUE(screen.Contains(box.GetScreenRect()));
        EXPECT_TRUE(screen.Contains(FindControl(box, "cmdYes")->GetScreenRect()));
        EXPECT_EQ(ClippedControls(box), "");
        auto& pane = Control<wxScrolledWindow>(box, "picMessage");
        TakePicture(box, "message-many-lines");
        PressKey(WXK_PAGEDOWN);
        EXPECT_TRUE(WaitFor([&] { return pane.GetViewStart().y > 1; }));
        PressKey(WXK_PAGEUP);
        EXPECT_TRUE(WaitFor([&] { return pane.GetViewStart().y == 0; }));
        PressKey(WXK_DOWN);
        EXPECT_TRUE(WaitFor([&] { return pane.GetViewStart().y == 1; }));
        PressKey('J', wxMOD_ALT);
      });

  EXPECT_EQ(answer, MessageResult::kYes);
}

// As an insertable object of a project file whose lines have no end.
TEST_F(WxMessageBoxesTest, ATextWithoutEndIsCutAndCopiedWhole) {
  const std::string prompt = std::string(2'000'000, 'x');

  std::string copied;
  ShowAnd({.prompt = prompt}, [&](wxTopLevelWindow& box) {
    const wxString text = Control<wxStaticText>(box, "lblMessage").GetLabelText();
    EXPECT_TRUE(text.EndsWith("\n...")) << FromWx(text.Right(20));
    EXPECT_LT(text.length(), 100'000U);
    copied = TextCopiedBy([] { PressKey('C', wxMOD_CONTROL); });
    PressKey(WXK_RETURN);
  });

  EXPECT_EQ(copied.size(), prompt.size() + std::string("title\n\n\n").size());
}

TEST_F(WxMessageBoxesTest, LineBreaksAndAmpersandsAreShownAsTheyAre) {
  ShowAnd({.prompt = "C:\\R&D\\a.dll\r\n(70: denied)"}, [](wxTopLevelWindow& box) {
    EXPECT_EQ(Control<wxStaticText>(box, "lblMessage").GetLabelText(),
              "C:\\R&D\\a.dll\n(70: denied)");
    PressKey(WXK_RETURN);
  });
}

TEST_F(WxMessageBoxesTest, ALongPathIsBrokenBehindABackslashAndLosesNothing) {
  std::string path = "C:";
  for (int i = 0; i < 30; ++i) path += "\\Verzeichnis " + std::to_string(i) + "mitlangemNamen";
  const std::string unbroken = "C:\\" + std::string(300, 'x');

  ShowAnd({.prompt = path + "\r\n" + unbroken, .buttons = kIconCritical},
          [&](wxTopLevelWindow& box) {
            wxString text = Control<wxStaticText>(box, "lblMessage").GetLabelText();
            EXPECT_NE(text.find("\\\n"), wxString::npos);
            text.Replace("\n", "");
            EXPECT_EQ(FromWx(text), path + unbroken);
            EXPECT_LT(box.GetSize().x, box.FromDIP(700));
            TakePicture(box, "message-long");
            PressKey(WXK_RETURN);
          });
}

// --- Place

TEST_F(WxMessageBoxesTest, TheBoxBelongsToTheActiveWindow) {
  wxFrame form(nullptr, wxID_ANY, "form");
  ShowAndActivate(form);

  ShowAnd({}, [&form](wxTopLevelWindow& box) {
    EXPECT_EQ(box.GetParent(), &form);
    PressKey(WXK_RETURN);
  });
}

TEST_F(WxMessageBoxesTest, TheBusyPointerRestsWhileTheBoxIsOpenAndComesBack) {
  const wxBusyCursor busy;

  ShowAnd({}, [](wxTopLevelWindow&) {
    EXPECT_FALSE(wxIsBusy());
    PressKey(WXK_RETURN);
  });

  EXPECT_TRUE(wxIsBusy());
}

// --- Help and clipboard

TEST_F(WxMessageBoxesTest, HelpIsOpenedByButtonAndF1AndLeavesTheBoxOpen) {
  Speak(kGerman);

  const MessageResult answer =
      ShowAnd({.buttons = kButtonsYesNo | kButtonHelp, .help_file = "C:\\Help.chm"},
              [this](wxTopLevelWindow& box) {
                Click(*FindControl(box, "cmdHelp"));
                EXPECT_TRUE(WaitFor([this] { return helps.size() == 1; }));
                PressKey(WXK_F1);
                EXPECT_TRUE(WaitFor([this] { return helps.size() == 2; }));
                PressKey('J', wxMOD_ALT);
              });

  EXPECT_EQ(helps, (std::vector<int>{7, 7}));
  EXPECT_EQ(answer, MessageResult::kYes);
}

TEST_F(WxMessageBoxesTest, ABoxThatNamesNoHelpFileHasNoHelpButton) {
  Speak(kGerman);

  ShowAnd({.buttons = kButtonsOk | kButtonHelp}, [](wxTopLevelWindow& box) {
    EXPECT_EQ(wxWindow::FindWindowByName("cmdHelp", &box), nullptr);
    PressKey(WXK_RETURN);
  });
}

TEST_F(WxMessageBoxesTest, ControlCCopiesTitleAndText) {
  std::string copied;
  ShowAnd({.prompt = "first\r\nsecond", .title = "title (Message 70)"}, [&](wxTopLevelWindow&) {
    copied = TextCopiedBy([] { PressKey('C', wxMOD_CONTROL); });
    PressKey(WXK_RETURN);
  });

  EXPECT_EQ(copied, "title (Message 70)\n\nfirst\nsecond\n");
}

}  // namespace
}  // namespace txs
