// The text of a Windows profile (INI) file: parsed once, read by section and key, edited in place.
//
// Reading does what the Windows profile functions do: section and key names are trimmed and compared
// without regard to case, the first section and the first key of a name win, lines that begin with
// ";" are comments, blanks around "=" and around values are trimmed, one pair of surrounding quotes
// (" or ') is removed from a value. Writing changes only the lines it must: comments, unknown keys,
// order and line ends of everything else stay byte for byte.
//
// The document is the bytes of the file: it does not know the code page; its texts go in and out as
// UTF-8. See docs/formats/settings-file.md.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace txs {

struct ProfileEntry {
  std::string name;
  std::string value;

  bool operator==(const ProfileEntry&) const = default;
};

class ProfileDocument {
 public:
  ProfileDocument() = default;

  // Never fails: a line that is no section, key or comment is kept and means nothing. `bytes` is
  // the file as it is on disk, in the ANSI code page (a UTF-8 byte order mark is passed over).
  explicit ProfileDocument(std::string_view bytes);

  // The value of the first such key of the first such section; nothing when it is absent. An empty
  // value is a value.
  [[nodiscard]] std::optional<std::string> Value(std::string_view section,
                                                 std::string_view key) const;

  // All entries of the first such section in file order, of keys that stand twice only the first.
  [[nodiscard]] std::vector<ProfileEntry> Section(std::string_view section) const;

  // Names of all sections in file order, as written, each once.
  [[nodiscard]] std::vector<std::string> SectionNames() const;

  // Sets one key, replacing its first occurrence or appending behind the section's last entry; a
  // missing section is appended to the file. A value that reading would trim or unquote is written
  // in double quotes, so that it is read back as it was. Throws RuntimeError kInvalidCall for a line
  // break in key or value and for names that the format cannot hold, and when the code page lacks a
  // character; the document is then unchanged.
  void Set(std::string_view section, std::string_view key, std::string_view value);

  // Gives the section exactly these entries. It stays where it is in the file, and so do the
  // comments in it; a missing section is appended. Throws as Set, with nothing changed.
  void ReplaceSection(std::string_view section, const std::vector<ProfileEntry>& entries);

  // Removes the first such section: header, keys and the comments in it.
  void RemoveSection(std::string_view section);

  // The file's bytes, ready to be written.
  [[nodiscard]] std::string Bytes() const;

 private:
  struct Line {
    std::string bytes;  // as in the file, with its line end
    std::string key;    // folded; empty for comments and unreadable lines
    ProfileEntry entry; // decoded, for key lines
  };
  struct SectionBlock {
    std::string folded_name;
    std::string name;
    std::vector<Line> lines;  // lines[0] is the header, except in the nameless head of the file
    std::unordered_map<std::string, std::size_t> first_of_key;
  };

  std::vector<SectionBlock> sections_;
  std::unordered_map<std::string, std::size_t> first_of_section_;
  std::string line_end_ = "\r\n";
};

}  // namespace txs
