// Internal. Short names as numbers.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace zeldom40 {

// A name of up to 16 bytes with its letters raised, in two words: hashing and comparing it takes a few steps, where a
// loop over its bytes took 60 instructions a tag.
struct NameKey {
  static constexpr std::size_t kLongest = 16;

  std::uint64_t low = 0;
  std::uint64_t high = 0;

  NameKey() = default;
  // `length` is at most kLongest; `readable` bytes from `name` on may be looked at. Where there are enough of them the
  // words are cut to length without a branch, which a page would make hard to predict.
  NameKey(const char* name, std::size_t length, std::size_t readable) {
    if (std::endian::native == std::endian::little && readable >= kLongest) {
      std::memcpy(&low, name, 8);
      low = raised(low & kMasks[std::min<std::size_t>(length, 8)]);
      if (length <= 8) return;
      std::memcpy(&high, name + 8, 8);
      high = raised(high & kMasks[length - 8]);
    } else if (length > 0) {
      std::memcpy(&low, name, std::min<std::size_t>(length, 8));
      if (length > 8) std::memcpy(&high, name + 8, length - 8);
      low = raised(low);
      high = raised(high);
    }
  }
  std::uint64_t hash(std::uint64_t seed) const {
    const std::uint64_t mixed = (low ^ seed) * UINT64_C(0x9E3779B97F4A7C15) ^ high * UINT64_C(0xC2B2AE3D27D4EB4F);
    return mixed ^ mixed >> 32;
  }
  friend bool operator==(const NameKey& a, const NameKey& b) { return a.low == b.low && a.high == b.high; }

 private:
  // The first bytes of a word, up to all of them.
  static constexpr std::array<std::uint64_t, 9> kMasks = [] {
    std::array<std::uint64_t, 9> masks{};
    for (std::size_t i = 0; i < masks.size(); ++i) masks[i] = i < 8 ? (std::uint64_t{1} << (8 * i)) - 1 : ~UINT64_C(0);
    return masks;
  }();
  // Raises the bytes from `a` to `z`, eight at a time: the top bit of each byte tells whether it is in the range.
  static std::uint64_t raised(std::uint64_t word) {
    constexpr std::uint64_t kOnes = UINT64_C(0x0101010101010101);
    const std::uint64_t low7 = word & (0x7F * kOnes);
    const std::uint64_t fromA = low7 + (0x80 - 'a') * kOnes;
    const std::uint64_t behindZ = low7 + (0x80 - 'z' - 1) * kOnes;
    const std::uint64_t isLetter = (fromA ^ behindZ) & ~word & (0x80 * kOnes);
    return word - (isLetter >> 2);
  }
};

}  // namespace zeldom40
