// Offsets of a text between its plain form and its source.
#include <string>

#include <gtest/gtest.h>

#include "dom/source/CharHelpers.h"
#include "fuzz/RandomPage.h"
#include "tests/host/TestPage.h"

namespace zeldom40 {
namespace {

class OffsetsTest : public PageTest {
 protected:
  Text* textOf(const std::string& raw) {
    load("<P>" + raw + "</P>");
    return text();
  }
  int toSource(Node* node, int offset) { return doc_->convertOffsetLayout2Source(node, offset); }
  int toLayout(Node* node, int offset) { return doc_->convertOffsetSource2Layout(node, offset); }
};

TEST_F(OffsetsTest, MapsPlainOffsetsToSource) {
  const struct {
    const char* name;
    const char* raw;
    int plain;
    int source;
  } cases[] = {
      {"the start", "abc", 0, 0},
      {"a letter", "abc", 2, 2},
      {"the end", "abc", 3, 3},
      {"past the end", "abc", 99, 3},
      {"behind one letter and a reference", "a&amp;b", 3, 6},
      {"inside a reference", "a&amp;b", 2, 6},
      {"a reference without its semicolon", "a&nbsp b", 3, 6},
      {"a reference that ends the text", "a&amp", 3, 5},
      {"a wide reference by name", "&hellip;x", 4, 8},
      {"a wide reference by number", "&#8230;x", 5, 8},
      {"a run of white space is one step", "a  \r\n\tb", 2, 6},
      {"a form feed is white space too", "a\fb c", 3, 3},
      {"leading white space is skipped", "x<B>y</B>", 1, 1},
      {"bare quotes stand for themselves", "say \"hi\" to", 10, 8},
      {"a bare bracket", "a > b", 4, 3},
      {"a bare ampersand", "AT&TX rocks", 5, 4},
      {"an unknown reference", "&foo;bar", 7, 6},
  };
  for (const auto& c : cases) EXPECT_EQ(toSource(textOf(c.raw), c.plain), c.source) << c.name;
}

TEST_F(OffsetsTest, MapsSourceOffsetsToPlain) {
  const struct {
    const char* name;
    const char* raw;
    int source;
    int plain;
  } cases[] = {
      {"the start", "abc", 0, 0},
      {"the end", "abc", 3, 3},
      {"past the end", "abc", 4, 3},
      {"behind a reference", "a&amp;b", 6, 3},
      {"inside a reference", "a&amp;b", 3, 3},
      {"inside white space", "a \r\n b", 2, 2},
      {"behind quotes", "say \"hi\" to", 8, 10},
      {"in the last white space of a block", "a \r\n", 2, 2},
  };
  for (const auto& c : cases) EXPECT_EQ(toLayout(textOf(c.raw), c.source), c.plain) << c.name;
}

TEST_F(OffsetsTest, OnlyRunningTextIsMapped) {
  load("<P>abc</P>");
  EXPECT_EQ(toSource(nullptr, 2), 0);
  EXPECT_EQ(toSource(find("P"), 2), 0);
  EXPECT_EQ(toSource(text(), -1), 0);
  for (auto type : {Text::TEXT_LITERAL, Text::TEXT_FORMATTING}) {
    text()->setTextType(type);
    EXPECT_EQ(toSource(text(), 77), 77);
    EXPECT_EQ(toLayout(text(), 77), 77);
  }
  text()->setTextType(Text::TEXT_NORMAL);
  EXPECT_EQ(doc_->convOffsetLayout2Source(text(), 2), 2);
}

TEST_F(OffsetsTest, PlainTextThatWasTrimmedEndsBeforeItsSource) {
  const std::string page = "<P>a \r\n<P>b";
  doc_->createNodes(page.data(), static_cast<unsigned>(page.size()), nullptr, /*adjust=*/true);
  ASSERT_EQ(text()->getData(), "a");
  ASSERT_EQ(text()->getRawData(), "a \r\n");
  EXPECT_EQ(toLayout(text(), 3), 1);
  EXPECT_EQ(toSource(text(), 1), 4);
}

// Whatever the text, both ways are monotone, stay within the other form, and lead back to the start of a character.
TEST_F(OffsetsTest, ThereAndBackOnRandomTexts) {
  static constexpr const char* kPieces[] = {
      "a",  "bc", " ",  "\r\n", "  ",     "&amp;", "&lt;",     "&copy", "&#65;",    "&#32;",  "&",       "&foo;",
      "\"", ">",  "\f", "\t",   "&nbsp;", "'",     "&hellip;", "&#9;",  "&dagger;", "&zwj;x", "AT&T me", "\x82\xa0"};
  fuzz::RandomPage random(11, *dom_->getDocumentType());
  for (int i = 0; i < 3000; ++i) {
    std::string raw = "x";
    for (std::size_t n = 1 + random.below(9); n > 0; --n) raw += kPieces[random.below(std::size(kPieces))];
    Text* node = textOf(raw + "y");
    const std::string& plain = node->getData();
    const int plainSize = static_cast<int>(plain.size());
    const int rawSize = static_cast<int>(node->getRawData().size());
    int last = 0;
    for (int at = 0; at <= rawSize; ++at) {
      const int there = toLayout(node, at);
      ASSERT_TRUE(there >= last && there <= plainSize) << quoted(raw) << " at " << at;
      last = there;
    }
    last = 0;
    for (std::size_t at = 0; at < plain.size(); at += markedLength(plain, at)) {
      const int there = toSource(node, static_cast<int>(at));
      ASSERT_TRUE(there >= last && there <= rawSize) << quoted(raw) << " at " << at;
      last = there;
      ASSERT_EQ(toLayout(node, there), static_cast<int>(at)) << quoted(raw) << " at " << at;
    }
  }
}

}  // namespace
}  // namespace zeldom40
