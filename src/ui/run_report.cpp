#include "ui/run_report.h"

#include <exception>
#include <utility>

#include "environment/code_page.h"

namespace txs {
namespace {

constexpr long kTextMissingFiles = 1912;

bool IsLineBreak(char c) { return c == '\r' || c == '\n'; }

// Each run of line breaks becomes one blank; those at the ends go.
std::string OneLine(const std::string& text) {
  std::string line;
  line.reserve(text.size());
  bool is_broken = false;
  for (const char c : text) {
    if (IsLineBreak(c)) {
      is_broken = true;
      continue;
    }
    if (is_broken && !line.empty()) line += ' ';
    is_broken = false;
    line += c;
  }
  return line;
}

// "COMCAT.DLL (Demo.vbp → MSCOMCTL.OCX)": the name first, as that is what one looks for. A chain
// ends in the item itself, which need not be said twice.
std::string MissingLine(const MissingItem& item) {
  std::vector<std::string> needed_by = item.chain;
  if (!needed_by.empty() && EqualNoCase(needed_by.back(), item.name)) needed_by.pop_back();
  if (needed_by.empty()) return OneLine(item.name);
  return OneLine(item.name + " (" + ChainText(needed_by) + ")");
}

}  // namespace

std::string ReportText(const RunReport& report, const TextService& texts) {
  std::string text;
  for (const std::string& message : report.messages) text += OneLine(message) + "\n";
  if (report.missing.empty()) return text;
  text += texts.GetText(kTextMissingFiles) + "\n";
  for (const MissingItem& item : report.missing) text += MissingLine(item) + "\n";
  return text;
}

MessageCollector::MessageCollector(MessageService& messages) : messages_(messages) {
  before_ = messages_.SetListener([this](const Message& message) {
    try {
      prompts_.push_back(message.prompt);
    } catch (const std::exception&) {
      // The user has seen it; a report that lacks it is better than a run that ends here.
    }
    if (before_) before_(message);
  });
}

MessageCollector::~MessageCollector() { messages_.SetListener(std::move(before_)); }

}  // namespace txs
