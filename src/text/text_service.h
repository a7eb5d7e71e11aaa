// The string table in the installation's language, and the composition of messages.
#pragma once

#include <initializer_list>
#include <string>
#include <vector>

#include "environment/runtime_error.h"
#include "text/message_service.h"

namespace txs {

class TextService {
 public:
  // `language_id` is the studio's registered LCID: 1033 is English, every other number German.
  explicit TextService(long language_id) : language_id_(language_id) {}

  [[nodiscard]] long LanguageId() const { return language_id_; }

  // `GetText` with this language; parameter 1 is the first.
  [[nodiscard]] std::string GetText(long id, const std::vector<std::string>& parameters = {}) const;

  // Prompt = text `id` with its parameters, title = text 900 with the id as its parameter.
  [[nodiscard]] Message Compose(long id, const std::vector<std::string>& parameters = {},
                                int buttons = kButtonsOk | kIconExclamation) const;

  // The same for messages of the start checks, whose title is text 90, with the critical icon.
  [[nodiscard]] Message ComposeForStart(long id,
                                        const std::vector<std::string>& parameters = {}) const;

  // Compose, with the error suffix behind the prompt.
  [[nodiscard]] Message ComposeError(long id, const std::vector<std::string>& parameters,
                                     const RuntimeError& error,
                                     int buttons = kButtonsOk | kIconExclamation) const;

  // Text 99: a line of its own with number and description in parentheses.
  [[nodiscard]] std::string ErrorSuffix(const RuntimeError& error) const;

 private:
  long language_id_;
};

}  // namespace txs
