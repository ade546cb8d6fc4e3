// SPDX-License-Identifier: MIT
//
// Writes a matrix, row by row, and the label and class files beside it. The header is filled in at
// the end, so rows need not be held in memory.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tools/text/file_error.h"
#include "tools/text/output_file.h"

namespace mardle::tools {

struct Entry {
  int column;  // counted from 0
  double value;
  bool operator==(const Entry&) const = default;
};

// What a row is called; absent names are not written.
struct RowNames {
  std::optional<std::string_view> label = {};
  std::optional<std::string_view> class_name = {};
};

// How the matrix is written.
struct MatrixOutput {
  std::string path;
  bool drop_empty = false;  // leave rows without entries out
  bool replace = false;     // files that exist
};

// The matrix and the files beside it, whether or not all of them will be written: those that are
// not are removed.
std::vector<std::string> FilesOf(const MatrixOutput& output);

struct MatrixSummary {
  std::int64_t rows = 0;
  std::int64_t columns = 0;
  std::int64_t entries = 0;     // other than 0
  std::int64_t empty_rows = 0;  // written or, with drop_empty, left out
  bool dense = false;
  bool whole_numbers = true;  // no value has a fraction
};

class MatrixWriter {
 public:
  // Throws FileError when one of the files exists and may not be replaced. A matrix is dense when
  // it is given a number of columns here.
  explicit MatrixWriter(const MatrixOutput& output, std::optional<int> dense_columns = {});

  // Adds a row; `place` is what messages about it name. Entries are sorted by column, and none is
  // 0. All rows carry a label or none does; the same holds for classes.
  void AddRow(std::span<const Entry> entries, const RowNames& names, const Place& place);

  // Counts rows without entries that are not added.
  void LeaveOut(std::int64_t rows) { summary_.empty_rows += rows; }

  std::int64_t rows() const { return summary_.rows; }

  // Fills in the header, writes the labels of the columns, unless there are none, and gives all
  // files their names. A label or class file of an earlier matrix goes.
  MatrixSummary Finish(std::int64_t columns, std::span<const std::string> column_labels = {});

 private:
  void AppendSparse(std::span<const Entry> entries);
  void AppendDense(std::span<const Entry> entries);
  void WriteName(std::optional<std::string_view> name, const char* suffix,
                 std::unique_ptr<OutputFile>& file) const;
  std::string Header() const;
  void PublishFiles();

  MatrixOutput output_;
  MatrixSummary summary_;
  OutputFile matrix_;
  std::unique_ptr<OutputFile> row_labels_;
  std::unique_ptr<OutputFile> row_classes_;
  std::unique_ptr<OutputFile> column_labels_;
  std::string line_;
};

}  // namespace mardle::tools
