#include "startup/message_routing.h"

#include <exception>
#include <memory>
#include <span>
#include <string_view>
#include <utility>

#include "environment/code_page.h"
#include "environment/runtime_error.h"
#include "environment/windows_path.h"
#include "startup/console_message_boxes.h"

namespace txs {
namespace {

constexpr std::string_view kLogName = "TXSetupWizard.log";
constexpr std::string_view kLineEnd = "\r\n";

// Bytes of the character that begins `utf8`, 1 where none does.
std::size_t CharacterBytes(std::string_view utf8) {
  std::size_t count = 1;
  while (count < utf8.size() && (static_cast<unsigned char>(utf8[count]) & 0xC0U) == 0x80U) ++count;
  return IsUtf8(utf8.substr(0, count)) ? count : 1;
}

// "<U+010C>" for one character, "<byte E4>" for what is none.
std::string InNumbers(std::string_view character) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  const auto first = static_cast<unsigned char>(character[0]);
  unsigned long number = first;
  int digits = 2;
  if (character.size() > 1) {
    number = first & (0x7FU >> character.size());
    for (const char c : character.substr(1)) {
      number = number << 6 | (static_cast<unsigned char>(c) & 0x3FU);
    }
    digits = number > 0xFFFF ? 6 : 4;
  }
  std::string text = character.size() > 1 ? "<U+" : "<byte ";
  for (int i = digits - 1; i >= 0; --i) text += kDigits[(number >> (4 * i)) & 0xFU];
  return text + '>';
}

// A message about a name that the code page cannot hold must itself get into the log.
std::string ToLogBytes(std::string_view utf8) {
  try {
    return Utf8ToAnsi(utf8);
  } catch (const RuntimeError&) {
    std::string bytes;
    while (!utf8.empty()) {
      const std::string_view character = utf8.substr(0, CharacterBytes(utf8));
      try {
        bytes += Utf8ToAnsi(character);
      } catch (const RuntimeError&) {
        bytes += InNumbers(character);
      }
      utf8.remove_prefix(character.size());
    }
    return bytes;
  }
}

}  // namespace

void RoutedMessages::GoUnattended(std::string project_directory) {
  project_directory_ = std::move(project_directory);
  unattended_ = true;
}

MessageResult RoutedMessages::Show(const Message& message) {
  try {
    if (!unattended_) {
      return platform_.message_boxes.Show(message.prompt, message.buttons, message.title,
                                          message.help_file, message.help_context);
    }
    Log(message.prompt, project_directory_ + std::string(kLogName));
  } catch (const std::exception& error) {
    if (unattended_) LogElsewhere(message.prompt);
    last_resort_ << ToConsoleText(message.prompt) << '\n' << ToConsoleText(error.what()) << '\n';
    last_resort_.flush();
  }
  return MessageResult::kNone;
}

void RoutedMessages::LogElsewhere(const std::string& prompt) {
  // With its backslash, the project directory itself is where the log could not be written.
  if (!project_directory_.ends_with('\\') && LogIn(project_directory_, prompt)) return;
  static_cast<void>(LogIn(spare_directory_, prompt));
}

bool RoutedMessages::LogIn(const std::string& directory, const std::string& prompt) {
  if (directory.empty()) return false;
  try {
    Log(prompt, JoinPath(directory, kLogName));
    return true;
  } catch (const std::exception&) {
    return false;
  }
}

void RoutedMessages::Log(const std::string& prompt, const std::string& path) {
  const Clock& clock = platform_.clock;
  std::string entry = clock.ShortDateAndTime(clock.ToLocal(clock.Now()));
  entry.append(kLineEnd).append(prompt).append(kLineEnd).append(kLineEnd);
  const std::string bytes = ToLogBytes(entry);
  const std::unique_ptr<OutputFile> log = platform_.files.OpenForAppending(path);
  log->Write(std::as_bytes(std::span(bytes)));
  log->Close();
}

}  // namespace txs
