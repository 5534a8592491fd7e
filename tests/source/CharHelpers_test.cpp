// Units, white space, columns and wrapping of the internal text form.
#include "dom/source/CharHelpers.h"

#include <clocale>
#include <string>

#include <gtest/gtest.h>

namespace zeldom40 {
namespace {

using namespace std::string_literals;

TEST(CharHelpersTest, UnitsAreMeasuredWithoutTheirContent) {
  const struct {
    std::string text;
    int pclen;
    size_t unit;
  } cases[] = {
      {"", 0, 0},         {"\0x"s, 0, 1},     {"a", 1, 1},       {"\r\n", 2, 2},    {"\rx", 2, 2},
      {"\r", 2, 1},       {"\x1b\xa0", 2, 2}, {"\x1b", 2, 1},    {"\x1b\0"s, 2, 2}, {"\x1c\x1d\x20\x20", 4, 4},
      {"\x1c\x1d", 4, 2}, {"\x81", 1, 1},     {"\x81\0"s, 1, 1},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(pclen(c.text), c.pclen) << testing::PrintToString(c.text);
    EXPECT_EQ(unitLength(c.text, 0), c.unit) << testing::PrintToString(c.text);
  }
  EXPECT_EQ(pclen(nullptr), 0);
}

TEST(CharHelpersTest, CharactersFollowTheLocale) {
  const std::string before = std::setlocale(LC_CTYPE, nullptr);
  ASSERT_TRUE(std::setlocale(LC_CTYPE, "C.utf8"));
  EXPECT_EQ(pclen("\xe3\x81\x82"), 3);
  EXPECT_EQ(pclen("\xe3"), 1);
  EXPECT_EQ(unitLength(std::string_view("\xe3\x81\x82", 2), 0), 1u);  // the last byte is not part of the text
  std::setlocale(LC_CTYPE, before.c_str());
  EXPECT_EQ(pclen("\xe3\x81\x82"), 1);
}

TEST(CharHelpersTest, TrimKeepsUnitsThatEndInBlanks) {
  const struct {
    std::string text;
    bool left, right;
    std::string want;
  } cases[] = {
      {"  a ", true, false, "a "},
      {"  a ", false, true, "  a"},
      {" \t\r\n", false, true, ""},
      {"\va\f ", true, true, "\va\f"},
      {" a\x1c\x1c\x20\x20\t ", true, true, "a\x1c\x1c\x20\x20"},
      {"a\x1b\x20 ", false, true, "a\x1b\x20"},
      {"a\x1c  ", false, true, "a\x1c  "},
  };
  for (const auto& c : cases) {
    std::string text = c.text;
    EXPECT_EQ(trim(text, c.left, c.right), static_cast<int>(c.want.size()));
    EXPECT_EQ(text, c.want) << testing::PrintToString(c.text);
  }
}

TEST(CharHelpersTest, CollapseWhiteShrinksRunsInItsRange) {
  const struct {
    std::string text;
    size_t from;
    int count;
    std::string want;
  } cases[] = {
      {"a \r\n\tb", 0, -1, "a b"},
      {"a\v\fb", 0, -1, "a\v\fb"},
      {"a  b  c", 0, 3, "a b  c"},   // the run ends with the range
      {"a   b", 2, -1, "a b"},       // the blank before the range begins the run
      {"a\n\n\nb", 2, 1, "a\n\nb"},  // and is not changed itself
      {"a  b", 9, -1, "a  b"},
      {"\x1b   x", 2, -1, "\x1b  x"},  // a blank inside a unit begins no run
      {"\x1c\x1c\x20\x20  x", 0, -1, "\x1c\x1c\x20\x20 x"},
      {"  \x1c  ", 0, -1, " \x1c  "},
  };
  for (const auto& c : cases) {
    std::string text = c.text;
    EXPECT_EQ(collapseWhite(text, c.from, c.count), static_cast<int>(c.want.size()) - static_cast<int>(c.text.size()));
    EXPECT_EQ(text, c.want) << testing::PrintToString(c.text);
  }
}

TEST(CharHelpersTest, ColumnsCountUnitsOnceAndTabsFillToEight) {
  EXPECT_EQ(columnAt("ab\ncd", 0, 5, 3), 2);
  EXPECT_EQ(columnAt("ab\ncd", 3, 99, 3), 5);
  EXPECT_EQ(columnAt("\x1b\nx\x1c\n\n\nx", 0, 8, 0), 4);
  const struct {
    std::string text;
    int column;
    std::string want;
    int final;
  } cases[] = {
      {"\t", 7, " ", 8},
      {"\t", 8, "        ", 16},
      {"a\n\tb", 5, "a\n        b", 9},
      {"\x1b\t\t", 0, "\x1b\t       ", 8},
  };
  for (const auto& c : cases) {
    std::string text = c.text;
    EXPECT_EQ(expandTabs(text, c.column), c.final);
    EXPECT_EQ(text, c.want);
  }
  EXPECT_EQ(countLines("a\r\n\x1b\nb\n"), std::make_pair(2, 7));
}

TEST(CharHelpersTest, WrapLinesBreaksAtBlanksFromTheLimitOn) {
  const struct {
    std::string text;
    int limit, indent;
    std::string want;
    int breaks;
  } cases[] = {
      {"aaa bbb   ccc", 5, 2, "aaa bbb\r\n  ccc", 1},
      {"aaa bbb", 3, 0, "aaa\r\nbbb", 1},
      {"a b c", 1, 9, "a\r\n         b\r\n         c", 2},  // an indent past the limit
      {"a b", -1, -5, "a\r\nb", 1},
      {"\x1b \x1b  b", 3, 0, "\x1b \x1b  b", 0},
  };
  for (const auto& c : cases) {
    std::string text = c.text;
    EXPECT_EQ(wrapLines(text, c.limit, c.indent), c.breaks);
    EXPECT_EQ(text, c.want);
  }
}

}  // namespace
}  // namespace zeldom40
