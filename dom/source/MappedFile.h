// MappedFile: a whole file as one block of memory, for the readers of pages and document type definitions.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "dom/export.h"

namespace zeldom40 {

// A file as a pointer and a size. After a failed `open`, and after `close`, they are null and 0.
//
// CHOICE: a file opened for reading is copied into memory at once. Nothing here keeps another program from shortening
// the file meanwhile, and touching a mapped page behind its new end would end the process.
class ZELDOM40_API MappedFile {
 public:
  MappedFile();
  // Open the file at once; `get_top` tells whether it worked. A null `name` is a file that cannot be opened.
  MappedFile(const char* name, int mode);
  MappedFile(const std::string* name, int mode);
  MappedFile(const MappedFile&) = delete;
  MappedFile& operator=(const MappedFile&) = delete;
  // Closes the file.
  virtual ~MappedFile();

  // Opens the file `name`. Mode 1 opens it for reading and writing, or makes it if there is none: what the caller
  // writes into the block goes to the file. Any other mode reads an existing file. A file that was open is closed
  // first. Returns 0; or 1 if there is no such regular file or it may not be used, 2 if its size cannot be had, 3 if
  // it is empty or has 4 GiB or more, 4 if its bytes cannot be had. A file that mode 1 has made stays, also with 3.
  int open(const char* name, int mode);

  // Gives the block back; harmless when nothing is open.
  void close();

  // The first byte, for reading only unless opened with mode 1, or null. No NUL is added. Lives until `close`, the next
  // `open` or the end of this object.
  char* get_top() const { return view_; }
  // The size in bytes.
  uint32_t get_size() const { return size_; }

 private:
  char* view_ = nullptr;
  uint32_t size_ = 0;
  bool mapped_ = false;  // else a block of our own
};

}  // namespace zeldom40
