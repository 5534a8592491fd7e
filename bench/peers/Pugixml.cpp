// pugixml: XML only; what slices of one buffer and a pool of nodes can give.
#include <pugixml.hpp>

#include "bench/peers/Peer.h"

namespace zeldom40::bench::pugixml {

namespace {

bool build(pugi::xml_document& document, const Page& page) {
  return static_cast<bool>(document.load_buffer(page.text.data(), page.text.size(), pugi::parse_full));
}

class Parse : public Task {
 public:
  bool open(const Page& page) override {
    page_ = &page;
    pugi::xml_document document;
    return build(document, page);
  }
  double run(int times) override {
    return timed(times, [this] {
      pugi::xml_document document;
      build(document, *page_);
    });
  }

 private:
  const Page* page_ = nullptr;
};

}  // namespace

std::unique_ptr<Task> parse() { return make<Parse>(); }
void hold(const Page& page) { build(*new pugi::xml_document, page); }

}  // namespace zeldom40::bench::pugixml
