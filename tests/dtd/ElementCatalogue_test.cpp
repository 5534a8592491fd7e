// The element catalogue: look-ups, the JSP filter, rows against the table of group bits.
#include <string>

#include <gtest/gtest.h>

#include "dom/document/DOM.h"
#include "dom/dtd/CatalogueTables.h"
#include "dom/tree/Element.h"

namespace zeldom40 {
namespace {

struct DomGuard {
  explicit DomGuard(DOM::JSPVersion version) : dom(DOM::createDOM(nullptr, version, nullptr, nullptr)) {}
  ~DomGuard() { DOM::destroyDOM(dom); }
  DOM* dom;
};

TEST(Catalogue, RawLookUpTakesTheFirstRuleThatFits) {
  for (const char* name : {"", "a", "table", "BLOCKQUOTES", "JSP:useBean", "jsp:usebean", "jsp:", "LOOP", "DISPLAY",
                           "qdx:DBQUERY", "SSI:INCLUDE", "ZELX:", "ZELX"}) {
    EXPECT_EQ(CatalogueTables::find(name), ID_NONE) << name;
  }
  EXPECT_EQ(CatalogueTables::find("DbQuery"), ID_DBQUERY);
  EXPECT_EQ(CatalogueTables::find("zelX:aTV"), ID_ZELX_ATV);
  for (int id = -2; id < 140; ++id) {
    const char* name = CatalogueTables::name(id);
    if (!name || id == ID_LOOP || id == ID_DISPLAY || id == ID_NAMELESS) continue;
    EXPECT_EQ(CatalogueTables::find(name), id) << name;
  }
}

TEST(Catalogue, IdentifiersWithoutARowHaveNothing) {
  for (int id : {-1, 97, 99, 129, 130, 136, 1 << 30}) {
    EXPECT_EQ(GetHTML40ElementName(id), nullptr) << id;
    EXPECT_EQ(GetHTML40ElementGroup(id), 0u) << id;
    EXPECT_EQ(CatalogueTables::flags(id), 0u) << id;
  }
  EXPECT_EQ(GetHTML40ElementGroup(ID_UNKNOWN), GROUP_NOWRAP);
  EXPECT_EQ(GetHTML40ElementID(nullptr), ID_NONE);
}

TEST(Catalogue, OldTagsAndNewActionsNeverShowTogether) {
  const auto shown = [] {
    std::string ids;
    for (int id = 100; id <= 128; ++id) {
      if (GetHTML40ElementName(id)) ids += std::to_string(id) + ' ';
    }
    return ids;
  };
  const std::string withActions =
      "100 101 102 103 104 105 106 107 108 109 110 111 112 113 114 115 116 123 124 125 126 127 128 ";
  EXPECT_EQ(shown(), withActions) << "no DOM";
  EXPECT_EQ(GetHTML40ElementID("bean"), ID_NONE);
  DomGuard old(DOM::JSP_VERSION_0);
  EXPECT_EQ(shown(), withActions);
  DomGuard newest(DOM::JSP_VERSION_1);
  EXPECT_EQ(shown(), "100 101 102 106 116 117 118 119 120 121 122 126 127 128 ");
  EXPECT_EQ(GetHTML40ElementID("bean"), ID_BEAN);
  EXPECT_EQ(GetHTML40ElementID("jsp:useBean"), ID_NONE);
}

TEST(Catalogue, DisplayNames) {
  EXPECT_EQ(GetHTML40DisplayName(nullptr), nullptr);
  const std::pair<HTML40ElementID, const char*> cases[] = {
      {ID_JSP_SCRIPTLET, "JSP Scriptlet"},
      {ID_JSP_DIRECTIVE_TAGLIB, "JSP Directive - TagLib"},
      {ID_SSI_INCLUDE, "SSI"},
      {ID_OBJECT, "X"},
  };
  for (const auto& [id, name] : cases) {
    Element element("X", nullptr);
    element.setElementID(id);
    EXPECT_STREQ(GetHTML40DisplayName(&element), name);
  }
  Element script("SCRIPT", nullptr);
  script.setElementID(ID_SCRIPT);
  script.setAttribute("RUNAT", "Server", false);
  EXPECT_STREQ(GetHTML40DisplayName(&script), "JSP Declaration");
}

}  // namespace
}  // namespace zeldom40
