// Hazard: a list of 100,000 rows that costs the square of its length. Costs are counted, never
// timed: platform calls by the memory file system's diary, and bytes asked of the heap, which
// re-dimensioning a table row by row would multiply.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdlib>
#include <new>
#include <string>

#include "document/document_check.h"
#include "document/document_world.h"
#include "document/settings_file.h"

namespace {

std::size_t allocated_bytes = 0;

}  // namespace

// Counts for the whole test program; single-threaded, like the program itself. All forms that pair
// with the plain delete are replaced, or the address sanitizer would see a mismatch;
// none is inlined, or the compiler would take the malloc of one and the delete of another for one.
[[gnu::noinline]] void* operator new(std::size_t size) {
  allocated_bytes += size;
  if (void* const memory = std::malloc(size == 0 ? 1 : size)) return memory;
  throw std::bad_alloc();
}
[[gnu::noinline]] void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
  allocated_bytes += size;
  return std::malloc(size == 0 ? 1 : size);
}
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t /*size*/) noexcept {
  std::free(memory);
}

namespace txs {
namespace {

constexpr std::size_t kShort = 10'000;
constexpr std::size_t kLong = 100'000;

// Ten times the rows may cost ten times as much, and a little for the doubling of containers.
constexpr double kLinear = 13;

struct Cost {
  std::uint64_t operations = 0;
  std::size_t bytes = 0;
};

template <typename Act>
Cost CostOf(DocumentWorld& world, Act act) {
  const std::uint64_t operations = world.Files().OperationCount();
  const std::size_t bytes = allocated_bytes;
  act();
  return {world.Files().OperationCount() - operations, allocated_bytes - bytes};
}

void AppendRows(FileList& list, std::size_t count) {
  for (std::size_t i = 1; i <= count; ++i) {
    list.Append("<ProjectDir>\\Datei " + std::to_string(i) + ".dll", "<ProjectDir>\\Ziel", "1");
  }
}

void ExpectLinear(const Cost& of_short, const Cost& of_long) {
  EXPECT_LT(static_cast<double>(of_long.bytes), kLinear * static_cast<double>(of_short.bytes));
}

Cost CostOfWriting(std::size_t rows) {
  DocumentWorld world;
  ReadSettings(world.application);
  AppendRows(world.application.document.files, rows);
  return CostOf(world, [&] { WriteSettings(world.application); });
}

TEST(LongList, IsWrittenAtLinearCostInAFewOperations) {
  const Cost of_short = CostOfWriting(kShort);
  const Cost of_long = CostOfWriting(kLong);

  ExpectLinear(of_short, of_long);
  EXPECT_EQ(of_long.operations, of_short.operations);
  EXPECT_LT(of_long.operations, 10u);
}

Cost CostOfReading(std::size_t rows) {
  DocumentWorld world;
  std::string settings = "[file]\r\n";
  for (std::size_t i = 1; i <= rows; ++i) {
    settings += NumberedKey(i, 2) + "=<ProjectDir>\\Datei.dll,<ProjectDir>\\Ziel,1\r\n";
  }
  settings += "[ini]\r\n";
  for (std::size_t i = 1; i <= rows; ++i) {
    settings += NumberedKey(i, 2) + "=Datei " + std::to_string(i) + ".ini\r\n";
  }
  world.Put(kSettingsPath, settings);

  const Cost cost = CostOf(world, [&] { ReadSettings(world.application); });

  EXPECT_EQ(world.application.document.files.RowCount(), rows);
  EXPECT_EQ(world.application.document.ini_files.size(), rows);
  return cost;
}

TEST(LongList, IsReadAtLinearCost) {
  const Cost of_short = CostOfReading(kShort);
  const Cost of_long = CostOfReading(kLong);

  ExpectLinear(of_short, of_long);
  // Only the bytes of the file themselves may take more operations, block by block.
  EXPECT_LT(of_long.operations, 13 * of_short.operations);
}

Cost CostOfChecking(std::size_t rows) {
  DocumentWorld world;
  for (std::size_t i = 1; i <= rows; ++i) {
    world.Files().AddFile("C:\\Demo\\Datei " + std::to_string(i) + ".dll", "x");
  }
  AppendRows(world.application.document.files, rows);
  world.application.document.steps.tavix_directory = "C:\\TavixStudio";
  world.application.document.steps.project_directory = "C:\\Demo";

  const Cost cost =
      CostOf(world, [&] { EXPECT_TRUE(CheckDocument(world.application, Step::kAll)); });

  EXPECT_EQ(world.application.document.steps.total_bytes_label, std::to_string(rows));
  return cost;
}

TEST(LongList, IsCheckedAtLinearCostWithOneOperationPerRow) {
  const Cost of_short = CostOfChecking(kShort);
  const Cost of_long = CostOfChecking(kLong);

  ExpectLinear(of_short, of_long);
  EXPECT_EQ(of_short.operations, kShort);
  EXPECT_EQ(of_long.operations, kLong);
}

TEST(LongList, IsSearchedWithoutTouchingTheHeap) {
  DocumentWorld world;
  FileList& list = world.application.document.files;
  AppendRows(list, kLong);
  list.Row(kLong).length_bytes = 4711;

  std::size_t by_source = 0;
  std::size_t by_length = 0;
  const Cost cost = CostOf(world, [&] {
    by_source = list.Find("<PROJECTDIR>\\datei 100000.DLL", FileColumn::kSource);
    by_length = list.Find("4711", FileColumn::kLength);
  });

  EXPECT_EQ(by_source, kLong);
  EXPECT_EQ(by_length, kLong);
  EXPECT_EQ(cost.bytes, 0u);
}

TEST(LongList, LosesAllItsRowsAtLinearCost) {
  DocumentWorld world;
  FileList& list = world.application.document.files;
  AppendRows(list, kLong);
  std::vector<std::size_t> even;
  for (std::size_t row = kLong; row >= 2; row -= 2) even.push_back(row);

  const Cost cost = CostOf(world, [&] { list.DeleteRows(std::move(even)); });

  EXPECT_EQ(list.RowCount(), kLong / 2);
  EXPECT_EQ(list.Row(kLong / 2).source, "<ProjectDir>\\Datei 99999.dll");
  EXPECT_EQ(cost.bytes, 0u);
}

}  // namespace
}  // namespace txs
