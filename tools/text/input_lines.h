// SPDX-License-Identifier: MIT
//
// The lines of an input file, of any length. The file is opened once and read from front to back,
// so pipes will do.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "lib/support/files.h"
#include "tools/text/file_error.h"

namespace mardle::tools {

// Opens a file; throws FileError when it cannot be read.
molva::File OpenForReading(const std::string& path);

// Reads up to so many bytes; 0 at the end.
using ByteSource = std::function<std::size_t(char* block, std::size_t size)>;

class InputLines {
 public:
  // "-" is standard input. Throws FileError when the file cannot be opened.
  explicit InputLines(const std::string& path);
  // Lines of what comes from elsewhere; `name` is what messages call it.
  InputLines(const std::string& name, ByteSource source);

  // What the file begins with, up to a block; to be asked before the first line is taken.
  std::string_view Beginning();

  // Takes the next line, without its line end (LF or CR LF) and, at the start of the file, without
  // a byte order mark. It is valid until the next call. False at the end of the file.
  bool Next(std::string_view& line);

  // The place of the line last taken.
  const Place& place() const { return place_; }

  // Throws FileError at that place.
  [[noreturn]] void Fail(const std::string& message) const;

 private:
  bool ReadMore();

  ByteSource source_;
  Place place_;
  std::string buffer_;
  std::size_t taken_ = 0;  // of the buffer
  bool started_ = false;
};

}  // namespace mardle::tools
