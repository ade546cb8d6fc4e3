// SPDX-License-Identifier: MIT
#include "tools/import/given_labels.h"

#include "tools/text/input_lines.h"

namespace mardle::tools {
namespace {

std::vector<std::string> LinesOf(const std::string& path) {
  std::vector<std::string> lines;
  if (path.empty()) return lines;
  InputLines input(path);
  std::string_view line;
  while (input.Next(line)) lines.emplace_back(line);
  if (lines.empty()) input.Fail("there are no labels");
  return lines;
}

void Require(const std::string& path, std::size_t labels, std::int64_t wanted, const char* what) {
  if (path.empty() || static_cast<std::int64_t>(labels) == wanted) return;
  throw FileError({path, 0},
                  std::to_string(labels) + " labels for " + std::to_string(wanted) + " " + what);
}

}  // namespace

GivenLabels::GivenLabels(const LabelFiles& files)
    : files_(files), columns_(LinesOf(files.columns)), rows_(LinesOf(files.rows)) {}

void GivenLabels::RequireRows(std::int64_t rows) const {
  Require(files_.rows, rows_.size(), rows, "rows");
}

void GivenLabels::RequireColumns(std::int64_t columns) const {
  Require(files_.columns, columns_.size(), columns, "columns");
}

RowNames GivenLabels::OfRow(std::int64_t row) const {
  RowNames names;
  if (row < static_cast<std::int64_t>(rows_.size())) {
    names.label = rows_[static_cast<std::size_t>(row)];
  }
  return names;
}

}  // namespace mardle::tools
