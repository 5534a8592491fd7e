// Internal. Finds the beans of a page.
#pragma once

#include "dom/dynamic/BeanInfo.h"

namespace zeldom40 {

class Document;

// Beans from outside the page, beans that the page declares, then the implicit objects of the JSP version. An earlier
// one hides a later one of the same name.
void collectBeans(const Document* document, BeanList& list);

}  // namespace zeldom40
