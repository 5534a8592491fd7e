// The name scope of the frames that parsers share their state by; what is in them is the library's own.
#pragma once

namespace zeldom40 {

struct ParserType {
  struct _dtd_frame;          // the tables of a parsed DTD
  struct _dtd_parser_frame;   // what a DTD parser that adds to another one's tables is given
  struct _html_parser_frame;  // what a page parser that works on another one's open elements is given
};

}  // namespace zeldom40
