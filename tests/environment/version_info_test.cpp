#include "environment/version_info.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <string>

#include "environment/runtime_error.h"

namespace txs {
namespace {

// One file, and how much of it was read.
class OneFile : public FileReader {
 public:
  explicit OneFile(std::string bytes) : bytes_(std::move(bytes)) {}

  bool FileExists(std::string_view) const override { return true; }
  bool FolderExists(std::string_view) const override { return false; }
  std::optional<FileStamp> Stamp(std::string_view) const override { return std::nullopt; }
  std::vector<FileEntry> List(std::string_view, std::string_view) const override { return {}; }
  std::vector<FileEntry> UnusableEntries(std::string_view) const override { return {}; }
  std::unique_ptr<InputFile> OpenForReading(std::string_view path) const override {
    if (path == "missing") throw RuntimeError(ErrorNumber::kFileNotFound, "missing");
    return std::make_unique<Open>(*this);
  }

  [[nodiscard]] std::size_t BytesRead() const { return bytes_read_; }
  // Reading beyond this position fails, as on a broken disk.
  void BreakAt(std::size_t position) { broken_at_ = position; }

 private:
  class Open : public InputFile {
   public:
    explicit Open(const OneFile& file) : file_(file) {}
    std::size_t Read(std::span<std::byte> buffer) override {
      if (position_ >= file_.bytes_.size()) return 0;
      const std::size_t size = std::min(buffer.size(), file_.bytes_.size() - position_);
      if (position_ + size > file_.broken_at_) throw RuntimeError(ErrorNumber::kDeviceIo, "broken");
      std::memcpy(buffer.data(), file_.bytes_.data() + position_, size);
      position_ += size;
      file_.bytes_read_ += size;
      return size;
    }
    std::uint64_t Length() const override { return file_.bytes_.size(); }
    void Seek(std::uint64_t offset) override { position_ = static_cast<std::size_t>(offset); }

   private:
    const OneFile& file_;
    std::size_t position_ = 0;
  };

  std::string bytes_;
  mutable std::size_t bytes_read_ = 0;
  std::size_t broken_at_ = static_cast<std::size_t>(-1);
};

void Put(std::string& bytes, std::size_t at, std::uint64_t value, int size) {
  if (bytes.size() < at + static_cast<std::size_t>(size)) {
    bytes.resize(at + static_cast<std::size_t>(size));
  }
  for (int i = 0; i < size; ++i) {
    bytes[at + static_cast<std::size_t>(i)] = static_cast<char>((value >> (8 * i)) & 0xFF);
  }
}
void Put16(std::string& bytes, std::size_t at, std::uint64_t value) { Put(bytes, at, value, 2); }
void Put32(std::string& bytes, std::size_t at, std::uint64_t value) { Put(bytes, at, value, 4); }

void PutFixedInfo(std::string& bytes, std::size_t at) {
  Put32(bytes, at, 0xFEEF04BD);
  Put32(bytes, at + 4, 0x10000);
  Put32(bytes, at + 8, 6u << 16 | 1);     // file version
  Put32(bytes, at + 12, 98u << 16 | 39);  // 6.1.98.39
  Put32(bytes, at + 16, 9u << 16 | 9);    // product version, which is another
  Put32(bytes, at + 48, 0);
}

enum class Bits { k32, k64 };

constexpr std::size_t kHeader = 0x80;
constexpr std::size_t kSectionRaw = 0x1400;
constexpr std::size_t kSectionAddress = 0x3000;
// Within the resource section.
constexpr std::size_t kNames = 0x30;
constexpr std::size_t kLanguages = 0x50;
constexpr std::size_t kData = 0x70;
constexpr std::size_t kResource = 0x80;

constexpr std::size_t OptionalSize(Bits bits) { return bits == Bits::k32 ? 224 : 240; }
constexpr std::size_t SectionTable(Bits bits) { return kHeader + 24 + OptionalSize(bits); }

// A program file with an icon and a version resource.
std::string PeImage(Bits bits) {
  std::string image;
  Put16(image, 0, 0x5A4D);
  Put32(image, 0x3C, kHeader);
  Put32(image, kHeader, 0x4550);
  Put16(image, kHeader + 6, 2);  // sections
  Put16(image, kHeader + 20, OptionalSize(bits));
  const std::size_t optional = kHeader + 24;
  Put16(image, optional, bits == Bits::k32 ? 0x10B : 0x20B);
  const std::size_t directories = optional + (bits == Bits::k32 ? 96 : 112);
  Put32(image, directories - 4, 16);
  Put32(image, directories + 16, kSectionAddress);
  Put32(image, directories + 20, 0x100);
  const std::size_t table = SectionTable(bits);
  Put32(image, table + 12, 0x1000);  // .text
  Put32(image, table + 16, 0x1000);
  Put32(image, table + 20, 0x400);
  Put32(image, table + 40 + 12, kSectionAddress);  // .rsrc
  Put32(image, table + 40 + 16, 0x200);
  Put32(image, table + 40 + 20, kSectionRaw);

  const std::size_t root = kSectionRaw;
  Put16(image, root + 12, 0);
  Put16(image, root + 14, 2);
  Put32(image, root + 16, 3);  // icons
  Put32(image, root + 20, 0x80000000 | kNames);
  Put32(image, root + 24, 16);  // versions
  Put32(image, root + 28, 0x80000000 | kNames);
  Put16(image, root + kNames + 14, 1);
  Put32(image, root + kNames + 16, 1);
  Put32(image, root + kNames + 20, 0x80000000 | kLanguages);
  Put16(image, root + kLanguages + 14, 1);
  Put32(image, root + kLanguages + 16, 0x407);
  Put32(image, root + kLanguages + 20, kData);
  Put32(image, root + kData, kSectionAddress + kResource);
  Put32(image, root + kData + 4, 0x100);
  const std::size_t resource = root + kResource;
  Put16(image, resource, 0x100);
  Put16(image, resource + 2, 52);
  const char key[] = "VS_VERSION_INFO";
  for (std::size_t i = 0; i < sizeof key; ++i) {
    Put16(image, resource + 6 + 2 * i, static_cast<unsigned char>(key[i]));
  }
  PutFixedInfo(image, resource + 40);
  image.resize(kSectionRaw + 0x200);
  return image;
}

constexpr std::size_t kNeResources = 0x40;
constexpr unsigned kNeShift = 4;

// A 16-bit program file, whose version resource stands behind two icons.
std::string NeImage() {
  std::string image;
  Put16(image, 0, 0x5A4D);
  Put32(image, 0x3C, kHeader);
  Put16(image, kHeader, 0x454E);
  Put16(image, kHeader + 0x24, kNeResources);
  const std::size_t table = kHeader + kNeResources;
  Put16(image, table, kNeShift);
  Put16(image, table + 2, 0x8003);  // icons
  Put16(image, table + 4, 2);
  constexpr std::size_t kTwoIcons = 24;
  const std::size_t versions = table + 10 + kTwoIcons;
  Put16(image, versions, 0x8010);
  Put16(image, versions + 2, 1);
  Put16(image, versions + 8, 0x400 >> kNeShift);
  Put16(image, versions + 10, 0x100 >> kNeShift);
  Put16(image, versions + 20, 0);
  Put16(image, kHeader + 0x26, versions + 22 - kHeader);
  Put16(image, 0x400, 0x100);
  Put16(image, 0x402, 52);
  image.resize(0x404);
  image += std::string("VS_VERSION_INFO\0", 16);
  PutFixedInfo(image, 0x414);
  image.resize(0x500);
  return image;
}

std::string VersionOf(const std::string& bytes) { return FileVersion(OneFile(bytes), "x.dll"); }

TEST(VersionInfo, ThirtyTwoBitImageHasItsFileVersion) {
  EXPECT_EQ(VersionOf(PeImage(Bits::k32)), "6.1.98.39");
}

TEST(VersionInfo, SixtyFourBitImageHasItsFileVersion) {
  EXPECT_EQ(VersionOf(PeImage(Bits::k64)), "6.1.98.39");
}

TEST(VersionInfo, SixteenBitImageHasItsFileVersion) {
  EXPECT_EQ(VersionOf(NeImage()), "6.1.98.39");
}

TEST(VersionInfo, LargePartsOfAVersionAreWrittenInFull) {
  std::string image = PeImage(Bits::k32);
  Put32(image, kSectionRaw + kResource + 48, 0xFFFFFFFF);
  Put32(image, kSectionRaw + kResource + 52, 0xFFFF0000);

  EXPECT_EQ(VersionOf(image), "65535.65535.65535.0");
}

TEST(VersionInfo, AFileThatIsNoImageHasNone) {
  EXPECT_EQ(VersionOf(""), "");
  EXPECT_EQ(VersionOf("MZ"), "");
  EXPECT_EQ(VersionOf(std::string(5000, 'M')), "");
  EXPECT_EQ(VersionOf("MZ" + std::string(5000, '\0')), "");
  EXPECT_EQ(VersionOf("[Settings]\r\nVersion=1\r\n" + std::string(100, ' ')), "");
}

TEST(VersionInfo, AnImageWithoutResourcesHasNone) {
  std::string image = PeImage(Bits::k32);
  Put32(image, kHeader + 24 + 96 + 16, 0);

  EXPECT_EQ(VersionOf(image), "");
}

TEST(VersionInfo, AnImageWithoutAVersionResourceHasNone) {
  std::string image = PeImage(Bits::k32);
  Put32(image, kSectionRaw + 24, 14);

  EXPECT_EQ(VersionOf(image), "");
}

TEST(VersionInfo, AnImageWithTooFewDirectoriesHasNone) {
  std::string image = PeImage(Bits::k32);
  Put32(image, kHeader + 24 + 92, 2);

  EXPECT_EQ(VersionOf(image), "");
}

TEST(VersionInfo, AResourceWithoutTheSignatureHasNone) {
  std::string image = PeImage(Bits::k32);
  Put32(image, kSectionRaw + kResource + 40, 0xFEEF04BC);

  EXPECT_EQ(VersionOf(image), "");
}

TEST(VersionInfo, OffsetsBeyondTheFileAreRefused) {
  const std::size_t table = SectionTable(Bits::k32);
  const std::size_t places[] = {0x3C,
                                kHeader + 24 + 96 + 16,
                                table + 40 + 20,
                                kSectionRaw + 28,
                                kSectionRaw + kNames + 20,
                                kSectionRaw + kLanguages + 20,
                                kSectionRaw + kData};
  for (const std::size_t place : places) {
    for (const std::uint32_t value : {0x7FFFFFFFu, 0xFFFFFFFFu, 0x80000000u, 0x1500u}) {
      std::string image = PeImage(Bits::k32);
      Put32(image, place, value);

      EXPECT_EQ(VersionOf(image), "") << place << ' ' << value;
    }
  }
}

TEST(VersionInfo, ADirectoryThatPointsAtItselfEnds) {
  std::string image = PeImage(Bits::k32);
  Put32(image, kSectionRaw + 28, 0x80000000);
  Put32(image, kSectionRaw + 20, 0x80000000);

  EXPECT_EQ(VersionOf(image), "");
}

TEST(VersionInfo, EveryTruncationIsHarmless) {
  for (const std::string& image : {PeImage(Bits::k32), PeImage(Bits::k64), NeImage()}) {
    const std::size_t needed = image.find(std::string("\xBD\x04\xEF\xFE", 4)) + 52;
    for (std::size_t size = 0; size < image.size(); size += size < 0x200 ? 1 : 13) {
      const std::string version = VersionOf(image.substr(0, size));

      ASSERT_EQ(version, size < needed ? "" : "6.1.98.39") << size;
    }
  }
}

TEST(VersionInfo, RandomDamageNeverDoesHarm) {
  std::mt19937 random(11);
  const std::string images[] = {PeImage(Bits::k32), PeImage(Bits::k64), NeImage()};
  for (int round = 0; round < 30000; ++round) {
    std::string image = images[round % 3];
    for (int damage = 0; damage < 4; ++damage) {
      // Where the structures are, rather than in the zeros between them.
      const std::size_t at = random() % 2 == 0 ? random() % 0x200 : random() % image.size();
      image[at] = static_cast<char>(random());
    }

    const std::string version = VersionOf(image);

    ASSERT_TRUE(version.empty() || std::count(version.begin(), version.end(), '.') == 3);
  }
}

TEST(VersionInfo, OnlyHeadersAndTheResourceAreRead) {
  std::string image = PeImage(Bits::k32);
  image.resize(10'000'000, 'x');
  const OneFile file(image);

  EXPECT_EQ(FileVersion(file, "x.dll"), "6.1.98.39");
  EXPECT_LT(file.BytesRead(), 16'000u);
}

TEST(VersionInfo, AFileThatCannotBeOpenedOrReadIsAnError) {
  OneFile broken(PeImage(Bits::k32));
  broken.BreakAt(kSectionRaw);

  try {
    (void)FileVersion(broken, "missing");
    ADD_FAILURE() << "no error";
  } catch (const RuntimeError& error) {
    EXPECT_EQ(error.Number(), ErrorNumber::kFileNotFound);
  }
  try {
    (void)FileVersion(broken, "x.dll");
    ADD_FAILURE() << "no error";
  } catch (const RuntimeError& error) {
    EXPECT_EQ(error.Number(), ErrorNumber::kDeviceIo);
  }
}

}  // namespace
}  // namespace txs
