// An archiver that works, until a test tells it to fail for one source or to leave a wrong archive.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>

#include "environment/archiver.h"
#include "environment/code_page.h"

namespace txs {

class FailingArchiver : public Archiver {
 public:
  explicit FailingArchiver(Archiver& working) : working_(working) {}

  // Compressing this source gives this code; kSuccess means success without making an archive.
  void FailFor(std::string_view source_path, ArchiveResult code) {
    failures_[FoldCase(source_path)] = code;
  }
  std::string reason;  // of those failures

  // Called before every compression, with archive and source path.
  std::function<void(std::string_view, std::string_view)> before;

  // Called after `before`; any code but kSuccess is the result.
  std::function<ArchiveResult(std::string_view source_path)> fails;

  [[nodiscard]] ArchiveResult Compress(std::string_view archive_path,
                                       std::string_view source_path) override {
    if (before) before(archive_path, source_path);
    if (fails) {
      if (const ArchiveResult code = fails(source_path); code != ArchiveResult::kSuccess)
        return code;
    }
    const auto failure = failures_.find(FoldCase(source_path));
    if (failure != failures_.end()) return failure->second;
    return working_.Compress(archive_path, source_path);
  }

  [[nodiscard]] std::string FailureReason() const override {
    return reason.empty() ? working_.FailureReason() : reason;
  }

 private:
  Archiver& working_;
  std::map<std::string, ArchiveResult> failures_;
};

}  // namespace txs
