// SPDX-License-Identifier: MIT
#include "tools/import/triples.h"

#include <algorithm>
#include <tuple>

namespace mardle::tools {
namespace {

// The entries of the row that begins at `triple`, which moves behind them: equal columns added up,
// zeros left out.
void TakeRow(std::vector<Triple>::const_iterator& triple, std::vector<Triple>::const_iterator end,
             int row, std::vector<Entry>& entries) {
  entries.clear();
  for (; triple != end && triple->row == row; ++triple) {
    if (!entries.empty() && entries.back().column == triple->column) {
      entries.back().value += triple->value;
    } else {
      entries.push_back({triple->column, triple->value});
    }
  }
  std::erase_if(entries, [](const Entry& entry) { return entry.value == 0; });
}

}  // namespace

void RefuseRowsThatAreNotThere(const Place& place, long long rows, long long entries) {
  constexpr int kManyRows = 1000000;
  constexpr int kRowsOfAnEntry = 100;
  if (rows <= kManyRows || entries >= rows / kRowsOfAnEntry) return;
  throw FileError(place, std::to_string(rows) + " rows for " + std::to_string(entries) +
                             (entries == 1 ? " entry" : " entries") +
                             ": hardly a row has one; --drop-empty leaves the others out");
}

MatrixSummary WriteTriples(std::vector<Triple>& triples, const TripleMatrix& matrix,
                           const MatrixOutput& output, const GivenLabels& labels) {
  labels.RequireRows(matrix.rows);
  labels.RequireColumns(matrix.columns);
  // Stable, so that values given several times add up in the order of the file.
  std::stable_sort(triples.begin(), triples.end(), [](const Triple& a, const Triple& b) {
    return std::tie(a.row, a.column) < std::tie(b.row, b.column);
  });
  std::optional<int> dense_columns;
  if (matrix.dense) dense_columns = matrix.columns;
  MatrixWriter writer(output, dense_columns);
  std::vector<Entry> entries;
  auto triple = triples.cbegin();
  for (int row = 0; row < matrix.rows; ++row) {
    if (output.drop_empty) {
      const int next = triple == triples.cend() ? matrix.rows : triple->row;
      writer.LeaveOut(next - row);
      row = next;
      if (row == matrix.rows) break;
    }
    TakeRow(triple, triples.cend(), row, entries);
    writer.AddRow(entries, labels.OfRow(row),
                  {matrix.path + ", row " + std::to_string(row + 1), 0});
  }
  return writer.Finish(matrix.columns, labels.columns());
}

}  // namespace mardle::tools
