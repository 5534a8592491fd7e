// Finds the partner of each tag with a stack of what is open.
#include "tools/zeldom/format_nesting.h"

#include "tools/zeldom/format_names.h"

namespace zeldom40::tool {

namespace {

bool isAction(const std::string& name) { return name.find(':') != std::string::npos; }

class Matcher {
 public:
  explicit Matcher(const LayoutPage& page) : page_(page), nests_(page.tokens.size()), places_(page.names.size()) {}

  std::vector<Nest> run() {
    for (std::uint32_t i = 0; i < page_.tokens.size(); ++i) {
      const LayoutToken& token = page_.tokens[i];
      if (token.kind == TokenKind::kBegin) {
        begin(i, token);
      } else if (token.kind == TokenKind::kEnd) {
        end(i, token);
      } else {
        nests_[i].height = height();
      }
    }
    return std::move(nests_);
  }

 private:
  struct Open {
    std::uint32_t token;
    std::uint32_t name;
    std::uint32_t outer;  // how many were open outside of the run of inline elements that it is part of
  };

  std::uint32_t height() const { return static_cast<std::uint32_t>(open_.size()); }
  const std::string& nameOf(const LayoutToken& token) const { return page_.names[token.name]; }

  void pop() {
    const Open& top = open_.back();
    places_[top.name].pop_back();
    if (!walls_.empty() && walls_.back() + 1 == open_.size()) walls_.pop_back();
    if (!tableWalls_.empty() && tableWalls_.back() + 1 == open_.size()) tableWalls_.pop_back();
    open_.pop_back();
  }

  void begin(std::uint32_t i, const LayoutToken& token) {
    const std::string& name = nameOf(token);
    // An element whose end tag may be missing ends here, with all inline elements that are still open in it.
    while (!open_.empty()) {
      const std::uint32_t block = open_.back().outer;
      if (block == 0 || !endsOpen(name, page_.names[open_[block - 1].name])) break;
      while (height() >= block) pop();
    }
    nests_[i].height = height();
    const bool foreign = !(token.traits & kKnownName) || (token.traits & kForeignName);
    const bool counts = token.keeps || (token.traits & kKeptName);
    if ((token.traits & kVoidName) || (token.closed && (foreign || !counts))) return;
    nests_[i].opens = true;
    const bool prose = (token.traits & kProseName) != 0;
    const std::uint32_t outer = !prose ? height() + 1 : open_.empty() ? 0 : open_.back().outer;
    places_[token.name].push_back(height());
    if (isAction(name)) {
      walls_.push_back(height());
      tableWalls_.push_back(height());
    } else if (token.traits & kBarrierName) {
      walls_.push_back(height());
      if (!isTablePart(name) || name == "table") tableWalls_.push_back(height());
    }
    open_.push_back({i, token.name, outer});
  }

  void end(std::uint32_t i, const LayoutToken& token) {
    nests_[i].height = height();
    const std::vector<std::uint32_t>& places = places_[token.name];
    if (places.empty()) return;
    const std::string& name = nameOf(token);
    const std::vector<std::uint32_t>& walls = isTablePart(name) ? tableWalls_ : walls_;
    const bool crosses = name == "body" || name == "html" || isAction(name);
    const std::uint32_t place = places.back();
    if (!crosses && !walls.empty() && walls.back() > place) return;
    const std::uint32_t partner = open_[place].token;
    nests_[i].partner = partner;
    nests_[partner].partner = i;
    while (height() > place) pop();
    nests_[i].height = height();
  }

  const LayoutPage& page_;
  std::vector<Nest> nests_;
  std::vector<Open> open_;
  std::vector<std::vector<std::uint32_t>> places_;  // of each name: where it is open
  std::vector<std::uint32_t> walls_;                // what end tags do not reach over
  std::vector<std::uint32_t> tableWalls_;           // the same for those of cells and rows
};

}  // namespace

std::vector<Nest> nestTokens(const LayoutPage& page) { return Matcher(page).run(); }

}  // namespace zeldom40::tool
