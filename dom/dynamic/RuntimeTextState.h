// Internal. Where the run-time writer stands, passed along through everything that it writes.
#pragma once

namespace zeldom40 {

struct RuntimeTextState {
  int indent = 0;            // levels of two blanks, never below 0
  bool inScriptlet = false;  // the text so far ends inside <%
};

}  // namespace zeldom40
