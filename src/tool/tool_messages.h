// Where the messages of a command go, and its progress line.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "create/create_view.h"
#include "scan/scan_view.h"
#include "text/message_service.h"
#include "text/text_service.h"

namespace txs {

// One line on a terminal that is written over again and again. On anything but a terminal nothing
// is written.
class ProgressLine {
 public:
  ProgressLine(std::ostream& stream, bool is_terminal)
      : stream_(stream), is_terminal_(is_terminal) {}
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;
  ~ProgressLine() { Clear(); }

  void Show(const std::string& text);
  void Clear();

 private:
  std::ostream& stream_;
  bool is_terminal_;
  std::string shown_;
};

// Writes every message to a stream, with LF line ends, and keeps it for the result.
class ToolMessages : public MessageService {
 public:
  ToolMessages(std::ostream& stream, ProgressLine& progress)
      : stream_(stream), progress_(progress) {}

  MessageResult Show(const Message& message) override;

  [[nodiscard]] const std::vector<Message>& Shown() const { return shown_; }

 private:
  std::ostream& stream_;
  ProgressLine& progress_;
  std::vector<Message> shown_;
};

// Stage, count and percentage of a Create run on the progress line.
class ProgressLineView : public SilentCreateView {
 public:
  ProgressLineView(ProgressLine& line, const TextService& texts) : line_(line), texts_(texts) {}

  void StageStarted(CreateStage stage) override;
  void ShowProgress(const CreateProgress& progress) override;
  void End(bool succeeded, const std::string& result_line) override;

 private:
  ProgressLine& line_;
  const TextService& texts_;
  std::string stage_;
};

// Stage and number of files of a Scan on the progress line.
class ScanLineView : public SilentScanView {
 public:
  ScanLineView(ProgressLine& line, const TextService& texts) : line_(line), texts_(texts) {}

  void StageStarted(ScanStage stage) override;
  void ShowCount(std::size_t rows) override;
  void End(bool succeeded, const std::string& result_line) override;

 private:
  ProgressLine& line_;
  const TextService& texts_;
  std::string stage_;
};

}  // namespace txs
