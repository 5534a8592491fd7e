// Pages of dynamic elements under random edits and in hostile shapes; fuzz/random_dynamic runs the same for longer.
#include <filesystem>
#include <fstream>
#include <iterator>
#include <pthread.h>
#include <string>
#include <vector>

#include "fuzz/DynamicHost.h"
#include "tests/host/TestPage.h"

namespace zeldom40 {
namespace {

using std::string_literals::operator""s;

class DynamicPages : public PageTest {
 protected:
  static std::vector<std::string> containerPages() {
    std::vector<std::string> pages;
    for (const auto& entry : std::filesystem::directory_iterator(ZELDOM40_SOURCE_DIR "/tests/container/pages")) {
      if (entry.path().extension() != ".html") continue;
      std::ifstream file(entry.path(), std::ios::binary);
      pages.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }
    return pages;
  }
  // On a stack that no call per level would fit on.
  std::string stable(const std::string& page) {
    struct Job {
      DOM* dom;
      const std::string* page;
      std::string fault;
    } job{dom_, &page, {}};
    pthread_attr_t small;
    pthread_attr_init(&small);
    pthread_attr_setstacksize(&small, 1 << 18);
    pthread_t thread;
    const auto run = [](void* argument) -> void* {
      Job& j = *static_cast<Job*>(argument);
      j.fault = fuzz::saveIsStable(j.dom, *j.page);
      return nullptr;
    };
    if (pthread_create(&thread, &small, run, &job) != 0) return "no thread";
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&small);
    return job.fault;
  }
  static std::string repeated(int n, const std::string& word) {
    std::string text;
    for (int i = 0; i < n; ++i) text += word;
    return text;
  }
};

TEST_F(DynamicPages, ASaveIsWhatTheEditedTreeStandsFor) {
  for (unsigned seed = 1; seed <= 12; ++seed) {
    fuzz::Choices choices(seed);
    fuzz::DynamicHost host(dom_, choices);
    std::string fault;
    for (int i = 0; i < 60 && fault.empty(); ++i) fault = host.step();
    if (fault.empty()) fault = host.unwind();
    ASSERT_EQ(fault, "") << "seed " << seed;
  }
}

TEST_F(DynamicPages, ASavedPageComesBackByteForByte) {
  for (const std::string& page : containerPages()) {
    load(page);
    const std::string saved = source();
    doc_->resetRuntimeTextStateOnReload();
    load(saved);
    EXPECT_EQ(source(), saved);
    // A dynamic element that generates nothing counts as one that was never saved.
    const bool hasEmpty = saved.find("\r\n--><!--METADATA type=\"DynamicData\" endspan") != std::string::npos;
    EXPECT_EQ(doc_->isRuntimeTextDifferent(), hasEmpty) << saved;
  }
}

TEST_F(DynamicPages, HostileShapesComeToRest) {
  const auto begin = [](const std::string& type, const std::string& text) {
    return "<!--METADATA type=\"" + type + "\" startspan\r\n" + text + "\r\n-->";
  };
  const std::string end = "<!--METADATA type=\"DynamicData\" endspan-->";
  const std::string list = "<UL DYNAMICELEMENT LOOPPROPERTY=a.b[]><LI>";
  const std::string wide = "<TABLE DYNAMICELEMENT INNERLOOPPROPERTY=a.b[] INNERLOOPDIRECTION=horizontal>";
  constexpr int kMany = 2000;
  const std::string pages[] = {
      repeated(kMany, begin("DynamicData", "<P>")),
      repeated(kMany, begin("DynamicData", list)) + repeated(kMany, end),
      repeated(kMany, list),
      repeated(kMany, "<ZELX:LOOP LOOPPROPERTY=a.b[]><ZELX:TEXT LOOPPROPERTY=a.c()>"),
      repeated(kMany, wide + "<TR><TD>x<TD COLSPAN=2>"),
      wide + repeated(kMany, "<TR><TD COLSPAN=2000000000 ROWSPAN=2000000000>x<TD COLSPAN=-1>"),
      list + "<!-- c --><SCRIPT>a-->b</SCRIPT><A TITLE='-->'>--&gt;--&amp;gt;</A></UL>",
      list + "\0\x1b\x1c\x1d<ZELX:PROPERTY PROPERTY='a\0.b'>\0</UL>"s,
      repeated(kMany, "<ZELX:ATV FONTTEXT=v>") + "<%= x %>",
      list + repeated(kMany, "<OBJECT DTC>") + "</UL>",
  };
  for (const std::string& page : pages) EXPECT_EQ(stable(page), "") << quotedBytes(page.substr(0, 80));
}

}  // namespace
}  // namespace zeldom40
