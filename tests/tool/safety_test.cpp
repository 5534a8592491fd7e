// What is written into random pages, looked at from outside: no text, server code or comment comes, goes or moves, and
// a second run finds nothing to do.
#include <cctype>
#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "dom/zeldom40.h"
#include "fuzz/RandomPage.h"
#include "tests/tool/ToolTest.h"

namespace {

// Pages as people write them: blocks, inline elements and server code in lines, with tags that are missing, left over
// or crossed.
class PeoplesPage {
 public:
  explicit PeoplesPage(std::uint64_t seed) : state_(seed * 2 + 1) {}

  std::string next() {
    static constexpr std::string_view kPieces[] = {"<p>",
                                                   "</p>",
                                                   "<b>",
                                                   "</b>",
                                                   "<i class=k>",
                                                   "</i>",
                                                   "<div>",
                                                   "</div>",
                                                   "<h2>",
                                                   "</h2>",
                                                   "<a href='x'>",
                                                   "</a>",
                                                   "<ul>",
                                                   "<li>",
                                                   "</li>",
                                                   "</ul>",
                                                   "<table>",
                                                   "<tr>",
                                                   "<td>",
                                                   "</td>",
                                                   "</tr>",
                                                   "</table>",
                                                   "one",
                                                   "two, ",
                                                   " ",
                                                   "\n",
                                                   "\n  ",
                                                   "&amp;",
                                                   "<br>",
                                                   "<%= x %>",
                                                   "<% if (a) { %>",
                                                   "<% } %>",
                                                   "<c:if test=\"${a}\">",
                                                   "</c:if>",
                                                   "${b}",
                                                   "<!-- c -->",
                                                   "<pre>a\n  b</pre>",
                                                   "<font color=red>",
                                                   "</font>",
                                                   "<hr>",
                                                   "<form>",
                                                   "</form>",
                                                   "<input name=q>",
                                                   "</br>",
                                                   "<script>f(1 < 2)</script>",
                                                   "<%-- d --%>",
                                                   "<section>",
                                                   "</section>",
                                                   "<dl><dt>",
                                                   "<dd>",
                                                   "</dl>"};
    const bool isWhole = below(3) != 0;
    std::string page = isWhole ? "<html><head><title>t</title></head><body>\n" : "";
    for (std::uint64_t n = 5 + below(40); n > 0; --n) page += kPieces[below(std::size(kPieces))];
    return isWhole && below(4) != 0 ? page + "\n</body></html>\n" : page;
  }

 private:
  std::uint64_t below(std::uint64_t bound) {
    state_ = state_ * 6364136223846793005u + 1442695040888963407u;
    return (state_ >> 33) % bound;
  }

  std::uint64_t state_;
};

// What a reader, a server and the author must find again: words, server code and comments in their order.
std::string protectedParts(std::string_view page) {
  constexpr std::pair<std::string_view, std::string_view> kConstructs[] = {
      {"<%", "%>"}, {"<!--", "-->"}, {"<script", "</script>"}, {"<?", "?>"}};
  std::string parts;
  for (std::size_t i = 0; i < page.size();) {
    std::size_t end = 0;
    for (const auto& [opening, closing] : kConstructs) {
      if (end != 0 || page.substr(i, opening.size()) != opening) continue;
      end = page.find(closing, i);
      end = end == std::string_view::npos ? page.size() : end + closing.size();
      parts.append("\n").append(page.substr(i, end - i)).append("\n");
    }
    const bool isTag = page[i] == '<' && i + 1 < page.size() &&
                       (page[i + 1] == '/' || std::isalpha(static_cast<unsigned char>(page[i + 1])) != 0);
    if (end == 0 && isTag) end = page.find('>', i) + 1;
    if (end == 0) {
      if (std::isspace(static_cast<unsigned char>(page[i])) == 0) parts += page[i];
      end = i + 1;
    }
    i = end;
  }
  return parts;
}

class Safety : public ToolTest {
 protected:
  enum Expected { kPartsStay = 1, kComesToRest = 2 };

  void expectSafe(const std::vector<std::string>& pages, const std::string& command, unsigned expected) {
    for (std::size_t i = 0; i < pages.size(); ++i) write(std::to_string(i), pages[i]);
    const Result result = run(command + " *");
    EXPECT_EQ(result.err.find("nothing is written"), std::string::npos) << result.err;
    int changed = 0;
    std::vector<std::string> written;
    for (std::size_t i = 0; i < pages.size(); ++i) {
      written.push_back(readFile(path(std::to_string(i))));
      changed += written.back() != pages[i];
      if (!(expected & kPartsStay)) continue;
      EXPECT_EQ(protectedParts(written.back()), protectedParts(pages[i])) << command << "\n" << pages[i];
    }
    EXPECT_GT(changed, 0) << command;
    if (!(expected & kComesToRest)) return;
    run(command + " *");
    for (std::size_t i = 0; i < pages.size(); ++i) {
      EXPECT_EQ(readFile(path(std::to_string(i))), written[i]) << command << " twice\n" << pages[i];
    }
  }
};

TEST_F(Safety, PagesOfPeopleKeepWhatIsTheirs) {
  PeoplesPage source(7);
  std::vector<std::string> pages;
  for (int i = 0; i < 600; ++i) pages.push_back(source.next());
  expectSafe(pages, "fix -i", kPartsStay | kComesToRest);
  expectSafe(pages, "format -i", kPartsStay | kComesToRest);
  // An unsafe repair may move text, and show what another can settle.
  expectSafe(pages, "fix -i --unsafe", 0);
}

// Of these nobody can tell from outside what is a tag; but a run ends, and the next one finds nothing.
TEST_F(Safety, HostilePagesComeToRest) {
  zeldom40::DOM* dom = zeldom40::DOM::createDOM(nullptr, zeldom40::DOM::JSP_VERSION_0, nullptr, nullptr);
  zeldom40::fuzz::RandomPage source(11, *dom->getDocumentType());
  std::vector<std::string> pages;
  while (pages.size() < 400) pages.push_back(source.next());
  zeldom40::DOM::destroyDOM(dom);
  for (const char* command : {"fix -i", "format -i"}) expectSafe(pages, command, kComesToRest);
}

}  // namespace
