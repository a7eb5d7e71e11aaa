// Profile (INI) files by path: each is parsed once and kept until its length or time changes.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

#include "environment/file_system.h"
#include "environment/profile_document.h"

namespace txs {

class ProfileFiles {
 public:
  explicit ProfileFiles(FileSystem& files) : files_(files) {}

  // The parsed file. A missing file is an empty document; one that exists and cannot be read throws
  // RuntimeError, and so does one of more than 64 MiB (kOutOfMemory), and one that is UTF-16 but
  // not marked as little-endian, or holds zero bytes without any mark (kInvalidCall). The reference
  // holds until the next call for the same path.
  [[nodiscard]] const ProfileDocument& Open(std::string_view path);

  // Lets `edit` change the document and replaces the file atomically when its bytes changed. What
  // `edit` gets is what the file holds now: the bytes are read again, since another process may
  // have changed them without changing length and time. When `edit` or the writing throws, the file
  // is as before.
  void Change(std::string_view path, const std::function<void(ProfileDocument&)>& edit);

 private:
  struct Kept {
    FileStamp stamp;
    bool exists = false;
    ProfileDocument document;
  };
  enum class Trust { kStamp, kNothing };

  Kept& Read(std::string_view path, Trust trust);

  FileSystem& files_;
  std::unordered_map<std::string, std::unique_ptr<Kept>> kept_;  // by folded path
};

}  // namespace txs
