// The smallest host: a page in, the same bytes out. Built against an installed library by the script beside it.
#include <cstring>

#include "dom/zeldom40.h"

using namespace zeldom40;

int main() {
  const char page[] = "<HTML><BODY><P Align=left>A <B>page</HTML>";
  DOM* dom = DOM::createDOM(nullptr, DOM::JSP_VERSION_1, nullptr, nullptr);
  Document* document = dom->createDocument("HTML");
  Node* root = document->createNodes(page, std::strlen(page), nullptr, /*adjust=*/false);
  const bool same = std::strcmp(document->getSourceBuf(root, Document::SOURCE_ALL, /*compact=*/false), page) == 0;
  dom->deleteDocument(document);
  DOM::destroyDOM(dom);
  return same ? 0 : 1;
}
