// Joins deflate streams that were compressed apart into one.
//
// libdeflate compresses whole buffers only, and the last block of what it writes says that the
// stream ends there. A long file is compressed piece by piece, each as a stream of its own; all but
// the last are made continuable, and their bytes one after the other are a single stream that every
// program inflates.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace txs {

struct LastDeflateBlock {
  std::uint64_t header_bit = 0;  // position of its first bit, which says that it is the last
  std::uint64_t end_bit = 0;     // the first bit behind it
};

// Where the last block of a raw deflate stream lies. Found by reading the codes of all blocks, but
// without making the bytes that they stand for: a small part of what inflating costs. Nothing when
// the bytes are no complete stream; bytes behind the stream do not count.
[[nodiscard]] std::optional<LastDeflateBlock> FindLastDeflateBlock(
    std::span<const std::byte> stream);

// How many bytes MakeContinuable may add.
inline constexpr std::size_t kContinuationBytes = 5;

// Changes the stream in the first `size` bytes of `buffer`, which must have room for
// kContinuationBytes more, so that another stream can follow: the last block is no longer marked as
// such, and an empty stored block fills the last byte up. The new number of bytes, or nothing when
// the bytes are no complete stream; they are then unchanged.
[[nodiscard]] std::optional<std::size_t> MakeContinuable(std::span<std::byte> buffer,
                                                         std::size_t size);

}  // namespace txs
