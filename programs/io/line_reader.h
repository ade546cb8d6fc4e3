// SPDX-License-Identifier: MIT
//
// Lines of the text files.
#pragma once

#include <cstddef>
#include <cstdio>

#include "lib/support/alloc.h"

namespace mardle {

// One buffer for a whole file, which is read in blocks as large as there is room; lines are cut
// where they stand. A line that does not fit is split: its first 131071 characters come first, the
// rest as the next line. A NUL byte ends the text of its line.
class LineReader {
 public:
  static constexpr std::size_t kLineBuffer = 131072;

  // Borrows an open stream that nothing was read from. What is read ahead of the lines is lost to
  // other readers of the stream.
  explicit LineReader(std::FILE* stream);

  // The next line without its newline, or null at the end of the file. Valid until the next call.
  char* Next();

  // The same without trailing blanks and tabs. A carriage return is neither.
  char* NextStripped();

 private:
  char* FindNewline();
  bool ReadMore();

  std::FILE* stream_;
  molva::Array<char> buffer_;
  char* begin_;  // what was read and not yet given out
  char* end_;
  bool ended_ = false;
};

}  // namespace mardle
