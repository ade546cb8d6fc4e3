// SPDX-License-Identifier: MIT
#include "lib/matrix/composites.h"

#include <utility>

#include "lib/support/team.h"

namespace molva {

void AddRow(const RowView& row, Span<float> vector) {
  for (std::size_t p = 0; p < row.size(); ++p) {
    vector[row.columns[p]] += row.values[p];
  }
}

void SubtractRow(const RowView& row, Span<float> vector) {
  for (std::size_t p = 0; p < row.size(); ++p) {
    vector[row.columns[p]] -= row.values[p];
  }
}

namespace {

// Fewer entries are not worth a thread.
constexpr int kFewEntries = 1 << 16;

// Adds the row's entries in the given columns.
void AddColumns(const RowView& row, int first, int last, Span<float> vector) {
  for (std::size_t p = 0; p < row.size(); ++p) {
    const int column = row.columns[p];
    if (first <= column && column < last) vector[column] += row.values[p];
  }
}

}  // namespace

// Each thread sums some of the clusters, or the whole over some of the columns, so that every sum
// takes its rows in their order.
void AccumulateComposites(const PreparedMatrix& mat, Span<const int> part, Span<int> pwgts,
                          Rows<float>& centers, Span<float> gcenter) {
  const auto cluster_of = [&](int i) {
    return part[i] >= 0 && std::cmp_less(part[i], pwgts.size()) ? part[i] : -1;
  };
  const int shares = EntryCount(mat) < kFewEntries ? 1 : TeamSize();
  const auto sum_clusters = [&](int share) {
    for (int i = 0; i < mat.nrows; ++i) {
      const int k = cluster_of(i);
      if (k < 0 || k % shares != share) continue;
      ++pwgts[k];
      AddRow(Row(mat, i), centers[k]);
    }
  };
  const auto sum_columns = [&](int share) {
    const int first = static_cast<int>(std::int64_t{mat.ncols} * share / shares);
    const int last = static_cast<int>(std::int64_t{mat.ncols} * (share + 1) / shares);
    for (int i = 0; i < mat.nrows; ++i) {
      if (cluster_of(i) >= 0) AddColumns(Row(mat, i), first, last, gcenter);
    }
  };
  ShareOutOne(gcenter.empty() ? shares : 2 * shares, [&](std::int64_t piece) {
    const auto share = static_cast<int>(piece % shares);
    piece < shares ? sum_clusters(share) : sum_columns(share);
  });
}

}  // namespace molva
