// Our profile files against those of Windows, on generated files: what one reads the other reads,
// what one writes the other reads.
//
// Names that differ in the case of other than ASCII letters ("Größe", "GRÖßE") are not among them:
// Windows finds them equal as everywhere, the profile functions of Wine do not.

#include <gtest/gtest.h>

#include <windows.h>

#include <array>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "environment/code_page.h"
#include "environment/file_system_win32.h"
#include "environment/profile_document.h"
#include "environment/windows_calls_win32.h"
#include "fakes/temp_folder.h"

namespace txs {
namespace {

constexpr int kFiles = 60;
constexpr unsigned kSeed = 20040315;

const std::vector<std::string> kSections = {"file", "FILE", "Größe", "gRößE", "a b", "x"};
const std::vector<std::string> kKeys = {"1", "Name", "nAME", "Ä key", "Ä KEY", "two words", "k"};
const std::vector<std::string> kValues = {"",
                                          "1",
                                          "C:\\Demo\\x.dll",
                                          "\"quoted\"",
                                          "'single'",
                                          "\"half",
                                          "half'",
                                          "\"",
                                          "\"\"",
                                          "\"mixed'",
                                          "a=b",
                                          "a;b",
                                          "; no comment",
                                          "[no section]",
                                          "a  b",
                                          "\" kept \"",
                                          "Süd ß €",
                                          "\"a\" \"b\"",
                                          "\"\"twice\"\""};

class Generator {
 public:
  explicit Generator(unsigned seed) : random_(seed) {}

  [[nodiscard]] const std::string& OneOf(const std::vector<std::string>& texts) {
    return texts[random_() % texts.size()];
  }
  [[nodiscard]] std::string Blanks() {
    static const std::vector<std::string> kBlanks = {"", "", "", " ", "  ", "\t", " \t "};
    return OneOf(kBlanks);
  }
  [[nodiscard]] bool OneIn(unsigned count) { return random_() % count == 0; }

  // A file in the ANSI code page.
  [[nodiscard]] std::string File() {
    const std::string line_end = OneIn(4) ? "\n" : "\r\n";
    std::string text;
    const unsigned lines = random_() % 40;
    for (unsigned i = 0; i < lines; ++i) {
      text += Line();
      if (i + 1 < lines || !OneIn(3)) text += line_end;
    }
    return Utf8ToAnsi(text);
  }

 private:
  std::string Line() {
    switch (random_() % 15) {
      case 12:
        return " ;" + OneOf(kKeys) + "=" + OneOf(kValues);
      case 13:
        return OneOf(kKeys) + "=" + OneOf(kValues) + "\x1A";
      case 14:
        return OneOf(kKeys) + "=1\r" + OneOf(kKeys) + "=2";
      case 0:
        return "";
      case 1:
        return ";" + OneOf(kKeys) + "=" + OneOf(kValues);
      case 2:
        return "no entry";
      case 3:
      case 4:
        return "[" + OneOf(kSections) + "]" + Blanks();
      default:
        return Blanks() + OneOf(kKeys) + Blanks() + "=" + Blanks() + OneOf(kValues) + Blanks();
    }
  }

  std::mt19937 random_;
};

class ProfileOnWindows : public testing::Test {
 protected:
  [[nodiscard]] std::string Path(int number) const {
    return ToUtf8(root.Path().native()) + "\\" + std::to_string(number) + ".ini";
  }
  // What the system reads; nothing when the key is missing.
  static std::optional<std::string> SystemRead(const std::string& path, const std::string& section,
                                               const std::string& key) {
    constexpr wchar_t kMissing[] = L"<missing>";
    std::array<wchar_t, 1024> value = {};
    GetPrivateProfileStringW(ToWide(section).c_str(), ToWide(key).c_str(), kMissing, value.data(),
                             static_cast<DWORD>(value.size()), ToWide(path).c_str());
    if (std::wstring_view(value.data()) == kMissing) return std::nullopt;
    return ToUtf8(value.data());
  }
  static void SystemWrite(const std::string& path, const std::string& section,
                          const std::string& key, const std::string& value) {
    ASSERT_TRUE(WritePrivateProfileStringW(ToWide(section).c_str(), ToWide(key).c_str(),
                                           ToWide(value).c_str(), ToWide(path).c_str()));
    // What it keeps in memory.
    WritePrivateProfileStringW(nullptr, nullptr, nullptr, ToWide(path).c_str());
  }
  // Every key of every section as the system and as the document have it.
  static void ExpectSame(const std::string& path, const ProfileDocument& document,
                         const std::string& bytes) {
    for (const std::string& section : kSections) {
      for (const std::string& key : kKeys) {
        EXPECT_EQ(document.Value(section, key), SystemRead(path, section, key))
            << "[" << section << "] " << key << " of\n"
            << AnsiToUtf8(bytes);
      }
    }
  }

  TempFolder root;
  WindowsFileSystem files;
  Generator generator{kSeed};
};

TEST_F(ProfileOnWindows, GeneratedFilesAreReadAlike) {
  for (int i = 0; i < kFiles; ++i) {
    const std::string bytes = generator.File();
    files.ReplaceWhole(Path(i), bytes);

    ExpectSame(Path(i), ProfileDocument(bytes), bytes);
  }
}

TEST_F(ProfileOnWindows, WhatWeWriteTheSystemReads) {
  for (int i = 0; i < kFiles; ++i) {
    ProfileDocument document(generator.File());
    for (int j = 0; j < 4; ++j) {
      const std::string& section = generator.OneOf(kSections);
      if (generator.OneIn(6)) {
        document.RemoveSection(section);
      } else {
        document.Set(section, generator.OneOf(kKeys), generator.OneOf(kValues));
      }
    }
    files.ReplaceWhole(Path(i), document.Bytes());

    ExpectSame(Path(i), document, document.Bytes());
  }
}

TEST_F(ProfileOnWindows, WhatTheSystemWritesWeRead) {
  for (int i = 0; i < kFiles; ++i) {
    files.ReplaceWhole(Path(i), generator.File());
    for (int j = 0; j < 4; ++j) {
      SystemWrite(Path(i), generator.OneOf(kSections), generator.OneOf(kKeys),
                  generator.OneOf(kValues));
    }
    const std::string bytes = files.ReadWhole(Path(i));

    ExpectSame(Path(i), ProfileDocument(bytes), bytes);
  }
}

}  // namespace
}  // namespace txs
