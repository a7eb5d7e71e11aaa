// What the tests of the built-in archiver pack, and the disks and clocks that they do it with.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <optional>
#include <random>
#include <string>
#include <utility>

#include "environment/archiver_builtin.h"
#include "environment/runtime_error.h"
#include "fakes/memory_file_system.h"
#include "fakes/noise.h"

namespace txs {

inline constexpr char kSource[] = "C:\\Demo\\Library.dll";
inline constexpr char kArchive[] = "C:\\Temp\\Library.dll.zip";

inline std::string Repeating(std::size_t size) {
  std::string bytes;
  while (bytes.size() < size) bytes += "The quick brown fox. " + std::to_string(bytes.size() % 97);
  bytes.resize(size);
  return bytes;
}

inline unsigned U16(const std::string& bytes, std::size_t at) {
  return static_cast<unsigned char>(bytes[at]) |
         static_cast<unsigned>(static_cast<unsigned char>(bytes[at + 1])) << 8;
}

inline std::uint32_t U32(const std::string& bytes, std::size_t at) {
  return U16(bytes, at) | U16(bytes, at + 2) << 16;
}

inline constexpr unsigned kStored = 0;
inline constexpr unsigned kDeflated = 8;

inline unsigned Method(const std::string& zip) { return U16(zip, 8); }

// A clock whose wall shows whatever the test says.
class WallClock : public Clock {
 public:
  FileTime Now() const override { return {}; }
  LocalTime ToLocal(FileTime) const override { return local; }
  std::string ShortDateAndTime(const LocalTime&) const override { return {}; }

  LocalTime local = {2026, 11, 21, 7, 11, 45};
};

// The file system of a bad day.
class FailingFiles : public MemoryFileSystem {
 public:
  std::unique_ptr<InputFile> OpenForReading(std::string_view path) const override {
    if (open_error) throw RuntimeError(*open_error, "open");
    return std::make_unique<Input>(*this, MemoryFileSystem::OpenForReading(path));
  }
  std::unique_ptr<OutputFile> CreateForWriting(std::string_view path) override {
    if (create_error) throw RuntimeError(*create_error, "create");
    return std::make_unique<Output>(*this, MemoryFileSystem::CreateForWriting(path));
  }

  std::optional<ErrorNumber> open_error;
  std::optional<ErrorNumber> create_error;
  std::optional<ErrorNumber> read_error;
  std::optional<ErrorNumber> write_error;
  std::optional<ErrorNumber> close_error;
  std::size_t bytes_before_failure = 0;
  bool source_cut_short = false;
  bool out_of_memory = false;

 private:
  class Input : public InputFile {
   public:
    Input(const FailingFiles& files, std::unique_ptr<InputFile> file)
        : files_(files), file_(std::move(file)) {}
    std::size_t Read(std::span<std::byte> buffer) override {
      if (files_.out_of_memory) throw std::bad_alloc();
      const std::size_t got = file_->Read(buffer);
      done_ += got;
      const bool due = done_ > files_.bytes_before_failure;
      if (files_.read_error && due) throw RuntimeError(*files_.read_error, "read");
      return files_.source_cut_short && due ? 0 : got;
    }
    std::uint64_t Length() const override { return file_->Length(); }
    void Seek(std::uint64_t offset) override { file_->Seek(offset); }

   private:
    const FailingFiles& files_;
    std::unique_ptr<InputFile> file_;
    std::size_t done_ = 0;
  };
  class Output : public OutputFile {
   public:
    Output(const FailingFiles& files, std::unique_ptr<OutputFile> file)
        : files_(files), file_(std::move(file)) {}
    void Write(std::span<const std::byte> data) override {
      done_ += data.size();
      if (files_.write_error && done_ > files_.bytes_before_failure) {
        throw RuntimeError(*files_.write_error, "write");
      }
      file_->Write(data);
    }
    void WriteAt(std::uint64_t offset, std::span<const std::byte> data) override {
      file_->WriteAt(offset, data);
    }
    void Close() override {
      if (files_.close_error) throw RuntimeError(*files_.close_error, "close");
      file_->Close();
    }

   private:
    const FailingFiles& files_;
    std::unique_ptr<OutputFile> file_;
    std::size_t done_ = 0;
  };
};

class ArchiverTest : public testing::Test {
 protected:
  ArchiverTest() {
    files_.MakeFolder("C:\\Demo");
    files_.MakeFolder("C:\\Temp");
  }

  void PutFile(std::string_view path, const std::string& bytes) {
    files_.ReplaceWhole(path, bytes);
  }

  ArchiveResult Compress(const ArchiverLimits& limits = {}) {
    const std::unique_ptr<Archiver> archiver = MakeBuiltInArchiver(files_, clock_, limits);
    const ArchiveResult result = archiver->Compress(kArchive, kSource);
    reason_ = archiver->FailureReason();
    return result;
  }

  // The archive of a file with these bytes.
  std::string ArchiveOf(const std::string& bytes, const ArchiverLimits& limits = {}) {
    PutFile(kSource, bytes);
    EXPECT_EQ(Compress(limits), ArchiveResult::kSuccess);
    return files_.ReadWhole(kArchive);
  }

  FailingFiles files_;
  WallClock clock_;
  std::string reason_;  // of the last Compress
};

}  // namespace txs
