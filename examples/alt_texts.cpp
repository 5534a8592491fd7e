// Reads a page, gives each image without an ALT text one, and writes the page. Only the tags that change are
// written anew; every other byte stays what it was.
#include <cstdio>
#include <string>

#include "dom/zeldom40.h"

using namespace zeldom40;

int main() {
  const std::string page =
      "<html>\n<p   class=top>\n<img src=\"a.gif\"><IMG src='b.gif' alt='B'>\n<!-- as it was --></html>\n";

  DOM* dom = DOM::createDOM(nullptr, DOM::JSP_VERSION_0, nullptr, nullptr);
  Document* document = dom->createDocument("HTML");
  Node* root = document->createNodes(page.data(), static_cast<unsigned>(page.size()), nullptr, /*adjust=*/false);
  document->clearUpdateFlag();  // what follows are edits, what was parsed is none

  NodeIterator images = document->getElementsByTagName("IMG");
  for (Node* node = images.toFirstNode(); node; node = images.toNextNode()) {
    auto* image = static_cast<Element*>(node);
    if (!image->getAttributeValue("ALT")) image->setAttribute("ALT", "picture", /*notify=*/true);
  }

  const char* source = document->getSourceBuf(root, Document::SOURCE_ALL, /*compact=*/false);
  // A page may hold NUL bytes: take the length, which a null node asks of the last result.
  const std::string written(source, document->getSourceBufLen(nullptr, Document::SOURCE_ALL, /*compact=*/false));
  std::fputs(written.c_str(), stdout);
  const bool rest = written.find("<p   class=top>") != std::string::npos &&
                    written.find("<IMG src='b.gif' alt='B'>\n<!-- as it was --></html>\n") != std::string::npos;
  const bool added = written.size() > page.size();

  dom->deleteDocument(document);
  DOM::destroyDOM(dom);
  return rest && added ? 0 : 1;
}
