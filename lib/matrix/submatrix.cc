// SPDX-License-Identifier: MIT
#include "lib/matrix/submatrix.h"

#include <algorithm>

namespace molva {
namespace {

struct ClusterShape {
  int nrows = 0;
  int entries = 0;
};

// Counts the rows and entries of the cluster, and the entries of each column in `column_counts`.
ClusterShape CountCluster(const PreparedMatrix& mat, int c, Span<const int> part,
                          Array<int>& column_counts) {
  ClusterShape shape;
  for (int i = 0; i < mat.nrows; ++i) {
    if (part[i] != c) continue;
    const RowView row = Row(mat, i);
    ++shape.nrows;
    shape.entries += static_cast<int>(row.size());
    for (const int j : row.columns) ++column_counts[j];
  }
  return shape;
}

// Turns the count of each column into its new number; returns how many columns occur.
int NumberColumns(Span<int> counts) {
  int next = 0;
  for (int& column : counts) column = column > 0 ? next++ : -1;
  return next;
}

}  // namespace

Owned<PreparedMatrix> Cluster2Matrix(const PreparedMatrix& mat, int c, Span<const int> part) {
  Array<int> cmap = AllocIntsSet(mat.ncols, 0, "Cluster2Matrix: cmap");
  const ClusterShape shape = CountCluster(mat, c, part, cmap);

  Owned<PreparedMatrix> cluster = CreateMatrix();
  cluster->sparse = mat.sparse;
  cluster->nrows = shape.nrows;
  cluster->ncols = NumberColumns(cmap);
  cluster->rowptr = AllocInts(std::int64_t{shape.nrows} + 1, "Concept2Matrix: crowptr");
  cluster->rowind = AllocInts(shape.entries, "Concept2Matrix: crowind");
  cluster->rowval = AllocFloats(shape.entries, "Concept2Matrix: crowval");

  int rows = 0;
  int entries = 0;
  cluster->rowptr[0] = 0;
  for (int i = 0; i < mat.nrows; ++i) {
    if (part[i] != c) continue;
    const RowView row = Row(mat, i);
    std::transform(row.columns.begin(), row.columns.end(), cluster->rowind.data() + entries,
                   [&cmap](int j) { return cmap[j]; });
    std::copy(row.values.begin(), row.values.end(), cluster->rowval.data() + entries);
    entries += static_cast<int>(row.size());
    cluster->rowptr[++rows] = entries;
  }
  return cluster;
}

bool EveryColumnOccurs(const PreparedMatrix& mat) {
  Array<char> occurs = Array<char>::Zeroed(mat.ncols, "Cluster2Matrix: cmap");
  std::for_each_n(mat.rowind.data(), EntryCount(mat), [&occurs](int j) { occurs[j] = 1; });
  return std::all_of(occurs.begin(), occurs.end(), [](char occurred) { return occurred != 0; });
}

}  // namespace molva
