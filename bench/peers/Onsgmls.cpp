// onsgmls: an SGML parser that checks a page against the HTML 4.0 DTD. It is a program, so that its start is measured
// on an empty page and taken off.
#include <algorithm>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <spawn.h>
#include <string_view>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "bench/peers/Peer.h"

extern char** environ;

namespace zeldom40::bench::onsgmls {

namespace {

// Below this the page is lost in the start of the program. Of a folder larger ones do, for each start takes its time.
constexpr std::size_t kSmallest = 10000;
constexpr std::size_t kSmallestOfFolder = 30000;
constexpr const char* kDoctype = "<!DOCTYPE HTML PUBLIC \"-//W3C//DTD HTML 4.0 Transitional//EN\">\n";

std::string catalog() {
  const std::string folder = "/usr/share/xml/w3c-sgml-lib/schema/dtd/";
  const auto entry = [&](const char* id, const char* file) {
    return std::string("PUBLIC \"-//W3C//") + id + "\" \"" + folder + file + "\"\n";
  };
  return "OVERRIDE YES\nSGMLDECL \"" + folder + "sgml.dcl\"\n" +
         entry("DTD HTML 4.0 Transitional//EN", "REC-html40-19980424/loose.dtd") +
         entry("ENTITIES Latin1//EN//HTML", "REC-html401-19991224/HTMLlat1.ent") +
         entry("ENTITIES Symbols//EN//HTML", "REC-html401-19991224/HTMLsymbol.ent") +
         entry("ENTITIES Special//EN//HTML", "REC-html401-19991224/HTMLspecial.ent");
}

// The page under the one DTD that is there: without one nothing would be checked.
std::string declared(const std::string& text) {
  constexpr std::string_view kName = "<!DOCTYPE";
  const auto same = [](char a, char b) { return a == b || (a >= 'a' && a <= 'z' && a - 'a' + 'A' == b); };
  const auto limit = text.begin() + std::min<std::ptrdiff_t>(std::ssize(text), 1000);
  const auto at = std::search(text.begin(), limit, kName.begin(), kName.end(), same);
  const auto end = at == limit ? limit : std::find(at, text.end(), '>');
  if (at == limit || end == text.end()) return kDoctype + text;
  return std::string(text.begin(), at) + kDoctype + std::string(end + 1, text.end());
}

// Bytes are bytes; messages are counted but go nowhere.
class Validate : public Task {
 public:
  ~Validate() override {
    if (!folder_.empty()) std::filesystem::remove_all(folder_);
  }
  bool open(const Page& page) override {
    const std::size_t smallest = page.group == "folder" ? kSmallestOfFolder : kSmallest;
    if (page.text.size() < smallest || access("/usr/bin/onsgmls", X_OK) != 0) return false;
    setenv("SP_CHARSET_FIXED", "YES", /*overwrite=*/1);
    setenv("SP_ENCODING", "is8859-1", /*overwrite=*/1);
    std::string name = (std::filesystem::temp_directory_path() / "zeldom40-XXXXXX").string();
    if (!mkdtemp(name.data())) return false;
    folder_ = name;
    put("catalog", catalog());
    put("empty", std::string(kDoctype) + "<TITLE>x</TITLE><P>x");
    put("page", declared(page.text));
    for (int i = 0; i < 5; ++i) empty_ = std::min(empty_, seconds("empty"));
    return true;
  }
  double run(int times) override {
    double sum = 0;
    for (int i = 0; i < times; ++i) {
      empty_ = std::min(empty_, seconds("empty"));
      sum += seconds("page");
    }
    return sum;
  }
  double overhead() const override { return empty_; }

 private:
  void put(const char* name, const std::string& text) const {
    std::ofstream(folder_ + "/" + name, std::ios::binary) << text;
  }
  // Processor time of one run of the program, its system calls included.
  double seconds(const char* name) const {
    const std::string catalog = folder_ + "/catalog";
    const std::string page = folder_ + "/" + name;
    const char* arguments[] = {"onsgmls", "-s", "-E0", "-c", catalog.c_str(), page.c_str(), nullptr};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t child = 0;
    const int failed =
        posix_spawn(&child, "/usr/bin/onsgmls", &actions, nullptr, const_cast<char**>(arguments), environ);
    posix_spawn_file_actions_destroy(&actions);
    rusage used = {};
    int status = 0;
    if (failed || wait4(child, &status, 0, &used) != child) return std::numeric_limits<double>::infinity();
    const auto value = [](const timeval& t) {
      return static_cast<double>(t.tv_sec) + 1e-6 * static_cast<double>(t.tv_usec);
    };
    return value(used.ru_utime) + value(used.ru_stime);
  }

  std::string folder_;
  double empty_ = std::numeric_limits<double>::infinity();
};

}  // namespace

std::unique_ptr<Task> validate() { return make<Validate>(); }

}  // namespace zeldom40::bench::onsgmls
