// SPDX-License-Identifier: MIT
//
// What is seen of a text on its way in: whether it is one, and in UTF-8.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "tools/text/file_error.h"

namespace mardle::tools {

// The input is something else than a text.
class NoText : public FileError {
 public:
  using FileError::FileError;
};

class TextWatch {
 public:
  explicit TextWatch(std::string path) : path_(std::move(path)) {}

  // Takes the next bytes of the text. Throws NoText at a NUL byte, which no text has.
  void Look(std::string_view bytes);
  // There are no more.
  void End() { LookAt(true); }

  // Lines with bytes that are no UTF-8, and the first of them, counted from 1.
  std::int64_t malformed_lines() const { return malformed_lines_; }
  std::int64_t first_malformed_line() const { return first_malformed_line_; }

 private:
  void LookAt(bool at_end);
  std::string_view BehindAscii(std::string_view text);
  void MarkLine();

  std::string path_;
  std::string rest_;  // the front of a character whose end has not come
  std::int64_t line_ = 1;
  std::int64_t last_malformed_line_ = 0;
  std::int64_t malformed_lines_ = 0;
  std::int64_t first_malformed_line_ = 0;
};

}  // namespace mardle::tools
