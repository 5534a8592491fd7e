// Writes beside the file, then renames.
#include "tools/zeldom/fix_replace.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace zeldom40::tool {

namespace {

// The file that an interrupt must take away; a signal handler sees nothing else.
const char* volatile pending = nullptr;

void dropPending(int signal) {
  if (const char* name = pending) unlink(name);
  // The default action was put back when the handler was called; it ends the process as the sender meant.
  raise(signal);
}

// Names the pending file and watches signals, as long as it lives.
class PendingFile {
 public:
  explicit PendingFile(const std::string& name) : name_(name) {
    pending = name_.c_str();
    struct sigaction action = {};
    action.sa_handler = dropPending;
    // SA_RESETHAND is 0x80000000, which an int takes for negative.
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    for (std::size_t i = 0; i < kSignals; ++i) {
      sigaction(kWatched[i], &action, &old_[i]);
      // What whoever started the process told it to ignore is ignored.
      if (old_[i].sa_handler == SIG_IGN) sigaction(kWatched[i], &old_[i], nullptr);
    }
  }
  ~PendingFile() {
    if (name_.c_str() == pending) unlink(name_.c_str());
    done();
    for (std::size_t i = 0; i < kSignals; ++i) sigaction(kWatched[i], &old_[i], nullptr);
  }
  PendingFile(const PendingFile&) = delete;
  PendingFile& operator=(const PendingFile&) = delete;

  // The file has its final name.
  void done() { pending = nullptr; }

 private:
  static constexpr std::size_t kSignals = 6;
  static constexpr int kWatched[kSignals] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE, SIGXFSZ};

  const std::string& name_;
  struct sigaction old_[kSignals];
};

class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() {
    if (number_ >= 0) close(number_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  int get() const { return number_; }
  bool closeNow() { return close(std::exchange(number_, -1)) == 0; }

 private:
  int number_;
};

bool writeAll(int file, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = write(file, bytes.data(), bytes.size());
    if (written < 0) {
      if (errno == EINTR) continue;
      return false;
    }
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

bool fail(const std::string& path) {
  complain(path, std::strerror(errno));
  return false;
}

}  // namespace

bool replaceFile(const std::string& path, std::string_view bytes, const FileStamp& read) {
  const std::unique_ptr<char, void (*)(void*)> real(realpath(path.c_str(), nullptr), std::free);
  if (!real) return fail(path);
  const std::string target = real.get();
  struct stat info;
  if (stat(target.c_str(), &info) != 0) return fail(path);
  if (!S_ISREG(info.st_mode)) {
    complain(path, "not a regular file");
    return false;
  }
  // Who may not write the file may not replace it either, though the folder would let him.
  if (access(target.c_str(), W_OK) != 0) return fail(path);

  std::string name = target + ".XXXXXX";
  Descriptor file(mkstemp(name.data()));
  if (file.get() < 0) return fail(path);
  PendingFile guard(name);
  // Of another's file the owner cannot be kept; then the new one is ours. The mode comes after, for a change of the
  // owner takes bits away.
  const bool owned = fchown(file.get(), info.st_uid, info.st_gid) == 0;
  const mode_t mode = info.st_mode & (owned ? 07777 : 0777);
  if (fchmod(file.get(), mode) != 0) return fail(path);
  if (!writeAll(file.get(), bytes) || fsync(file.get()) != 0 || !file.closeNow()) return fail(path);
  // What another program has written meanwhile is newer than what was repaired.
  if (stat(target.c_str(), &info) != 0) return fail(path);
  if (stampOf(info) != read) {
    complain(path, "was changed by another program meanwhile; nothing is written");
    return false;
  }
  if (std::rename(name.c_str(), target.c_str()) != 0) return fail(path);
  guard.done();
  // The new name is on the disk when its folder is; a file system that cannot promise it has done what it can.
  const Descriptor folder(open(target.substr(0, target.rfind('/') + 1).c_str(), O_RDONLY | O_DIRECTORY));
  if (folder.get() >= 0) fsync(folder.get());
  return true;
}

}  // namespace zeldom40::tool
