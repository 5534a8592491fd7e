// The bytes of files and the internal text: line ends, detection of Japanese codes and the conversions between them.
#include "dom/source/CodeConv.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <utility>

#include "dom/source/ByteBuffer.h"
#include "dom/source/CharHelpers.h"

namespace zeldom40 {

namespace {

using Byte = unsigned char;

constexpr int kJapanese = 932;  // the only code page with conversions
constexpr Byte kEsc = 0x1B;
constexpr Byte kEndMark = 0x1A;     // closes files of old editors
constexpr Byte kKanaPrefix = 0x8E;  // in EUC, before a half-width kana

CodeConv::Charset importCharset = CodeConv::CHARSET_AUTO;
CodeConv::Charset exportCharset = CodeConv::CHARSET_AUTO;
CodeConv::Newline exportNewline = CodeConv::NEWLINE_CRLF;
int processCodepage = 1252;

// Byte classes

enum ByteClass : Byte {
  kJisStart = 1,    // second byte after ESC that starts JIS
  kJisAscii = 2,    // third byte of ESC ( x
  kJisByte = 8,     // half of a pair
  kSjisLead = 16,   //
  kSjisTrail = 32,  //
  kEucLead = 64,    //
  kEucTrail = 128,  //
};

constexpr std::array<Byte, 256> makeByteClasses() {
  std::array<Byte, 256> classes{};
  auto add = [&classes](int first, int last, int bit) {
    for (int c = first; c <= last; ++c) {
      classes[static_cast<size_t>(c)] = static_cast<Byte>(classes[static_cast<size_t>(c)] | bit);
    }
  };
  add(0x24, 0x24, kJisStart);
  add(0x40, 0x40, kJisStart);
  add(0x42, 0x42, kJisStart);
  add(0x42, 0x42, kJisAscii);
  add(0x48, 0x48, kJisAscii);
  add(0x4A, 0x4A, kJisAscii);
  add(0x21, 0x7E, kJisByte);
  add(0x81, 0x9F, kSjisLead);
  add(0xE0, 0xFC, kSjisLead);
  add(0x40, 0x7E, kSjisTrail);
  add(0x80, 0xFC, kSjisTrail);
  add(0xA1, 0xFE, kEucLead);
  add(0xA1, 0xFE, kEucTrail);
  return classes;
}

constexpr std::array<Byte, 256> kByteClasses = makeByteClasses();

constexpr bool is(Byte c, ByteClass wanted) { return (kByteClasses[c] & wanted) != 0; }

constexpr bool isKana(Byte c) { return c >= 0xA1 && c <= 0xDF; }

constexpr bool isLineEnd(Byte c) { return c == '\r' || c == '\n'; }

// The lead bytes that JIS X 0208 can express. Those from 0xF0 are for characters of the makers of machines.
constexpr bool isConvertibleLead(Byte c) { return (c >= 0x81 && c <= 0x9F) || (c >= 0xE0 && c <= 0xEF); }

constexpr bool isConvertibleTrail(Byte c) { return c >= 0x40 && c <= 0xFC; }

constexpr Byte withBit7(Byte c) { return static_cast<Byte>(c | 0x80); }

constexpr Byte withoutBit7(Byte c) { return static_cast<Byte>(c & 0x7F); }

// Byte `i` of `text`, and NUL behind its end, so that a look ahead needs no test of its own.
constexpr Byte byteAt(std::string_view text, size_t i) {
  return i < text.size() ? static_cast<Byte>(text[i]) : Byte{0};
}

// Two bytes of one character.
struct Pair {
  Byte lead = 0;
  Byte trail = 0;
};

constexpr Pair shiftToJis(Pair c) {
  int lead = (c.lead - (c.lead < 0xA0 ? 0x70 : 0xB0)) * 2;
  if (c.trail < 0x9F) --lead;
  const int trail = c.trail - (c.trail >= 0x9F ? 0x7E : c.trail > 0x7F ? 0x20 : 0x1F);
  return {static_cast<Byte>(lead), static_cast<Byte>(trail)};
}

constexpr Pair jisToShift(Pair c) {
  const int lead = (c.lead + 1) / 2 + (c.lead < 0x5F ? 0x70 : 0xB0);
  const bool odd = c.lead % 2 != 0;
  const int trail = c.trail + (!odd ? 0x7E : c.trail < 0x60 ? 0x1F : 0x20);
  return {static_cast<Byte>(lead), static_cast<Byte>(trail)};
}

// Detection

enum Sign {
  kSignEnd = -1,
  kSignNone = 0,
  kSignJis = 1,
  kSignSjis = 2,
  kSignEuc = 3,
  kSignKana = 4,
  kSignJisKana = 5,
  kSignEucKana = 6,
  kSignJisAscii = 7
};

enum SignFlag { kKanaPossible = 1, kEucKanaPossible = 2 };

// What three bytes in a row say about their code. A pair that is right in both Shift-JIS and EUC counts as the former.
constexpr Sign classify(Byte a, Byte b, Byte c, int flags) {
  if (a == 0) return kSignEnd;
  if ((flags & kKanaPossible) && isKana(a)) return kSignKana;
  if ((flags & kEucKanaPossible) && a == kKanaPrefix && isKana(b)) return kSignEucKana;
  if (is(a, kSjisLead) && is(b, kSjisTrail)) return kSignSjis;
  if (is(a, kEucLead) && is(b, kEucTrail)) return kSignEuc;
  if (a == kEsc && is(b, kJisStart)) return kSignJis;
  if (a == kEsc && b == '(' && c == 'I') return kSignJisKana;
  if (a == kEsc && b == '(' && is(c, kJisAscii)) return kSignJisAscii;
  if (isKana(a)) return kSignKana;
  return kSignNone;
}

// Conversions

// The three sets that an ISO-2022-JP text switches between, and what follows ESC to reach them.
enum JisState { kAscii, kKanji, kKana };

constexpr std::string_view kDesignators[] = {"(B", "$B", "(I"};

// Writes ISO-2022-JP text, switching where the next character needs another set.
class JisWriter {
 public:
  explicit JisWriter(ByteBuffer& out) : out_(out) {}

  void enter(JisState state) {
    if (state == state_) return;
    out_.append(kEsc);
    out_.append(kDesignators[state]);
    state_ = state;
  }
  void putByte(Byte c, JisState state) {
    enter(state);
    out_.append(c);
  }
  void putKanji(Pair c) {
    enter(kKanji);
    out_.append(c.lead);
    out_.append(c.trail);
  }

 private:
  ByteBuffer& out_;
  JisState state_ = kAscii;
};

// Reads ISO-2022-JP text: hands each character to `sink` as kanji(Pair), kana(Byte) with bit 7 set, or byte(Byte) for
// all that is copied.
template <typename Sink>
void readJis(std::string_view text, Sink& sink) {
  JisState state = kAscii;
  for (size_t i = 0; i < text.size();) {
    const Byte a = byteAt(text, i);
    const Byte b = byteAt(text, i + 1);
    const Byte c = byteAt(text, i + 2);
    if (a == kEsc && b == '$') {
      state = kKanji;
      // CHOICE: only the two sets of JIS X 0208 have a third byte to drop. After a cut "ESC $" it is text.
      i += c == '@' || c == 'B' ? 3 : 2;
    } else if (a == kEsc && b == '(' && (c == 'B' || c == 'J')) {
      state = kAscii;
      i += 3;
    } else if (a == kEsc && b == '(' && c == 'I') {
      state = kKana;
      i += 3;
    } else if (state == kKanji && is(a, kJisByte) && is(b, kJisByte)) {
      // CHOICE: both bytes must be of the kind that makes a pair, else an odd byte would take the CR of its line end.
      sink.kanji({a, b});
      i += 2;
    } else {
      if (isLineEnd(a)) state = kAscii;
      if (state == kKana && is(a, kJisByte)) {
        sink.kana(withBit7(a));
      } else {
        sink.byte(a);
      }
      ++i;
    }
  }
}

// Reads EUC text in the same way.
template <typename Sink>
void readEuc(std::string_view text, Sink& sink) {
  for (size_t i = 0; i < text.size();) {
    const Byte a = byteAt(text, i);
    const Byte b = byteAt(text, i + 1);
    if (is(a, kEucLead) && is(b, kEucTrail)) {
      sink.kanji({withoutBit7(a), withoutBit7(b)});
      i += 2;
    } else if (a == kKanaPrefix && isKana(b)) {
      // CHOICE: before anything else, and at the end, the prefix is a wrong byte and is passed along.
      sink.kana(b);
      i += 2;
    } else {
      sink.byte(a);
      ++i;
    }
  }
}

// Reads Shift-JIS text in the same way; badPair(Byte, Byte) gets a lead byte and the byte behind it that cannot follow.
template <typename Sink>
void readShift(std::string_view text, Sink& sink) {
  for (size_t i = 0; i < text.size(); ++i) {
    const Byte a = byteAt(text, i);
    if (isConvertibleLead(a)) {
      // CHOICE: a lead byte that the end of the text has cut off is copied.
      const std::string_view pair = text.substr(i, 2);
      if (pair.size() == 2 && isConvertibleTrail(byteAt(pair, 1))) {
        sink.kanji(shiftToJis({a, byteAt(pair, 1)}));
      } else {
        sink.badPair(pair);
      }
      i += pair.size() - 1;
    } else if (isKana(a)) {
      sink.kana(a);
    } else {
      sink.byte(a);
    }
  }
}

// What the readers give, written as each of the three kinds.

class ToShift {
 public:
  explicit ToShift(ByteBuffer& out) : out_(out) {}
  void kanji(Pair jis) {
    const Pair c = jisToShift(jis);
    out_.append(c.lead);
    out_.append(c.trail);
  }
  void kana(Byte c) { out_.append(c); }
  void byte(Byte c) { out_.append(c); }

 private:
  ByteBuffer& out_;
};

class ToEuc {
 public:
  explicit ToEuc(ByteBuffer& out) : out_(out) {}
  void kanji(Pair jis) {
    out_.append(withBit7(jis.lead));
    out_.append(withBit7(jis.trail));
  }
  void kana(Byte c) {
    out_.append(kKanaPrefix);
    out_.append(c);
  }
  void byte(Byte c) { out_.append(c); }
  void badPair(std::string_view bytes) { out_.append(bytes); }

 private:
  ByteBuffer& out_;
};

class ToJis {
 public:
  explicit ToJis(ByteBuffer& out) : out_(out), writer_(out) {}
  void kanji(Pair jis) { writer_.putKanji(jis); }
  void kana(Byte c) { writer_.putByte(withoutBit7(c), kKana); }
  void byte(Byte c) { writer_.putByte(c, kAscii); }
  // KEPT: in the set that is current, so that an ESC sequence never stands around a mistake.
  void badPair(std::string_view bytes) { out_.append(bytes); }
  void finish() { writer_.enter(kAscii); }

 private:
  ByteBuffer& out_;
  JisWriter writer_;
};

// Full-width kana

// Shift-JIS codes of the full-width forms of 0xA1 to 0xDF, as JIS X 0201 and JIS X 0208 pair them.
constexpr std::array kPlainKana = std::to_array<uint16_t>({
    0x8142, 0x8175, 0x8176, 0x8141, 0x8145, 0x8392, 0x8340, 0x8342,  // A1
    0x8344, 0x8346, 0x8348, 0x8383, 0x8385, 0x8387, 0x8362, 0x815B,  // A9
    0x8341, 0x8343, 0x8345, 0x8347, 0x8349, 0x834A, 0x834C, 0x834E,  // B1
    0x8350, 0x8352, 0x8354, 0x8356, 0x8358, 0x835A, 0x835C, 0x835E,  // B9
    0x8360, 0x8363, 0x8365, 0x8367, 0x8369, 0x836A, 0x836B, 0x836C,  // C1
    0x836D, 0x836E, 0x8371, 0x8374, 0x8377, 0x837A, 0x837D, 0x837E,  // C9
    0x8380, 0x8381, 0x8382, 0x8384, 0x8386, 0x8388, 0x8389, 0x838A,  // D1
    0x838B, 0x838C, 0x838D, 0x838F, 0x8393, 0x814A, 0x814B,          // D9
});
static_assert(kPlainKana.size() == 0xDF - 0xA1 + 1);

// With a voiced mark, for 0xB6 to 0xCE; 0 where the kana takes none.
constexpr std::array kVoicedKana = std::to_array<uint16_t>({
    0x834B, 0x834D, 0x834F, 0x8351, 0x8353, 0x8355, 0x8357, 0x8359,  // B6
    0x835B, 0x835D, 0x835F, 0x8361, 0x8364, 0x8366, 0x8368, 0,       // BE
    0,      0,      0,      0,      0x836F, 0x8372, 0x8375, 0x8378,  // C6
    0x837B,                                                          // CE
});
static_assert(kVoicedKana.size() == 0xCE - 0xB6 + 1);

// With a semi-voiced mark, for 0xCA to 0xCE.
constexpr std::array kSemiVoicedKana = std::to_array<uint16_t>({0x8370, 0x8373, 0x8376, 0x8379, 0x837C});
static_assert(kSemiVoicedKana.size() == 0xCE - 0xCA + 1);

constexpr Byte kVoicedMark = 0xDE;
constexpr Byte kSemiVoicedMark = 0xDF;

// The full-width form of kana `c` with the mark `next`; 0 if they do not make one character.
// KEPT: 0xB3 stays two characters with its mark, though JIS X 0208 has one for it: hosts compare with such text.
constexpr uint16_t joinedKana(Byte c, Byte next) {
  if (next == kVoicedMark && c >= 0xB6 && c <= 0xCE) return kVoicedKana[static_cast<size_t>(c - 0xB6)];
  if (next == kSemiVoicedMark && c >= 0xCA && c <= 0xCE) return kSemiVoicedKana[static_cast<size_t>(c - 0xCA)];
  return 0;
}

// The bytes that the Shift-JIS character at `i` takes, where no kana stands.
constexpr size_t shiftLength(std::string_view text, size_t i) {
  return is(byteAt(text, i), kSjisLead) && is(byteAt(text, i + 1), kSjisTrail) ? 2 : 1;
}

void widenShift(std::string_view text, ByteBuffer& out) {
  for (size_t i = 0; i < text.size();) {
    const Byte c = byteAt(text, i);
    if (!isKana(c)) {
      const size_t length = shiftLength(text, i);
      out.append(text.substr(i, length));
      i += length;
      continue;
    }
    const uint16_t joined = joinedKana(c, byteAt(text, i + 1));
    const uint16_t wide = joined != 0 ? joined : kPlainKana[static_cast<size_t>(c - 0xA1)];
    out.append(static_cast<Byte>(wide >> 8));
    out.append(static_cast<Byte>(wide & 0xFF));
    i += joined != 0 ? 2 : 1;
  }
}

// Line ends

// The text with CR LF for every line end, blanks for NULs, and the first line end's kind in `newline`.
// A line end of one byte grows by one, so twice the length is enough.
std::unique_ptr<char[]> importLines(std::string_view data, CodeConv::Newline& newline) {
  std::unique_ptr<char[]> text(new char[data.size() * 2 + 1]);
  char* out = text.get();
  newline = CodeConv::NEWLINE_AUTO;
  auto endLine = [&](CodeConv::Newline kind) {
    *out++ = '\r';
    *out++ = '\n';
    if (newline == CodeConv::NEWLINE_AUTO) newline = kind;
  };
  for (size_t i = 0; i < data.size(); ++i) {
    const Byte c = byteAt(data, i);
    if (c == '\n') {
      endLine(CodeConv::NEWLINE_LF);
    } else if (c == '\r' && byteAt(data, i + 1) == '\n') {
      endLine(CodeConv::NEWLINE_CRLF);
      ++i;
    } else if (c == '\r') {
      endLine(CodeConv::NEWLINE_CR);
    } else {
      *out++ = c == 0 ? ' ' : data[i];
    }
  }
  *out = 0;
  if (newline == CodeConv::NEWLINE_AUTO) newline = CodeConv::NEWLINE_CRLF;
  return text;
}

// `text` without the bytes `dropped`, closed by a NUL; its length in `*length`.
std::unique_ptr<char[]> without(char dropped, std::string_view text, size_t* length) {
  std::unique_ptr<char[]> kept(new char[text.size() + 1]);
  char* out = kept.get();
  for (char c : text) {
    if (c != dropped) *out++ = c;
  }
  *out = 0;
  *length = static_cast<size_t>(out - kept.get());
  return kept;
}

}  // namespace

void CodeConv::SetImportCharset(Charset charset) { importCharset = charset; }
CodeConv::Charset CodeConv::GetImportCharset() { return importCharset; }
void CodeConv::SetExportCharset(Charset charset) { exportCharset = charset; }
CodeConv::Charset CodeConv::GetExportCharset() { return exportCharset; }
void CodeConv::SetExportNewline(Newline newline) { exportNewline = newline; }
CodeConv::Newline CodeConv::GetExportNewline() { return exportNewline; }
void CodeConv::SetCodepage(int codepage) { processCodepage = codepage; }
int CodeConv::GetCodepage() { return processCodepage; }

int CodeConv::FindHankaku(const char* text, int* length) {
  return findHankaku(text ? std::string_view(text) : std::string_view(), KIND_SJIS, length);
}

char* CodeConv::HanToZen(const char* text) { return text && *text ? hanToZen(text, KIND_SJIS).release() : nullptr; }

void CodeConv::DestroyData(char* data) { delete[] data; }

CodeConv::CodeConv() = default;
CodeConv::~CodeConv() = default;

CodeConv::Charset CodeConv::GetCharset() const { return charset_; }
CodeConv::Newline CodeConv::GetNewline() const { return newline_; }
void CodeConv::SetNewline(Newline newline) { newline_ = newline; }

const char* CodeConv::Import(const char* data, int length, Charset charset) {
  if (!data || length == 0) return nullptr;
  std::string_view bytes(data, length < 0 ? std::strlen(data) : static_cast<size_t>(length));
  if (bytes.empty()) return nullptr;
  // `data` may be the result of the last import: the old buffer goes only when the new one is complete.
  if (byteAt(bytes, bytes.size() - 1) == kEndMark) bytes.remove_suffix(1);
  importBuffer_ = importLines(bytes, newline_);
  if (processCodepage != kJapanese) {
    charset_ = CHARSET_NONE;
    return importBuffer_.get();
  }

  charset_ = charset == CHARSET_DEFAULT ? importCharset : charset;
  const std::string_view text(importBuffer_.get());
  if (charset_ == CHARSET_AUTO && text.starts_with(kByteOrderMark)) charset_ = CHARSET_NONE;
  if (charset_ == CHARSET_AUTO) {
    const Kind kind = detect(text);
    charset_ = kind == KIND_JIS ? CHARSET_JIS : kind == KIND_EUC ? CHARSET_EUC : CHARSET_SJIS;
  }
  if (charset_ == CHARSET_JIS || charset_ == CHARSET_EUC) {
    ByteBuffer converted;
    convertBehindMark(text, charset_ == CHARSET_JIS ? KIND_JIS : KIND_EUC, KIND_SJIS, converted);
    importBuffer_ = converted.detach();
  }
  return importBuffer_.get();
}

const char* CodeConv::Export(const char* text, int length, Charset charset, Newline newline) {
  if (!text || length == 0) return nullptr;
  std::string_view bytes(text, length < 0 ? std::strlen(text) : static_cast<size_t>(length));
  // CHOICE: an empty text needs no change, whatever the settings are. Null is for a caller that names no text.
  if (bytes.empty()) return text;

  // `text` may be the result of the last export, so the old buffer lives until a new one takes its place.
  std::unique_ptr<char[]> result;
  if (newline == NEWLINE_DEFAULT) newline = exportNewline;
  if (newline == NEWLINE_AUTO) newline = newline_;
  if (newline == NEWLINE_LF || newline == NEWLINE_CR) {
    size_t kept = 0;
    result = without(newline == NEWLINE_LF ? '\r' : '\n', bytes, &kept);
    bytes = {result.get(), kept};
  }

  if (charset == CHARSET_DEFAULT) charset = exportCharset;
  if (charset == CHARSET_AUTO) charset = charset_;
  if (processCodepage == kJapanese && (charset == CHARSET_JIS || charset == CHARSET_EUC)) {
    ByteBuffer converted;
    convertBehindMark(bytes, KIND_SJIS, charset == CHARSET_JIS ? KIND_JIS : KIND_EUC, converted);
    result = converted.detach();
  }
  // KEPT: with nothing to change the text itself goes back, also when `length` is shorter than it.
  if (!result) return text;
  exportBuffer_ = std::move(result);
  return exportBuffer_.get();
}

CodeConv::Kind CodeConv::detect(std::string_view text) {
  for (size_t i = 0; i < text.size(); ++i) {
    const Sign sign = classify(byteAt(text, i), byteAt(text, i + 1), byteAt(text, i + 2), /*flags=*/0);
    if (sign == kSignNone) continue;
    return sign == kSignJis ? KIND_JIS : sign == kSignEuc ? KIND_EUC : KIND_SJIS;
  }
  return KIND_SJIS;
}

bool CodeConv::convert(std::string_view text, Kind from, Kind to, ByteBuffer& out) {
  if (from == KIND_ANY) from = detect(text);
  ToShift shift(out);
  ToEuc euc(out);
  ToJis jis(out);
  if (from == KIND_JIS && to == KIND_SJIS) {
    readJis(text, shift);
  } else if (from == KIND_JIS && to == KIND_EUC) {
    readJis(text, euc);
  } else if (from == KIND_SJIS && to == KIND_JIS) {
    readShift(text, jis);
  } else if (from == KIND_SJIS && to == KIND_EUC) {
    readShift(text, euc);
  } else if (from == KIND_EUC && to == KIND_JIS) {
    readEuc(text, jis);
  } else if (from == KIND_EUC && to == KIND_SJIS) {
    readEuc(text, shift);
  } else {
    return false;
  }
  jis.finish();
  return true;
}

// A byte order mark stands for itself, whatever a caller says about the text behind it.
bool CodeConv::convertBehindMark(std::string_view text, Kind from, Kind to, ByteBuffer& out) {
  if (text.starts_with(kByteOrderMark)) {
    out.append(kByteOrderMark);
    text.remove_prefix(kByteOrderMark.size());
  }
  return convert(text, from, to, out);
}

// CHOICE: a run is counted with what makes it kana: in EUC the prefixes, in ISO-2022-JP the ESC sequence before it.
int CodeConv::findHankaku(std::string_view text, Kind kind, int* length) {
  size_t start = 0;
  size_t end = 0;
  if (kind == KIND_JIS) {
    start = text.find("\x1B(I");
    if (start != std::string_view::npos) {
      end = start + 3;
      while (end < text.size() && is(byteAt(text, end), kJisByte)) ++end;
    }
  } else if (kind == KIND_EUC) {
    auto kanaAt = [text](size_t i) { return byteAt(text, i) == kKanaPrefix && isKana(byteAt(text, i + 1)); };
    while (start < text.size() && !kanaAt(start)) {
      start += is(byteAt(text, start), kEucLead) && is(byteAt(text, start + 1), kEucTrail) ? 2 : 1;
    }
    end = start;
    while (kanaAt(end)) end += 2;
  } else {
    while (start < text.size() && !isKana(byteAt(text, start))) start += shiftLength(text, start);
    end = start;
    while (isKana(byteAt(text, end))) ++end;
  }
  const bool found = start < text.size();
  if (length) *length = found ? static_cast<int>(end - start) : 0;
  return found ? static_cast<int>(start) : -1;
}

std::unique_ptr<char[]> CodeConv::hanToZen(std::string_view text, Kind kind) {
  ByteBuffer wide;
  if (kind == KIND_SJIS) {
    widenShift(text, wide);
    return wide.detach();
  }
  ByteBuffer shift;
  ByteBuffer back;
  if (!convert(text, kind, KIND_SJIS, shift)) return nullptr;
  widenShift(shift.view(), wide);
  return convert(wide.view(), KIND_SJIS, kind, back) ? back.detach() : nullptr;
}

}  // namespace zeldom40
