#include "strings/reason.h"

#include <atomic>

#include "strings/m_text.h"

namespace txs {
namespace {

constexpr long kEnglish = 1033;
std::atomic<long> language = kEnglish;

}  // namespace

void SetReasonLanguage(long language_id) { language = language_id; }

std::string Words(Reason reason, const std::vector<std::string>& parameters) {
  return MText::GetText(language, static_cast<long>(reason), parameters);
}

}  // namespace txs
