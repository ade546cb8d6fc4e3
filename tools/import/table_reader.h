// SPDX-License-Identifier: MIT
//
// Tables as text: records of fields with a delimiter between them, where fields may be quoted.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tools/text/input_lines.h"

namespace mardle::tools {

// The delimiter that occurs most in a line outside quotes: a tab, a comma or a semicolon; a comma
// when none does.
char DelimiterOf(std::string_view line);

// A field that begins with a double quote ends at the next one that is not doubled; between them
// delimiters and line ends are text. Blank lines are no records.
class TableReader {
 public:
  TableReader(InputLines& input, char delimiter) : input_(input), delimiter_(delimiter) {}

  // Takes the next record. False at the end of the file.
  bool Next(std::vector<std::string>& fields);

  // The line on which the record last taken begins.
  const Place& place() const { return place_; }

 private:
  std::string TakeField(std::string_view& rest);
  std::string TakeQuoted(std::string_view& rest);

  InputLines& input_;
  char delimiter_;
  Place place_;
};

}  // namespace mardle::tools
