// The element catalogue: look-ups, the JSP filter, rows against the table of group bits.
#include <map>
#include <sstream>
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
  const std::pair<const char*, int> cases[] = {
      {"TABLE", ID_TABLE},
      {"table", ID_NONE},
      {"UNKNOWN", ID_UNKNOWN},
      {"", ID_NONE},
      {"A", ID_A},
      {"a", ID_NONE},
      {"BLOCKQUOTES", ID_NONE},
      {"jsp:useBean", ID_JSP_USE_BEAN},
      {"JSP:useBean", ID_NONE},
      {"jsp:usebean", ID_NONE},
      {"jsp:", ID_NONE},
      {"jsp:directive", ID_JSP_DIRECTIVE},
      {"jsp:directive.page", ID_JSP_DIRECTIVE_PAGE},
      {"bean", ID_BEAN},
      {"DbQuery", ID_DBQUERY},
      {"LOOP", ID_NONE},
      {"DISPLAY", ID_NONE},
      {"qdx:dbquery", ID_QDX_DBQUERY},
      {"qdx:DBQUERY", ID_NONE},
      {"ssi:include", ID_SSI_INCLUDE},
      {"SSI:INCLUDE", ID_NONE},
      {"ZELX:text", ID_ZELX_TEXT},
      {"zelX:ATV", ID_ZELX_ATV},
      {"ZELX:", ID_NONE},
      {"ZELX", ID_NONE},
  };
  for (const auto& [name, id] : cases) EXPECT_EQ(CatalogueTables::find(name), id) << name;
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

TEST(Catalogue, RowsAgreeWithTheTableOfBits) {
  const std::pair<unsigned long, const char*> table[] = {
      {GROUP_BLOCK,
       "ADDRESS BLOCKQUOTE BODY BUTTON CAPTION CENTER COL COLGROUP DD DIR DIV DL DT FIELDSET FORM H1 H2 H3 "
       "H4 H5 H6 HR ISINDEX LI MENU NOSCRIPT OL P PRE TABLE TBODY TD TFOOT TH THEAD TR UL"},
      {GROUP_PLAIN, "PRE TEXTAREA"},
      {GROUP_BREAK, "BR"},
      {GROUP_NOWRAP,
       "APPLET BASEFONT EMBED IMG INPUT MAP OBJECT SCRIPT SELECT TEXTAREA UNKNOWN jsp:scriptlet "
       "jsp:expression jsp:declaration jsp:directive.page jsp:directive.include jsp:directive.taglib "
       "jsp:directive jsp:useBean jsp:setProperty jsp:getProperty jsp:include jsp:forward jsp:plugin SERVLET "
       "BEAN INSERT DBCONNECT DBQUERY DBMODIFY qdx:dbconnect qdx:dbquery qdx:dbmodify DISPLAY ssi:include "
       "ZELX:PROPERTY"},
      {GROUP_STRUCTURE,
       "AREA BASE FRAME FRAMESET HEAD HTML LINK META NOFRAMES OPTGROUP OPTION PARAM STYLE TITLE "
       "jsp:declaration jsp:directive.page jsp:directive.include jsp:directive.taglib jsp:directive "
       "jsp:useBean jsp:setProperty jsp:params jsp:fallback jsp:param"},
      {GROUP_LIST, "COLGROUP DIR DL MENU OL TABLE TBODY TFOOT THEAD TR UL"},
      {GROUP_PHRASE, "ABBR ACRONYM B BLINK CITE CODE DFN EM I KBD Q S SAMP STRIKE STRONG TT U VAR"},
      {GROUP_TEXT_LEVEL,
       "A ABBR ACRONYM ADDRESS B BDO BIG BLINK BLOCKQUOTE CITE CODE DD DFN DIR DL DT EM FONT H1 H2 H3 H4 H5 "
       "H6 I KBD MENU OL P PRE Q S SAMP SMALL STRIKE STRONG SUB SUP TABLE TBODY TFOOT THEAD TT U UL VAR"},
      {GROUP_SKELETON, "BODY CAPTION HEAD HTML NOFRAMES TBODY TFOOT THEAD TITLE"},
      {GROUP_DOCUMENT, "BODY HEAD ZELROOT HTML"},
      {GROUP_SINGLE, "CAPTION HEAD"},
      {GROUP_ITEM, "DD DT LI"},
      {GROUP_ANCHOR, "A"},
      {GROUP_SPAN_LIKE, "A FONT SPAN"},
      {GROUP_PART,
       "AREA CAPTION COLGROUP DD DT LEGEND LI OPTGROUP OPTION PARAM TBODY TD TFOOT TH THEAD TR jsp:params "
       "jsp:fallback jsp:param"},
      {GROUP_SERVER,
       "SCRIPT jsp:scriptlet jsp:declaration jsp:directive.page jsp:directive.include jsp:directive.taglib "
       "jsp:directive jsp:useBean jsp:setProperty jsp:getProperty jsp:include jsp:forward jsp:plugin SERVLET "
       "BEAN REPEAT DBCONNECT DBQUERY DBMODIFY qdx:dbconnect qdx:dbquery qdx:dbmodify LOOP ssi:include "
       "ZELX:LOOP"},
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
      {GROUP_SSI, "ssi:include"},
      {GROUP_LOOP, "REPEAT LOOP ZELX:LOOP"},
      {GROUP_ATV, "jsp:scriptlet jsp:expression SERVLET INSERT DISPLAY ssi:include"},
      {GROUP_JSP_SOURCE, "jsp:scriptlet jsp:expression jsp:declaration jsp:directive.page jsp:directive.include"},
      {GROUP_NO_SOURCE, "jsp:directive.taglib jsp:directive ssi:include"},
      {GROUP_JSP_XML,
       "jsp:scriptlet jsp:expression jsp:declaration jsp:directive.page jsp:directive.include jsp:useBean "
       "jsp:setProperty jsp:getProperty jsp:include jsp:forward jsp:plugin jsp:params jsp:fallback jsp:param "
       "qdx:dbconnect qdx:dbquery qdx:dbmodify"},
  };
  std::map<std::string, unsigned long> groups;
  unsigned long all = 0;
  for (const auto& [bit, names] : table) {
    EXPECT_EQ(all & bit, 0u);
    all |= bit;
    std::istringstream words(names);
    for (std::string name; words >> name;) groups[name] |= bit;
  }
  for (int id = 0; id <= ID_NAMELESS; ++id) {
    const char* name = CatalogueTables::name(id);
    EXPECT_EQ(CatalogueTables::group(id), name ? groups[name] : 0) << id;
  }
}

TEST(Catalogue, RequiredNeighboursAreElementsOfTheCatalogue) {
  int parents = 0;
  int children = 0;
  for (int id = -1; id <= 140; ++id) {
    const int parent = CatalogueTables::requiredParentID(id);
    const int child = CatalogueTables::requiredChildID(id);
    if (parent != ID_NONE) ++parents;
    if (child != ID_NONE) ++children;
    EXPECT_TRUE(parent == ID_NONE || CatalogueTables::name(parent)) << id;
    EXPECT_TRUE(child == ID_NONE || CatalogueTables::name(child)) << id;
  }
  EXPECT_EQ(parents, 30);
  EXPECT_EQ(children, 6);
  EXPECT_EQ(CatalogueTables::requiredParentID(ID_TR), ID_TBODY);
  EXPECT_EQ(CatalogueTables::requiredParentID(ID_JSP_PARAM), ID_JSP_PARAMS);
  EXPECT_EQ(CatalogueTables::requiredChildID(ID_TABLE), ID_TBODY);
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
