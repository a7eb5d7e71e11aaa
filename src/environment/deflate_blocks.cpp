// Whether a literal or a length comes next cannot be predicted, so the inner loop does not ask: an
// entry of a code table tells how many bits to pass over and which table goes on from there. The
// table of literals and lengths holds as many codes per entry as its bits show. Codes longer than a
// table's bits are rare and read bit by bit.

#include "environment/deflate_blocks.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

namespace txs {
namespace {

constexpr unsigned kTableBits = 10;
constexpr unsigned kMaxCodeBits = 15;
constexpr std::size_t kEndOfBlock = 256;
constexpr std::size_t kFirstLength = 257;
constexpr std::size_t kMaxSymbols = 288;

// What comes next in the stream; the last two end the inner loop.
enum class Next : std::uint8_t { kSymbol, kDistance, kEnd, kLongCode };

struct alignas(4) Entry {
  std::uint8_t code_bits = 0;
  std::uint8_t bits = 0;  // with the extra bits behind the code
  Next next = Next::kLongCode;
};

constexpr std::size_t kTableSize = std::size_t{1} << kTableBits;
using Table = std::span<Entry, kTableSize>;

std::uint64_t LowBits(std::uint64_t value, unsigned count) {
  return value & ((std::uint64_t{1} << count) - 1);
}

// The least significant bit of a byte comes first. Behind the end there are zeros.
class BitReader {
 public:
  explicit BitReader(std::span<const std::byte> bytes)
      : bytes_(bytes), end_(std::uint64_t{bytes.size()} * 8) {}

  [[nodiscard]] std::uint64_t Position() const { return position_; }
  [[nodiscard]] std::uint64_t EndPosition() const { return end_; }
  [[nodiscard]] bool IsPastEnd() const { return position_ > end_; }
  void Skip(std::uint64_t count) { position_ += count; }

  void MoveTo(std::uint64_t position) { position_ = position; }

  // At least 57 bits.
  [[nodiscard]] std::uint64_t Peek() const { return PeekAt(position_); }
  [[nodiscard]] std::uint64_t PeekAt(std::uint64_t position) const {
    const std::uint64_t at = position / 8;
    std::uint64_t word = 0;
    if (at + sizeof word <= bytes_.size()) {
      std::memcpy(&word, bytes_.data() + at, sizeof word);
    } else if (at < bytes_.size()) {
      std::memcpy(&word, bytes_.data() + at, bytes_.size() - static_cast<std::size_t>(at));
    }
    static_assert(std::endian::native == std::endian::little);
    return word >> (position % 8);
  }

  unsigned Take(unsigned count) {
    const auto value = static_cast<unsigned>(LowBits(Peek(), count));
    Skip(count);
    return value;
  }

  void SkipToByte() { position_ = (position_ + 7) / 8 * 8; }

 private:
  std::span<const std::byte> bytes_;
  std::uint64_t end_;
  std::uint64_t position_ = 0;
};

// A set of canonical Huffman codes.
class Codes {
 public:
  // False when the lengths are those of no code: more codes than there is room for.
  [[nodiscard]] bool Build(std::span<const std::uint8_t> lengths) {
    counts_.fill(0);
    for (const std::uint8_t length : lengths) ++counts_[length];
    counts_[0] = 0;
    std::array<std::uint16_t, std::size_t{kMaxCodeBits} + 2> next = {};
    int room = 1;
    for (std::size_t bits = 1; bits <= kMaxCodeBits; ++bits) {
      room = room * 2 - counts_[bits];
      if (room < 0) return false;
      next[bits + 1] = static_cast<std::uint16_t>(next[bits] + counts_[bits]);
    }
    for (std::size_t symbol = 0; symbol < lengths.size(); ++symbol) {
      if (lengths[symbol] == 0) continue;
      symbols_[next[lengths[symbol]]++] = static_cast<std::uint16_t>(symbol);
    }
    return true;
  }

  // The next symbol; nothing when the bits are no code.
  [[nodiscard]] std::optional<std::size_t> Read(BitReader& in) const {
    const std::uint64_t word = in.Peek();
    int code = 0;
    int first = 0;
    int index = 0;
    for (unsigned bits = 1; bits <= kMaxCodeBits; ++bits) {
      code |= static_cast<int>(word >> (bits - 1) & 1);
      const int count = counts_[bits];
      if (code - first < count) {
        in.Skip(bits);
        return symbols_[static_cast<std::size_t>(index + code - first)];
      }
      index += count;
      first = (first + count) * 2;
      code *= 2;
    }
    return std::nullopt;
  }

  // Enters entry(symbol, bits of its code) for every code that the table's bits hold.
  template <typename MakeEntry>
  void FillTable(Table table, const MakeEntry& make_entry) const {
    std::fill(table.begin(), table.end(), Entry());
    unsigned code = 0;  // as it lies in the stream: its first bit is the lowest
    std::size_t index = 0;
    for (unsigned bits = 1; bits <= kTableBits; ++bits) {
      for (int i = 0; i < counts_[bits]; ++i) {
        const Entry entry = make_entry(symbols_[index++], bits);
        for (std::size_t at = code; at < table.size(); at += std::size_t{1} << bits) {
          table[at] = entry;
        }
        unsigned carry = 1u << (bits - 1);
        while ((code & carry) != 0) carry >>= 1;
        code = carry == 0 ? 0 : (code & (carry - 1)) | carry;
      }
    }
  }

 private:
  std::array<std::uint16_t, std::size_t{kMaxCodeBits} + 1> counts_ = {};
  std::array<std::uint16_t, kMaxSymbols> symbols_ = {};  // by code
};

// Bits behind the code of a length (257 and up) or of a distance; nothing for symbols that do not
// exist.
std::optional<unsigned> ExtraBitsOfLength(std::size_t symbol) {
  const std::size_t number = symbol - kFirstLength;
  if (number >= 29) return std::nullopt;
  if (number < 8 || number == 28) return 0;
  return static_cast<unsigned>(number / 4 - 1);
}

std::optional<unsigned> ExtraBitsOfDistance(std::size_t symbol) {
  if (symbol >= 30) return std::nullopt;
  return symbol < 4 ? 0 : static_cast<unsigned>(symbol / 2 - 1);
}

class BlockReader {
 public:
  explicit BlockReader(std::span<const std::byte> stream) : in_(stream) {}

  std::optional<LastDeflateBlock> FindLast() {
    for (;;) {
      const std::uint64_t header_bit = in_.Position();
      const bool is_last = in_.Take(1) == 1;
      if (!SkipBlock(in_.Take(2)) || in_.IsPastEnd()) return std::nullopt;
      if (is_last) return LastDeflateBlock{header_bit, in_.Position()};
    }
  }

 private:
  bool SkipBlock(unsigned type) {
    switch (type) {
      case 0:
        return SkipStored();
      case 1:
        return UseFixedCodes() && SkipCodes();
      case 2:
        return ReadDynamicCodes() && SkipCodes();
      default:
        return false;
    }
  }

  bool SkipStored() {
    in_.SkipToByte();
    const unsigned length = in_.Take(16);
    const unsigned inverted = in_.Take(16);
    in_.Skip(std::uint64_t{length} * 8);
    return (length ^ inverted) == 0xFFFF;
  }

  bool UseFixedCodes() {
    std::array<std::uint8_t, kMaxSymbols> lengths;
    std::fill(lengths.begin(), lengths.begin() + 144, std::uint8_t{8});
    std::fill(lengths.begin() + 144, lengths.begin() + 256, std::uint8_t{9});
    std::fill(lengths.begin() + 256, lengths.begin() + 280, std::uint8_t{7});
    std::fill(lengths.begin() + 280, lengths.end(), std::uint8_t{8});
    std::array<std::uint8_t, 32> distances;
    distances.fill(5);
    return Use(lengths, distances);
  }

  bool ReadDynamicCodes() {
    const std::size_t literal_count = in_.Take(5) + 257;
    const std::size_t distance_count = in_.Take(5) + 1;
    const std::size_t precode_count = in_.Take(4) + 4;
    if (literal_count > kMaxSymbols) return false;
    constexpr std::array<std::uint8_t, 19> kOrder = {16, 17, 18, 0, 8,  7, 9,  6, 10, 5,
                                                     11, 4,  12, 3, 13, 2, 14, 1, 15};
    std::array<std::uint8_t, 19> precode_lengths = {};
    for (std::size_t i = 0; i < precode_count; ++i) {
      precode_lengths[kOrder[i]] = static_cast<std::uint8_t>(in_.Take(3));
    }
    Codes precode;
    if (!precode.Build(precode_lengths)) return false;

    std::array<std::uint8_t, kMaxSymbols + 32> lengths = {};
    const std::size_t count = literal_count + distance_count;
    for (std::size_t i = 0; i < count;) {
      const std::optional<std::size_t> symbol = precode.Read(in_);
      if (!symbol || in_.IsPastEnd()) return false;
      if (*symbol < 16) {
        lengths[i++] = static_cast<std::uint8_t>(*symbol);
        continue;
      }
      if (*symbol == 16 && i == 0) return false;
      const std::uint8_t value = *symbol == 16 ? lengths[i - 1] : std::uint8_t{0};
      const std::size_t repeats = *symbol == 16   ? in_.Take(2) + 3
                                  : *symbol == 17 ? in_.Take(3) + 3
                                                  : in_.Take(7) + 11;
      if (repeats > count - i) return false;
      std::fill_n(lengths.begin() + static_cast<std::ptrdiff_t>(i), repeats, value);
      i += repeats;
    }
    const std::span<const std::uint8_t> all(lengths);
    return Use(all.first(literal_count), all.subspan(literal_count, distance_count));
  }

  bool Use(std::span<const std::uint8_t> symbols, std::span<const std::uint8_t> distances) {
    if (!symbol_codes_.Build(symbols) || !distance_codes_.Build(distances)) return false;
    std::array<Entry, kTableSize> single;
    symbol_codes_.FillTable(single, [](std::size_t symbol, unsigned bits) {
      if (symbol < kEndOfBlock) return MakeEntry(bits, 0, Next::kSymbol);
      if (symbol == kEndOfBlock) return MakeEntry(bits, 0, Next::kEnd);
      const std::optional<unsigned> extra = ExtraBitsOfLength(symbol);
      return extra ? MakeEntry(bits, *extra, Next::kDistance) : Entry();
    });
    distance_codes_.FillTable(DistanceTable(), [](std::size_t symbol, unsigned bits) {
      const std::optional<unsigned> extra = ExtraBitsOfDistance(symbol);
      return extra ? MakeEntry(bits, *extra, Next::kSymbol) : Entry();
    });
    for (std::size_t i = 0; i < single.size(); ++i) tables_[i] = Joined(single, i);
    return true;
  }

  Table DistanceTable() { return std::span(tables_).subspan<kTableSize, kTableSize>(); }

  static Entry MakeEntry(unsigned code_bits, unsigned extra_bits, Next next) {
    return {static_cast<std::uint8_t>(code_bits), static_cast<std::uint8_t>(code_bits + extra_bits),
            next};
  }

  // The code at `index`, with those that can be seen behind it.
  [[nodiscard]] Entry Joined(std::span<const Entry> single, std::size_t index) const {
    Entry entry = single[index];
    while (entry.bits < kTableBits && entry.next <= Next::kDistance) {
      const std::size_t rest = index >> entry.bits;
      const Entry& behind = entry.next == Next::kSymbol ? single[rest] : tables_[kTableSize + rest];
      if (behind.next > Next::kDistance || entry.bits + behind.code_bits > kTableBits) break;
      entry.bits = static_cast<std::uint8_t>(entry.bits + behind.bits);
      entry.next = behind.next;
    }
    return entry;
  }

  // Up to and with the end of the block.
  bool SkipCodes() {
    constexpr std::uint64_t kMask = kTableSize - 1;
    const auto entry_for = [&](Next which, std::uint64_t bits) {
      return tables_[static_cast<std::size_t>(which) * kTableSize +
                     static_cast<std::size_t>(bits & kMask)];
    };
    const BitReader in = in_;  // a copy and a position that no call can change stay in registers
    Next next = Next::kSymbol;
    for (;;) {
      std::uint64_t position = in_.Position();
      Entry entry = entry_for(next, in.PeekAt(position));
      while (entry.next <= Next::kDistance && position < in.EndPosition()) {
        // Of the 57 bits, each entry takes at most 10 + 13, and the next index 10 more.
        std::uint64_t word = in.PeekAt(position) >> entry.bits;
        position += entry.bits;
        next = entry.next;
        entry = entry_for(next, word);
        if (entry.next > Next::kDistance) break;
        word >>= entry.bits;
        position += entry.bits;
        next = entry.next;
        entry = entry_for(next, word);
      }
      in_.MoveTo(position);
      if (in_.IsPastEnd()) return false;
      if (entry.next == Next::kEnd) {
        in_.Skip(entry.bits);
        return true;
      }
      const std::optional<Next> after_long = SkipLongCode(next);
      if (!after_long) return false;
      if (*after_long == Next::kEnd) return true;
      next = *after_long;
    }
  }

  // One code of any length, bit by bit; what comes behind it, or nothing when it is no code.
  std::optional<Next> SkipLongCode(Next which) {
    const bool is_distance = which == Next::kDistance;
    const std::optional<std::size_t> symbol =
        (is_distance ? distance_codes_ : symbol_codes_).Read(in_);
    if (!symbol) return std::nullopt;
    if (!is_distance && *symbol < kEndOfBlock) return Next::kSymbol;
    if (!is_distance && *symbol == kEndOfBlock) return Next::kEnd;
    const std::optional<unsigned> extra =
        is_distance ? ExtraBitsOfDistance(*symbol) : ExtraBitsOfLength(*symbol);
    if (!extra) return std::nullopt;
    in_.Skip(*extra);
    return is_distance ? Next::kSymbol : Next::kDistance;
  }

  BitReader in_;
  Codes symbol_codes_;  // literals, end of block, lengths
  Codes distance_codes_;
  std::array<Entry, 2 * kTableSize> tables_;  // by Next: symbols, distances
};

}  // namespace

std::optional<LastDeflateBlock> FindLastDeflateBlock(std::span<const std::byte> stream) {
  return BlockReader(stream).FindLast();
}

std::optional<std::size_t> MakeContinuable(std::span<std::byte> buffer, std::size_t size) {
  const std::optional<LastDeflateBlock> last = FindLastDeflateBlock(buffer.first(size));
  if (!last) return std::nullopt;
  const auto clear_bit = [&](std::uint64_t bit) {
    buffer[static_cast<std::size_t>(bit / 8)] &= ~(std::byte{1} << static_cast<int>(bit % 8));
  };
  clear_bit(last->header_bit);

  // Three zero bits are the header of a stored block that is not the last; its length begins with
  // the next byte.
  auto end = static_cast<std::size_t>((last->end_bit + 3 + 7) / 8);
  const auto used = static_cast<std::size_t>((last->end_bit + 7) / 8);
  for (std::uint64_t bit = last->end_bit; bit < std::uint64_t{used} * 8; ++bit) clear_bit(bit);
  if (end > used) buffer[used] = std::byte{0};
  for (const int value : {0x00, 0x00, 0xFF, 0xFF}) buffer[end++] = static_cast<std::byte>(value);
  return end;
}

}  // namespace txs
