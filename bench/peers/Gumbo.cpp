// gumbo: the HTML5 tree of a page.
#include <gumbo.h>

#include "bench/peers/Peer.h"

namespace zeldom40::bench::gumbo {

namespace {

GumboOutput* build(const Page& page) {
  return gumbo_parse_with_options(&kGumboDefaultOptions, page.text.data(), page.text.size());
}

class Parse : public Task {
 public:
  bool open(const Page& page) override {
    page_ = &page;
    return true;
  }
  double run(int times) override {
    return timed(times, [this] { gumbo_destroy_output(&kGumboDefaultOptions, build(*page_)); });
  }

 private:
  const Page* page_ = nullptr;
};

}  // namespace

std::unique_ptr<Task> parse() { return make<Parse>(); }
void hold(const Page& page) { build(page); }

}  // namespace zeldom40::bench::gumbo
