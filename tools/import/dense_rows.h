// SPDX-License-Identifier: MIT
//
// Rows with a number for every column on their way into a matrix: missing values are refused, left
// out with their rows or filled in, and columns may be standardized.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "tools/import/matrix_writer.h"

namespace mardle::tools {

enum class Missing { kRefused, kDrop, kMean, kMedian, kZero };

struct Preparation {
  Missing missing = Missing::kRefused;
  bool standardize = false;
  bool sparse = false;  // how the matrix is written
  bool operator==(const Preparation&) const = default;
};

// How a column is called in messages.
using ColumnName = std::function<std::string(std::size_t)>;

class DenseRows {
 public:
  DenseRows(const MatrixOutput& output, const Preparation& preparation, std::size_t columns,
            ColumnName column_name);

  // Adds a row of one value for each column; a missing one is not-a-number. As long as no column
  // need be known as a whole, rows are written at once.
  void AddRow(std::span<const double> values, const RowNames& names, const Place& place);

  // Throws FileError when values are missing and nothing is to be done about them, or nothing can
  // be. Appends to the notes what was done.
  MatrixSummary Finish(std::span<const std::string> column_labels, std::vector<std::string>& notes);

 private:
  struct HeldRow {
    std::optional<std::string> label, class_name;
    Place place;
  };

  bool HoldsRows() const;
  bool NoteMissing(std::span<const double> values, const Place& place);
  void Hold(std::span<const double> values, const RowNames& names, const Place& place);
  void Write(std::span<const double> values, const RowNames& names, const Place& place);
  void WriteHeld();
  std::vector<double> ColumnValues(std::size_t column) const;
  double FillOf(std::size_t column) const;
  void FillIn();
  void Standardize(std::vector<std::string>& notes);
  std::string MissingByColumn() const;
  void TellOfMissing(std::vector<std::string>& notes) const;

  Preparation preparation_;
  std::size_t columns_;
  ColumnName column_name_;
  MatrixWriter writer_;
  std::vector<std::int64_t> missing_;  // in each column
  std::int64_t rows_with_missing_ = 0;
  Place first_missing_;
  std::size_t first_missing_column_ = 0;
  std::vector<double> values_;  // of the held rows, one behind the other
  std::vector<HeldRow> rows_;
  std::vector<Entry> entries_;
};

}  // namespace mardle::tools
