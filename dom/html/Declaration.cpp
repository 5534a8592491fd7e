// Document type declarations of a page and their internal subsets.
#include "dom/document/Document.h"
#include "dom/document/DocumentAccess.h"
#include "dom/dtd/DTDParser.h"
#include "dom/html/PageParser.h"
#include "dom/source/CharHelpers.h"
#include "dom/tree/NodeAccess.h"
#include "dom/tree/PI.h"

namespace zeldom40 {

namespace {

// CHOICE: a page has one declaration. Each subset makes the parser take its notes on all open elements anew, so a page
// of nothing but declarations gets no more than this many read; the others stay in the source like the first.
constexpr int kMostSubsets = 64;

}  // namespace

void PageParser::readDeclaration() {
  enum State { KEYWORD, ROOT, KIND, SYSTEM_ID, PUBLIC_ID, AFTER_ID, SUBSET, CLOSE };

  const std::uint32_t start = take().start;
  std::uint32_t end = start;
  std::string keyword;
  State state = KEYWORD;
  bool reading = true;
  bool isCut = false;
  while (reading) {
    const LexRecord token = take();
    end = endOf(token);
    if (token.kind == LexerType::LEX_SPACE) continue;
    // Whatever does not fit ends the declaration there; it still belongs to it, and what follows is page text.
    reading = false;
    switch (state) {
      case KEYWORD:
        if (token.kind != LexerType::LEX_DOCTYPE) break;
        keyword = lexer_.slice(token);
        state = ROOT;
        reading = true;
        break;
      case ROOT:
        if (token.kind != LexerType::LEX_NAME) break;
        state = KIND;
        reading = true;
        break;
      case KIND: {
        if (token.kind != LexerType::LEX_NAME) break;
        std::string kind(lexer_.slice(token));
        upperCase(kind);
        if (kind != "SYSTEM" && kind != "PUBLIC") break;
        state = kind == "SYSTEM" ? SYSTEM_ID : PUBLIC_ID;
        reading = true;
        break;
      }
      case SYSTEM_ID:
      case PUBLIC_ID:
        if (token.kind == LexerType::LEX_QUOTE || token.kind == LexerType::LEX_APOSTROPHE) {
          const LexRecord first = take();
          end = endOf(first);
          if (first.kind == LexerType::LEX_EOF) break;
          // An identifier may be empty, as an attribute value may.
          if (first.kind != token.kind) {
            collectUntil(first, token.kind, LexerType::LEX_EOF, LexerType::LEX_EOF);
            end = endOf(take());
          }
        } else if (token.kind == LexerType::LEX_NAME) {
          const Slice id = collectUntil(token, LexerType::LEX_SPACE, LexerType::LEX_TAG_CLOSE, LexerType::LEX_EOF);
          end = id.offset + id.length;
        } else {
          break;
        }
        state = AFTER_ID;
        reading = true;
        break;
      case AFTER_ID:
        if (token.kind == LexerType::LEX_EOF) break;
        if (token.kind == LexerType::LEX_LBRACKET) state = SUBSET;
        if (token.kind == LexerType::LEX_TAG_CLOSE) {
          unget(token);
          state = CLOSE;
        }
        reading = true;
        break;
      case SUBSET: {
        LexRecord t = token;
        while (t.kind != LexerType::LEX_RBRACKET && t.kind != LexerType::LEX_EOF) t = take();
        end = endOf(t);
        isCut = !readSubset(sliceOf(token.start, t.kind == LexerType::LEX_EOF ? end : t.start));
        state = CLOSE;
        reading = t.kind != LexerType::LEX_EOF;
        break;
      }
      case CLOSE:
        break;
    }
  }
  auto* declaration = new PI(keyword, std::string(sliceOf(start, end).in(lexer_.page())));
  declaration->setDocument(document_);
  if (isCut) declaration->setError(ERR_PI_SUBSET_CUT);
  if (document_ && DocumentAccess::doctypeSeen(document_)) {
    declaration->setError(ERR_PI_DUPLICATED);
    document_->setError(ERR_DOC_DOCTYPE_DUPLICATED);
  }
  insertLast(declaration);
}

// The declarations add to the document type of the whole DOM. False if some of them were left out.
bool PageParser::readSubset(Slice subset) {
  if (subset.length == 0 || !frame_) return true;
  if (++subsets_ > kMostSubsets) {
    ++frame_->cuts;
    return false;
  }
  const unsigned cutsBefore = frame_->cuts;
  const std::string_view text = subset.in(lexer_.page());
  ParserType::_dtd_parser_frame shared{frame_};
  DTDParser parser(text.data(), static_cast<unsigned>(text.size()), &shared);
  parser.parse(LexerType::LEX_EOF);
  lexer_.page().get()->setEntityCount(subset.offset, frame_->generalEntityCount());
  declarationsChanged();
  return frame_->cuts == cutsBefore;
}

}  // namespace zeldom40
