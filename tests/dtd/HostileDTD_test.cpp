// Texts that try to hang, overflow or exhaust: each has to end, in time that grows with its length, on a small stack.
#include <ctime>
#include <functional>
#include <pthread.h>
#include <string>

#include <gtest/gtest.h>

#include "dom/dtd/BuiltInDTD.h"
#include "dom/dtd/ContentTable.h"
#include "dom/dtd/DTDFrame.h"
#include "dom/dtd/DTDParser.h"
#include "dom/tree/Element.h"
#include "dom/tree/ElementAccess.h"
#include "dom/tree/NodePool.h"
#include "dom/tree/Text.h"

namespace zeldom40 {
namespace {

// Enough for the frames of a sanitized build, far too little for one frame a nesting.
constexpr std::size_t kStack = 1 << 20;

void onSmallStack(const std::function<void()>& work) {
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setstacksize(&attributes, kStack);
  pthread_t thread;
  const auto run = [](void* argument) -> void* {
    (*static_cast<const std::function<void()>*>(argument))();
    return nullptr;
  };
  ASSERT_EQ(pthread_create(&thread, &attributes, run, const_cast<std::function<void()>*>(&work)), 0);
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
}

std::string repeat(std::string_view text, std::size_t count) {
  std::string out;
  for (std::size_t i = 0; i < count; ++i) out += text;
  return out;
}

std::string numbered(std::string_view before, std::string_view after, std::size_t count) {
  std::string out;
  for (std::size_t i = 0; i < count; ++i) out.append(before).append(std::to_string(i)).append(after);
  return out;
}

// Reads `page` into the built-in tables, as a page's own declarations are read, and asks about a few elements
// afterwards.
void readAsPage(const std::string& page) {
  const long nodes = liveNodes::count;
  {
    DTDParser base(builtInDTD().data(), static_cast<unsigned>(builtInDTD().size()));
    base.parse(LexerType::LEX_EOF);
    const ParserType::_dtd_parser_frame shared{base.getDTDFrame()};
    DTDParser(page.data(), static_cast<unsigned>(page.size()), &shared).parse(LexerType::LEX_EOF);
    ContentTable& table = contentTable(*shared.frame);
    const ContentTable::OpenSets* sets = table.noSets();
    ElementDefinition* p = shared.frame->elements->find("P");
    Text text(nullptr);
    for (const char* name : {"P", "X", "X0", "X1", "ZELROOT", "BODY"}) {
      ElementDefinition* definition = shared.frame->elements->find(name);
      if (!definition) continue;
      Element element("P", nullptr);
      ElementAccess::bind(&element, p);
      const bool allowed = definition->canContain(&element, nullptr, nullptr);
      EXPECT_EQ(table.elementAnswer(*definition, p, table.nameId("P")).allowed, allowed);
      definition->canContain(&text, nullptr, nullptr);
      sets = table.extend(sets, definition);
      definition->getContentText();
    }
  }
  EXPECT_EQ(liveNodes::count, nodes);
}

struct Shape {
  const char* name;
  std::function<std::string(std::size_t)> make;  // of about that many bytes
};

const Shape kShapes[] = {
    {"open list", [](std::size_t n) { return "<!ATTLIST P a CDATA #IMPLIED " + repeat("] ", n / 2); }},
    {"endless list", [](std::size_t n) { return "<!ATTLIST P" + repeat(" a CDATA #IMPLIED", n / 17); }},
    {"names times attributes",
     [](std::size_t n) {
       return "<!ATTLIST (" + repeat("P|", n / 4) + ")" + numbered(" a", " ID #IMPLIED", n / 40) + ">";
     }},
    {"open ignored section", [](std::size_t n) { return "<![IGNORE[" + repeat("<!ELEMENT X - - ANY>", n / 20); }},
    {"sections and ends", [](std::size_t n) { return repeat("<![INCLUDE[<", n / 15) + repeat("]]>", n / 15); }},
    {"parentheses", [](std::size_t n) { return "<!ELEMENT X - - " + repeat("(", n / 2) + repeat(")", n / 2) + ">"; }},
    {"inclusions", [](std::size_t n) { return "<!ELEMENT X - - A " + repeat("+ -", n / 3) + ">"; }},
    {"cycle", [](std::size_t n) { return numbered("<!ELEMENT X", " O O (X0)* +(X1) -(X)>", n / 30); }},
    {"lattice of omitted tags",
     [](std::size_t n) {
       std::string out = "<!ELEMENT X O O (X0|Y0)>";
       for (std::size_t i = 0; out.size() < n; ++i) {
         const std::string next = std::to_string(i + 1);
         out += "<!ELEMENT (X" + std::to_string(i) + "|Y" + std::to_string(i) + ") O O (X" + next + "|Y" + next + ")>";
       }
       return out;
     }},
    {"doubling entities",
     [](std::size_t n) {
       std::string out = "<!ENTITY % e0 'xxxxxxxxxxxxxxxxxxxx'>";
       for (std::size_t i = 0; out.size() < n; ++i) {
         const std::string last = std::to_string(i);
         out += "<!ENTITY % e" + std::to_string(i + 1) + " '%e" + last + ";%e" + last + ";'>";
       }
       return out;
     }},
    {"references in a literal",
     [](std::size_t n) { return "<!ENTITY % a 'x'><!ENTITY % b '" + repeat("%a;", n / 3) + "'>%b;"; }},
    {"references kept by a comment",
     [](std::size_t n) { return "<!ENTITY % a ''><!ENTITY % b 'A-- " + repeat("%a;", n / 3) + "'>%b;"; }},
    {"entity that holds itself", [](std::size_t n) { return "<!ENTITY % c 'A-- %c;'>" + repeat("%c; ", n / 4); }},
    {"closing quotes out of entities",
     [](std::size_t n) { return "<!ENTITY % q \"'\"><!ENTITY % d '\"'>" + repeat("%q; 'a%q; %d;\"b%d; ", n / 20); }},
    {"undeclared references", [](std::size_t n) { return repeat("<![INCLUDE[<%x;", n / 15); }},
    {"names times tokens",
     [](std::size_t n) { return "<!ELEMENT (" + repeat("X|", n / 4) + ") - - (" + repeat("P|", n / 4) + ")>"; }},
    {"many elements", [](std::size_t n) { return numbered("<!ELEMENT X", " - - (P) -(P)>", n / 30); }},
};

TEST(HostileDTD, EveryShapeEndsInTimeThatGrowsWithItsLength) {
  for (const Shape& shape : kShapes) {
    SCOPED_TRACE(shape.name);
    const std::string page = shape.make(1 << 20);
    const std::clock_t start = std::clock();
    onSmallStack([&] { readAsPage(page); });
    // Far above what a linear reader needs here, far below what a quadratic one does; of the processor, for others use
    // the machine too.
    EXPECT_LT(std::clock() - start, 20 * CLOCKS_PER_SEC);
  }
}

}  // namespace
}  // namespace zeldom40
