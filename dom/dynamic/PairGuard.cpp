// The check of generated text before its end comment is written.
#include "dom/dynamic/PairGuard.h"

#include <cstdint>
#include <string_view>
#include <vector>

#include "dom/dynamic/MetaDataComment.h"
#include "dom/html/HTMLLexer.h"

namespace zeldom40 {

namespace {

// The end comments of the kind in `text`, by the offsets of their "<!", as a reader meets them.
std::vector<std::uint32_t> findEnds(std::string_view text, MetaData::Type type) {
  std::vector<std::uint32_t> ends;
  HTMLLexer lexer(text.data(), text.size(), nullptr);
  LexRecord open;
  for (LexRecord token = lexer.nextToken(); token.kind != LexerType::LEX_EOF; token = lexer.nextToken()) {
    const std::uint32_t end = token.end == LexRecord::NO_POSITION ? lexer.length() : token.end;
    if (token.kind == LexerType::LEX_COMMENT && matchEndComment(lexer.slice(token.start, end), type)) {
      ends.push_back(open.start);
    }
    open = token;
  }
  return ends;
}

}  // namespace

void closeRunTimeText(std::string& out, std::size_t from, MetaData::Type type, const std::string& endTag) {
  // Nothing else can take in a comment or be one.
  bool suspect = false;
  for (std::size_t at = out.find('<', from); at != std::string::npos && !suspect; at = out.find('<', at + 1)) {
    const char next = at + 1 < out.size() ? out[at + 1] : '\0';
    suspect = next == '!' || next == '%' || next == '?';
  }
  if (!suspect) return;

  // The text may be most of a large page, and nearly always is in order: it is read where it stands.
  const std::size_t length = out.size() - from;
  out += endTag;
  std::vector<std::uint32_t> ends = findEnds(std::string_view(out).substr(from), type);
  out.resize(from + length);
  if (ends.size() == 1 && ends.front() == length) return;

  std::string text = out.substr(from);
  // A dash behind the first word makes it another word.
  constexpr std::string_view kWord = "METADATA";
  for (auto end = ends.rbegin(); end != ends.rend(); ++end) {
    if (*end >= text.size()) continue;
    std::size_t word = *end + 2;
    while (text[word] == '-' || text[word] == ' ' || text[word] == '\t' || text[word] == '\r' || text[word] == '\n')
      ++word;
    text.insert(word + kWord.size(), 1, '-');
  }
  for (const char* closer : {"", "-->", "--%>", "%>", "?>", ">", "]]>"}) {
    ends = findEnds(text + closer + endTag, type);
    if (ends.size() != 1 || ends.front() != text.size() + std::string_view(closer).size()) continue;
    out.replace(from, std::string::npos, text + closer);
    return;
  }
}

}  // namespace zeldom40
