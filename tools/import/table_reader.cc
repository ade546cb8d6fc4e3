// SPDX-License-Identifier: MIT
#include "tools/import/table_reader.h"

#include <algorithm>
#include <cstddef>

#include "tools/text/fields.h"

namespace mardle::tools {
namespace {

constexpr std::string_view kDelimiters = ",\t;";

std::size_t CountOutsideQuotes(std::string_view line, char delimiter) {
  std::size_t count = 0;
  bool quoted = false;
  for (const char c : line) {
    if (c == '"') quoted = !quoted;
    if (c == delimiter && !quoted) ++count;
  }
  return count;
}

}  // namespace

char DelimiterOf(std::string_view line) {
  return *std::max_element(kDelimiters.begin(), kDelimiters.end(), [line](char a, char b) {
    return CountOutsideQuotes(line, a) < CountOutsideQuotes(line, b);
  });
}

bool TableReader::Next(std::vector<std::string>& fields) {
  std::string_view rest;
  do {
    if (!input_.Next(rest)) return false;
  } while (Trimmed(rest).empty());
  place_ = input_.place();
  fields.clear();
  fields.push_back(TakeField(rest));
  while (!rest.empty()) {
    rest.remove_prefix(1);
    fields.push_back(TakeField(rest));
  }
  return true;
}

// Leaves `rest` at the delimiter behind the field, or empty.
std::string TableReader::TakeField(std::string_view& rest) {
  if (rest.starts_with('"')) return TakeQuoted(rest);
  const std::size_t length = std::min(rest.find(delimiter_), rest.size());
  std::string field(rest.substr(0, length));
  rest.remove_prefix(length);
  return field;
}

std::string TableReader::TakeQuoted(std::string_view& rest) {
  const Place opened = input_.place();
  std::string field;
  rest.remove_prefix(1);
  for (;;) {
    const std::size_t quote = rest.find('"');
    field += rest.substr(0, quote);
    if (quote == std::string_view::npos) {
      field += '\n';
      if (!input_.Next(rest)) throw FileError(opened, "a quote is not closed");
      continue;
    }
    rest.remove_prefix(quote + 1);
    if (!rest.starts_with('"')) break;
    field += '"';
    rest.remove_prefix(1);
  }
  if (!rest.empty() && rest[0] != delimiter_) input_.Fail("text behind a closing quote");
  return field;
}

}  // namespace mardle::tools
