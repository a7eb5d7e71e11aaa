#include "environment/deflate_blocks.h"

#include <gtest/gtest.h>
#include <libdeflate.h>
#include <zlib.h>

#include <memory>
#include <random>
#include <string>
#include <vector>

namespace txs {
namespace {

std::span<const std::byte> Bytes(const std::string& text) { return std::as_bytes(std::span(text)); }

std::string Deflated(const std::string& bytes, int level) {
  const std::unique_ptr<libdeflate_compressor, decltype(&libdeflate_free_compressor)> compressor(
      libdeflate_alloc_compressor(level), &libdeflate_free_compressor);
  std::string packed(libdeflate_deflate_compress_bound(compressor.get(), bytes.size()), '\0');
  packed.resize(libdeflate_deflate_compress(compressor.get(), bytes.data(), bytes.size(),
                                            packed.data(), packed.size()));
  return packed;
}

// By zlib, which can be told to use the codes that stand in no header.
std::string DeflatedWithFixedCodes(const std::string& bytes) {
  z_stream stream = {};
  EXPECT_EQ(deflateInit2(&stream, 6, Z_DEFLATED, -15, 9, Z_FIXED), Z_OK);
  std::string packed(deflateBound(&stream, static_cast<uLong>(bytes.size())), '\0');
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
  stream.avail_in = static_cast<uInt>(bytes.size());
  stream.next_out = reinterpret_cast<Bytef*>(packed.data());
  stream.avail_out = static_cast<uInt>(packed.size());
  EXPECT_EQ(deflate(&stream, Z_FINISH), Z_STREAM_END);
  packed.resize(stream.total_out);
  deflateEnd(&stream);
  return packed;
}

// What zlib, which had no part in joining, makes of a stream.
struct Inflated {
  bool complete = false;
  std::size_t used_bytes = 0;
  std::string bytes;
};

Inflated Inflate(const std::string& packed, std::size_t most_bytes) {
  Inflated result;
  result.bytes.resize(most_bytes + 1);
  z_stream stream = {};
  EXPECT_EQ(inflateInit2(&stream, -15), Z_OK);
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(packed.data()));
  stream.avail_in = static_cast<uInt>(packed.size());
  stream.next_out = reinterpret_cast<Bytef*>(result.bytes.data());
  stream.avail_out = static_cast<uInt>(result.bytes.size());
  result.complete = inflate(&stream, Z_FINISH) == Z_STREAM_END;
  result.used_bytes = stream.total_in;
  result.bytes.resize(stream.total_out);
  inflateEnd(&stream);
  return result;
}

std::string Continuable(const std::string& packed) {
  std::string buffer = packed + std::string(kContinuationBytes, '\x55');
  const std::optional<std::size_t> size =
      MakeContinuable(std::as_writable_bytes(std::span(buffer)), packed.size());
  EXPECT_TRUE(size.has_value());
  buffer.resize(size.value_or(0));
  return buffer;
}

// Of the kinds that lead to other codes: text, noise, one byte over and over, machine-like records,
// and a little of everything.
std::string Content(std::mt19937& random, std::size_t size) {
  const unsigned kind = static_cast<unsigned>(random() % 5);
  std::string bytes;
  while (bytes.size() < size) {
    switch (kind == 4 ? random() % 4 : kind) {
      case 0:
        bytes += "valve " + std::to_string(random() % 1000) + " closed\r\n";
        break;
      case 1:
        for (int i = 0; i < 100; ++i) bytes += static_cast<char>(random());
        break;
      case 2:
        bytes.append(random() % 3000, static_cast<char>(random() % 3));
        break;
      default:
        bytes += {static_cast<char>(random() % 4), '\0', static_cast<char>(random() % 64), '\x8B'};
    }
  }
  bytes.resize(size);
  return bytes;
}

TEST(DeflateBlocks, AnEmptyStoredBlockEndsWithItsLength) {
  const std::string stored("\x01\x00\x00\xFF\xFF", 5);

  const std::optional<LastDeflateBlock> last = FindLastDeflateBlock(Bytes(stored));

  ASSERT_TRUE(last.has_value());
  EXPECT_EQ(last->header_bit, 0u);
  EXPECT_EQ(last->end_bit, 40u);
}

TEST(DeflateBlocks, TheLastBlockIsFoundBehindOthers) {
  const std::string stored("\x00\x02\x00\xFD\xFF\x61\x62\x03\x00", 9);  // "ab", then fixed codes

  const std::optional<LastDeflateBlock> last = FindLastDeflateBlock(Bytes(stored));

  ASSERT_TRUE(last.has_value());
  EXPECT_EQ(last->header_bit, 56u);
  EXPECT_EQ(last->end_bit, 66u);  // three bits of header, seven of the end
}

TEST(DeflateBlocks, StreamsThatWereMadeContinuableAreOneStream) {
  std::mt19937 random(1);
  for (int round = 0; round < 300; ++round) {
    std::string all;
    std::string joined;
    const unsigned pieces = 1 + static_cast<unsigned>(random() % 6);
    for (unsigned piece = 1; piece <= pieces; ++piece) {
      const std::string bytes =
          Content(random, random() % 10 == 0 ? random() % 900'000 : random() % 30'000);
      const std::string packed = random() % 4 == 0
                                     ? DeflatedWithFixedCodes(bytes)
                                     : Deflated(bytes, static_cast<int>(random() % 10));
      all += bytes;
      joined += piece < pieces ? Continuable(packed) : packed;
    }

    const Inflated inflated = Inflate(joined, all.size());

    ASSERT_TRUE(inflated.complete) << round;
    ASSERT_EQ(inflated.used_bytes, joined.size()) << round;
    ASSERT_TRUE(inflated.bytes == all) << round;
  }
}

TEST(DeflateBlocks, AStreamIsContinuableAtEveryPositionOfItsEndWithinAByte) {
  std::mt19937 random(5);
  std::vector<bool> seen(8);
  for (std::size_t size = 0; size < 200; ++size) {
    std::string bytes;
    for (std::size_t i = 0; i < size; ++i) bytes += static_cast<char>(random());
    const std::string packed = DeflatedWithFixedCodes(bytes);
    const std::optional<LastDeflateBlock> last = FindLastDeflateBlock(Bytes(packed));
    ASSERT_TRUE(last.has_value());
    seen[last->end_bit % 8] = true;

    const Inflated inflated = Inflate(Continuable(packed) + packed, 2 * size);

    ASSERT_TRUE(inflated.complete) << size;
    ASSERT_EQ(inflated.bytes, bytes + bytes) << size;
  }
  EXPECT_EQ(seen, std::vector<bool>(8, true));
}

TEST(DeflateBlocks, BytesBehindTheStreamDoNotCount) {
  const std::string packed = Deflated("alarm alarm alarm alarm alarm alarm alarm alarm alarm", 5);

  const std::optional<LastDeflateBlock> alone = FindLastDeflateBlock(Bytes(packed));
  const std::optional<LastDeflateBlock> followed =
      FindLastDeflateBlock(Bytes(packed + std::string(20, '\xFF')));

  ASSERT_TRUE(alone.has_value());
  ASSERT_TRUE(followed.has_value());
  EXPECT_EQ(alone->end_bit, followed->end_bit);
  EXPECT_EQ((alone->end_bit + 7) / 8, packed.size());
}

TEST(DeflateBlocks, AStreamThatWasCutIsNone) {
  std::mt19937 random(2);
  for (int kind = 0; kind < 8; ++kind) {
    const std::string packed = Deflated(Content(random, 5000), 5);
    for (std::size_t size = 0; size < packed.size(); ++size) {
      std::string cut = packed.substr(0, size);
      cut += std::string(kContinuationBytes, '\0');
      const std::string before = cut;

      EXPECT_FALSE(FindLastDeflateBlock(Bytes(packed.substr(0, size))).has_value()) << size;
      EXPECT_FALSE(MakeContinuable(std::as_writable_bytes(std::span(cut)), size).has_value());
      EXPECT_EQ(cut, before);
    }
  }
}

TEST(DeflateBlocks, WhatInflatesAfterDamageHasTheSameEnd) {
  std::mt19937 random(3);
  int inflating = 0;
  for (int round = 0; round < 20'000; ++round) {
    std::string packed = round % 2 == 0 ? Deflated(Content(random, 300), 5)
                                        : DeflatedWithFixedCodes(Content(random, 300));
    char& damaged = packed[random() % packed.size()];
    damaged = static_cast<char>(damaged ^ 1 << random() % 8);

    const std::optional<LastDeflateBlock> last = FindLastDeflateBlock(Bytes(packed));
    const Inflated inflated = Inflate(packed, 100'000);

    if (!inflated.complete) continue;
    ++inflating;
    ASSERT_TRUE(last.has_value()) << round;
    ASSERT_EQ((last->end_bit + 7) / 8, inflated.used_bytes) << round;
  }
  EXPECT_GT(inflating, 1000);
}

TEST(DeflateBlocks, NoiseIsReadToAnEnd) {
  std::mt19937 random(4);
  for (int round = 0; round < 20'000; ++round) {
    std::string noise(random() % 400, '\0');
    for (char& byte : noise) byte = static_cast<char>(random());

    const std::optional<LastDeflateBlock> last = FindLastDeflateBlock(Bytes(noise));

    EXPECT_LE(last.value_or(LastDeflateBlock()).end_bit, noise.size() * 8);
  }
}

}  // namespace
}  // namespace txs
