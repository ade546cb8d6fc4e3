// SPDX-License-Identifier: MIT
//
// Lines and tokens of the text files.
#pragma once

#include <cstdio>

#include "lib/support/alloc.h"

namespace mardle {

// One buffer for every line of a file. A line that does not fit is split: its first 131071
// characters come first, the rest as the next line. A NUL byte ends the text of its line.
class LineReader {
 public:
  static constexpr int kLineBuffer = 131072;

  // Borrows an open stream.
  explicit LineReader(std::FILE* stream);

  // The next line with its newline, or null at the end of the file. Valid until the next call.
  char* Next();

  // The same without trailing blanks, tabs and newlines. A carriage return is none of them.
  char* NextStripped();

 private:
  std::FILE* stream_;
  molva::Array<char> buffer_;
};

// Cuts the next token off a text: skips blanks and tabs, ends the token with a NUL, moves the text
// behind it. Null when none is left.
char* NextToken(char*& text);

}  // namespace mardle
