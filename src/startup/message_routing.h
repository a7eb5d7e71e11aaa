// `ShowMessage` and the log: where the messages of the work routines go.
#pragma once

#include <iostream>
#include <ostream>
#include <string>
#include <utility>

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
// ("<U+010C>"). A log that cannot be written loses no message: the entry then goes into a log in
// the project directory or, where that fails too, in `spare_directory`, and in any case to
// `last_resort` with the reason, since nobody would look for it there.
class RoutedMessages : public MessageService {
 public:
  // Without a spare directory there is none.
  explicit RoutedMessages(Platform& platform, std::ostream& last_resort = std::cerr,
                          std::string spare_directory = {})
      : platform_(platform),
        last_resort_(last_resort),
        spare_directory_(std::move(spare_directory)) {}

  // From here on messages go to the log of this project directory.
  void GoUnattended(std::string project_directory);

  MessageResult Show(const Message& message) override;

 private:
  void Log(const std::string& prompt, const std::string& path);
  void LogElsewhere(const std::string& prompt);
  // Whether a log in that directory took the message; it took none when there is no directory.
  bool LogIn(const std::string& directory, const std::string& prompt);

  Platform& platform_;
  std::ostream& last_resort_;
  std::string spare_directory_;
  bool unattended_ = false;
  std::string project_directory_;
};

}  // namespace txs
