// htmlcxx: a loose tree that keeps the text of its tags, so that it can write pages back.
#include <htmlcxx/html/ParserDom.h>

#include "bench/peers/Peer.h"

namespace zeldom40::bench::htmlcxx {

namespace {

using ::htmlcxx::HTML::ParserDom;
using Tree = tree<::htmlcxx::HTML::Node>;

class Parse : public Task {
 public:
  bool open(const Page& page) override {
    page_ = &page;
    return true;
  }
  double run(int times) override {
    return timed(times, [this] { ParserDom().parse(page_->text); });
  }

 private:
  const Page* page_ = nullptr;
};

// Tag or text of each node, then its end tag when the walk leaves it.
void append(const Tree& tree, std::string& out) {
  const auto* const top = tree.begin().node;
  const auto* node = top;
  while (true) {
    out += node->data.text();
    if (node->first_child) {
      node = node->first_child;
      continue;
    }
    out += node->data.closingText();
    while (node != top && !node->next_sibling) {
      node = node->parent;
      out += node->data.closingText();
    }
    if (node == top) return;
    node = node->next_sibling;
  }
}

class Write : public Task {
 public:
  bool open(const Page& page) override {
    parser_.parse(page.text);
    write();
    return out_ == page.text;
  }
  double run(int times) override {
    return timed(times, [this] { write(); });
  }

 private:
  void write() {
    out_.clear();
    append(parser_.getTree(), out_);
  }
  ParserDom parser_;
  std::string out_;
};

}  // namespace

std::unique_ptr<Task> parse() { return make<Parse>(); }
std::unique_ptr<Task> write() { return make<Write>(); }
void hold(const Page& page) { (new ParserDom)->parse(page.text); }

}  // namespace zeldom40::bench::htmlcxx
