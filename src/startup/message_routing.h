// `ShowMessage` and the log: where the messages of the work routines go.
#pragma once

#include <iostream>
#include <ostream>
#include <string>

#include "environment/platform.h"
#include "text/message_service.h"

namespace txs {

// Shows a message in the platform's message box, or, in unattended mode, appends it to the log
// file: the project directory exactly as stored, immediately followed by "TXSetupWizard.log". No
// separator is inserted, kept on purpose: a directory stored without trailing backslash puts the
// log beside the project directory under a joined name. An entry is three lines ended by CR LF:
// local date and time, the prompt, an empty line. The file is opened and closed for every message.
//
// The log is in the ANSI code page; a character that it lacks stands there by its number
// ("<U+010C>"). A log that cannot be written loses no message: the entry goes to `last_resort` with
// the reason.
class RoutedMessages : public MessageService {
 public:
  explicit RoutedMessages(Platform& platform, std::ostream& last_resort = std::cerr)
      : platform_(platform), last_resort_(last_resort) {}

  // From here on messages go to the log of this project directory.
  void GoUnattended(std::string project_directory);

  MessageResult Show(const Message& message) override;

 private:
  void Log(const std::string& prompt);

  Platform& platform_;
  std::ostream& last_resort_;
  bool unattended_ = false;
  std::string project_directory_;
};

}  // namespace txs
