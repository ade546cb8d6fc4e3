// SPDX-License-Identifier: MIT
#include "programs/io/line_reader.h"

#include <unistd.h>

#include <cstring>

#include "lib/support/fatal.h"
#include "lib/support/strings.h"

namespace mardle {

LineReader::LineReader(std::FILE* stream)
    : stream_(stream),
      buffer_(kLineBuffer, "ReadMatrix: Matrix"),
      begin_(buffer_.data()),
      end_(begin_) {}

char* LineReader::Next() {
  char* const newline = FindNewline();
  if (newline == nullptr && begin_ == end_) return nullptr;
  char* const line = begin_;
  char* const line_end = newline != nullptr ? newline : end_;
  begin_ = newline != nullptr ? newline + 1 : end_;
  // The buffer is never filled to its last byte, so this never fires and longer lines are split;
  // that is how files with such lines have always been read.
  if (line_end == line + kLineBuffer) {
    molva::FatalError("\nBuffer for fgets not big enough!\n");
  }
  *line_end = '\0';
  return line;
}

char* LineReader::NextStripped() {
  char* line = Next();
  return line == nullptr ? nullptr : molva::StripTrailing(line, " \t");
}

// The newline that ends the next line, or null when the file or the room ends before it.
char* LineReader::FindNewline() {
  std::size_t searched = 0;
  for (;;) {
    const auto length = static_cast<std::size_t>(end_ - begin_);
    void* const newline = std::memchr(begin_ + searched, '\n', length - searched);
    if (newline != nullptr) return static_cast<char*>(newline);
    if (!ReadMore()) return nullptr;
    searched = length;
  }
}

// Moves what is left to the front and reads once, however little there is: a pipe may give its next
// byte much later. Returns false at the end of the file and without room.
bool LineReader::ReadMore() {
  const auto length = static_cast<std::size_t>(end_ - begin_);
  begin_ = static_cast<char*>(std::memmove(buffer_.data(), begin_, length));
  end_ = begin_ + length;
  const std::size_t room = kLineBuffer - 1 - length;
  if (ended_ || room == 0) return false;
  const ssize_t count = read(fileno(stream_), end_, room);
  ended_ = count <= 0;
  // A line that a failed read cut short would pass for a whole one.
  end_ = count < 0 ? begin_ : end_ + count;
  return !ended_;
}

}  // namespace mardle
