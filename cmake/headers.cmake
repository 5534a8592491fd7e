# The headers that are installed, one by one: everything dom/zeldom40.h reaches. A header that is not in this list is
# internal and says so in its first line. The install test fails when a listed header includes one that is not.
set(ZELDOM40_HEADERS
    dom/export.h
    dom/zeldom40.h
    dom/source/CodeConv.h
    dom/source/DocumentStyle.h
    dom/source/MappedFile.h
    dom/source/pclen.h
    dom/tree/Attribute.h
    dom/tree/AttributeList.h
    dom/tree/Comment.h
    dom/tree/Element.h
    dom/tree/Node.h
    dom/tree/NodeIterator.h
    dom/tree/PI.h
    dom/tree/Text.h
    dom/dtd/AttributeDefinition.h
    dom/dtd/DTDParser.h
    dom/dtd/DocumentType.h
    dom/dtd/ElementDefinition.h
    dom/dtd/HTML40.h
    dom/dtd/Parser.h
    dom/html/HTMLParser.h
    dom/document/DOM.h
    dom/document/Document.h
    dom/dynamic/MetaData.h)
