// Hosts that repair small broken pages node by node or finding by finding while they hold the list of errors.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "dom/tree/NodePool.h"
#include "dom/zeldom40.h"
#include "fuzz/TreeCheck.h"

namespace zeldom40::fuzz {

// Small pages of inline elements, blocks and parts of tables and lists, as a rule without their ends. A list of errors
// then holds most of the nodes that a repair deletes.
class SmallPage {
 public:
  explicit SmallPage(std::uint64_t seed) : state_(seed * 2 + 1) {}

  std::string next() {
    static constexpr std::string_view kPieces[] = {
        "<P>",        "<B>",    "<I>",      "<U>",          "<FONT>",     "<A HREF=x>", "<A>",
        "<A NAME=n>", "<TD>",   "<TR>",     "<LI>",         "<TABLE>",    "<CAPTION>",  "<UL>",
        "<DIV>",      "<H1>",   "<BR>",     "<SELECT>",     "<OPTION>",   "<FORM>",     "</B>",
        "</I>",       "</U>",   "</A>",     "</P>",         "</TD>",      "</TR>",      "</LI>",
        "</FONT>",    "</DIV>", "<EM>",     "<PRE>",        "<DT>",       "<DL>",       "<TITLE>",
        "<FRAME>",    "</UL>",  "</TABLE>", "<B id \"x\">", "<!-- c -->", "<%= x %>",
    };
    std::string page;
    char letter = 'a';
    for (std::size_t pieces = 2 + below(7); pieces > 0; --pieces) {
      page +=
          below(4) == 0 && letter <= 'z' ? std::string(1, letter++) : std::string(kPieces[below(std::size(kPieces))]);
    }
    return page;
  }

  std::size_t below(std::size_t n) {
    // splitmix64
    std::uint64_t z = (state_ += 0x9e3779b97f4a7c15u);
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9u;
    z = (z ^ (z >> 27)) * 0x94d049bb133111ebu;
    return static_cast<std::size_t>((z ^ (z >> 31)) % n);
  }

 private:
  std::uint64_t state_;
};

// Each call makes a document of its own and returns what went wrong, empty if nothing did.
class RepairLoops {
 public:
  RepairLoops(DOM* dom, std::string_view page) : dom_(dom), page_(page), nodes_(liveNodes::count) {}

  // Loads the page anew for each of its nodes, asks for the errors, repairs that node and asks again. With `adjust` an
  // edit is closed below the node instead, after the cursor has been in another one.
  std::string eachNode(bool adjust) {
    for (std::size_t i = 0;; ++i) {
      Document* document = open();
      const std::vector<Node*> all = nodesOf(document);
      if (i == all.size()) {
        dom_->deleteDocument(document);
        return end();
      }
      const std::string before = letters(document);
      if (adjust) {
        document->setLayoutCursor(all[all.size() - 1 - i], 0);
        document->adjustNodes(nullptr, /*full=*/false);
        document->getErrorList();
        // What the cursor made of the page may have taken the node.
        const std::vector<Node*> left = nodesOf(document);
        document->setLayoutCursor(left.front(), 0);
        document->adjustNodes(left[i % left.size()], /*full=*/true);
      } else {
        document->getErrorList();
        document->correctError(all[i]);
      }
      std::string fault = close(document, before);
      if (!fault.empty()) return "node " + std::to_string(i) + ": " + fault;
    }
  }

  // The loop of a checker: each severe finding of one list is repaired, in their order or against it.
  std::string eachFinding(bool backwards) {
    Document* document = open();
    const std::string before = letters(document);
    std::vector<Node*> found;
    for (const _dom_error_packet* packet : document->getErrorList()) {
      if (packet->error & ERR_DOC_SEVERE_PARSE_ERROR) found.push_back(packet->node);
    }
    if (backwards) std::reverse(found.begin(), found.end());
    for (Node* node : found) {
      document->correctError(node);
      document->adjustNodes(node, /*full=*/false);
    }
    std::string fault = close(document, before);
    return fault.empty() ? end() : fault;
  }

 private:
  Document* open() {
    Document* document = dom_->createDocument("HTML");
    document->createNodes(page_.data(), static_cast<unsigned>(page_.size()), nullptr, /*adjust=*/false);
    document->clearUpdateFlag();
    return document;
  }
  std::string close(Document* document, const std::string& before) {
    std::unordered_set<const Node*> alive;
    std::string fault = treeHolds(document->getDocumentElement(), alive);
    // Some nodes of the list are out of the tree by now; the list holds them.
    for (const _dom_error_packet* packet : document->getErrorList()) {
      if (fault.empty() && !alive.count(packet->node)) fault = "a finding of no node of the page";
    }
    if (fault.empty() && letters(document) != before) {
      fault = "letters " + letters(document) + " instead of " + before;
    }
    dom_->deleteDocument(document);
    return fault;
  }
  std::string end() const { return liveNodes::count == nodes_ ? std::string() : "nodes are left"; }

  static std::vector<Node*> nodesOf(Document* document) {
    std::vector<Node*> nodes;
    Node* root = document->getDocumentElement();
    for (Node* n = root; n; n = document->findNextNode(n, root, false, false)) nodes.push_back(n);
    return nodes;
  }
  // The letters of all texts, sorted: a repair moves text and loses none.
  static std::string letters(Document* document) {
    std::string all;
    for (Node* n : nodesOf(document)) {
      if (n->getNodeType() != Node::NODE_TEXT) continue;
      for (char c : static_cast<Text*>(n)->getRawData()) {
        if (c >= 'a' && c <= 'z') all += c;
      }
    }
    std::sort(all.begin(), all.end());
    return all;
  }

  DOM* dom_;
  std::string page_;
  long nodes_;  // that live before the loop
};

// All loops over one page. Returns what went wrong.
inline std::string repairLoopsHold(DOM* dom, std::string_view page) {
  for (const bool other : {false, true}) {
    std::string fault = RepairLoops(dom, page).eachNode(/*adjust=*/other);
    if (!fault.empty()) return std::string(other ? "adjusting " : "repairing ") + fault + "\nof " + std::string(page);
    fault = RepairLoops(dom, page).eachFinding(/*backwards=*/other);
    if (!fault.empty())
      return "each finding" + std::string(other ? ", backwards: " : ": ") + fault + "\nof " + std::string(page);
  }
  return {};
}

}  // namespace zeldom40::fuzz
