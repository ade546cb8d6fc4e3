// SPDX-License-Identifier: MIT
//
// Labels from files of their own, for inputs that have none.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tools/import/matrix_writer.h"

namespace mardle::tools {

struct LabelFiles {
  std::string columns;  // empty: there is none
  std::string rows;
};

class GivenLabels {
 public:
  GivenLabels() = default;
  // Reads the files, a label a line.
  explicit GivenLabels(const LabelFiles& files);

  // Throw FileError when there are labels, but not as many.
  void RequireRows(std::int64_t rows) const;
  void RequireColumns(std::int64_t columns) const;

  RowNames OfRow(std::int64_t row) const;  // nothing behind the last label
  const std::vector<std::string>& columns() const { return columns_; }

 private:
  LabelFiles files_;
  std::vector<std::string> columns_;
  std::vector<std::string> rows_;
};

}  // namespace mardle::tools
