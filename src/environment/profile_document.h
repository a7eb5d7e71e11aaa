// The text of a Windows profile (INI) file: parsed once, read by section and key, edited in place.
//
// Reading does what the Windows profile functions do: section and key names are trimmed and
// compared without regard to case, the first section and the first key of a name win, lines that
// begin with
// ";" are comments, blanks around "=" and around values are trimmed, one pair of surrounding quotes
// (" or ') is removed from a value. Writing changes only the lines it must: comments, unknown keys,
// order and line ends of everything else stay byte for byte.
//
// Lines end in CR LF, LF or CR. A section header is "[", the name, "]"; blanks around the name and
// whatever follows the first "]" do not count. A line without "=", or with nothing before it, is no
// entry. What stands before the first header belongs to no section.
//
// The document is the bytes of the file: callers do not see the code page; texts go in and out as
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
  // the file as it is on disk, in the ANSI code page; a file that begins with a UTF-8 byte order
  // mark and is UTF-8 throughout is read and written as UTF-8, one that begins with that of UTF-16
  // (what Windows calls "Unicode") as UTF-16. One that was cut off within a character of UTF-16
  // keeps its last byte, at its end.
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
  // in double quotes, so that it is read back as it was. Throws RuntimeError kInvalidCall for a
  // line break in key or value and for names that the format cannot hold, and when the code page
  // lacks a character; the document is then unchanged.
  void Set(std::string_view section, std::string_view key, std::string_view value);

  // Gives the section exactly these entries, in this order. It stays where it is in the file, and
  // so do the comments in it; an entry that was there before keeps its line as it was written. A
  // missing section is appended. Of names that stand twice in `entries`, reading sees the first.
  // Throws as Set, with nothing changed.
  void ReplaceSection(std::string_view section, const std::vector<ProfileEntry>& entries);

  // Removes the first such section: header, keys and the comments in it. A second section of that
  // name, if there is one, is what reading finds from then on.
  void RemoveSection(std::string_view section);

  // The file's bytes, ready to be written. A file in ANSI that begins with the mark of UTF-8, and
  // whose bytes have become UTF-8 by a change, is written as UTF-8.
  [[nodiscard]] std::string Bytes() const;

 private:
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  struct Line {
    std::string bytes;  // as in the file (of UTF-16 as UTF-8), with its line end
    // Where name and value stand in `bytes`, without blanks and quotes; only entries have a name.
    std::size_t name_begin = 0;
    std::size_t name_end = 0;
    std::size_t value_begin = 0;
    std::size_t value_end = 0;

    [[nodiscard]] bool IsEntry() const { return name_end > name_begin; }
    [[nodiscard]] std::string_view NameBytes() const;
    [[nodiscard]] std::string_view ValueBytes() const;
  };
  struct SectionBlock {
    std::string name;
    std::vector<Line> lines;  // lines[0] is the header, except in the nameless head of the file
    std::unordered_map<std::string, std::size_t> first_of_key;  // index in lines, by folded name
    std::size_t last_entry = 0;                                 // index in lines; 0: no entry
    // Sections of one name are chained, so that removing the first finds the second; only the
    // first knows the last.
    std::size_t next_of_name = kNone;
    std::size_t last_of_name = kNone;
  };

  [[nodiscard]] std::string Decode(std::string_view bytes) const;
  [[nodiscard]] std::string Encode(std::string_view text) const;
  [[nodiscard]] const SectionBlock* Find(std::string_view section) const;
  [[nodiscard]] Line MakeEntry(std::string_view key, std::string_view value) const;
  [[nodiscard]] SectionBlock MakeSection(std::string_view section) const;
  [[nodiscard]] bool SameEntry(const Line& line, const ProfileEntry& entry) const;

  static void ReadEntry(Line& line, std::size_t length);
  void AddLine(SectionBlock& section, Line line) const;
  void AppendSection(SectionBlock section);
  void EndLine(Line& line) const;
  void CompleteLastLine();
  [[nodiscard]] static std::size_t InsertionPoint(const SectionBlock& block);
  static void ReplaceValue(Line& line, const Line& entry);

  std::string byte_order_mark_;
  std::string half_unit_;  // the byte too many of a UTF-16 file of odd length
  bool is_utf8_ = false;   // the lines are UTF-8
  bool is_utf16_ = false;  // they are, but the file is not
  // In file order; [0] is the head of the file, before the first header. A removed section stays
  // as a block without lines, so that the indices of the others hold.
  std::vector<SectionBlock> sections_ = std::vector<SectionBlock>(1);
  std::unordered_map<std::string, std::size_t> first_of_section_;  // by folded name
  std::string line_end_ = "\r\n";                                  // the file's first
};

}  // namespace txs
