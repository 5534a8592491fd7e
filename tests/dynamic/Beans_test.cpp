// The names that a property path can begin with, and the questions to a host about their types.
#include "tests/dynamic/DynamicTest.h"

namespace zeldom40 {
namespace {

class BeansTest : public DynamicTest {
 protected:
  // name:type of the entries that are no implicit objects of the newer JSP version with their own types.
  std::string beans() {
    std::string list;
    void* handle = nullptr;
    const char* name = nullptr;
    const char* type = nullptr;
    doc_->getBeanListBegin(handle);
    while (doc_->getBeanListNext(handle, name, type)) list += std::string(name) + ':' + type + ' ';
    doc_->getBeanListEnd(handle);
    EXPECT_EQ(handle, nullptr);
    EXPECT_FALSE(doc_->getBeanListNext(handle, name, type));
    return list;
  }
};

TEST_F(BeansTest, StandInByteOrderAndTheFirstOfANameStays) {
  load(
      "<jsp:useBean id=\"out\" class=\"p.Out\"/><jsp:useBean id=\"b\" class=\"p.C\" type=\"p.T\"/>"
      "<jsp:useBean id=\"z\"/><jsp:useBean class=\"p.N\"/><jsp:useBean id=\"b\" class=\"p.Second\"/>");
  doc_->addOutBoundBean("far", "p.F");
  doc_->addOutBoundBean("far", "p.G");
  doc_->addOutBoundBean("gone", "p.H");
  doc_->delOutBoundBean("gone");
  doc_->delOutBoundBean("unknown");
  EXPECT_EQ(beans(),
            "application:javax.servlet.ServletContext b:p.T config:javax.servlet.ServletConfig "
            "exception:java.lang.Throwable far:p.F out:p.Out page:java.lang.Object "
            "pageContext:javax.servlet.jsp.PageContext request:javax.servlet.http.HttpServletRequest "
            "response:javax.servlet.http.HttpServletResponse session:javax.servlet.http.HttpSession ");
}

TEST_F(BeansTest, ComeFromTheOlderTagsInTheOlderVersion) {
  dom_->setJSPVersion(DOM::JSP_VERSION_1);
  load(
      "<jsp:useBean id=\"x\" class=\"p.X\"/><BEAN NAME=a VARNAME=b TYPE=p.B></BEAN><BEAN NAME=c TYPE=p.C></BEAN>"
      "<BEAN NAME=d></BEAN>");
  EXPECT_EQ(beans(),
            "b:p.B c:p.C in:java.io.BufferedReader out:java.io.PrintWriter "
            "request:javax.servlet.http.HttpServletRequest response:javax.servlet.http.HttpServletResponse ");
}

TEST_F(BeansTest, TypesAreAskedOnceAndForgottenWithTheirLoop) {
  FakeTypes host;
  host.types = {{"b.items[]", "p.Item"}, {"b.items[].name", "String"}};
  dom_->setJavaTypeLookupIF(&host);
  doc_->addOutBoundBean("b", "p.Bean");
  const std::string link = "<A DYNAMICELEMENT HREF=x HREFPROPERTY='a=$(b.items[].name)'></A>";
  loadDynamic("<UL DYNAMICELEMENT LOOPPROPERTY=b.items[]><LI>" + link + link + "</UL>");
  std::string text = generated(element("UL"));
  EXPECT_NE(text.find("p.Item _p0 = "), std::string::npos) << text;
  EXPECT_NE(text.find("URLEncoder.encode(_p0.getName())"), std::string::npos) << text;
  // Getters ask for the types of the paths in front as well.
  EXPECT_EQ(host.asked, "b.items[]:p.Bean b:p.Bean b.items[].name:p.Bean ") << text;
  host.asked.clear();
  host.types.clear();
  text = generated(element("UL"));
  EXPECT_NE(text.find("Object _p0 = "), std::string::npos) << "the answers of an earlier generation are used";
  EXPECT_EQ(host.results, 0);
  dom_->setJavaTypeLookupIF(nullptr);
}

TEST_F(BeansTest, SiblingLoopsOfOneNameHaveTheirOwnTypes) {
  FakeTypes host;
  host.types = {{"b.x[]", "p.X"}, {"b.y[]", "p.Y"}};
  host.getters = {{"p.X.name", "nameOfX"}, {"p.Y.name", "nameOfY"}};
  dom_->setJavaTypeLookupIF(&host);
  doc_->addOutBoundBean("b", "p.Bean");
  const std::string text = generated("UL",
                                     "<UL DYNAMICELEMENT LOOPPROPERTY=b.all[]><LI>"
                                     "<ZELX:TEXT LOOPPROPERTY=b.x[]><ZELX:PROPERTY PROPERTY=b.x[].name></ZELX:TEXT>"
                                     "<ZELX:TEXT LOOPPROPERTY=b.y[]><ZELX:PROPERTY PROPERTY=b.y[].name></ZELX:TEXT>"
                                     "</UL>");
  EXPECT_NE(text.find("<%= _p1.nameOfX() %>"), std::string::npos) << text;
  EXPECT_NE(text.find("<%= _p1.nameOfY() %>"), std::string::npos) << text;
  dom_->setJavaTypeLookupIF(nullptr);
}

}  // namespace
}  // namespace zeldom40
