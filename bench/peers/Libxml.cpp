// libxml2: its HTML parser, its XML parser with validation, its copy of a tree.
#include <libxml/HTMLparser.h>
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxml/valid.h>

#include "bench/peers/Peer.h"

namespace zeldom40::bench::libxml {

namespace {

constexpr const char* kDtd = "/usr/share/xml/w3c-sgml-lib/schema/dtd/REC-xhtml1-20020801/xhtml1-transitional.dtd";

int size(const Page& page) { return static_cast<int>(page.text.size()); }

// A context that is used again keeps its dictionary of names, the quickest way this library has.
class HtmlReader {
 public:
  HtmlReader() : context_(htmlNewParserCtxt()) {}
  ~HtmlReader() { htmlFreeParserCtxt(context_); }
  HtmlReader(const HtmlReader&) = delete;
  HtmlReader& operator=(const HtmlReader&) = delete;

  htmlDocPtr read(const Page& page) {
    return htmlCtxtReadMemory(context_, page.text.data(), size(page), nullptr, nullptr,
                              HTML_PARSE_NOERROR | HTML_PARSE_NOWARNING | HTML_PARSE_NONET | HTML_PARSE_COMPACT);
  }

 private:
  htmlParserCtxtPtr context_;
};

class ParseHtml : public Task {
 public:
  bool open(const Page& page) override {
    page_ = &page;
    return true;
  }
  double run(int times) override {
    return timed(times, [this] { xmlFreeDoc(reader_.read(*page_)); });
  }

 private:
  HtmlReader reader_;
  const Page* page_ = nullptr;
};

void ignore(void*, const char*, ...) {}

// The DTD is parsed once and checks every page, as the library's own is.
class ParseXmlAndValidate : public Task {
 public:
  ParseXmlAndValidate()
      : context_(xmlNewParserCtxt()),
        validity_(xmlNewValidCtxt()),
        dtd_(xmlParseDTD(nullptr, reinterpret_cast<const xmlChar*>(kDtd))) {
    validity_->error = ignore;
    validity_->warning = ignore;
  }
  ~ParseXmlAndValidate() override {
    xmlFreeDtd(dtd_);
    xmlFreeValidCtxt(validity_);
    xmlFreeParserCtxt(context_);
  }
  bool open(const Page& page) override {
    page_ = &page;
    xmlDocPtr document = read();
    xmlFreeDoc(document);
    return document && dtd_;
  }
  double run(int times) override {
    return timed(times, [this] {
      xmlDocPtr document = read();
      xmlValidateDtd(validity_, document, dtd_);
      xmlFreeDoc(document);
    });
  }

 private:
  xmlDocPtr read() {
    return xmlCtxtReadMemory(context_, page_->text.data(), size(*page_), nullptr, nullptr,
                             XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_NONET | XML_PARSE_COMPACT);
  }
  xmlParserCtxtPtr context_;
  xmlValidCtxtPtr validity_;
  xmlDtdPtr dtd_;
  const Page* page_ = nullptr;
};

class Copy : public Task {
 public:
  ~Copy() override { xmlFreeDoc(document_); }
  bool open(const Page& page) override {
    document_ = reader_.read(page);
    return document_ != nullptr;
  }
  double run(int times) override {
    return timed(times, [this] { xmlFreeDoc(xmlCopyDoc(document_, /*recursive=*/1)); });
  }

 private:
  HtmlReader reader_;
  htmlDocPtr document_ = nullptr;
};

}  // namespace

std::unique_ptr<Task> parseHtml() { return make<ParseHtml>(); }
std::unique_ptr<Task> parseXmlAndValidate() { return make<ParseXmlAndValidate>(); }
std::unique_ptr<Task> copy() { return make<Copy>(); }
void hold(const Page& page) { HtmlReader().read(page); }

}  // namespace zeldom40::bench::libxml
