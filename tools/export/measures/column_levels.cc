// SPDX-License-Identifier: MIT
#include "tools/export/measures/column_levels.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace mardle::exporting {
namespace {

double Ratio(double sum, int count) { return count > 0 ? sum / count : 0; }

}  // namespace

ColumnLevels::ColumnLevels(const Matrix& mat, const ClusterRows& rows)
    : are_shares_(static_cast<bool>(mat.rowptr)),
      total_size_(rows.Total()),
      totals_(static_cast<std::size_t>(mat.ncols), 0) {
  for (int k = 0; k < rows.nclusters(); ++k) sizes_.push_back(rows.Size(k));
  if (are_shares_) {
    AddShares(mat, rows);
  } else {
    AddValues(mat, rows);
  }
}

// Ends a cluster: its sums are stored, and become zero again for the next.
void ColumnLevels::TakeCluster(std::vector<double>& sums, std::vector<int>& columns) {
  std::sort(columns.begin(), columns.end());
  for (const int j : columns) {
    double& sum = sums[static_cast<std::size_t>(j)];
    if (sum == 0) continue;
    sums_.push_back({j, sum});
    totals_[static_cast<std::size_t>(j)] += sum;
    sum = 0;
  }
  begins_.push_back(sums_.size());
  columns.clear();
}

// A column that a row stores more than once is one column of that row all the same.
void ColumnLevels::AddShares(const Matrix& mat, const ClusterRows& rows) {
  std::vector<double> counts(totals_.size(), 0);
  std::vector<int> last_row(totals_.size(), -1);
  std::vector<int> columns;
  for (int k = 0; k < rows.nclusters(); ++k) {
    for (const int i : rows[k]) {
      for (int p = mat.rowptr[i]; p < mat.rowptr[i + 1]; ++p) {
        const int j = mat.rowind[p];
        const auto at = static_cast<std::size_t>(j);
        if (mat.rowval[p] == 0 || last_row[at] == i) continue;
        last_row[at] = i;
        if (counts[at]++ == 0) columns.push_back(j);
      }
    }
    TakeCluster(counts, columns);
  }
}

void ColumnLevels::AddValues(const Matrix& mat, const ClusterRows& rows) {
  std::vector<double> sums(totals_.size(), 0);
  squares_.assign(totals_.size(), 0);
  std::vector<int> columns;
  for (int k = 0; k < rows.nclusters(); ++k) {
    for (const int i : rows[k]) {
      const float* row = mat.rowval.get() + std::int64_t{i} * mat.ncols;
      for (std::size_t j = 0; j < sums.size(); ++j) {
        const double value = static_cast<double>(row[j]);
        sums[j] += value;
        squares_[j] += value * value;
      }
    }
    for (int j = 0; j < mat.ncols; ++j) columns.push_back(j);
    TakeCluster(sums, columns);
  }
}

double ColumnLevels::SumOf(int k, int j) const {
  const auto at = static_cast<std::size_t>(k);
  const auto begin = sums_.begin() + static_cast<std::ptrdiff_t>(begins_[at]);
  const auto end = sums_.begin() + static_cast<std::ptrdiff_t>(begins_[at + 1]);
  const auto found = std::lower_bound(
      begin, end, j, [](const Sum& sum, int column) { return sum.column < column; });
  return found != end && found->column == j ? found->sum : 0;
}

double ColumnLevels::Inside(int k, int j) const {
  return Ratio(SumOf(k, j), sizes_[static_cast<std::size_t>(k)]);
}

double ColumnLevels::Elsewhere(int k, int j) const {
  return Ratio(totals_[static_cast<std::size_t>(j)] - SumOf(k, j),
               total_size_ - sizes_[static_cast<std::size_t>(k)]);
}

double ColumnLevels::StandingOf(double average, int j) const {
  const auto at = static_cast<std::size_t>(j);
  const double overall = Ratio(totals_[at], total_size_);
  const double variance = Ratio(squares_[at], total_size_) - overall * overall;
  return variance > 0 ? (average - overall) / std::sqrt(variance) : 0;
}

}  // namespace mardle::exporting
