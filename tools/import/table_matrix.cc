// SPDX-License-Identifier: MIT
#include "tools/import/table_matrix.h"

#include <strings.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>
#include <set>

#include "tools/import/matrix_value.h"
#include "tools/text/fields.h"
#include "tools/text/numbers.h"
#include "tools/text/shell_text.h"

namespace mardle::tools {
namespace {

constexpr double kMissing = std::numeric_limits<double>::quiet_NaN();

bool IsMissing(std::string_view text) {
  static constexpr std::array<const char*, 6> kWords = {"na", "n/a", "nan", "null", "none", "?"};
  const std::string word(text);
  return text.empty() || std::any_of(kWords.begin(), kWords.end(), [&word](const char* missing) {
           return strcasecmp(word.c_str(), missing) == 0;
         });
}

// "1,5" as "1.5"; nothing when that is no number.
std::optional<std::string> WithDecimalPoint(std::string_view text) {
  std::string point(text);
  const std::size_t comma = point.find(',');
  if (comma == std::string::npos || point.find('.') != std::string::npos) return std::nullopt;
  point[comma] = '.';
  return ParseNumber(point) ? std::optional(point) : std::nullopt;
}

bool HasSeveralWords(std::string_view text) {
  const auto fields = FieldsOf(text);
  return std::count_if(fields.begin(), fields.end(),
                       [](std::string_view field) { return !ParseNumber(field); }) > 1;
}

// Whether the cell holds something, and that is no number.
bool IsOther(std::string_view text, bool decimal_comma) {
  text = Trimmed(text);
  return !IsMissing(text) && !ParseNumber(text) && !(decimal_comma && WithDecimalPoint(text));
}

// The value columns that hold something else in the row that was read last.
std::vector<std::size_t> OtherColumns(const Table& table, bool decimal_comma) {
  std::vector<std::size_t> others;
  for (const std::size_t j : table.value_columns) {
    if (IsOther(table.fields()[j], decimal_comma)) others.push_back(j);
  }
  return others;
}

// "Make, Model, 7", cut when there are many.
std::string NamesOf(const Table& table, const std::vector<std::size_t>& columns) {
  constexpr std::size_t kMostNamed = 20;
  std::string names;
  for (std::size_t i = 0; i < std::min(columns.size(), kMostNamed); ++i) {
    names += (i > 0 ? ", " : "") + table.OptionName(columns[i]);
  }
  return names + (columns.size() > kMostNamed ? ", ..." : "");
}

// What to do about a column that is no number.
std::string AdviceFor(const Table& table, std::size_t column, std::string_view text) {
  if (WithDecimalPoint(text)) return "; --decimal-comma reads it";
  std::vector<std::size_t> others = OtherColumns(table, true);
  std::erase(others, column);
  if (!others.empty()) {
    return "; nor are others: " + NamesOf(table, others) +
           "; --class-column, --label-column, --text-column and --skip-column take them, "
           "--numbers-only leaves all of them out";
  }
  if (table.heading(column).empty() && table.has_header()) {
    return "; --label-column " + table.OptionName(column) +
           " makes labels of a column without a heading";
  }
  if (HasSeveralWords(text)) {
    return "; --text-column " + ShellText(table.OptionName(column)) + " counts its words";
  }
  return "; --class-column, --label-column and --skip-column take columns that are no numbers";
}

double CellValue(const Table& table, std::size_t column, bool decimal_comma) {
  std::string_view text = Trimmed(table.fields()[column]);
  if (IsMissing(text)) return kMissing;
  std::optional<std::string> point;
  if (decimal_comma && (point = WithDecimalPoint(text))) text = *point;
  if (!ParseNumber(text)) {
    throw FileError(table.place(), table.ColumnName(column) + " is no number: " + Quoted(text) +
                                       AdviceFor(table, column, text));
  }
  return MatrixValue(text, table.place(), table.ColumnName(column));
}

// Takes the columns out of the matrix that hold something else in any row.
void LeaveOthersOut(Table& table, bool decimal_comma, std::vector<std::string>& notes) {
  std::set<std::size_t> found;
  table.LookAhead([&] {
    const std::vector<std::size_t> others = OtherColumns(table, decimal_comma);
    found.insert(others.begin(), others.end());
  });
  if (found.empty()) return;
  std::erase_if(table.value_columns, [&found](std::size_t j) { return found.contains(j); });
  notes.push_back("left out, as they are no numbers: " +
                  NamesOf(table, {found.begin(), found.end()}));
}

// Headings that are numbers throughout are more likely a row.
void NoteNumericHeadings(const Table& table, std::vector<std::string>& notes) {
  const std::vector<std::string> headings = table.Headings();
  const bool numeric =
      !headings.empty() && std::all_of(headings.begin(), headings.end(), [](const auto& heading) {
        return ParseNumber(Trimmed(heading)).has_value();
      });
  if (!numeric) return;
  notes.push_back(
      "the first record was taken for headings, and all are numbers: " + Quoted(headings[0]) +
      (headings.size() > 1 ? ", " + Quoted(headings[1]) + (headings.size() > 2 ? ", ..." : "")
                           : "") +
      "; --no-header makes a row of it");
}

// Watches a column without a heading: does it only number the rows?
class Numbering {
 public:
  explicit Numbering(const Table& table) {
    const auto& columns = table.value_columns;
    const auto nameless = std::find_if(columns.begin(), columns.end(), [&table](std::size_t j) {
      return table.has_header() && table.heading(j).empty();
    });
    holds_ = nameless != columns.end();
    if (holds_) column_ = static_cast<std::size_t>(nameless - columns.begin());
  }

  void Look(const std::vector<double>& values) {
    if (!holds_) return;
    const double value = values[column_];
    if (count_ == 0) first_ = value;
    holds_ = value == first_ + static_cast<double>(count_);
    ++count_;
  }

  void Note(const Table& table, std::vector<std::string>& notes) const {
    if (!holds_ || count_ < 2 || first_ != std::round(first_)) return;
    const std::string number = std::to_string(table.value_columns[column_] + 1);
    notes.push_back("column " + number +
                    " has no heading and numbers the rows, and is a column of the matrix; "
                    "--label-column " +
                    number + " makes labels of it, --skip-column " + number + " leaves it out");
  }

 private:
  bool holds_ = false;      // so far
  std::size_t column_ = 0;  // among the value columns
  double first_ = 0;
  std::int64_t count_ = 0;
};

}  // namespace

MatrixSummary ImportTable(InputLines& input, const TableOptions& options,
                          const Preparation& preparation, const MatrixOutput& output,
                          Progress& progress, std::vector<std::string>& notes) {
  Table table(input, options);
  if (options.numbers_only) LeaveOthersOut(table, options.decimal_comma, notes);
  const std::vector<std::size_t>& columns = table.value_columns;
  DenseRows rows(output, preparation, columns.size(),
                 [&table](std::size_t j) { return table.ColumnName(table.value_columns[j]); });
  Numbering numbering(table);
  std::vector<double> values;
  while (table.Next()) {
    values.clear();
    for (const std::size_t j : columns) {
      values.push_back(CellValue(table, j, options.decimal_comma));
    }
    numbering.Look(values);
    rows.AddRow(values, {table.Field(table.label_column), table.Field(table.class_column)},
                table.place());
    progress.Step();
  }
  NoteNumericHeadings(table, notes);
  numbering.Note(table, notes);
  return rows.Finish(table.Headings(), notes);
}

}  // namespace mardle::tools
