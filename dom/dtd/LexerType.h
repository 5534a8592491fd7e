// The numbering of tokens that the lexers share, and the record that carries one.
#pragma once

#include <cstdint>

namespace zeldom40 {

struct LexerType {
  enum LexToken : std::uint32_t {
    LEX_NONE = 0,
    LEX_TAG_OPEN = 1,           // <
    LEX_TAG_CLOSE = 2,          // >
    LEX_COMMENT = 3,            // from -- to --
    LEX_NOTATION_DECL = 4,      // !NOTATION
    LEX_ENTITY_DECL = 5,        // !ENTITY
    LEX_PERCENT = 6,            // % that opens no reference
    LEX_ATTLIST_DECL = 8,       // !ATTLIST
    LEX_ELEMENT_DECL = 9,       // !ELEMENT
    LEX_LITERAL = 10,           // what stands between quotes
    LEX_UNDEFINED_ENTITY = 19,  // a reference to a parameter entity that is not declared
    LEX_NAME = 21,              // any other word
    LEX_PCDATA = 22,            // #PCDATA
    LEX_CDATA = 23,             // CDATA
    LEX_MARKED_SECTION = 25,    // ![
    LEX_LBRACKET = 26,
    LEX_RBRACKET = 27,
    LEX_STAR = 28,
    LEX_QUESTION = 29,
    LEX_AMPERSAND = 30,
    LEX_BANG = 31,  // ! before no known keyword
    LEX_BAR = 32,
    LEX_COMMA = 33,
    LEX_SLASH = 34,
    LEX_EQUALS = 35,
    LEX_PLUS = 36,
    LEX_MINUS = 37,
    LEX_LPAREN = 38,
    LEX_RPAREN = 39,
    LEX_APOSTROPHE = 40,
    LEX_QUOTE = 41,
    LEX_ENTITY_REF = 42,
    LEX_CHAR_REF = 43,
    LEX_SPACE = 45,
    LEX_DOCTYPE = 46,         // !DOCTYPE
    LEX_CDATA_SECTION = 47,   // what stands between ![CDATA[ and ]]>
    LEX_PROCESSING = 48,      // from ? to ?
    LEX_SERVER_TAG = 49,      // from % to %
    LEX_SERVER_COMMENT = 50,  // a comment of server code, from -- to --
    LEX_GROUP_DECL = 51,      // !GROUP
    LEX_EOF = 52
  };
};

// One token: a plain value, copied about. Offsets are bytes of the lexer's text.
struct LexRecord {
  // The offset of a token that stands nowhere (the end of the input), and the end of one that ran off the text.
  static constexpr std::uint32_t NO_POSITION = 0xFFFFFFFF;

  LexerType::LexToken kind = LexerType::LEX_NONE;
  std::uint32_t start = 0;
  std::uint32_t end = 0;
  std::uint32_t length = 0;  // end - start; means nothing if one of them is NO_POSITION
  std::uint32_t line = 0;    // 1-based
  std::uint32_t value = 0;   // a character code or the like
};

}  // namespace zeldom40
