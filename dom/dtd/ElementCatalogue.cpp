// The element catalogue: names, group words, JSP generations, and which element calls for which around it.
#include "dom/dtd/ElementCatalogue.h"

#include <array>
#include <cstdint>

#include "dom/document/DOM.h"
#include "dom/dtd/CatalogueTables.h"
#include "dom/source/CharHelpers.h"
#include "dom/tree/Element.h"

namespace zeldom40 {

namespace {

struct Row {
  HTML40ElementID id;
  const char* name;
  std::uint32_t group;
  std::uint32_t flags;  // the JSP generation: 1 the old tags, 2 the jsp: and qdx: tags
};

constexpr Row kRows[] = {
    {ID_A, "A", 0x3080, 0},
    {ID_ABBR, "ABBR", 0xC0, 0},
    {ID_ACRONYM, "ACRONYM", 0xC0, 0},
    {ID_ADDRESS, "ADDRESS", 0x81, 0},
    {ID_APPLET, "APPLET", 0x8, 0},
    {ID_AREA, "AREA", 0x4010, 0},
    {ID_B, "B", 0xC0, 0},
    {ID_BASE, "BASE", 0x10, 0},
    {ID_BASEFONT, "BASEFONT", 0x8, 0},
    {ID_BDO, "BDO", 0x80, 0},
    {ID_BIG, "BIG", 0x80, 0},
    {ID_BLINK, "BLINK", 0xC0, 0},
    {ID_BLOCKQUOTE, "BLOCKQUOTE", 0x81, 0},
    {ID_BODY, "BODY", 0x301, 0},
    {ID_BR, "BR", 0x4, 0},
    {ID_BUTTON, "BUTTON", 0x1, 0},
    {ID_CAPTION, "CAPTION", 0x24501, 0},
    {ID_CENTER, "CENTER", 0x1, 0},
    {ID_CITE, "CITE", 0xC0, 0},
    {ID_CODE, "CODE", 0xC0, 0},
    {ID_COL, "COL", 0x30001, 0},
    {ID_COLGROUP, "COLGROUP", 0x34021, 0},
    {ID_K9V, "K9V", 0x0, 0},
    {ID_DD, "DD", 0x4881, 0},
    {ID_DEL, "DEL", 0x0, 0},
    {ID_DFN, "DFN", 0xC0, 0},
    {ID_DIR, "DIR", 0xA1, 0},
    {ID_DIV, "DIV", 0x1, 0},
    {ID_DL, "DL", 0xA1, 0},
    {ID_DT, "DT", 0x4881, 0},
    {ID_EM, "EM", 0xC0, 0},
    {ID_EMBED, "EMBED", 0x8, 0},
    {ID_FIELDSET, "FIELDSET", 0x1, 0},
    {ID_FONT, "FONT", 0x2080, 0},
    {ID_FORM, "FORM", 0x1, 0},
    {ID_FRAME, "FRAME", 0x10, 0},
    {ID_FRAMESET, "FRAMESET", 0x10, 0},
    {ID_H1, "H1", 0x81, 0},
    {ID_H2, "H2", 0x81, 0},
    {ID_H3, "H3", 0x81, 0},
    {ID_H4, "H4", 0x81, 0},
    {ID_H5, "H5", 0x81, 0},
    {ID_H6, "H6", 0x81, 0},
    {ID_HEAD, "HEAD", 0x710, 0},
    {ID_ZELROOT, "ZELROOT", 0x200, 0},
    {ID_ZELTEMP, "ZELTEMP", 0x0, 0},
    {ID_HR, "HR", 0x1, 0},
    {ID_HTML, "HTML", 0x310, 0},
    {ID_I, "I", 0xC0, 0},
    {ID_IFRAME, "IFRAME", 0x0, 0},
    {ID_IMG, "IMG", 0x8, 0},
    {ID_INPUT, "INPUT", 0x8, 0},
    {ID_INS, "INS", 0x0, 0},
    {ID_ISINDEX, "ISINDEX", 0x1, 0},
    {ID_KBD, "KBD", 0xC0, 0},
    {ID_LABEL, "LABEL", 0x0, 0},
    {ID_LEGEND, "LEGEND", 0x4000, 0},
    {ID_LI, "LI", 0x4801, 0},
    {ID_LINK, "LINK", 0x10, 0},
    {ID_MAP, "MAP", 0x8, 0},
    {ID_MENU, "MENU", 0xA1, 0},
    {ID_META, "META", 0x10, 0},
    {ID_NOFRAMES, "NOFRAMES", 0x110, 0},
    {ID_NOSCRIPT, "NOSCRIPT", 0x1, 0},
    {ID_OBJECT, "OBJECT", 0x8, 0},
    {ID_OL, "OL", 0xA1, 0},
    {ID_OPTGROUP, "OPTGROUP", 0x4010, 0},
    {ID_OPTION, "OPTION", 0x4010, 0},
    {ID_P, "P", 0x81, 0},
    {ID_PARAM, "PARAM", 0x4010, 0},
    {ID_PRE, "PRE", 0x83, 0},
    {ID_Q, "Q", 0xC0, 0},
    {ID_S, "S", 0xC0, 0},
    {ID_SAMP, "SAMP", 0xC0, 0},
    {ID_SCRIPT, "SCRIPT", 0x8008, 0},
    {ID_SELECT, "SELECT", 0x8, 0},
    {ID_SMALL, "SMALL", 0x80, 0},
    {ID_SPAN, "SPAN", 0x2000, 0},
    {ID_STRIKE, "STRIKE", 0xC0, 0},
    {ID_STRONG, "STRONG", 0xC0, 0},
    {ID_STYLE, "STYLE", 0x10, 0},
    {ID_SUB, "SUB", 0x80, 0},
    {ID_SUP, "SUP", 0x80, 0},
    {ID_TABLE, "TABLE", 0x100A1, 0},
    {ID_TBODY, "TBODY", 0x341A1, 0},
    {ID_TD, "TD", 0x24001, 0},
    {ID_TEXTAREA, "TEXTAREA", 0xA, 0},
    {ID_TFOOT, "TFOOT", 0x341A1, 0},
    {ID_TH, "TH", 0x24001, 0},
    {ID_THEAD, "THEAD", 0x341A1, 0},
    {ID_TITLE, "TITLE", 0x110, 0},
    {ID_TR, "TR", 0x34021, 0},
    {ID_TT, "TT", 0xC0, 0},
    {ID_U, "U", 0xC0, 0},
    {ID_UL, "UL", 0xA1, 0},
    {ID_UNKNOWN, "UNKNOWN", 0x8, 0},
    {ID_VAR, "VAR", 0xC0, 0},
    {ID_JSP_SCRIPTLET, "jsp:scriptlet", 0x26288008, 0},
    {ID_JSP_EXPRESSION, "jsp:expression", 0x26280008, 0},
    {ID_JSP_DECLARATION, "jsp:declaration", 0x24288018, 2},
    {ID_JSP_DIRECTIVE_PAGE, "jsp:directive.page", 0x24588018, 2},
    {ID_JSP_DIRECTIVE_INCLUDE, "jsp:directive.include", 0x24588018, 2},
    {ID_JSP_DIRECTIVE_TAGLIB, "jsp:directive.taglib", 0x8588018, 2},
    {ID_JSP_DIRECTIVE, "jsp:directive", 0x8488018, 0},
    {ID_JSP_USE_BEAN, "jsp:useBean", 0x20188018, 2},
    {ID_JSP_SET_PROPERTY, "jsp:setProperty", 0x20188018, 2},
    {ID_JSP_GET_PROPERTY, "jsp:getProperty", 0x20188008, 2},
    {ID_JSP_INCLUDE, "jsp:include", 0x20188008, 2},
    {ID_JSP_FORWARD, "jsp:forward", 0x20188008, 2},
    {ID_JSP_PLUGIN, "jsp:plugin", 0x20088008, 2},
    {ID_JSP_PARAMS, "jsp:params", 0x20004010, 2},
    {ID_JSP_FALLBACK, "jsp:fallback", 0x20004010, 2},
    {ID_JSP_PARAM, "jsp:param", 0x20104010, 2},
    {ID_SERVLET, "SERVLET", 0x2088008, 0},
    {ID_BEAN, "BEAN", 0x88008, 1},
    {ID_REPEAT, "REPEAT", 0x1008000, 1},
    {ID_INSERT, "INSERT", 0x2080008, 1},
    {ID_DBCONNECT, "DBCONNECT", 0x88008, 1},
    {ID_DBQUERY, "DBQUERY", 0x88008, 1},
    {ID_DBMODIFY, "DBMODIFY", 0x88008, 1},
    {ID_QDX_DBCONNECT, "qdx:dbconnect", 0x20088008, 2},
    {ID_QDX_DBQUERY, "qdx:dbquery", 0x20088008, 2},
    {ID_QDX_DBMODIFY, "qdx:dbmodify", 0x20088008, 2},
    {ID_LOOP, "LOOP", 0x1008000, 0},
    {ID_DISPLAY, "DISPLAY", 0x2080008, 0},
    {ID_SSI_INCLUDE, "ssi:include", 0xA888008, 0},
    {ID_ZELX_TEXT, "ZELX:TEXT", 0x0, 0},
    {ID_ZELX_LOOP, "ZELX:LOOP", 0x1008000, 0},
    {ID_ZELX_PROPERTY, "ZELX:PROPERTY", 0x80008, 0},
    {ID_ZELX_ATV, "ZELX:ATV", 0x80000, 0},
    {ID_NAMELESS, "", 0x0, 0},
};
static_assert(std::size(kRows) == 131);

// The rows 0 to 96 stand at their identifiers; behind them the numbering has two gaps.
constexpr int kLastPlainName = ID_VAR;
static_assert(kRows[kLastPlainName].id == ID_VAR);

constexpr const Row* rowOf(int id) {
  if (id < 0) return nullptr;
  if (id <= kLastPlainName) return &kRows[id];
  if (id >= ID_JSP_SCRIPTLET && id <= ID_SSI_INCLUDE) return &kRows[id - 3];
  if (id >= ID_ZELX_TEXT && id <= ID_NAMELESS) return &kRows[id - 5];
  return nullptr;
}

constexpr bool rowsStandInOrder() {
  for (const Row& row : kRows) {
    if (rowOf(row.id) != &row) return false;
  }
  return true;
}
static_assert(rowsStandInOrder());

// A perfect hash over the names without a prefix, so that the look-up of every begin tag is one probe. The weights were
// found by trial; the table does not compile with two names in one place.
constexpr std::size_t kSlots = 512;

constexpr std::size_t slotOf(std::string_view name) {
  const auto byte = [name](std::size_t i) { return std::size_t{static_cast<unsigned char>(name[i])}; };
  std::size_t slot = name.size() * 199 + byte(0) * 99 + byte(name.size() - 1) * 245;
  if (name.size() > 1) slot += byte(1) * 88;
  if (name.size() > 3) slot += byte(3);
  return slot % kSlots;
}

constexpr std::array<std::int16_t, kSlots> makeSlots() {
  std::array<std::int16_t, kSlots> slots{};
  slots.fill(-1);
  for (int id = 0; id <= kLastPlainName; ++id) {
    std::int16_t& slot = slots[slotOf(kRows[id].name)];
    if (slot != -1) throw "two names in one place";
    slot = static_cast<std::int16_t>(id);
  }
  return slots;
}
constexpr std::array<std::int16_t, kSlots> kPlainNames = makeSlots();

constexpr std::string_view kJspPrefix = "jsp:";
constexpr std::string_view kQdxPrefix = "qdx:";
constexpr std::string_view kZelxPrefix = "ZELX:";

// The row from `first` to `last` that bears exactly that name.
HTML40ElementID findExactly(std::string_view name, int first, int last) {
  for (int id = first; id <= last; ++id) {
    if (name == rowOf(id)->name) return static_cast<HTML40ElementID>(id);
  }
  return ID_NONE;
}

HTML40ElementID findInAnyCase(std::string_view name, int first, int last) {
  for (int id = first; id <= last; ++id) {
    if (equalsFolded(name, rowOf(id)->name)) return static_cast<HTML40ElementID>(id);
  }
  return ID_NONE;
}

}  // namespace

HTML40ElementID CatalogueTables::find(std::string_view name) {
  if (name.empty()) return ID_NONE;
  const int plain = kPlainNames[slotOf(name)];
  if (plain >= 0 && name == kRows[plain].name) return static_cast<HTML40ElementID>(plain);
  if (name.starts_with(kJspPrefix)) return findExactly(name, ID_JSP_SCRIPTLET, ID_JSP_PARAM);
  const HTML40ElementID bean = findInAnyCase(name, ID_SERVLET, ID_DBMODIFY);
  if (bean != ID_NONE) return bean;
  if (name.starts_with(kQdxPrefix)) return findExactly(name, ID_QDX_DBCONNECT, ID_QDX_DBMODIFY);
  if (name == rowOf(ID_SSI_INCLUDE)->name) return ID_SSI_INCLUDE;
  if (equalsFolded(name.substr(0, kZelxPrefix.size()), kZelxPrefix)) {
    return findInAnyCase(name, ID_ZELX_TEXT, ID_ZELX_ATV);
  }
  return ID_NONE;
}

const char* CatalogueTables::name(int id) {
  const Row* row = rowOf(id);
  return row ? row->name : nullptr;
}

unsigned long CatalogueTables::group(int id) {
  const Row* row = rowOf(id);
  return row ? row->group : 0;
}

unsigned long CatalogueTables::flags(int id) {
  const Row* row = rowOf(id);
  return row ? row->flags : 0;
}

bool CatalogueTables::isHidden(int id) {
  const DOM* dom = DOM::getDOM();
  if (dom && dom->getJSPVersion() == DOM::JSP_VERSION_1) {
    return (id >= ID_JSP_DIRECTIVE_PAGE && id <= ID_JSP_DIRECTIVE_TAGLIB) ||
           (id >= ID_JSP_USE_BEAN && id <= ID_JSP_PARAM) || (id >= ID_QDX_DBCONNECT && id <= ID_QDX_DBMODIFY);
  }
  return id >= ID_BEAN && id <= ID_DBMODIFY;
}

HTML40ElementID CatalogueTables::requiredParentID(int id) {
  switch (id) {
    case ID_AREA:
      return ID_MAP;
    case ID_BASE:
    case ID_LINK:
    case ID_META:
    case ID_STYLE:
    case ID_TITLE:
      return ID_HEAD;
    case ID_BODY:
    case ID_FRAMESET:
    case ID_HEAD:
      return ID_HTML;
    case ID_CAPTION:
    case ID_COL:
    case ID_COLGROUP:
    case ID_TBODY:
    case ID_TFOOT:
    case ID_THEAD:
      return ID_TABLE;
    case ID_DD:
    case ID_DT:
      return ID_DL;
    case ID_FRAME:
    case ID_NOFRAMES:
      return ID_FRAMESET;
    case ID_LEGEND:
      return ID_FIELDSET;
    case ID_LI:
      return ID_UL;
    case ID_OPTGROUP:
    case ID_OPTION:
      return ID_SELECT;
    case ID_PARAM:
      return ID_OBJECT;
    case ID_TD:
    case ID_TH:
      return ID_TR;
    case ID_TR:
      return ID_TBODY;
    case ID_JSP_PARAMS:
    case ID_JSP_FALLBACK:
      return ID_JSP_PLUGIN;
    case ID_JSP_PARAM:
      return ID_JSP_PARAMS;
    default:
      return ID_NONE;
  }
}

HTML40ElementID CatalogueTables::requiredChildID(int id) {
  switch (id) {
    case ID_FRAMESET:
      return ID_NOFRAMES;
    case ID_ZELROOT:
      return ID_HTML;
    case ID_HTML:
    case ID_NOFRAMES:
      return ID_BODY;
    case ID_TABLE:
      return ID_TBODY;
    case ID_TBODY:
      return ID_TR;
    default:
      return ID_NONE;
  }
}

HTML40ElementID GetHTML40ElementID(const char* name) {
  const HTML40ElementID id = name ? CatalogueTables::find(name) : ID_NONE;
  return CatalogueTables::isHidden(id) ? ID_NONE : id;
}

const char* GetHTML40ElementName(int id) { return CatalogueTables::isHidden(id) ? nullptr : CatalogueTables::name(id); }

unsigned long GetHTML40ElementGroup(int id) { return CatalogueTables::isHidden(id) ? 0 : CatalogueTables::group(id); }

const char* GetHTML40DisplayName(const Element* element) {
  if (!element) return nullptr;
  switch (element->getElementID()) {
    case ID_OBJECT:
      if (element->isDTC()) return "Design-time Control";
      break;
    case ID_SCRIPT: {
      const char* runAt = element->getAttributeValue("RUNAT");
      if (runAt && equalsFolded(runAt, "SERVER")) return "JSP Declaration";
      break;
    }
    case ID_JSP_SCRIPTLET:
      return "JSP Scriptlet";
    case ID_JSP_EXPRESSION:
      return "JSP Expression";
    case ID_JSP_DECLARATION:
      return "JSP Declaration";
    case ID_JSP_DIRECTIVE_PAGE:
      return "JSP Directive - Page";
    case ID_JSP_DIRECTIVE_INCLUDE:
      return "JSP Directive - Include";
    case ID_JSP_DIRECTIVE_TAGLIB:
      return "JSP Directive - TagLib";
    case ID_JSP_DIRECTIVE:
      return "JSP Directive";
    case ID_SSI_INCLUDE:
      return "SSI";
    default:
      break;
  }
  return element->getTagName().c_str();
}

}  // namespace zeldom40
