// SPDX-License-Identifier: MIT
//
// The bytes of a file as they were before gzip, if it was used.
#pragma once

#include <zlib.h>

#include <cstddef>
#include <memory>
#include <string>

namespace mardle::tools {

class UnpackedFile {
 public:
  // "-" is standard input. Throws FileError when the file cannot be opened.
  explicit UnpackedFile(const std::string& path);

  // Reads up to `size` bytes; fewer only in front of the end, which is 0 bytes. Throws FileError
  // when reading fails, the compressed data are damaged or end too early.
  std::size_t Read(char* block, std::size_t size);

  // As messages call it.
  const std::string& name() const { return name_; }

 private:
  struct Close {
    void operator()(gzFile file) const { gzclose_r(file); }
  };
  [[noreturn]] void Fail();

  std::string name_;
  std::unique_ptr<gzFile_s, Close> file_;
};

// All of it.
std::string WholeContents(UnpackedFile& file);

}  // namespace mardle::tools
