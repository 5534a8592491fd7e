// Charsets and line ends of files. Expected Japanese bytes were made with the codecs of another language's runtime.
#include "dom/source/CodeConv.h"

#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "dom/source/ByteBuffer.h"

namespace zeldom40 {

// Reaches the forms for every kind of text.
struct CodeConvProbe {
  static std::string convert(std::string_view text, int from, int to) {
    ByteBuffer out;
    if (!CodeConv::convert(text, static_cast<CodeConv::Kind>(from), static_cast<CodeConv::Kind>(to), out))
      return "none";
    return std::string(out.view());
  }
  static int find(std::string_view text, int kind, int* length) {
    return CodeConv::findHankaku(text, static_cast<CodeConv::Kind>(kind), length);
  }
  static std::string widen(std::string_view text, int kind) {
    const auto wide = CodeConv::hanToZen(text, static_cast<CodeConv::Kind>(kind));
    return wide ? wide.get() : "none";
  }
};

namespace {

using namespace std::string_literals;

constexpr int kAny = 0;
constexpr int kJis = 1;
constexpr int kSjis = 2;
constexpr int kEuc = 3;

class CodeConvTest : public testing::Test {
 protected:
  void SetUp() override { CodeConv::SetCodepage(932); }
  void TearDown() override {
    CodeConv::SetCodepage(1252);
    CodeConv::SetImportCharset(CodeConv::CHARSET_AUTO);
    CodeConv::SetExportCharset(CodeConv::CHARSET_AUTO);
    CodeConv::SetExportNewline(CodeConv::NEWLINE_CRLF);
  }
};

TEST_F(CodeConvTest, KanjiAreTheSameInAllThreeCodes) {
  const struct {
    std::string jis, sjis, euc;
  } cases[] = {
      {"\x1b$BF|K\\8l\x1b(B", "\x93\xfa\x96\x7b\x8c\xea", "\xc6\xfc\xcb\xdc\xb8\xec"},
      {"\x1b$BI=%=G=\x1b(B\r\nx", "\x95\x5c\x83\x5c\x94\x5c\r\nx", "\xc9\xbd\xa5\xbd\xc7\xbd\r\nx"},
      {"a\x1b(I1J^\x1b$B$+\x1b(B", "a\xb1\xca\xde\x82\xa9", "a\x8e\xb1\x8e\xca\x8e\xde\xa4\xab"},
      // The corners of the code square, where the trail bytes jump.
      {"\x1b$B!!!_!`!~\"!^!\x1b(B", "\x81\x40\x81\x7e\x81\x80\x81\x9e\x81\x9f\x9f\x9f",
       "\xa1\xa1\xa1\xdf\xa1\xe0\xa1\xfe\xa2\xa1\xde\xa1"},
      {"\x1b$B^~_!_``!t$\x1b(B", "\x9f\xfc\xe0\x40\xe0\x80\xe0\x9f\xea\xa2",
       "\xde\xfe\xdf\xa1\xdf\xe0\xe0\xa1\xf4\xa4"},
  };
  for (const auto& c : cases) {
    const std::string text[] = {"", c.jis, c.sjis, c.euc};
    for (int from : {kJis, kSjis, kEuc}) {
      for (int to : {kJis, kSjis, kEuc}) {
        if (from == to) continue;
        EXPECT_EQ(CodeConvProbe::convert(text[from], from, to), text[to]) << from << " to " << to;
      }
    }
  }
  EXPECT_EQ(CodeConvProbe::convert("\xa4\xab", kAny, kSjis), "\x82\xa9");
}

TEST_F(CodeConvTest, EveryPairAndKanaComesBack) {
  for (int lead = 0x21; lead <= 0x7E; ++lead) {
    std::string euc;
    for (int trail = 0x21; trail <= 0x7E; ++trail)
      euc += {static_cast<char>(lead | 0x80), static_cast<char>(trail | 0x80)};
    for (int kana = 0xA1; kana <= 0xDF; ++kana) euc += {'\x8e', static_cast<char>(kana)};
    const std::string sjis = CodeConvProbe::convert(euc, kEuc, kSjis);
    ASSERT_EQ(sjis.size(), 94u * 2 + 63);
    EXPECT_EQ(CodeConvProbe::convert(sjis, kSjis, kEuc), euc);
    const std::string jis = CodeConvProbe::convert(sjis, kSjis, kJis);
    EXPECT_EQ(CodeConvProbe::convert(jis, kJis, kSjis), sjis);
    EXPECT_EQ(CodeConvProbe::convert(jis, kJis, kEuc), euc);
    EXPECT_EQ(CodeConvProbe::convert(euc, kEuc, kJis), jis);
  }
}

TEST_F(CodeConvTest, WrongBytesArePassedAlong) {
  const struct {
    std::string text;
    int from, to;
    std::string want;
  } cases[] = {
      {"\x82\xa9\x81", kSjis, kJis, "\x1b$B$+\x81\x1b(B"},  // cut: stays in the set
      {"\x81 \x82\xa9", kSjis, kEuc, "\x81 \xa4\xab"},      // a trail that is none
      {"\xa4", kEuc, kSjis, "\xa4"},
      {"\x8e\r\n", kEuc, kJis, "\x8e\r\n"},
      {"\x1b$B$+$\r\nab", kJis, kSjis, "\x82\xa9$\r\nab"},  // an odd byte; the line end resets
      {"\x1b$B$+ $+", kJis, kSjis, "\x82\xa9 \x82\xa9"},
      {"\x1b$@$+\x1b(Ja", kJis, kSjis,
       "\x82\xa9"
       "a"},
      {"a\x1b$", kJis, kSjis, "a"},
      {"\x1b[0m\x1b", kJis, kEuc, "\x1b[0m\x1b"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(CodeConvProbe::convert(c.text, c.from, c.to), c.want) << testing::PrintToString(c.text);
  }
}

TEST_F(CodeConvTest, ImportDetectsTheCharset) {
  const struct {
    std::string data;
    CodeConv::Charset charset;
    std::string text;
  } cases[] = {
      {"a\x1b$B$+\x1b(B", CodeConv::CHARSET_JIS, "a\x82\xa9"},
      {"a\xa4\xab", CodeConv::CHARSET_EUC, "a\x82\xa9"},
      {"a\x82\xa9\xa4\xab", CodeConv::CHARSET_SJIS, "a\x82\xa9\xa4\xab"},
      {"\xe0\xa1\xa4\xab", CodeConv::CHARSET_SJIS, "\xe0\xa1\xa4\xab"},  // right in both counts as Shift-JIS
      {"\xb1 \xa4\xab", CodeConv::CHARSET_SJIS, "\xb1 \xa4\xab"},        // a lone kana decides
      {"\x1b(I1\x1b$B", CodeConv::CHARSET_SJIS, "\x1b(I1\x1b$B"},        // and so does a start with kana
      // A byte order mark says what it is, and stays.
      {"\xef\xbb\xbf\xe3\x81\x8b", CodeConv::CHARSET_NONE, "\xef\xbb\xbf\xe3\x81\x8b"},
      {"\xef\xbb\xbf\xa4\xab", CodeConv::CHARSET_NONE, "\xef\xbb\xbf\xa4\xab"},
  };
  for (const auto& c : cases) {
    CodeConv conv;
    EXPECT_EQ(conv.Import(c.data.data(), static_cast<int>(c.data.size()), CodeConv::CHARSET_DEFAULT), c.text);
    EXPECT_EQ(conv.GetCharset(), c.charset);
    EXPECT_EQ(conv.Export(c.text.c_str(), -1, CodeConv::CHARSET_DEFAULT, CodeConv::NEWLINE_DEFAULT), c.data);
  }
  CodeConv conv;
  EXPECT_STREQ(conv.Import("\xef\xbb\xbf\xa4\xab", -1, CodeConv::CHARSET_EUC), "\xef\xbb\xbf\x82\xa9");
  EXPECT_STREQ(conv.Export("\xef\xbb\xbf\x82\xa9", -1, CodeConv::CHARSET_AUTO, CodeConv::NEWLINE_CRLF),
               "\xef\xbb\xbf\xa4\xab");
  CodeConv::SetImportCharset(CodeConv::CHARSET_NONE);
  CodeConv::SetExportCharset(CodeConv::CHARSET_EUC);
  EXPECT_STREQ(conv.Import("\xa4\xab", -1, CodeConv::CHARSET_DEFAULT), "\xa4\xab");
  EXPECT_EQ(conv.GetCharset(), CodeConv::CHARSET_NONE);
  EXPECT_STREQ(conv.Export("\x82\xa9", -1, CodeConv::CHARSET_DEFAULT, CodeConv::NEWLINE_CRLF), "\xa4\xab");
}

TEST_F(CodeConvTest, TheFirstLineEndIsRemembered) {
  CodeConv::SetCodepage(1252);
  const struct {
    std::string data, text;
    CodeConv::Newline newline;
    std::string back;
  } cases[] = {
      {"a\nb\r\nc\r", "a\r\nb\r\nc\r\n", CodeConv::NEWLINE_LF, "a\nb\nc\n"},
      {"a\rb\nc", "a\r\nb\r\nc", CodeConv::NEWLINE_CR, "a\rb\rc"},
      {"\r\n\n\r", "\r\n\r\n\r\n", CodeConv::NEWLINE_CRLF, "\r\n\r\n\r\n"},
      {"\xa4\xab\x1b$B\0\x1a"s, "\xa4\xab\x1b$B ", CodeConv::NEWLINE_CRLF, "\xa4\xab\x1b$B "},
  };
  for (const auto& c : cases) {
    CodeConv conv;
    EXPECT_EQ(conv.Import(c.data.data(), static_cast<int>(c.data.size()), CodeConv::CHARSET_JIS), c.text);
    EXPECT_EQ(conv.GetNewline(), c.newline);
    EXPECT_EQ(conv.GetCharset(), CodeConv::CHARSET_NONE);
    EXPECT_EQ(conv.Export(c.text.c_str(), -1, CodeConv::CHARSET_JIS, CodeConv::NEWLINE_AUTO), c.back);
  }
}

TEST_F(CodeConvTest, OtherCodePagesKeepEveryByte) {
  CodeConv::SetCodepage(1252);
  std::string all;
  for (int round = 0; round < 3; ++round) {
    for (int c = 1; c < 256; ++c) all += static_cast<char>(c == '\r' ? '\n' : c);
  }
  CodeConv conv;
  const char* text = conv.Import(all.data(), static_cast<int>(all.size()), CodeConv::CHARSET_AUTO);
  EXPECT_EQ(conv.Export(text, -1, CodeConv::CHARSET_AUTO, CodeConv::NEWLINE_AUTO), all);
}

TEST_F(CodeConvTest, ResultsMayBeHandedInAgain) {
  CodeConv conv;
  EXPECT_FALSE(conv.Import(nullptr, 3, CodeConv::CHARSET_AUTO));
  const char* text = conv.Import("\xa4\xab\n", -1, CodeConv::CHARSET_AUTO);
  text = conv.Import(text, -1, CodeConv::CHARSET_SJIS);
  EXPECT_STREQ(text, "\x82\xa9\r\n");
  const char* out = conv.Export(text, -1, CodeConv::CHARSET_EUC, CodeConv::NEWLINE_LF);
  out = conv.Export(out, -1, CodeConv::CHARSET_NONE, CodeConv::NEWLINE_CRLF);
  EXPECT_STREQ(conv.Export(out + 1, -1, CodeConv::CHARSET_NONE, CodeConv::NEWLINE_LF), "\xab\n");
  EXPECT_EQ(conv.Export(text, 2, CodeConv::CHARSET_NONE, CodeConv::NEWLINE_CRLF), text);
  EXPECT_STREQ(conv.Export(text, 2, CodeConv::CHARSET_EUC, CodeConv::NEWLINE_CRLF), "\xa4\xab");
}

TEST_F(CodeConvTest, HalfWidthKanaBecomeFullWidth) {
  const struct {
    std::string sjis, wide;
    int position, length;
  } cases[] = {
      {"\xb1\xcc\xc9\xdd", "\x83\x41\x83\x74\x83\x6d\x83\x93", 0, 4},
      {"x\xb6\xde\xca\xde\xca\xdf", "x\x83\x4b\x83\x6f\x83\x70", 1, 6},
      {"\xc4\xde\xce\xdf\xb3\xde", "\x83\x68\x83\x7c\x83\x45\x81\x4a", 0, 6},
      {"\xc5\xde\xb6\xdf", "\x83\x69\x81\x4a\x83\x4a\x81\x4b", 0, 4},  // marks that fit nothing
      {"\x82\xa9\x95\xb1 \xb1", "\x82\xa9\x95\xb1 \x83\x41", 5, 1},    // a trail byte is no kana
  };
  for (const auto& c : cases) {
    char* wide = CodeConv::HanToZen(c.sjis.c_str());
    EXPECT_EQ(wide, c.wide);
    CodeConv::DestroyData(wide);
    int length = -1;
    EXPECT_EQ(CodeConv::FindHankaku(c.sjis.c_str(), &length), c.position);
    EXPECT_EQ(length, c.length);
    for (int kind : {kJis, kEuc}) {
      EXPECT_EQ(CodeConvProbe::widen(CodeConvProbe::convert(c.sjis, kSjis, kind), kind),
                CodeConvProbe::convert(c.wide, kSjis, kind));
    }
  }
  int length = 0;
  EXPECT_EQ(CodeConvProbe::find("a\xa4\x8e\x8e\xb1\x8e\xb2", kEuc, &length), 3);
  EXPECT_EQ(length, 4);
  EXPECT_EQ(CodeConvProbe::find("a\x1b(I12\x1b(B", kJis, &length), 1);
  EXPECT_EQ(length, 5);
}

}  // namespace
}  // namespace zeldom40
