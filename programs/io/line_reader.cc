// SPDX-License-Identifier: MIT
#include "programs/io/line_reader.h"

#include <cstring>

#include "lib/support/fatal.h"
#include "lib/support/strings.h"

namespace mardle {

LineReader::LineReader(std::FILE* stream)
    : stream_(stream), buffer_(kLineBuffer, "LineReader: buffer") {}

char* LineReader::Next() {
  if (std::fgets(buffer_.data(), kLineBuffer, stream_) == nullptr) return nullptr;
  // A read never fills the whole buffer, so this never fires and longer lines are split; that is
  // how files with such lines have always been read.
  if (std::strlen(buffer_.data()) == kLineBuffer) {
    molva::FatalError("\nBuffer for fgets not big enough!\n");
  }
  return buffer_.data();
}

char* LineReader::NextStripped() {
  char* line = Next();
  return line == nullptr ? nullptr : molva::StripTrailing(line, " \t\n");
}

char* NextToken(char*& text) {
  constexpr char kDelimiters[] = " \t";
  char* token = text + std::strspn(text, kDelimiters);
  if (*token == '\0') return nullptr;
  char* end = token + std::strcspn(token, kDelimiters);
  text = *end == '\0' ? end : end + 1;
  *end = '\0';
  return token;
}

}  // namespace mardle
