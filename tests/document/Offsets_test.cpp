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

TEST_F(OffsetsTest, MapsBothWays) {
  const struct {
    const char* name;
    const char* raw;
    int plain;
    int source;
    int back;  // in the plain form, from `source`
  } cases[] = {
      {"past the end", "abc", 99, 3, 3},
      {"behind one letter and a reference", "a&amp;b", 3, 6, 3},
      {"inside a reference", "a&amp;b", 2, 6, 3},
      {"a reference without its semicolon", "a&nbsp b", 3, 6, 3},
      {"a reference that ends the text", "a&amp", 3, 5, 3},
      {"a wide reference by number", "&#8230;x", 5, 8, 5},
      {"a run of white space is one step", "a  \r\n\tb", 2, 6, 2},
      {"a form feed is white space too", "a\fb c", 3, 3, 3},
      {"bare quotes stand for themselves", "say \"hi\" to", 10, 8, 10},
      {"a bare ampersand", "AT&TX rocks", 5, 4, 5},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(toSource(textOf(c.raw), c.plain), c.source) << c.name;
    EXPECT_EQ(toLayout(text(), c.source), c.back) << c.name;
  }
  EXPECT_EQ(toLayout(textOf("abc"), 4), 3);
  EXPECT_EQ(toLayout(textOf("a&amp;b"), 3), 3) << "inside a reference";
  EXPECT_EQ(toLayout(textOf("a \r\n b"), 2), 2) << "inside white space";
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
