// SPDX-License-Identifier: MIT
#include "tools/text/fields.h"

#include <algorithm>
#include <cstddef>

namespace mardle::tools {

std::string_view Trimmed(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(kBlanks);
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(kBlanks) + 1 - begin);
}

std::vector<std::string_view> FieldsOf(std::string_view line, std::string_view blanks) {
  std::vector<std::string_view> fields;
  std::size_t end = 0;
  for (;;) {
    const std::size_t begin = line.find_first_not_of(blanks, end);
    if (begin == std::string_view::npos) return fields;
    end = std::min(line.find_first_of(blanks, begin), line.size());
    fields.push_back(line.substr(begin, end - begin));
  }
}

std::vector<std::string_view> FieldsBetween(std::string_view line, char delimiter) {
  std::vector<std::string_view> fields;
  for (;;) {
    const std::size_t end = line.find(delimiter);
    fields.push_back(line.substr(0, end));
    if (end == std::string_view::npos) return fields;
    line.remove_prefix(end + 1);
  }
}

std::string Quoted(std::string_view text) {
  constexpr std::size_t kLongest = 40;
  std::string quoted("'");
  quoted += text.substr(0, kLongest);
  quoted += text.size() > kLongest ? "...'" : "'";
  return quoted;
}

}  // namespace mardle::tools
