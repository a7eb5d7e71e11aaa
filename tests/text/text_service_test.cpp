#include "text/text_service.h"

#include <gtest/gtest.h>

namespace txs {
namespace {

TEST(TextService, AMessageHasItsNumberInTheTitle) {
  const Message message = TextService(1033).Compose(902, {"C:\\x.dll"});

  EXPECT_EQ(message.id, 902);
  EXPECT_EQ(message.prompt, "Error compressing the file 'C:\\x.dll'!");
  EXPECT_EQ(message.title, "TavixStudio - Setup-Wizard   (Message 902)");
  EXPECT_EQ(message.buttons, kIconExclamation);
}

TEST(TextService, AMessageOfTheStartChecksHasTitle90AndTheCriticalIcon) {
  const Message message = TextService(1031).ComposeForStart(92, {"C:\\Gone"});

  EXPECT_EQ(message.prompt.substr(0, message.prompt.find('\r')),
            "Das registrierte Tavix-Verzeichnis [C:\\Gone] ist nicht vorhanden!");
  EXPECT_EQ(message.title, "TavixStudio   (Meldung 92)");
  EXPECT_EQ(message.buttons, kIconCritical);
}

TEST(TextService, AMessageHasTheButtonsThatItsCallerChose) {
  const Message message = TextService(1031).Compose(1703, {}, kButtonsYesNoCancel | kIconQuestion);

  EXPECT_EQ(message.buttons, kButtonsYesNoCancel | kIconQuestion);
}

TEST(TextService, ACaughtErrorHasTheExclamationIconAndTheTitleOfItsMessage) {
  const RuntimeError error(ErrorNumber::kDiskFull, "full");

  const Message message = TextService(1031).ComposeError(904, {}, error);

  EXPECT_EQ(message.id, 904);
  EXPECT_EQ(message.buttons, 48);
  EXPECT_EQ(message.title, "TavixStudio - Setup-Assistent   (Meldung 904)");
}

TEST(TextService, ACaughtErrorStandsInALineOfItsOwnUnderTheMessage) {
  const RuntimeError error(ErrorNumber::kDiskFull, "C:\\x: No space left");

  const Message message = TextService(1031).ComposeError(904, {}, error);

  EXPECT_EQ(message.prompt,
            "Fehler beim Erstellen der Setup-Steuerdatei!\r\n(61: C:\\x: No space left)");
}

TEST(TextService, TheWordsOfAnErrorAreNotTakenForATemplate) {
  const RuntimeError error(ErrorNumber::kDeviceIo, "C:\\new@1@\\temp");

  EXPECT_EQ(TextService(1033).ErrorSuffix(error), "\r\n(57: C:\\new@1@\\temp)");
}

}  // namespace
}  // namespace txs
