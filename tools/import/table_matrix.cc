// SPDX-License-Identifier: MIT
#include "tools/import/table_matrix.h"

#include "tools/import/matrix_value.h"
#include "tools/text/fields.h"
#include "tools/text/numbers.h"

namespace mardle::tools {
namespace {

constexpr char kAdvice[] =
    "; --class-column, --label-column and --skip-column take columns that are no numbers";

double CellValue(const Table& table, std::size_t column) {
  const std::string_view text = Trimmed(table.fields()[column]);
  if (text.empty()) throw FileError(table.place(), table.ColumnName(column) + " is empty");
  if (!ParseNumber(text)) {
    throw FileError(table.place(),
                    table.ColumnName(column) + " is no number: " + Quoted(text) + kAdvice);
  }
  return MatrixValue(text, table.place(), table.ColumnName(column));
}

}  // namespace

MatrixSummary ImportTable(InputLines& input, const TableOptions& options,
                          const MatrixOutput& output, bool sparse, Progress& progress) {
  Table table(input, options);
  const std::vector<std::size_t>& columns = table.value_columns;
  std::optional<int> dense_columns;
  if (!sparse) dense_columns = static_cast<int>(columns.size());
  MatrixWriter writer(output, dense_columns);
  std::vector<Entry> entries;
  while (table.Next()) {
    entries.clear();
    for (std::size_t j = 0; j < columns.size(); ++j) {
      const double value = CellValue(table, columns[j]);
      if (value != 0) entries.push_back({static_cast<int>(j), value});
    }
    writer.AddRow(entries, {table.Field(table.label_column), table.Field(table.class_column)},
                  table.place());
    progress.Step();
  }
  return writer.Finish(static_cast<std::int64_t>(columns.size()), table.Headings());
}

}  // namespace mardle::tools
