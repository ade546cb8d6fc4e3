// SPDX-License-Identifier: MIT
#include "tools/run/whole_lines.h"

#include <algorithm>
#include <cstdio>
#include <string_view>
#include <vector>

#include "tools/text/fields.h"
#include "tools/text/input_lines.h"
#include "tools/text/numbers.h"

namespace mardle::tools {
namespace {

bool IsResult(std::string_view line, std::size_t wanted) {
  const std::vector<std::string_view> fields = FieldsOf(line);
  return fields.size() == wanted && ParseInteger(fields[0]) &&
         std::all_of(fields.begin() + 1, fields.end(),
                     [](std::string_view field) { return ParseNumber(field).has_value(); });
}

// A line that a full disk has cut may look whole, but for its end.
bool LastLineHasAnEnd(const std::string& name) {
  const molva::File file = OpenForReading(name);
  return std::fseek(file.get(), -1, SEEK_END) == 0 && std::fgetc(file.get()) == '\n';
}

// The lines of the file, and how many of them come before the first that is no result.
struct Counts {
  std::int64_t all = 0;
  std::int64_t good = 0;
};

Counts CountLines(const std::string& name, std::size_t fields) {
  InputLines input(name);
  Counts counts;
  std::string_view line;
  for (; input.Next(line); ++counts.all) {
    if (counts.good == counts.all && IsResult(line, fields)) ++counts.good;
  }
  const bool ended = counts.all == 0 || LastLineHasAnEnd(name);
  if (!ended && counts.good == counts.all) --counts.good;
  return counts;
}

}  // namespace

std::optional<std::string> ProblemOfLines(const std::string& name, const WantedLines& wanted) {
  try {
    const Counts counts = CountLines(name, wanted.fields);
    if (counts.good < wanted.lines) {
      return name + ": incomplete, " + std::to_string(counts.good) + " of " +
             std::to_string(wanted.lines) + " lines";
    }
    if (counts.all > wanted.lines) {
      return name + ": more than the " + std::to_string(wanted.lines) + " lines that are wanted";
    }
  } catch (const FileError& error) {
    return error.what();
  }
  return std::nullopt;
}

}  // namespace mardle::tools
