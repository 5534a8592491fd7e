// Internal. Short names as numbers.
#pragma once

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
  // `length` is at most kLongest.
  NameKey(const char* name, std::size_t length) {
    if (length <= 8) {
      low = raised(load(name, length));
    } else {
      low = raised(load(name, 8));
      high = raised(load(name + 8, length - 8));
    }
  }
  std::uint64_t hash(std::uint64_t seed) const {
    const std::uint64_t mixed = (low ^ seed) * UINT64_C(0x9E3779B97F4A7C15) ^ high * UINT64_C(0xC2B2AE3D27D4EB4F);
    return mixed ^ mixed >> 32;
  }
  friend bool operator==(const NameKey& a, const NameKey& b) { return a.low == b.low && a.high == b.high; }

 private:
  // 1 to 8 bytes; a NUL in a name counts as the end of the word, so that names with one need a second look.
  static std::uint64_t load(const char* bytes, std::size_t length) {
    std::uint64_t word = 0;
    if (length == 8) {
      std::memcpy(&word, bytes, 8);
    } else if (length >= 4) {
      std::uint32_t first = 0;
      std::uint32_t last = 0;
      std::memcpy(&first, bytes, 4);
      std::memcpy(&last, bytes + length - 4, 4);
      word = first | static_cast<std::uint64_t>(last) << (8 * (length - 4));
    } else if (length > 0) {
      word = static_cast<unsigned char>(bytes[0]);
      word |= static_cast<std::uint64_t>(static_cast<unsigned char>(bytes[length / 2])) << (8 * (length / 2));
      word |= static_cast<std::uint64_t>(static_cast<unsigned char>(bytes[length - 1])) << (8 * (length - 1));
    }
    return word;
  }
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
