// Follows an import and finds the places on its other side.
#include "dom/source/ImportMap.h"

#include <algorithm>

namespace zeldom40 {

namespace {

using Byte = unsigned char;

constexpr Byte kEsc = 0x1B;
constexpr Byte kEndMark = 0x1A;
constexpr Byte kKanaPrefix = 0x8E;

constexpr Byte byteAt(std::string_view bytes, std::size_t i) {
  return i < bytes.size() ? static_cast<Byte>(bytes[i]) : Byte{0};
}

constexpr bool isJisByte(Byte c) { return c >= 0x21 && c <= 0x7E; }
constexpr bool isEucByte(Byte c) { return c >= 0xA1 && c <= 0xFE; }
constexpr bool isKana(Byte c) { return c >= 0xA1 && c <= 0xDF; }

// The length of an escape sequence of ISO-2022-JP at `i`, 0 if there is none; `kanji` is set as it says.
std::size_t escapeLength(std::string_view bytes, std::size_t i, bool* kanji) {
  if (byteAt(bytes, i) != kEsc) return 0;
  const Byte b = byteAt(bytes, i + 1);
  const Byte c = byteAt(bytes, i + 2);
  if (b == '$') {
    *kanji = true;
    return c == '@' || c == 'B' ? 3 : 2;
  }
  if (b == '(' && (c == 'B' || c == 'J' || c == 'I')) {
    *kanji = false;
    return 3;
  }
  return 0;
}

}  // namespace

ImportMap::ImportMap(std::string_view bytes, CodeConv::Charset charset) : fileLength_(bytes.size()) {
  if (!bytes.empty() && byteAt(bytes, bytes.size() - 1) == kEndMark) bytes.remove_suffix(1);
  bool kanji = false;
  for (std::size_t i = 0; i < bytes.size();) {
    if (charset == CodeConv::CHARSET_JIS) {
      if (const std::size_t escape = escapeLength(bytes, i, &kanji)) {
        i += escape;
        continue;
      }
    }
    const Byte a = byteAt(bytes, i);
    const Byte b = byteAt(bytes, i + 1);
    if (a == '\r' || a == '\n') {
      const std::size_t length = a == '\r' && b == '\n' ? 2 : 1;
      add(i, length, 2);
      i += length;
      kanji = false;
    } else if ((charset == CodeConv::CHARSET_JIS && kanji && isJisByte(a) && isJisByte(b)) ||
               (charset == CodeConv::CHARSET_EUC && isEucByte(a) && isEucByte(b))) {
      add(i, 2, 2);
      i += 2;
    } else if (charset == CodeConv::CHARSET_EUC && a == kKanaPrefix && isKana(b)) {
      add(i, 2, 1);
      i += 2;
    } else {
      add(i, 1, 1);
      ++i;
    }
  }
}

ImportMap ImportMap::identity(std::size_t length) {
  ImportMap map;
  map.fileLength_ = length;
  if (length) map.add(0, length, length);
  return map;
}

void ImportMap::add(std::size_t file, std::size_t fileLength, std::size_t textLength) {
  Stretch* last = stretches_.empty() ? nullptr : &stretches_.back();
  if (last && last->textLength == last->fileLength && fileLength == textLength &&
      file == last->file + last->fileLength) {
    last->fileLength += fileLength;
    last->textLength += textLength;
  } else {
    stretches_.push_back({textLength_, textLength, file, fileLength});
  }
  textLength_ += textLength;
}

const ImportMap::Stretch* ImportMap::find(std::size_t offset) const {
  const auto behind = std::upper_bound(stretches_.begin(), stretches_.end(), offset,
                                       [](std::size_t o, const Stretch& stretch) { return o < stretch.text; });
  return behind == stretches_.begin() ? nullptr : &*(behind - 1);
}

std::size_t ImportMap::toFile(std::size_t offset) const {
  const Stretch* stretch = find(offset);
  if (!stretch) return 0;
  if (offset >= stretch->text + stretch->textLength) return stretch->file + stretch->fileLength;
  return stretch->file + (stretch->textLength == stretch->fileLength ? offset - stretch->text : 0);
}

std::size_t ImportMap::endInFile(std::size_t offset) const {
  if (offset == 0) return 0;
  const Stretch* stretch = find(offset - 1);
  if (!stretch) return 0;
  if (stretch->textLength != stretch->fileLength) return stretch->file + stretch->fileLength;
  return stretch->file + (offset - stretch->text);
}

std::size_t ImportMap::toText(std::size_t fileOffset) const {
  if (fileOffset > fileLength_) return NOWHERE;
  const auto behind = std::upper_bound(stretches_.begin(), stretches_.end(), fileOffset,
                                       [](std::size_t o, const Stretch& stretch) { return o < stretch.file; });
  if (behind == stretches_.begin()) return 0;
  const Stretch& stretch = *(behind - 1);
  const std::size_t inside = fileOffset - stretch.file;
  if (inside >= stretch.fileLength) return behind == stretches_.end() ? textLength_ : behind->text;
  return stretch.text + (stretch.textLength == stretch.fileLength ? inside : 0);
}

}  // namespace zeldom40
