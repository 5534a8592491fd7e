// Turns page text into nodes.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "dom/dtd/Parser.h"
#include "dom/dtd/ParserType.h"
#include "dom/export.h"

namespace zeldom40 {

class Document;
class Node;
class PageParser;

// What a second parser works on: the tables of a document type and the open nodes of another parser, the last one being
// filled. All is borrowed and must outlive the second parser, which leaves no node open.
struct ParserType::_html_parser_frame {
  _dtd_frame* dtdFrame;
  std::vector<Node*>* openNodes;
};

// Accepts every input: bad structure is kept in the tree and marked with ERR_* bits, and each tag and text keeps its
// raw source. Hosts use Document::createNodes, which drives it.
class ZELDOM40_API HTMLParser : public Parser {
 public:
  // An empty parser; parse answers -1.
  HTMLParser();
  // Over a copy of `length` bytes, with a stack of open nodes of its own. `frame` and `document` are borrowed.
  HTMLParser(const char* text, std::size_t length, ParserType::_dtd_frame* frame, Document* document);
  // Works on the open nodes of another parser.
  HTMLParser(const char* text, std::size_t length, ParserType::_html_parser_frame* frame, Document* document);
  ~HTMLParser() override;

  // Parses up to the token `stop` or the end and closes all open nodes. Returns 0, or -1 if no node is open.
  int parse(LexerType::LexToken stop) override;
  // For documents that are not HTML: an unknown element is no error, may have content, and its end tag closes it.
  void setLenient(bool lenient);
  // Opens a node to be filled; the first one is the target of the parse.
  void pushNode(Node* node);
  // Closes the node that was opened last, with no mark on it; nothing if none is open.
  void popNode();

 private:
  friend class Document;
  // Whether something came in that may call for metadata.
  bool mustBeSorted() const;
  // Ends this parser; what it learnt of names serves the next page.
  void keepNames();

  std::unique_ptr<PageParser> page_;
};

}  // namespace zeldom40
