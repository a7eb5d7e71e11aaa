// The built-in archiver's archives in the hands of the programs that people unpack with.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "environment/archiver_world.h"
#include "fakes/temp_folder.h"

namespace txs {
namespace {

// Archive bytes on disk for the command-line programs.
class DiskCopy {
 public:
  explicit DiskCopy(const std::string& bytes) { std::ofstream(Path(), std::ios::binary) << bytes; }

  // The program's exit code.
  [[nodiscard]] int Run(const std::string& command) const {
    return std::system((command + " '" + Path().string() + "' > /dev/null 2>&1").c_str());
  }

 private:
  [[nodiscard]] std::filesystem::path Path() const { return folder_.Path() / "archive.zip"; }

  TempFolder folder_;
};

TEST_F(ArchiverTest, CommonProgramsFindTheArchiveSound) {
  for (const std::string& bytes : {std::string(), std::string("x"), Repeating(100'000)}) {
    const DiskCopy copy(ArchiveOf(bytes));

    EXPECT_EQ(copy.Run("unzip -t"), 0);
    EXPECT_EQ(copy.Run("7z t"), 0);
  }
}

TEST_F(ArchiverTest, CommonProgramsFindADamagedArchiveDamaged) {
  std::string zip = ArchiveOf(Repeating(100'000));
  zip[100] = static_cast<char>(zip[100] ^ 0x55);
  const DiskCopy copy(zip);

  EXPECT_NE(copy.Run("unzip -t"), 0);
  EXPECT_NE(copy.Run("7z t"), 0);
}

TEST_F(ArchiverTest, CommonProgramsReadTheLargeArchiveFormat) {
  for (const std::uint64_t whole_file_bytes : {1'000'000u, 10u}) {
    for (const std::string& bytes : {Repeating(300'000), Noise(300'000, 5)}) {
      const std::string zip =
          ArchiveOf(bytes, {.whole_file_bytes = whole_file_bytes, .zip64_bytes = 300'000});
      const DiskCopy copy(zip);

      EXPECT_EQ(copy.Run("unzip -t"), 0);
      EXPECT_EQ(copy.Run("7z t"), 0);
    }
  }
}

}  // namespace
}  // namespace txs
