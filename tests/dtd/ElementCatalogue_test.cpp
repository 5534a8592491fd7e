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
  EXPECT_STREQ(GetHTML40ElementName(ID_NAMELESS), "");
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

// The bits that decide how a page is read: all names that have them.
TEST(Catalogue, RowsAgreeWithTheTableOfBits) {
  const std::pair<unsigned long, const char*> table[] = {
      {GROUP_PLAIN, "PRE TEXTAREA"},
      {GROUP_DOCUMENT, "BODY HEAD ZELROOT HTML"},
      {GROUP_ITEM, "DD DT LI"},
      {GROUP_SPAN_LIKE, "A FONT SPAN"},
      {GROUP_TABLE, "COL COLGROUP TABLE TBODY TFOOT THEAD TR"},
      {GROUP_TABLE_PART, "CAPTION COL COLGROUP TBODY TD TFOOT TH THEAD TR"},
      {GROUP_ANYWHERE,
       "jsp:scriptlet jsp:expression jsp:declaration jsp:directive.page jsp:directive.include "
       "jsp:directive.taglib jsp:directive jsp:useBean jsp:setProperty jsp:getProperty jsp:include "
       "jsp:forward jsp:plugin SERVLET BEAN INSERT DBCONNECT DBQUERY DBMODIFY qdx:dbconnect qdx:dbquery "
       "qdx:dbmodify DISPLAY ssi:include ZELX:PROPERTY ZELX:ATV"},
      {GROUP_XML_TAG,
       "jsp:directive.page jsp:directive.include jsp:directive.taglib jsp:useBean jsp:setProperty "
       "jsp:getProperty jsp:include jsp:forward jsp:param"},
      {GROUP_SCRIPT_DATA, "jsp:scriptlet jsp:expression jsp:declaration"},
      {GROUP_DIRECTIVE, "jsp:directive.page jsp:directive.include jsp:directive.taglib jsp:directive"},
      {GROUP_LOOP, "REPEAT LOOP ZELX:LOOP"},
      {GROUP_ATV, "jsp:scriptlet jsp:expression SERVLET INSERT DISPLAY ssi:include"},
      {GROUP_JSP_SOURCE, "jsp:scriptlet jsp:expression jsp:declaration jsp:directive.page jsp:directive.include"},
      {GROUP_NO_SOURCE, "jsp:directive.taglib jsp:directive ssi:include"}};
  for (const auto& [bit, names] : table) {
    std::string found;
    for (int id = 0; id < ID_NAMELESS; ++id) {
      if (CatalogueTables::group(id) & bit)
        found += (found.empty() ? "" : " ") + std::string(CatalogueTables::name(id));
    }
    EXPECT_EQ(found, names);
  }
}

TEST(Catalogue, DisplayNames) {
  EXPECT_EQ(GetHTML40DisplayName(nullptr), nullptr);
  const std::pair<HTML40ElementID, const char*> cases[] = {
      {ID_JSP_SCRIPTLET, "JSP Scriptlet"},
      {ID_JSP_DIRECTIVE_TAGLIB, "JSP Directive - TagLib"},
      {ID_SSI_INCLUDE, "SSI"},
      {ID_OBJECT, "X"},
      {ID_P, "X"},
  };
  for (const auto& [id, name] : cases) {
    Element element("X", nullptr);
    element.setElementID(id);
    EXPECT_STREQ(GetHTML40DisplayName(&element), name);
  }
  Element script("SCRIPT", nullptr);
  script.setElementID(ID_SCRIPT);
  EXPECT_STREQ(GetHTML40DisplayName(&script), "SCRIPT");
  script.setAttribute("RUNAT", "Server", false);
  EXPECT_STREQ(GetHTML40DisplayName(&script), "JSP Declaration");
}

}  // namespace
}  // namespace zeldom40
