// A dzip32.dll of our own for the tests: checks the record that it gets, byte by byte, and packs
// the one file it names into an archive, uncompressed. The layout is written down here once more,
// on purpose: what the program and this file say of it must agree.
//
// Answers 0; 1000 + offset of the first byte of the record that is wrong; what the environment
// variable TXS_DZIP_RESULT says, after leaving half an archive behind; 2 when the source, 3 when
// the archive cannot be opened, 4 when the archive is there already.

#include <windows.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <string>
#include <utility>

namespace {

constexpr int kWrongByte = 1000;
constexpr char kMark[] = "packed by the stand-in";

// Offset of the first byte that is not as it must be; -1 when all are.
int WrongByte(const unsigned char* record) {
  constexpr int kNumbers = 188;
  for (int at = 0; at < kNumbers; ++at) {
    int expected = 0;
    if (at == 0) expected = 188;
    if (at == 4) expected = 4;
    if (at == 40) expected = 5;
    if (at >= 76 && at < 80) expected = 255;
    if (record[at] != expected) return at;
  }
  constexpr int kTexts[] = {260, 5120, 260, 2048, 7, 2048, 2048, 1024, 66, 260};
  int at = kNumbers;
  for (int field = 0; field < 10; ++field) {
    int length = 0;
    while (length < kTexts[field] && record[at + length] != 0) ++length;
    if (length == kTexts[field]) return at;  // not ended
    const bool is_used = field < 2;
    if (is_used != (length > 0)) return at;
    if (field == 1 && (record[at] != '"' || record[at + length - 1] != '"' || length < 3))
      return at;
    for (int i = length; i < kTexts[field]; ++i) {
      if (record[at + i] != 0) return at + i;
    }
    at += kTexts[field];
  }
  return -1;
}

std::uint32_t Crc(const std::string& bytes) {
  std::uint32_t crc = 0xFFFFFFFF;
  for (const char byte : bytes) {
    crc ^= static_cast<unsigned char>(byte);
    for (int i = 0; i < 8; ++i) crc = crc >> 1 ^ (crc % 2 != 0 ? 0xEDB88320U : 0U);
  }
  return ~crc;
}

void Put(std::string& bytes, std::uint32_t number, int size) {
  for (int i = 0; i < size; ++i) bytes += static_cast<char>(number >> (8 * i));
}

std::string Archive(const std::string& name, const std::string& contents) {
  std::string entry;  // what both headers share
  for (const auto& [number, size] : {std::pair<std::uint32_t, int>{20, 2},
                                     {0, 2},
                                     {0, 2},
                                     {0, 2},
                                     {0x306F, 2},
                                     {Crc(contents), 4},
                                     {static_cast<std::uint32_t>(contents.size()), 4},
                                     {static_cast<std::uint32_t>(contents.size()), 4},
                                     {static_cast<std::uint32_t>(name.size()), 2},
                                     {0, 2}}) {
    Put(entry, number, size);
  }
  std::string bytes = "PK\x03\x04" + entry + name + contents;
  const auto directory_at = static_cast<std::uint32_t>(bytes.size());
  bytes += "PK\x01\x02";
  Put(bytes, 20, 2);
  bytes += entry;
  bytes += std::string(14, '\0') + name;
  const auto directory_bytes = static_cast<std::uint32_t>(bytes.size()) - directory_at;
  bytes += "PK\x05\x06";
  for (const auto& [number, size] : {std::pair<std::uint32_t, int>{0, 4},
                                     {1, 2},
                                     {1, 2},
                                     {directory_bytes, 4},
                                     {directory_at, 4},
                                     {sizeof kMark - 1, 2}}) {
    Put(bytes, number, size);
  }
  return bytes + kMark;
}

// The whole file, by its name in the ANSI code page.
bool ReadFileA(const std::string& path, std::string& bytes) {
  std::FILE* const file = std::fopen(path.c_str(), "rb");
  if (file == nullptr) return false;
  char block[65536];
  for (std::size_t count = 0; (count = std::fread(block, 1, sizeof block, file)) > 0;) {
    bytes.append(block, count);
  }
  std::fclose(file);
  return true;
}

bool WriteFileA(const std::string& path, const std::string& bytes) {
  std::FILE* const file = std::fopen(path.c_str(), "wb");
  if (file == nullptr) return false;
  const bool is_whole = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
  return std::fclose(file) == 0 && is_whole;
}

}  // namespace

extern "C" int __stdcall dzipVB(void* pointer) {
  const auto* const record = static_cast<const unsigned char*>(pointer);
  if (const int wrong = WrongByte(record); wrong >= 0) return kWrongByte + wrong;
  const std::string archive = reinterpret_cast<const char*>(record + 188);
  std::string source = reinterpret_cast<const char*>(record + 188 + 260);
  source = source.substr(1, source.size() - 2);
  if (GetFileAttributesA(archive.c_str()) != INVALID_FILE_ATTRIBUTES) return 4;

  char wanted[16] = {};
  if (GetEnvironmentVariableA("TXS_DZIP_RESULT", wanted, sizeof wanted) != 0) {
    WriteFileA(archive, "PK");
    return std::atoi(wanted);
  }
  std::string contents;
  if (!ReadFileA(source, contents)) return 2;
  return WriteFileA(archive, Archive(source.substr(source.rfind('\\') + 1), contents)) ? 0 : 3;
}
