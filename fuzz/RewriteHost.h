// A host that makes one small edit on a random page and looks what else has changed.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "dom/tree/NodePool.h"
#include "dom/zeldom40.h"
#include "fuzz/EditHost.h"
#include "fuzz/RandomPage.h"

namespace zeldom40::fuzz {

// Pages as people write them for a server: every way to spell a tag, code in tags and values, references of all kinds.
class ServerPage {
 public:
  explicit ServerPage(Choices& choices) : choices_(choices) {}

  std::string next() {
    page_ = choices_.chance(3) ? "<%@ page import=\"a.b\" %>\n<html><body>\n" : "";
    for (std::size_t n = 2 + choices_.below(8); n > 0; --n) block();
    return page_;
  }

 private:
  template <std::size_t N>
  std::string_view pick(const std::string_view (&list)[N]) {
    return list[choices_.below(N)];
  }

  void block() {
    static constexpr std::string_view kBlocks[] = {"p", "DIV", "td", "li", "h2", "Form", "pre"};
    const std::string name(pick(kBlocks));
    const bool inTable = name == "td";
    const bool inList = name == "li";
    page_ += inTable ? "<table><tr>" : inList ? "<ul>\n" : "";
    tag(name);
    for (std::size_t n = 1 + choices_.below(4); n > 0; --n) inlineContent();
    page_ += choices_.chance(4) ? "</" + name + " >" : "</" + name + ">";
    page_ += inTable ? "</tr></table>\n" : inList ? "</ul>" : "\n";
  }

  void inlineContent() {
    static constexpr std::string_view kElements[] = {"b", "a", "Span", "input", "br", "select", "code"};
    static constexpr std::string_view kCode[] = {"<% if (a > b) { %>", "<%= f(\"x\") %>", "<%-- \"c\" --%>",
                                                 "<!-- c > d -->", "<?php e > f ?>"};
    switch (choices_.below(4)) {
      case 0:
        page_ += pick(kCode);
        return;
      case 1:
      case 2:
        return text();
      default: {
        const std::string name(pick(kElements));
        tag(name);
        if (name == "input" || name == "br") return;
        if (name == "select") {
          tag("option");
          text();
          page_ += "</option></select>";
          return;
        }
        text();
        page_ += "</" + name + ">";
      }
    }
  }

  void text() {
    static constexpr std::string_view kWords[] = {"word",  "it&#x27;s", "&bogus;", "&#128512;", "\"q\"", "a &lt b",
                                                  " ",     "\r\n  ",    "\n",      "&eacute;",  "1 < 2", "&nbsp",
                                                  "AT&T;", "&amp;#x27", "\xe9",    " & ",       "&#39;", "&am "};
    for (std::size_t n = 1 + choices_.below(6); n > 0; --n) page_ += pick(kWords);
  }

  void tag(const std::string& name) {
    static constexpr std::string_view kNames[] = {"class", "ID", "title", "Style", "onclick", "x-y"};
    static constexpr std::string_view kGaps[] = {" ", " ", " ", "  ", "\n   ", "\t"};
    static constexpr std::string_view kValues[] = {"=a",
                                                   "='b c'",
                                                   "=\"d &amp; e\"",
                                                   " = \"f\"",
                                                   "=\"\"",
                                                   "",
                                                   "=\"<%= g(\"h\") %>\"",
                                                   "='<%= i(\"j\", 'k') %>'",
                                                   "=\"l<% if (m > n) { %>'o'<% } %>\"",
                                                   "=\"&#x27;&bogus;\""};
    static constexpr std::string_view kEnds[] = {" <%= sel %>>",    "<%= cls %>>",
                                                 " href=<%= u %>>", " checked <% x %> name=\"q\">",
                                                 " <%-- > --%>>",   " href=/a<%= \"b\" %> y=z>"};
    page_ += '<' + name;
    std::size_t used = 0;
    for (std::size_t n = choices_.below(4); n > 0; --n) {
      used += 1 + choices_.below(2);
      page_ += pick(kGaps);
      page_ += kNames[used % 6];
      page_ += pick(kValues);
    }
    page_ += choices_.chance(5) ? pick(kEnds) : choices_.chance(6) ? " />" : choices_.chance(6) ? " >" : ">";
  }

  Choices& choices_;
  std::string page_;
};

// All server code of a text that has its end, in its order.
inline std::string codeOf(std::string_view text) {
  std::string all;
  for (std::size_t i = 0; (i = text.find('<', i)) != std::string_view::npos;) {
    std::string_view close;
    if (text.substr(i, 4) == "<%--") {
      close = "--%>";
    } else if (text.substr(i, 2) == "<%") {
      close = "%>";
    } else if (text.substr(i, 2) == "<?") {
      close = "?>";
    } else {
      ++i;
      continue;
    }
    const std::size_t end = text.find(close, i + 2);
    if (end == std::string_view::npos) {
      ++i;
      continue;
    }
    all.append(text.substr(i, end + close.size() - i)).append("\n");
    i = end + close.size();
  }
  return all;
}

// One edit at a time, each on a page of its own.
class RewriteHost {
 public:
  RewriteHost(DOM* dom, Choices& choices)
      : choices_(choices), dom_(dom), hostile_(choices.below(1u << 24), *dom->getDocumentType()) {
    document_ = dom_->createDocument("HTML");
    again_ = dom_->createDocument("HTML");
  }
  RewriteHost(const RewriteHost&) = delete;
  RewriteHost& operator=(const RewriteHost&) = delete;
  ~RewriteHost() {
    dom_->deleteDocument(again_);
    dom_->deleteDocument(document_);
  }

  // Returns what went wrong, empty if nothing did.
  std::string step() {
    keeps_ = choices_.chance(2);
    isServerPage_ = !choices_.chance(4);
    dom_->setRewriting(keeps_ ? DOM::Rewriting::KEEP : DOM::Rewriting::STANDARD);
    do {
      before_ = isServerPage_ ? ServerPage(choices_).next() : hostile_.next();
    } while (RandomPage::mayDeclare(before_));
    load(document_, before_);
    if (sourceOf(document_) != before_) return {};  // a page of dynamic elements is another test's
    nodes_ = nodesOf(document_);
    fault_.clear();
    edit();
    if (!fault_.empty()) {
      fault_ = fault_ + (keeps_ ? ", kept" : ", standard") + "\n--- before\n" + before_ + "\n--- edit: " + what_ +
               "\n--- after\n" + after_ + "\n";
    }
    return fault_;
  }

 private:
  using Range = SourceMap::Range;

  static void load(Document* document, const std::string& page) {
    document->createNodes(page.data(), static_cast<unsigned>(page.size()), nullptr, /*adjust=*/false);
    document->clearUpdateFlag();
    document->clearRecord();
    document->adjustNodes(nullptr, false);
    document->clearUpdateFlag();
  }
  static std::string sourceOf(Document* document) {
    const char* text = document->getSourceBuf(document->getDocumentElement(), Document::SOURCE_ALL, false);
    return std::string(text, document->getSourceBufLen(nullptr, Document::SOURCE_ALL, false));
  }
  static std::vector<Node*> nodesOf(Document* document) {
    std::vector<Node*> nodes;
    Node* root = document->getDocumentElement();
    for (Node* n = root; n; n = document->findNextNode(n, root, false, false)) nodes.push_back(n);
    return nodes;
  }

  void edit() {
    if (nodes_.size() < 2) return;
    for (int i = 0; i < 20; ++i) {
      index_ = 1 + choices_.below(nodes_.size() - 1);
      Node* node = nodes_[index_];
      if (node->getNodeType() == Node::NODE_TEXT) return editText(static_cast<Text*>(node));
      auto* element = node->getNodeType() == Node::NODE_ELEMENT ? static_cast<Element*>(node) : nullptr;
      // The tags of others are never written anew.
      if (element && element->getElementDefinition() && !(element->getElementGroup() & GROUP_SCRIPT_DATA) &&
          !element->getRawBeginTag().empty()) {
        return editTag(element);
      }
    }
  }

  // --- tags ---------------------------------------------------------------------------------------------------------

  void editTag(Element* element) {
    static constexpr const char* kNames[] = {"CLASS", "ID", "TITLE", "STYLE", "ONCLICK", "x-y", "HREF", "LANG"};
    static constexpr const char* kValues[] = {"v", "v w", "it's", "say \"v\"", "<%= v(\"w\", 'x') %>", "&#x27;&v;"};
    const SourceMap map(document_);
    const Range tag = map.getBeginTag(element);
    const Range end = map.getEndTag(element);
    const std::string name = kNames[choices_.below(8)];
    // A directive takes no code.
    const bool isDirective = tag.isKnown() && before_.substr(tag.begin, 2) == "<%";
    const std::string value = kValues[choices_.below(isDirective ? 2 : 6)];
    const bool drops = choices_.chance(4);
    const Range oldName = map.getAttributeName(element, name.c_str());
    const Range oldValue = map.getAttributeValue(element, name.c_str());
    const bool hadCode = oldName.isKnown() && (before_.find('<', oldName.begin) < oldName.end ||
                                               before_.find('<', oldValue.begin) < oldValue.end);
    const bool repeats = !map.getRepeatedAttributes(element).empty();
    what_ = element->getTagName() + (drops ? " without " : " with ") + name + (drops ? "" : "=" + value);
    if (drops) {
      element->deleteAttribute(name);
    } else {
      element->setAttribute(name, value, true);
    }
    const Attribute* attribute = element->getAttributeNode(name.c_str());
    const std::string stored = attribute ? attribute->getValue() : "";
    finish();
    if (!fault_.empty() || !tag.isKnown()) return;
    // Outside of the tags of the element nothing changed.
    const std::size_t front = commonPrefix();
    const std::size_t back = commonSuffix();
    if (front < tag.begin) return fail("something changed in front of the tag");
    if (back < before_.size() - end.end) return fail("something changed behind the element");
    // On a damaged page nobody knows what is code.
    if (isServerPage_ && !hadCode && !isDirective) {
      std::string expected = codeOf(before_);
      std::string found = codeOf(after_);
      if (!drops && value[0] == '<') expected.clear(), found.clear();
      if (found != expected) return fail("server code differs");
    }
    if (keeps_ && after_ != before_) checkKeptTag(tag, oldName, oldValue, drops, repeats);
    if (fault_.empty() && isServerPage_) checkReread(name, drops, stored);
  }

  void checkKeptTag(Range tag, Range oldName, Range oldValue, bool drops, bool repeats) {
    const auto [gone, came] = difference();
    // What went may begin like what stands behind it.
    if (gone.begin < tag.begin || gone.end > tag.end + 3) return fail("something changed outside of the tag");
    if (repeats) return;
    if (!oldName.isKnown()) {
      if (gone.length() > 0) fail("something went for a new attribute");
    } else if (drops) {
      if (came.length() > 1) fail("something came for an attribute that went");
    } else if (gone.begin < oldName.end || gone.end > oldValue.end + (oldValue.isEmpty() ? 5 : 1)) {
      fail("more than the value changed");
    }
  }

  // A reader of the page finds the new value at the same element.
  void checkReread(const std::string& name, bool drops, const std::string& value) {
    load(again_, after_);
    std::vector<Node*> nodes = nodesOf(again_);
    if (sourceOf(again_) != after_) return fail("the page does not come back");
    // What ended a tag may become part of another: then the places differ.
    if (index_ >= nodes.size() || nodes[index_]->getNodeType() != Node::NODE_ELEMENT)
      return fail("the element is gone");
    const char* found = static_cast<Element*>(nodes[index_])->getAttributeValue(name.c_str());
    if (drops) return;
    if (!found || found != value) fail("a reader finds " + (found ? std::string(found) : "no attribute"));
  }

  // --- texts --------------------------------------------------------------------------------------------------------

  void editText(Text* text) {
    if (text->getTextType() != Text::TEXT_NORMAL) return;
    const SourceMap map(document_);
    const Range range = map.getRange(text);
    const std::string plain = text->getData();
    std::size_t at = 0;
    for (std::size_t n = choices_.below(plain.size() + 1); at < plain.size() && n > 0; --n) {
      at += static_cast<std::size_t>(std::max(1, pclen(plain.c_str() + at)));
    }
    at = std::min(at, plain.size());
    what_ = "q at " + std::to_string(at) + " of \"" + plain + "\"";
    if (text->insert(static_cast<int>(at), "q", false, Text::SPACE_NORMAL) != 1) return fail("nothing was inserted");
    const std::string wanted = text->getData();
    finish();
    if (!fault_.empty() || !range.isKnown()) return;
    if (commonPrefix() < range.begin || commonSuffix() < before_.size() - range.end) {
      return fail("something changed outside of the text");
    }
    if (isServerPage_ && codeOf(before_) != codeOf(after_)) return fail("server code differs");
    if (isServerPage_ && unread(before_) != unread(after_) && !touchesReference(plain, at)) {
      return fail("references differ");
    }
    // Bytes of the page that look like marks take what is typed behind them along.
    if (keeps_ && before_.find_first_of("\x1b\x1c") == std::string::npos) {
      const auto [gone, came] = difference();
      // A reference or a "<" that the letter would have lengthened is written anew with it.
      const std::size_t from = gone.begin - std::min<std::size_t>(gone.begin, 40);
      const bool seam = before_.substr(from, gone.begin + 1 - from).find_first_of("&<") != std::string::npos;
      if (gone.length() > (seam ? 40u : 0u) || came.length() > (seam ? 48u : 1u)) {
        return fail("more than the letter changed");
      }
    }
    if (!isServerPage_) return;
    load(again_, after_);
    std::vector<Node*> nodes = nodesOf(again_);
    if (index_ >= nodes.size() || nodes[index_]->getNodeType() != Node::NODE_TEXT) return fail("the text is gone");
    if (static_cast<Text*>(nodes[index_])->getData() != wanted) {
      fail("a reader finds \"" + static_cast<Text*>(nodes[index_])->getData() + "\"");
    }
  }

  // The references that the library cannot read.
  static std::string unread(const std::string& page) {
    std::string all;
    for (const std::string_view reference : {"&#x27;", "&bogus;", "&#128512;", "&T;"}) {
      for (std::size_t i = page.find(reference); i != std::string::npos; i = page.find(reference, i + 1)) all += '&';
      all += ' ';
    }
    return all;
  }
  static bool touchesReference(const std::string& plain, std::size_t at) {
    const std::size_t mark = plain.rfind("\x1b&", at);
    return mark != std::string::npos && plain.find_first_of("; \n", mark) + 1 > at;
  }

  // --- checks -------------------------------------------------------------------------------------------------------

  void finish() {
    // On a damaged page it may join texts that stand apart.
    if (keeps_ && isServerPage_ && choices_.chance(2)) document_->adjustNodes(nullptr, false);
    after_ = sourceOf(document_);
    document_->undo(1);
    if (sourceOf(document_) != before_) return fail("undo gives\n" + sourceOf(document_));
    document_->redo(1);
    if (sourceOf(document_) != after_) fail("redo gives\n" + sourceOf(document_));
  }
  void fail(const std::string& fault) { fault_ = fault; }

  std::size_t commonPrefix() const {
    return static_cast<std::size_t>(std::mismatch(before_.begin(), before_.end(), after_.begin(), after_.end()).first -
                                    before_.begin());
  }
  std::size_t commonSuffix() const {
    return static_cast<std::size_t>(
        std::mismatch(before_.rbegin(), before_.rend(), after_.rbegin(), after_.rend()).first - before_.rbegin());
  }
  // The stretch of each page in which the two differ.
  std::pair<Range, Range> difference() const {
    const std::size_t front = commonPrefix();
    const std::size_t back = std::min(commonSuffix(), std::min(before_.size(), after_.size()) - front);
    return {{front, before_.size() - back}, {front, after_.size() - back}};
  }

  Choices& choices_;
  DOM* dom_;
  RandomPage hostile_;
  Document* document_ = nullptr;
  Document* again_ = nullptr;
  std::vector<Node*> nodes_;
  std::size_t index_ = 0;
  bool keeps_ = false;
  bool isServerPage_ = false;
  std::string before_;
  std::string after_;
  std::string what_;
  std::string fault_;
};

}  // namespace zeldom40::fuzz
