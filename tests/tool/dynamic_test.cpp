// Runs runtime, pairs and beans: what of a page a server gets, and what is known of it.
#include <string>

#include "tests/tool/ToolTest.h"

namespace {

std::string pair(const std::string& type, const std::string& source, const std::string& text) {
  return "<!--METADATA type=\"" + type + "\" startspan\n" + source + "\n-->" + text + "<!--METADATA type=\"" + type +
         "\" endspan-->";
}

const std::string kProperty = "<ZELX:PROPERTY PROPERTY=\"cart.title\">";
const std::string kLoop =
    "<ZELX:LOOP LOOPPROPERTY=\"cart.items[]\"><ZELX:PROPERTY PROPERTY=\"cart.items[].price\"></ZELX:LOOP>";

class Dynamic : public ToolTest {};

TEST_F(Dynamic, PairsTellTheStateAndThePlaceInTheFile) {
  struct Case {
    const char* name;
    std::string page;
    const char* shown;
    int code;
  };
  const std::string property = pair("DynamicData", kProperty, "<%= cart.getTitle() %>");
  const Case cases[] = {
      {"current", property, "DynamicData <ZELX:PROPERTY>: current", 0},
      {"different", pair("DynamicData", kProperty, "old"), "DynamicData <ZELX:PROPERTY>: different", 1},
      {"empty", pair("DynamicData", kProperty, ""), "DynamicData <ZELX:PROPERTY>: empty", 1},
      {"no generator", pair("DynamicData", "<INPUT DYNAMICELEMENT TYPE=password>", "x"), "DynamicData <INPUT>: kept",
       0},
      {"no control", pair("DesignerControl", "<OBJECT></OBJECT>", "x"), "DesignerControl <OBJECT>: kept", 0},
      {"visual", pair("AuthorTimeVisual", "<ZELX:ATV></ZELX:ATV>", "<SERVLET></SERVLET>"),
       "AuthorTimeVisual <SERVLET>: current", 0},
      {"new", kProperty, "DynamicData <ZELX:PROPERTY>: new", 0},
  };
  for (const Case& each : cases) {
    // What stands before has another length once it is saved.
    write("a", "<HTML><BODY>\n<P>\xC3\xA9 " + kLoop + pair("DynamicData", kProperty, "<%= cart.getTitle() %>") + "\n " +
                   each.page + "\n" + property);
    const Result result = run("pairs a");
    EXPECT_EQ(result.code, each.code) << each.name;
    EXPECT_EQ(
        result.out,
        std::string("a:2:6: DynamicData <ZELX:LOOP>: new\na:2:102: DynamicData <ZELX:PROPERTY>: current\na:5:2: ") +
            each.shown + "\n" + (each.page == kProperty ? "a:6:1" : "a:8:1") +
            ": DynamicData <ZELX:PROPERTY>: current\n")
        << each.name;
    // No other command may make anything of the pairs.
    EXPECT_EQ(run("fix a").out, readFile(path("a"))) << each.name;
    EXPECT_EQ(run("check a").out, "") << each.name;
  }
}

TEST_F(Dynamic, WhatIsBrokenBesidePairsIsRepairedAndTheyStay) {
  const std::string before =
      "<HTML><HEAD><TITLE>t</TITLE></HEAD><BODY>\n" + pair("DynamicData", kLoop, "stale") + kLoop + "\n";
  write("a", before + "<P><I>one</P>\n</BODY></HTML>\n");
  EXPECT_EQ(run("fix a").out, before + "<P><I>one</I></P>\n</BODY></HTML>\n");
  EXPECT_EQ(run("check a").out.substr(0, 6), "a:5:4:");
}

TEST_F(Dynamic, RuntimeKeepsBytesThatAreNotDynamic) {
  const std::string text = pair("DynamicData", kProperty, "old");
  write("a", "<P>a\r\n<P>" + text + "\r\n<P>\xE9\n<P>\x1b\r" + text);
  EXPECT_EQ(run("runtime a").out, "<P>a\r\n<P><%= cart.getTitle() %>\r\n<P>\xE9\n<P>\x1b\r<%= cart.getTitle() %>");
  EXPECT_EQ(run("runtime --keep a | grep -c startspan").out, "2\n");
}

TEST_F(Dynamic, MistakesInTheFileOfTypesAreTold) {
  write("a", kLoop);
  const std::pair<const char*, const char*> wrong[] = {
      {"[", "is no JSON object"},
      {"{\"bean\": {}}", "has an unknown member \"bean\""},
      {"{\"beans\": 1}", "\"beans\" and \"classes\" must be objects"},
      {"{\"beans\": {\"a\": 1}}", "the class of bean \"a\" must be a string"},
      {"{\"classes\": {\"A\": {\"b\": {\"getter\": \"c\"}}}}", "property \"b\" of \"A\" has no type"},
      {"{\"classes\": {\"A\": {\"b\": {\"type\": \"c\", \"getter\": [\"d\"]}}}}",
       "property \"b\" of \"A\": the getter must be a string"},
  };
  for (const auto& [json, message] : wrong) {
    write("t.json", json);
    const Result result = run("runtime --types t.json a");
    EXPECT_EQ(result.code, 2) << json;
    EXPECT_EQ(result.err, std::string("zeldom: t.json: ") + message + "\n");
  }
}

TEST_F(Dynamic, BeansFollowTheVersionOfTheServer) {
  write("t.json", R"({"beans": {"cart": "Cart"}})");
  const std::string page = "<jsp:useBean id=a class=A /><BEAN NAME=b TYPE=B></BEAN>";
  EXPECT_EQ(run("beans --types t.json - | grep -v java", page).out, "-: a A\n-: cart Cart\n");
  EXPECT_EQ(run("beans --jsp-version 1 - | grep -v java", page).out, "-: b B\n");
}

TEST_F(Dynamic, TheExampleShopIsCurrent) {
  place_ = ZELDOM40_SOURCE_DIR "/examples/shop";
  EXPECT_EQ(run("check *.jsp").out, "");
  // Everything has a type.
  EXPECT_EQ(run("runtime --types types.json *.jsp | grep 'Object[] _\\|Object _\\|METADATA'").out, "");
}

}  // namespace
