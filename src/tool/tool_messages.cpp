#include "tool/tool_messages.h"

#include <exception>

#include "startup/console_message_boxes.h"

namespace txs {

void ProgressLine::Show(const std::string& text) {
  if (!is_terminal_ || text == shown_) return;
  stream_ << "\r\x1B[K" << text << std::flush;
  shown_ = text;
}

void ProgressLine::Clear() {
  if (shown_.empty()) return;
  stream_ << "\r\x1B[K" << std::flush;
  shown_.clear();
}

MessageResult ToolMessages::Show(const Message& message) {
  try {
    progress_.Clear();
    stream_ << "message " << message.id << ": " << ToConsoleText(message.prompt) << '\n';
    stream_.flush();
    shown_.push_back(message);
  } catch (const std::exception&) {
    // Memory is gone; the command's exit code still tells that it failed.
  }
  return AnswerOfNobody(message.buttons);
}

void ProgressLineView::StageStarted(CreateStage stage) {
  stage_ = texts_.GetText(static_cast<long>(stage));
  line_.Show(stage_);
}

void ProgressLineView::ShowProgress(const CreateProgress& progress) {
  line_.Show(stage_ + ": " + progress.count_text + ", " + progress.size_text);
}

void ProgressLineView::End(bool /*succeeded*/, const std::string& /*result_line*/) {
  line_.Clear();
}

void ScanLineView::StageStarted(ScanStage stage) {
  stage_ = texts_.GetText(static_cast<long>(stage));
  line_.Show(stage_);
}

void ScanLineView::ShowCount(std::size_t rows) { line_.Show(stage_ + ": " + std::to_string(rows)); }

void ScanLineView::End(bool /*succeeded*/, const std::string& /*result_line*/) { line_.Clear(); }

}  // namespace txs
