// A page in the pieces that its layout is made of, with white space between them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "dom/zeldom40.h"

namespace zeldom40::tool {

enum class TokenKind : std::uint8_t {
  kWord,         // text up to the next white space
  kOutput,       // what the server puts in the place of text: <%= %>, ${ }, {{ }}, SSI, a processing instruction
  kCode,         // what the server does without a trace: <% %>, <%@ %>, <%-- --%>
  kComment,      // <!-- -->, and oddities that begin with <!
  kDeclaration,  // <!DOCTYPE ...>, a byte order mark
  kBegin,        // a begin tag of an element or custom action
  kEnd,          // an end tag
  kOpaque        // what stays as it is: scripts, generated text, whatever readers do not agree upon
};

// From its first byte to the one behind its last. Between two tokens stand blanks, tabs and line ends, or nothing.
struct LayoutToken {
  std::uint32_t begin = 0;
  std::uint32_t end = 0;
  TokenKind kind = TokenKind::kWord;
  bool closed = false;       // a begin tag that ends in "/>"
  bool keeps = false;        // a begin tag whose attributes say that white space in the element counts
  std::uint32_t name = 0;    // of a tag: index of LayoutPage::names
  std::uint32_t traits = 0;  // of a tag: NameTrait
};

// Something that the layout leaves alone, and why.
struct LeftAlone {
  std::uint32_t begin = 0;
  std::uint32_t end = 0;
  const char* reason = "";
};

struct LayoutPage {
  std::string_view text;
  std::vector<LayoutToken> tokens;
  std::vector<std::string> names;  // in lower case; custom actions have a colon
  std::vector<LeftAlone> leftAlone;
  bool isWhole = false;   // states HTML or BODY: what stands around is known
  bool isStatic = false;  // no styles, scripts or server code: tags alone say how it looks
  bool isMarkup = true;   // what the server sends is HTML
};

// Cuts a page whose source is `text`, which must live as long as the result. Tags and texts are those of the tree; each
// is read again as a browser or a server would, and where they do not agree the rest of the page is one opaque token;
// so is what goes beyond `limit`. Time and memory are linear.
LayoutPage cutLayout(Node* root, const SourceMap& map, std::string_view text, std::size_t limit);

inline bool isLayoutSpace(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

}  // namespace zeldom40::tool
