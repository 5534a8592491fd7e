// The numbers of the element types that the library knows, and the properties that a DTD cannot express.
#pragma once

#include "dom/export.h"

namespace zeldom40 {

class Element;

// The identifiers of elements. Code asks for these rather than for names.
enum HTML40ElementID {
  ID_NONE = -1,  // no such element
  ID_A = 0,
  ID_ABBR = 1,
  ID_ACRONYM = 2,
  ID_ADDRESS = 3,
  ID_APPLET = 4,
  ID_AREA = 5,
  ID_B = 6,
  ID_BASE = 7,
  ID_BASEFONT = 8,
  ID_BDO = 9,
  ID_BIG = 10,
  ID_BLINK = 11,
  ID_BLOCKQUOTE = 12,
  ID_BODY = 13,
  ID_BR = 14,
  ID_BUTTON = 15,
  ID_CAPTION = 16,
  ID_CENTER = 17,
  ID_CITE = 18,
  ID_CODE = 19,
  ID_COL = 20,
  ID_COLGROUP = 21,
  ID_K9V = 22,
  ID_DD = 23,
  ID_DEL = 24,
  ID_DFN = 25,
  ID_DIR = 26,
  ID_DIV = 27,
  ID_DL = 28,
  ID_DT = 29,
  ID_EM = 30,
  ID_EMBED = 31,
  ID_FIELDSET = 32,
  ID_FONT = 33,
  ID_FORM = 34,
  ID_FRAME = 35,
  ID_FRAMESET = 36,
  ID_H1 = 37,
  ID_H2 = 38,
  ID_H3 = 39,
  ID_H4 = 40,
  ID_H5 = 41,
  ID_H6 = 42,
  ID_HEAD = 43,
  ID_ZELROOT = 44,
  ID_ZELTEMP = 45,
  ID_HR = 46,
  ID_HTML = 47,
  ID_I = 48,
  ID_IFRAME = 49,
  ID_IMG = 50,
  ID_INPUT = 51,
  ID_INS = 52,
  ID_ISINDEX = 53,
  ID_KBD = 54,
  ID_LABEL = 55,
  ID_LEGEND = 56,
  ID_LI = 57,
  ID_LINK = 58,
  ID_MAP = 59,
  ID_MENU = 60,
  ID_META = 61,
  ID_NOFRAMES = 62,
  ID_NOSCRIPT = 63,
  ID_OBJECT = 64,
  ID_OL = 65,
  ID_OPTGROUP = 66,
  ID_OPTION = 67,
  ID_P = 68,
  ID_PARAM = 69,
  ID_PRE = 70,
  ID_Q = 71,
  ID_S = 72,
  ID_SAMP = 73,
  ID_SCRIPT = 74,
  ID_SELECT = 75,
  ID_SMALL = 76,
  ID_SPAN = 77,
  ID_STRIKE = 78,
  ID_STRONG = 79,
  ID_STYLE = 80,
  ID_SUB = 81,
  ID_SUP = 82,
  ID_TABLE = 83,
  ID_TBODY = 84,
  ID_TD = 85,
  ID_TEXTAREA = 86,
  ID_TFOOT = 87,
  ID_TH = 88,
  ID_THEAD = 89,
  ID_TITLE = 90,
  ID_TR = 91,
  ID_TT = 92,
  ID_U = 93,
  ID_UL = 94,
  ID_UNKNOWN = 95,  // an element that the DTD does not know
  ID_VAR = 96,
  ID_JSP_SCRIPTLET = 100,
  ID_JSP_EXPRESSION = 101,
  ID_JSP_DECLARATION = 102,
  ID_JSP_DIRECTIVE_PAGE = 103,
  ID_JSP_DIRECTIVE_INCLUDE = 104,
  ID_JSP_DIRECTIVE_TAGLIB = 105,
  ID_JSP_DIRECTIVE = 106,
  ID_JSP_USE_BEAN = 107,
  ID_JSP_SET_PROPERTY = 108,
  ID_JSP_GET_PROPERTY = 109,
  ID_JSP_INCLUDE = 110,
  ID_JSP_FORWARD = 111,
  ID_JSP_PLUGIN = 112,
  ID_JSP_PARAMS = 113,
  ID_JSP_FALLBACK = 114,
  ID_JSP_PARAM = 115,
  ID_SERVLET = 116,
  ID_BEAN = 117,
  ID_REPEAT = 118,
  ID_INSERT = 119,
  ID_DBCONNECT = 120,
  ID_DBQUERY = 121,
  ID_DBMODIFY = 122,
  ID_QDX_DBCONNECT = 123,
  ID_QDX_DBQUERY = 124,
  ID_QDX_DBMODIFY = 125,
  ID_LOOP = 126,
  ID_DISPLAY = 127,
  ID_SSI_INCLUDE = 128,
  ID_ZELX_TEXT = 131,
  ID_ZELX_LOOP = 132,
  ID_ZELX_PROPERTY = 133,
  ID_ZELX_ATV = 134,
  ID_NAMELESS = 135  // a row with an empty name, which no name leads to
};

// The bits of an element's group word.
constexpr unsigned long GROUP_BLOCK = 0x1;             // block level
constexpr unsigned long GROUP_PLAIN = 0x2;             // its text is preformatted
constexpr unsigned long GROUP_BREAK = 0x4;             // a forced line break
constexpr unsigned long GROUP_NOWRAP = 0x8;            // stands in a line as one unit
constexpr unsigned long GROUP_STRUCTURE = 0x10;        // not rendered in the text flow
constexpr unsigned long GROUP_LIST = 0x20;             // holds items or rows
constexpr unsigned long GROUP_PHRASE = 0x40;           // phrase markup
constexpr unsigned long GROUP_TEXT_LEVEL = 0x80;       // not worth keeping without text
constexpr unsigned long GROUP_SKELETON = 0x100;        // part of the page's or a table's frame
constexpr unsigned long GROUP_DOCUMENT = 0x200;        // the outermost elements
constexpr unsigned long GROUP_SINGLE = 0x400;          // once in its parent
constexpr unsigned long GROUP_ITEM = 0x800;            // a list item
constexpr unsigned long GROUP_ANCHOR = 0x1000;         // A
constexpr unsigned long GROUP_SPAN_LIKE = 0x2000;      // nothing without attributes
constexpr unsigned long GROUP_PART = 0x4000;           // part of one kind of parent
constexpr unsigned long GROUP_SERVER = 0x8000;         // script and server code
constexpr unsigned long GROUP_TABLE = 0x10000;         // table structure
constexpr unsigned long GROUP_TABLE_PART = 0x20000;    // stands in a table
constexpr unsigned long GROUP_ANYWHERE = 0x80000;      // allowed in any content unless excluded
constexpr unsigned long GROUP_XML_TAG = 0x100000;      // written <x /> when empty
constexpr unsigned long GROUP_SCRIPT_DATA = 0x200000;  // its content is raw script
constexpr unsigned long GROUP_DIRECTIVE = 0x400000;    // a JSP directive
constexpr unsigned long GROUP_SSI = 0x800000;          // a server-side include
constexpr unsigned long GROUP_LOOP = 0x1000000;        // transparent: its parent answers for it
constexpr unsigned long GROUP_ATV = 0x2000000;         // can have an author-time visual
constexpr unsigned long GROUP_JSP_SOURCE = 0x4000000;  // has a form between <% and %>
constexpr unsigned long GROUP_NO_SOURCE = 0x8000000;   // is not read from a tag of its name
constexpr unsigned long GROUP_JSP_XML = 0x20000000;    // an XML form of JSP

// The identifier of a name, which is upper case for the elements of HTML; ID_NONE if there is none, if `name` is null,
// or if the JSP version of the newest DOM hides it: version 1 hides the jsp: actions, any other, also without a DOM,
// the old bean tags.
ZELDOM40_API HTML40ElementID GetHTML40ElementID(const char* name);
// The name of an identifier; null if there is none or it is hidden. A static text.
ZELDOM40_API const char* GetHTML40ElementName(int id);
// The group word of an identifier; 0 if there is none or it is hidden.
ZELDOM40_API unsigned long GetHTML40ElementGroup(int id);
// The name to show to users; null for null. A static text, or the element's name, which lives as long as that.
ZELDOM40_API const char* GetHTML40DisplayName(const Element* element);

}  // namespace zeldom40
