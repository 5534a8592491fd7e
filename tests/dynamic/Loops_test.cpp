// Lists, loops, texts and selects.
#include <pthread.h>
#include <sys/resource.h>
#include <thread>

#include "tests/dynamic/DynamicTest.h"

namespace zeldom40 {
namespace {

class LoopsTest : public DynamicTest {
 protected:
  // The text with every line of the loop's frame for `variables` taken out, for cases about what stands between.
  static bool holds(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }
};

TEST_F(LoopsTest, AListWithTypesFromTheHost) {
  FakeTypes host;
  host.types["cart.items[]"] = "shop.Item";
  host.getters["shop.Item.price"] = "fetchPrice";
  dom_->setJavaTypeLookupIF(&host);
  doc_->addOutBoundBean("cart", "shop.Cart");
  EXPECT_EQ(generated("UL",
                      "<UL DYNAMICELEMENT LOOPPROPERTY=cart.items[] VARPREFIX=x FONTTEXT=none>"
                      "<LI><ZELX:PROPERTY PROPERTY=cart.items[].name><ZELX:PROPERTY PROPERTY=cart.items[].price>"
                      "</UL>"),
            R"(<%
try {
  shop.Item[] x_a0 = cart.getItems();
  shop.Item x_p0 = x_a0[0]; // throws an exception if empty. %>
  <UL><%
    for (int x_i0 = 0; ; ) { %>
      <LI><%= x_p0.getName() %><%= x_p0.fetchPrice() %><%
      x_i0++;
      try {
        x_p0 = x_a0[x_i0];
      }
      catch (java.lang.ArrayIndexOutOfBoundsException x_e0) {
        break;
      }
    } %>
  </UL><%
}
catch (java.lang.ArrayIndexOutOfBoundsException x_e0) {
  %><FONT>none</FONT><%
}~)");
  EXPECT_EQ(host.results, 0);
  dom_->setJavaTypeLookupIF(nullptr);
}

TEST_F(LoopsTest, ALoopOverAnIndexedGetterWithParallelProperties) {
  EXPECT_EQ(generated("ZELX:LOOP",
                      "<ZELX:LOOP LOOPPROPERTY=b.item() IMGSRC=e.gif IMGWIDTH=3><ZELX:PROPERTY PROPERTY=b.item()>"
                      "<ZELX:PROPERTY PROPERTY=b.other[].n><ZELX:PROPERTY PROPERTY=b.other[].m>"
                      "<ZELX:PROPERTY PROPERTY=c.next().n></ZELX:LOOP>"),
            R"(<%
try {
  Object _p0 = b.getItem(0); // throws an exception if empty.
  Object[] _a0_0 = b.getOther();
  Object _p0_0 = _a0_0[0];
  Object _p0_2 = c.getNext(0);
  for (int _i0 = 0; ; ) { %><%= _p0 %><%= _p0_0.getN() %><%= _p0_0.getM() %><%= _p0_2.getN() %><%
    _i0++;
    try {
      _p0 = b.getItem(_i0);
      _p0_0 = _a0_0[_i0];
      _p0_2 = c.getNext(_i0);
    }
    catch (java.lang.ArrayIndexOutOfBoundsException _e0) {
      break;
    }
  }
}
catch (java.lang.ArrayIndexOutOfBoundsException _e0) {
  %><IMG SRC="e.gif" WIDTH="3"><%
}~)");
}

TEST_F(LoopsTest, ALoopInALoopReadsItsArrayFromTheOuterVariable) {
  const std::string text =
      generated("UL",
                "<UL DYNAMICELEMENT LOOPPROPERTY=a.b[]><LI><OL DYNAMICELEMENT LOOPPROPERTY=a.b[].c[]>"
                "<LI><ZELX:PROPERTY PROPERTY=a.b[].c[].d><ZELX:PROPERTY PROPERTY=a.b[].e>"
                "<ZELX:PROPERTY PROPERTY=a.b[].f[].g></OL></UL>");
  for (const char* part : {"Object[] _a0 = a.getB();", "Object[] _a1 = _p0.getC();", "Object[] _a1_0 = _p0.getF();",
                           "<%= _p1.getD() %><%= _p0.getE() %><%= _p1_0.getG() %>", "_p1_0 = _a1_0[_i1];"})
    EXPECT_TRUE(holds(text, part)) << part << "\nin\n" << text;
}

TEST_F(LoopsTest, ALoopWithoutALoopPropertyWritesNothing) {
  for (const char* page : {"<UL DYNAMICELEMENT LOOPPROPERTY=a.b><LI>x</UL>", "<UL DYNAMICELEMENT><LI>x</UL>",
                           "<UL DYNAMICELEMENT><LI><UL DYNAMICELEMENT LOOPPROPERTY=a.b[]></UL></UL>"})
    EXPECT_EQ(generated("UL", page), "") << page;
}

TEST_F(LoopsTest, ATextSeparatesItsElements) {
  const struct {
    const char* attributes;
    const char* separator;  // between the fetch of the next element and the end of its try
  } cases[] = {
      {"", ""},
      {"DELIMITER=', '", "      %>, <%\n"},
      {"DELIMITER=', ' LASTDELIMITER=' and '", R"(      try {
        Object o = _a0[_i0 + 1];
        %>, <%
      }
      catch (java.lang.ArrayIndexOutOfBoundsException _e0) {
        %> and <%
      }
)"},
      {"DELIMITERFORTWO=' or '", R"(      try {
        Object o = _a0[_i0 + 1];
      }
      catch (java.lang.ArrayIndexOutOfBoundsException _e0) {
        if (_i0 == 1) {
          %> or <%
        }
      }
)"},
      {"DELIMITER=', ' DELIMITERFORTWO=' or '", R"(      try {
        Object o = _a0[_i0 + 1];
        %>, <%
      }
      catch (java.lang.ArrayIndexOutOfBoundsException _e0) {
        if (_i0 == 1) {
          %> or <%
        }
        else {
          %>, <%
        }
      }
)"},
  };
  for (const auto& c : cases)
    EXPECT_EQ(generated("ZELX:TEXT", std::string("<P><ZELX:TEXT LOOPPROPERTY=a.b[] ") + c.attributes +
                                         "><ZELX:PROPERTY PROPERTY=a.b[]></ZELX:TEXT>"),
              std::string(R"(<%
try {
  Object[] _a0 = a.getB();
  Object _p0 = _a0[0]; // throws an exception if empty.
  for (int _i0 = 0; ; ) { %><%= _p0 %><%
    _i0++;
    try {
      _p0 = _a0[_i0];
)") + c.separator +
                  R"(    }
    catch (java.lang.ArrayIndexOutOfBoundsException _e0) {
      break;
    }
  }
}
catch (java.lang.ArrayIndexOutOfBoundsException _e0) {
}~)") << c.attributes;
}

TEST_F(LoopsTest, ASelectMakesItsOptions) {
  const struct {
    const char* attributes;
    const char* option;  // between the heads and the tail of its loop
  } cases[] = {
      {"ITEMPROPERTY=a.b[].n", " %>\n      <OPTION><%= _p0.getN() %></OPTION><%\n"},
      {"CONSTITEM=x CONSTVALUE=y CONSTDEFAULTPROPERTY=y", " %>\n      <OPTION value=\"y\">x</OPTION><%\n"},
      {"CONSTITEM=x CONSTVALUE=y DEFAULTPROPERTY=c.d", R"(
      if (c.getD().equals("y")) { %>
        <OPTION selected value="y">x</OPTION><%
      }
      else { %>
        <OPTION value="y">x</OPTION><%
      }
)"},
      {"ITEMPROPERTY=a.b[] VALUEPROPERTY=a.b[].v DEFAULTPROPERTY=c.d CONSTDEFAULTPROPERTY=z", R"(
      if (_p0.getV().equals(c.getD())) { %>
        <OPTION selected value="<%= _p0.getV() %>"><%= _p0 %></OPTION><%
      }
      else { %>
        <OPTION value="<%= _p0.getV() %>"><%= _p0 %></OPTION><%
      }
)"},
      {"VALUEPROPERTY=a.b[].v CONSTDEFAULTPROPERTY=z", R"(
      if (_p0.getV().equals("z")) { %>
        <OPTION selected value="<%= _p0.getV() %>"></OPTION><%
      }
      else { %>
        <OPTION value="<%= _p0.getV() %>"></OPTION><%
      }
)"},
  };
  for (const auto& c : cases)
    EXPECT_EQ(generated("SELECT", std::string("<FORM><SELECT NAME=s DYNAMICELEMENT LOOPPROPERTY=a.b[] ") +
                                      c.attributes + "><OPTION>design</OPTION></SELECT>"),
              std::string(R"(<%
try {
  Object[] _a0 = a.getB();
  Object _p0 = _a0[0]; // throws an exception if empty.
  %><SELECT name="s"><%
    for (int _i0 = 0; ; ) {)") +
                  c.option + R"(      _i0++;
      try {
        _p0 = _a0[_i0];
      }
      catch (java.lang.ArrayIndexOutOfBoundsException _e0) {
        break;
      }
    } %>
  </SELECT><%
}
catch (java.lang.ArrayIndexOutOfBoundsException _e0) {
}~)") << c.attributes;
}

TEST_F(LoopsTest, AnElementInALoopIsResolvedWhenAskedAlone) {
  loadDynamic(
      "<UL DYNAMICELEMENT LOOPPROPERTY=a.b[]><LI><ZELX:PROPERTY PROPERTY=a.b[].c>"
      "<ZELX:TEXT LOOPPROPERTY=a.b[].d[]></ZELX:TEXT></UL>");
  EXPECT_EQ(generated(element("ZELX:PROPERTY")), "<%= _p0.getC() %>");
  EXPECT_TRUE(holds(generated(element("ZELX:TEXT")), "_a1 = _p0.getD()"));
  // Without the loop around there is nothing that could hold the property.
  element("UL")->deleteAttribute("LOOPPROPERTY");
  EXPECT_EQ(generated(element("ZELX:PROPERTY")), "<%= a.b[].getC() %>");
  EXPECT_EQ(generated(element("ZELX:TEXT")), "");
}

TEST_F(LoopsTest, ASaveOfAPageDoesNotDependOnWhatWasAskedBefore) {
  load(
      "<UL DYNAMICELEMENT LOOPPROPERTY=a.b[]><LI><ZELX:TEXT LOOPPROPERTY=a.b[].c[]></ZELX:TEXT>"
      "<ZELX:LOOP LOOPPROPERTY=a.b[].d[]></ZELX:LOOP></UL>");
  const std::string saved = source();
  load(saved);
  const std::string alone = source(element("ZELX:LOOP"));
  EXPECT_TRUE(holds(alone, "--><%")) << alone;
  EXPECT_EQ(source(), saved);
  EXPECT_FALSE(doc_->isRuntimeTextDifferent());
}

TEST_F(LoopsTest, ACopyInsideItsOriginalGetsALoopOfItsOwn) {
  loadDynamic("<UL DYNAMICELEMENT LOOPPROPERTY=a.b[]><LI>x</UL>");
  Element* list = element("UL");
  Node* copy = list->makeClone(true);
  copy->addRef(true);
  element("LI")->insertLast(copy);
  const std::string text = generated(list);
  EXPECT_TRUE(holds(text, "Object[] _a0 = ")) << text;
  EXPECT_TRUE(holds(text, "Object[] _a1 = ")) << text;
}

TEST_F(LoopsTest, NestingCostsNeitherStackNorMoreThanItsLength) {
  constexpr int kDepth = 30000;
  std::string page;
  for (int i = 0; i < kDepth; ++i) page += "<UL DYNAMICELEMENT LOOPPROPERTY=a[].b[]><LI>";
  loadDynamic(page);
  struct Job {
    MetaData* list;
    std::size_t length;
  } job{element("UL")->getMetaData(), 0};
  pthread_attr_t small;
  pthread_attr_init(&small);
  pthread_attr_setstacksize(&small, 1 << 18);
  pthread_t thread;
  const auto run = [](void* argument) -> void* {
    std::string out;
    RuntimeTextState state;
    MetaData* list = static_cast<Job*>(argument)->list;
    list->getDynamicData()->generate(list, out, state);
    static_cast<Job*>(argument)->length = out.size();
    return nullptr;
  };
  ASSERT_EQ(pthread_create(&thread, &small, run, &job), 0);
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&small);
  EXPECT_GT(job.length, std::size_t{500} * kDepth);
  EXPECT_LT(job.length, std::size_t{4000} * kDepth);
}

}  // namespace
}  // namespace zeldom40
