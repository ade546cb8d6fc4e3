// SPDX-License-Identifier: MIT
//
// What the columns of a table are for: the label, the class or the text of a row, left out, or a
// column of the matrix.
#pragma once

#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tools/import/table_reader.h"

namespace mardle::tools {

// Columns are named by their heading or by their number, counted from 1; the heading goes first.
struct TableOptions {
  std::optional<char> delimiter;  // found out when absent
  bool no_header = false;
  bool decimal_comma = false;
  bool numbers_only = false;  // columns that hold something else are left out
  std::string label_column;   // empty: none
  std::string class_column;
  std::vector<std::string> text_columns;
  std::vector<std::string> skipped_columns;
};

// A table whose first record, the header, was read.
class Table {
 public:
  Table(InputLines& input, const TableOptions& options);

  // Takes the next row into fields(). False at the end. Throws FileError when it has not as many
  // fields as the table has columns.
  bool Next();

  // Reads all rows, and calls `look` for each of them; Next() takes the same rows again.
  void LookAhead(const std::function<void()>& look);

  const Place& place() const { return ahead_place_ ? *ahead_place_ : reader_.place(); }
  const std::vector<std::string>& fields() const { return fields_; }
  std::optional<std::string_view> Field(std::optional<std::size_t> column) const;

  std::optional<std::size_t> label_column;
  std::optional<std::size_t> class_column;
  std::vector<std::size_t> text_columns;
  std::vector<std::size_t> value_columns;  // all others that are not skipped

  bool has_header() const { return has_header_; }
  const std::string& heading(std::size_t column) const { return header_[column]; }
  // "column 3 (petal)".
  std::string ColumnName(std::size_t column) const;
  // By its heading or, where that is empty, by its number: as options name it.
  std::string OptionName(std::size_t column) const;
  // The headings of the value columns; none without a header.
  std::vector<std::string> Headings() const;

 private:
  std::optional<std::size_t> Find(const std::string& name) const;
  [[noreturn]] void RefuseColumn(const std::string& name) const;

  TableReader reader_;
  std::vector<std::string> header_;  // empty fields without a header
  std::vector<std::string> fields_;
  struct Row {
    std::vector<std::string> fields;
    Place place;
  };

  bool first_is_pending_ = false;  // without a header the first record is a row
  std::deque<Row> ahead_;          // rows that were looked at and not taken yet
  std::optional<Place> ahead_place_;
  bool has_header_;
};

}  // namespace mardle::tools
