// The bean list of a page, and what Document tells a host of it.
#include "dom/dynamic/BeanCollector.h"

#include "dom/document/DOM.h"
#include "dom/document/Document.h"
#include "dom/document/DocumentAccess.h"
#include "dom/tree/Attribute.h"
#include "dom/tree/Element.h"
#include "dom/tree/NodeAccess.h"

namespace zeldom40 {

namespace {

struct ImplicitObject {
  const char* name;
  const char* oldClass;  // in version 1; null: not there
  const char* newClass;  // in all others
};

constexpr ImplicitObject kImplicitObjects[] = {
    {"request", "javax.servlet.http.HttpServletRequest", "javax.servlet.http.HttpServletRequest"},
    {"response", "javax.servlet.http.HttpServletResponse", "javax.servlet.http.HttpServletResponse"},
    {"out", "java.io.PrintWriter", "javax.servlet.jsp.JspWriter"},
    {"in", "java.io.BufferedReader", nullptr},
    {"pageContext", nullptr, "javax.servlet.jsp.PageContext"},
    {"session", nullptr, "javax.servlet.http.HttpSession"},
    {"application", nullptr, "javax.servlet.ServletContext"},
    {"config", nullptr, "javax.servlet.ServletConfig"},
    {"page", nullptr, "java.lang.Object"},
    {"exception", nullptr, "java.lang.Throwable"},
};

// The first of two attributes that exists, or null.
const Attribute* either(const Element* element, const char* first, const char* second) {
  const Attribute* attribute = element->getAttributeNode(first);
  return attribute ? attribute : element->getAttributeNode(second);
}

void insertDeclared(const Attribute* name, const Attribute* type, BeanList& list) {
  if (name && type) list.beans.insert({name->getValue(), type->getValue()});
}

// A list that a host goes through.
struct BeanCursor {
  BeanList list;
  std::set<BeanInfo>::const_iterator next;
};

}  // namespace

void collectBeans(const Document* document, BeanList& list) {
  list.beans = DocumentAccess::outBoundBeans(document).beans;
  const DOM* dom = document->getDOM();
  const bool old = dom && dom->getJSPVersion() == DOM::JSP_VERSION_1;
  Node* top = const_cast<Document*>(document)->getDocumentElement();
  for (Node* node = top; node; node = NodeAccess::nextInSubtree(node, top)) {
    if (node->getNodeType() != Node::NODE_ELEMENT) continue;
    const auto* element = static_cast<const Element*>(node);
    if (element->getElementID() == ID_JSP_USE_BEAN && !old) {
      insertDeclared(element->getAttributeNode("ID"), either(element, "TYPE", "CLASS"), list);
    } else if (element->getElementID() == ID_BEAN && old) {
      insertDeclared(either(element, "VARNAME", "NAME"), element->getAttributeNode("TYPE"), list);
    }
  }
  for (const ImplicitObject& object : kImplicitObjects) {
    const char* type = old ? object.oldClass : object.newClass;
    if (type) list.beans.insert({object.name, type});
  }
}

// --- Document --------------------------------------------------------------------------------------------------------

void Document::getBeanListBegin(void*& handle) const {
  auto* cursor = new BeanCursor;
  collectBeans(this, cursor->list);
  cursor->next = cursor->list.beans.begin();
  handle = cursor;
}

bool Document::getBeanListNext(void*& handle, const char*& name, const char*& type) const {
  auto* cursor = static_cast<BeanCursor*>(handle);
  if (!cursor || cursor->next == cursor->list.beans.end()) return false;
  name = cursor->next->name.c_str();
  type = cursor->next->className.c_str();
  ++cursor->next;
  return true;
}

void Document::getBeanListEnd(void*& handle) const {
  delete static_cast<BeanCursor*>(handle);
  handle = nullptr;
}

void Document::addOutBoundBean(const char* name, const char* type) {
  outBoundBeans_->beans.insert({name ? name : "", type ? type : ""});
}

void Document::delOutBoundBean(const char* name) { outBoundBeans_->beans.erase({name ? name : "", {}}); }

}  // namespace zeldom40
