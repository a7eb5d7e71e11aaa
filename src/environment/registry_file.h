// The text of a registry export (.reg): parsed once, read by key and name, edited in place.
//
// Reading does what importing the file into an empty registry would do: keys of one name are one
// key, the last of several values of one name wins, "[-key]" and "name"=- take away what stood
// before them. A line that is damaged or of an unknown kind means nothing and is kept. Writing
// changes only the lines it must: encoding, order, comments, line ends and values of other types
// stay as they were.
//
// The first line that is not blank and no comment is "Windows Registry Editor Version 5.00" or
// "REGEDIT4". The bytes are UTF-16LE, UTF-8 (both with or without byte order mark) or the ANSI code
// page; callers do not see which, texts go in and out as UTF-8.
//
// A key path here begins with its hive ("HKEY_LOCAL_MACHINE\Software\ORBEKA GmbH"); keys and names
// are compared without regard to case. The name "" is the default value, "@" in the file. Views of
// the registry (32-bit, merged classes) are not known here. See docs/formats/registry-file.md.
#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "environment/registry.h"

namespace txs {

class RegistryFile {
 public:
  // An empty registry; written as UTF-8 in version 5.00.
  RegistryFile();

  // `bytes` is the file as it is on disk. A file without any text is an empty registry. Throws
  // RuntimeError kInvalidCall for what cannot be an export: another first line, zero characters,
  // UTF-16 that ends within a character. The description does not name the file, which is not known
  // here.
  explicit RegistryFile(std::string_view bytes);

  RegistryFile(RegistryFile&&) noexcept;
  RegistryFile& operator=(RegistryFile&&) noexcept;
  ~RegistryFile();

  // Text of REG_SZ and REG_EXPAND_SZ (not expanded), number of REG_DWORD; nothing when the key or
  // value is missing or of another type.
  [[nodiscard]] std::optional<RegistryValue> Value(std::string_view key,
                                                   std::string_view name) const;

  // A key exists when it, or a key below it, has a line of its own.
  [[nodiscard]] bool HasKey(std::string_view key) const;

  // Names of the direct subkeys as spelled first, in file order.
  [[nodiscard]] std::vector<std::string> Subkeys(std::string_view key) const;

  // Sets one value, replacing the line that counts or appending behind the key's last value; a
  // missing key is appended to the file. A value that is there already changes nothing, not even
  // its type. Throws RuntimeError kInvalidCall for keys and names that the format cannot hold (line
  // breaks, zero characters, empty key names, malformed UTF-8), for zero characters in the text,
  // and for characters that an ANSI file lacks; the document is then unchanged.
  void Set(std::string_view key, std::string_view name, const RegistryValue& value);

  // Removes the key with its values and subkeys; its parent stays. Comments that stand behind the
  // last value stay too, for they are usually about the next key. False when there is no such key.
  bool RemoveKey(std::string_view key);

  // The file's bytes, ready to be written. An ANSI file whose bytes would be taken for UTF-8 when
  // read again is written as UTF-8.
  [[nodiscard]] std::string Bytes() const;

 private:
  enum class Encoding { kUtf16, kUtf8, kAnsi };

  // A comment, a blank, anything unknown, a header, or a value with its continuation lines.
  struct Line {
    std::string text;  // UTF-8, with its line ends
    bool is_value = false;
  };
  // A key header with all lines down to the next header; [0] is the head of the file. A removed
  // block keeps its place without lines, so that the indices of the others hold.
  struct Block {
    std::vector<Line> lines;
    std::size_t last_value = 0;  // index in lines; 0: none
  };
  struct Place {
    std::size_t block = 0;
    std::size_t line = 0;
    std::optional<RegistryValue> value;  // nothing: another type
  };
  struct Key;

  static void Reach(Key& from, std::vector<std::size_t>& blocks);

  void ReadText(const std::string& text);
  void ReadHeader(std::string_view line, Key** current);
  // Reads the value that begins at `begin` of `text`; the end of its last continuation line.
  [[nodiscard]] std::size_t ReadValue(const std::string& text, std::size_t begin, std::size_t end,
                                      Key* key);
  [[nodiscard]] Key* Find(std::string_view key) const;
  [[nodiscard]] Key* Make(std::string_view key);
  [[nodiscard]] static bool IsKeyPath(std::string_view key);
  [[nodiscard]] static bool Detach(Key& key);
  [[nodiscard]] std::string PathOf(const Key& key) const;
  [[nodiscard]] std::optional<std::string> TextOfHex(std::string_view bytes) const;
  [[nodiscard]] std::string ValueLine(std::string_view name, const RegistryValue& value) const;
  void RequireEncodable(std::string_view text) const;
  [[nodiscard]] Line* LastLine();  // null: a file without text
  void EndLastLine();

  Encoding encoding_ = Encoding::kUtf8;
  bool has_byte_order_mark_ = false;
  bool is_version_5_ = true;
  bool has_header_ = false;
  bool is_all_utf8_ = true;        // false: lines must be looked at one by one
  std::string line_end_ = "\r\n";  // the file's first
  std::vector<Block> blocks_ = std::vector<Block>(1);
  std::unique_ptr<Key> root_;  // the nameless parent of the hives
};

}  // namespace txs
