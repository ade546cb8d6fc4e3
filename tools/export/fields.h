// SPDX-License-Identifier: MIT
//
// A text file as lines of fields that stand between blanks and tabs. Every complaint names the file
// and the line. A carriage return counts as a blank, so files with either line end are read.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "lib/support/files.h"
#include "programs/io/line_reader.h"

namespace mardle::exporting {

class FieldFile {
 public:
  // Fails when the file cannot be opened.
  explicit FieldFile(const std::string& path);

  // Moves to the next line; false at the end of the file.
  bool Next();
  // The number of the line, from 1; 0 before the first.
  std::size_t line() const { return line_; }
  std::size_t fields() const { return fields_.size(); }
  // A field of the line as a number. Fails when it is none, or is no int.
  int Int(std::size_t field) const;
  double Number(std::size_t field) const;
  // Fails at the line; at line 1 of an empty file.
  [[noreturn]] void Refuse(const std::string& why) const;

 private:
  std::string path_;
  molva::File file_;
  LineReader reader_;
  std::size_t line_ = 0;
  std::vector<std::string_view> fields_;
};

}  // namespace mardle::exporting
