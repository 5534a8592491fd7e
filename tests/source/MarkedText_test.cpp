// References in source text, their marked form, and the way back.
#include "dom/source/MarkedText.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "dom/source/CharHelpers.h"

namespace zeldom40 {
namespace {

using namespace std::string_literals;

class Entities : public EntityTable {
 public:
  bool find(std::string_view name, EntityText& out) const override {
    static const std::map<std::string_view, EntityText> known = {
        {"amp", {"\x1b&", "", ""}},         {"lt", {"\x1b<", "", ""}},         {"nbsp", {"\x1b\xa0", "", ""}},
        {"hellip", {"\x1c\x1c &", "", ""}}, {"ext", {"PUBLIC", "pub", "sys"}}, {"none", {"", "", ""}},
    };
    const auto at = known.find(name);
    if (at == known.end()) return false;
    out = at->second;
    return true;
  }
};

class Names : public CharacterNames {
 public:
  std::string_view nameOf(unsigned code) const override {
    return code == 160 ? "nbsp" : code == 0x2026 ? "hellip" : code == 0x2000 ? "x2000" : "";
  }
};

const Entities entities;
const Names names;

std::string expanded(std::string text, const EntityTable* table = &entities) {
  const int before = static_cast<int>(text.size());
  const int change = expandReferences(text, 0, before, table);
  EXPECT_EQ(before + change, static_cast<int>(text.size()));
  return text;
}

std::string restored(std::string_view marked, const CharacterNames* table = &names) {
  std::string out;
  restoreReferences(marked, out, table);
  return out;
}

std::string escaped(std::string text, bool keep, int codepage = 1252) {
  escapeMarkup(text, keep, &entities, codepage);
  return text;
}

std::string unescaped(std::string text, const EntityTable* table, int codepage) {
  unescapeMarkup(text, table, codepage);
  return text;
}

TEST(MarkedTextTest, CharRefsAreOneToFiveDecimalDigits) {
  const struct {
    const char* digits;
    int code, length;
  } cases[] = {{"65;", 65, 3},       {"65", 65, 2},    {"65x", 65, 2},    {"", 0, 0},
               {"x41;", 0, 0},       {"0;", 0, 0},     {"00065;", 65, 6}, {"000065;", 0, 0},
               {"65534;", 65534, 6}, {"65535;", 0, 0}, {"99999", 0, 0}};
  for (const auto& c : cases) {
    int length = -1;
    EXPECT_EQ(parseCharRef("&#"s + c.digits, 2, &length), c.code) << c.digits;
    EXPECT_EQ(length, c.length) << c.digits;
  }
}

TEST(MarkedTextTest, ReferencesBecomeUnitsAndComeBack) {
  // Raw, marked, and what is written again if that is not the raw text.
  const struct {
    std::string raw, marked, back;
  } cases[] = {
      {"a&#65;b",
       "a\x1b"
       "Ab",
       ""},
      {"&#160;", "\x1b\xa0", "&nbsp;"},
      {"&nbsp&nbsp;", "\x1b\xa0\x1b\xa0", "&nbsp;&nbsp;"},
      {"&#8230;", "\x1c\x1d\x20\x26", ""},   // given by number, written by number
      {"&hellip;", "\x1c\x1c\x20\x26", ""},  // given by name, written by name
      {"&#8192;", "\x1c\x1b\x20\x1d", ""},   // a low byte of 0
      {"&#6972;", "\x1c\x1d\x1b\x3c", ""},   // a unit that holds the byte of another mark
      {"&;&#;&#x41;&#0;", "&;&#;&#x41;&#0;", ""},
      {"&nosuch&amp;", "&nosuch\x1b&", "&nosuch&#38;"},
      {"&ext;x", "PUBLIC \"pub\" \"sys\"x", "PUBLIC \"pub\" \"sys\"x"},
      {"a&none;b", "ab", "ab"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(expanded(c.raw), c.marked) << c.raw;
    EXPECT_EQ(restored(c.marked), c.back.empty() ? c.raw : c.back) << c.raw;
  }
  EXPECT_EQ(expanded("&amp;&#65;", nullptr),
            "&amp;\x1b"
            "A");
  EXPECT_EQ(restored("\x1b\xa0\x1c\x1c\x20\x26\x1c\x1b\x20\x1c", nullptr), "&#160;&#8230;&#8192;");
  EXPECT_EQ(restored("\x1c\x1b\x20\x1c"), "&x2000;");
}

TEST(MarkedTextTest, EveryCodeSurvivesItsUnit) {
  for (unsigned code = 0; code <= 0xFFFF; ++code) {
    std::string unit;
    appendMarkedCode(code, unit);
    std::string text = unit + "x";
    ASSERT_EQ(markedLength(text, 0), unit.size());
    trim(text, true, true);
    collapseWhite(text, 0, -1);
    protectMarkup(text);
    escapeMarkup(text, false, nullptr, 1252);
    ASSERT_EQ(restored(text, nullptr), "&#" + std::to_string(code) + ";x");
  }
}

TEST(MarkedTextTest, OnlyReferencesThatBeginInTheRangeExpand) {
  std::string text = "&lt;&lt;&lt;";
  EXPECT_EQ(expandReferences(text, 4, 1, &entities), -2);
  EXPECT_EQ(text, "&lt;\x1b<&lt;");
  EXPECT_EQ(expandReferences(text, 99, 99, &entities), 0);
  EXPECT_EQ(expandReferences(text, 6, 99, &entities), -2);
  EXPECT_EQ(text, "&lt;\x1b<\x1b<");
}

TEST(MarkedTextTest, CutAndStrayMarksGoBackAsTheyStand) {
  for (const std::string& mark : {"\x1b"s, "\x1c"s, "\x1c\x1d"s, "\x1c\x1c "s, "\x1c\x41\x42\x43"s, "\0"s}) {
    EXPECT_EQ(restored("a" + mark), "a" + mark);
    EXPECT_EQ(escaped("a" + mark, true), "a" + mark);
  }
  // What stands behind one counts by itself.
  EXPECT_EQ(restored("\x1c\x41\x1b\x42"), "\x1c\x41&#66;");
  EXPECT_EQ(restored("\x1c\x1b\x20\x41"), "\x1c&#32;\x41");
}

TEST(MarkedTextTest, ProtectMarkupMarksOnce) {
  const std::string once = "\x1b<b\x1b>\x1b\"\x1b&\x1c\x1d\x20\x26\x1c\x1b<";
  std::string text = "<b>\"\x1b&\x1c\x1d\x20\x26\x1c<";
  protectMarkup(text);
  EXPECT_EQ(text, once);
  protectMarkup(text);
  EXPECT_EQ(text, once);
}

// A byte that looks like a mark hides no markup behind it.
TEST(MarkedTextTest, OnlyWholeUnitsHideWhatTheyHold) {
  const std::pair<std::string, std::string> cases[] = {
      {"\x1c<script>", "\x1c&#60;script&#62;"},
      {"\x1c\"&<>", "\x1c&#34;&#38;&#60;&#62;"},
      {"\x1c\x41\x1b<", "\x1c\x41&#60;"},
      {"\x1b<\x1b", "&#60;\x1b"},
      {"\x1c\x1d<b>", "&#15458;&#62;"},  // the unit of another character
      // Marking what stands behind would make a unit of it: the byte itself is marked.
      {"\x1c\x1c<", "&#28;\x1c&#60;"},
      {"\x1c<\x1c", "&#28;&#60;\x1c"},
      {"\x1c<\x1d>", "&#28;&#60;\x1d&#62;"},
  };
  for (const auto& [plain, expected] : cases) {
    std::string text = plain;
    protectMarkup(text);
    EXPECT_EQ(restored(text), expected);
    protectMarkup(text);
    EXPECT_EQ(restored(text), expected);
  }
  // All texts of up to six of these bytes.
  constexpr std::string_view kBytes = "\x1b\x1c\x1d<x";
  std::vector<std::string> texts{""};
  for (std::size_t i = 0; i < texts.size() && texts[i].size() < 6; ++i) {
    for (char c : kBytes) texts.push_back(texts[i] + c);
  }
  for (const std::string& plain : texts) {
    std::string text = plain;
    protectMarkup(text);
    ASSERT_EQ(restored(text).find('<'), std::string::npos) << ::testing::PrintToString(plain);
    std::string again = text;
    protectMarkup(again);
    ASSERT_EQ(again, text) << ::testing::PrintToString(plain);
  }
}

TEST(MarkedTextTest, EscapeKeepsOnlyReferencesThatMeanSomething) {
  const std::string text = "<\"&amp;&nosuch;&#65;&#x41;& &\x80&nbsp";
  EXPECT_EQ(escaped(text, false), "&lt;&quot;&amp;amp;&amp;nosuch;&amp;#65;&amp;#x41;&amp; &amp;\x80&amp;nbsp");
  EXPECT_EQ(escaped(text, true), "&lt;&quot;&amp;&amp;nosuch;&#65;&amp;#x41;&amp; &amp;&#8364;&nbsp");
  EXPECT_EQ(escaped("\x80", true, 932), "\x80");
}

TEST(MarkedTextTest, UnescapeGivesBytesOfTheCodePage) {
  const struct {
    std::string source, western, other;
  } cases[] = {
      {"&amp;lt;", "&lt;", "&lt;"},
      {"&lt&quot;", "<&quot;", "&lt\""},  // the table knows no "quot", but needs no ";"
      {"&nbsp;x", "\xa0x", "&nbsp;x"},
      {"&hellip;&ext;&none;", "&hellip;&ext;&none;", "&hellip;&ext;&none;"},
      {"&euro;&#8364;", "\x80\x80", "&euro;&#8364;"},
      {"&#65;&#200;&#300;", "A\xc8&#300;", "A&#200;&#300;"},
      {"a&#;b&#", "a&#;b&#", "a\0;b\0"s},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(unescaped(c.source, &entities, 1252), c.western) << c.source;
    EXPECT_EQ(unescaped(c.source, &entities, 932), c.other) << c.source;
  }
  EXPECT_EQ(unescaped("&quot;&nbsp;&euro;", nullptr, 1252), "\"&nbsp;\x80");
}

TEST(MarkedTextTest, LongRunsOfReferencesTakeOnePass) {
  // A splice for each reference would take minutes here.
  std::string text;
  for (int i = 0; i < 2000000; ++i) text += "&amp;";
  std::string marked = expanded(text);
  EXPECT_EQ(marked.size(), 4000000u);
  EXPECT_EQ(restored(marked).size(), text.size());
  EXPECT_EQ(unescaped(text, &entities, 1252).size(), 2000000u);
}

}  // namespace
}  // namespace zeldom40
