#include "text/text_service.h"

#include "strings/m_text.h"

namespace txs {
namespace {

constexpr long kTitleOfStartChecks = 90;
constexpr long kErrorSuffix = 99;
constexpr long kTitle = 900;

}  // namespace

std::string TextService::GetText(long id, const std::vector<std::string>& parameters) const {
  return MText::GetText(language_id_, id, parameters);
}

Message TextService::Compose(long id, const std::vector<std::string>& parameters,
                             int buttons) const {
  Message message;
  message.id = id;
  message.prompt = GetText(id, parameters);
  message.title = GetText(kTitle, {std::to_string(id)});
  message.buttons = buttons;
  return message;
}

Message TextService::ComposeForStart(long id, const std::vector<std::string>& parameters) const {
  Message message = Compose(id, parameters, kButtonsOk | kIconCritical);
  message.title = GetText(kTitleOfStartChecks, {std::to_string(id)});
  return message;
}

Message TextService::ComposeError(long id, const std::vector<std::string>& parameters,
                                  const RuntimeError& error, int buttons) const {
  Message message = Compose(id, parameters, buttons);
  message.prompt += ErrorSuffix(error);
  return message;
}

std::string TextService::ErrorSuffix(const RuntimeError& error) const {
  return GetText(kErrorSuffix,
                 {std::to_string(static_cast<int>(error.Number())), error.Description()});
}

}  // namespace txs
