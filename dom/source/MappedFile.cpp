// Whole files as memory, by the calls of POSIX systems.
#include "dom/source/MappedFile.h"

#include <cerrno>
#include <fcntl.h>
#include <limits>
#include <memory>
#include <new>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zeldom40 {

namespace {

constexpr int kReadWrite = 1;

// Closes the descriptor at the end of a scope; a block in memory does not need it.
class Descriptor {
 public:
  explicit Descriptor(int fd) : fd_(fd) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() {
    if (fd_ >= 0) ::close(fd_);
  }
  int get() const { return fd_; }

 private:
  int fd_;
};

// Reads exactly `size` bytes; null if there are fewer or no memory for them.
std::unique_ptr<char[]> readAll(int fd, size_t size) {
  std::unique_ptr<char[]> bytes(new (std::nothrow) char[size]);
  size_t done = 0;
  while (bytes && done < size) {
    const ssize_t got = ::read(fd, bytes.get() + done, size - done);
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) return nullptr;
    done += static_cast<size_t>(got);
  }
  return bytes;
}

}  // namespace

MappedFile::MappedFile() = default;

MappedFile::MappedFile(const char* name, int mode) { open(name, mode); }

MappedFile::MappedFile(const std::string* name, int mode) { open(name ? name->c_str() : nullptr, mode); }

MappedFile::~MappedFile() { close(); }

int MappedFile::open(const char* name, int mode) {
  close();
  if (!name) return 1;
  const bool writable = mode == kReadWrite;
  // Without O_NONBLOCK the call would wait for the other end of a named pipe.
  const int flags = (writable ? O_RDWR | O_CREAT : O_RDONLY) | O_CLOEXEC | O_NONBLOCK;
  const Descriptor file(::open(name, flags, 0666));
  if (file.get() < 0) return 1;
  struct stat status = {};
  if (::fstat(file.get(), &status) != 0) return 2;
  if (!S_ISREG(status.st_mode)) return 1;
  if (status.st_size <= 0 || std::int64_t{status.st_size} > std::numeric_limits<uint32_t>::max()) return 3;

  const size_t size = static_cast<size_t>(status.st_size);
  if (writable) {
    void* block = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, file.get(), 0);
    if (block == MAP_FAILED) return 4;
    view_ = static_cast<char*>(block);
  } else {
    view_ = readAll(file.get(), size).release();
    if (!view_) return 4;
  }
  mapped_ = writable;
  size_ = static_cast<uint32_t>(size);
  return 0;
}

void MappedFile::close() {
  if (mapped_) {
    ::munmap(view_, size_);
  } else {
    delete[] view_;
  }
  view_ = nullptr;
  size_ = 0;
  mapped_ = false;
}

}  // namespace zeldom40
