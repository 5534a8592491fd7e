// Internal. Which bytes of a file each byte of the internal text was made from.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "dom/source/CodeConv.h"

namespace zeldom40 {

// Follows an import of a file without converting anything: line ends of one byte became two, half-width kana lost their
// prefix, escape sequences went. Kept as stretches in which the bytes of both sides go in step, and single characters
// that have another length here than there, so that both directions are a binary search.
class ImportMap {
 public:
  static constexpr std::size_t NOWHERE = static_cast<std::size_t>(-1);

  // Maps nothing.
  ImportMap() = default;
  // `bytes` as they were given to CodeConv::Import, `charset` as CodeConv::GetCharset tells it afterwards.
  ImportMap(std::string_view bytes, CodeConv::Charset charset);
  // The map of a text that was never imported: each byte to itself.
  static ImportMap identity(std::size_t length);

  // The length of the text that the import gives.
  std::size_t textLength() const { return textLength_; }
  // Where the character that the text has at `offset` begins in the file; for the end of the text, the end of what it
  // was made from. `offset` must not exceed the length.
  std::size_t toFile(std::size_t offset) const;
  // Where the character before text byte `offset` ends in the file. Escape sequences stand between the two.
  std::size_t endInFile(std::size_t offset) const;
  // The text's byte for a byte of the file; one inside an escape sequence counts with the character behind it, one that
  // the import dropped at the end of the file with the end of the text. NOWHERE past the end of the file.
  std::size_t toText(std::size_t fileOffset) const;

 private:
  struct Stretch {
    std::size_t text;
    std::size_t textLength;
    std::size_t file;
    std::size_t fileLength;
  };

  void add(std::size_t file, std::size_t fileLength, std::size_t textLength);
  // The stretch that holds text byte `offset`, the last one for the end; null if there is none.
  const Stretch* find(std::size_t offset) const;

  std::vector<Stretch> stretches_;
  std::size_t textLength_ = 0;
  std::size_t fileLength_ = 0;
};

}  // namespace zeldom40
