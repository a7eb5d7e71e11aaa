// One file into one ZIP archive. See docs/formats/archives-and-disks.md.
#pragma once

#include <string>
#include <string_view>

namespace txs {

// 0 is success; every other code is shown in message 902.
enum class ArchiveResult : int {
  kSuccess = 0,
  kSourceNotFound = 1,
  kSourceUnreadable = 2,
  kArchiveNotCreated = 3,
  kDiskFull = 4,
  kWriteError = 5,
  kSourceChanged = 6,  // the source was changed while it was read
  kOutOfMemory = 7,
  kUnexpected = 99,
};

class Archiver {
 public:
  virtual ~Archiver() = default;

  // Creates or replaces the archive with one entry: the source's bare file name, its bytes, its
  // last write time. Paths are full Windows paths. Never throws; on any code but kSuccess no
  // archive is left behind. The same input gives the same bytes on every run.
  [[nodiscard]] virtual ArchiveResult Compress(std::string_view archive_path,
                                               std::string_view source_path) = 0;

  // Why the last Compress failed: the file and the system's words, in UTF-8. Empty after a success
  // and where nothing is known but the code.
  [[nodiscard]] virtual std::string FailureReason() const { return {}; }
};

}  // namespace txs
