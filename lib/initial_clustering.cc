// SPDX-License-Identifier: MIT
#include "lib/initial_clustering.h"

#include <cmath>

#include "lib/composites.h"
#include "lib/support/random.h"
#include "lib/support/wide.h"

namespace molva {
namespace {

constexpr int kShufflingPasses = 5;

struct GrowingClusters {
  Array<float> dnorms;  // the squared length of each composite
  Rows<float> centers;  // the composites
};

// The entries are written, not added: a column stored twice in a seed keeps its last value here,
// while the squared length counts both.
void Seed(const RowView& row, int k, GrowingClusters& clusters) {
  Wide squares = 0;
  for (std::size_t p = 0; p < row.size(); ++p) {
    const Wide v = row.values[p];
    clusters.centers[k][static_cast<std::size_t>(row.columns[p])] = row.values[p];
    squares += v * v;
  }
  clusters.dnorms[k] = static_cast<float>(squares);
}

// The squared length of the composite if the row joined, from all entries against the composite as
// it stands, added to the old squared length one by one.
Wide SquaredLengthJoined(const RowView& row, std::span<const float> composite,
                         Wide squared_length) {
  for (std::size_t p = 0; p < row.size(); ++p) {
    const Wide c = composite[static_cast<std::size_t>(row.columns[p])];
    const Wide grown = c + row.values[p];
    squared_length += grown * grown - c * c;
  }
  return squared_length;
}

// Puts the row into the cluster that grows most and returns it. A gain that is not a number never
// replaces the choice.
int Join(const RowView& row, int nparts, GrowingClusters& clusters) {
  int best = 0;
  Wide best_gain = 0;
  Wide best_squared_length = 0;
  for (int k = 0; k < nparts; ++k) {
    const Wide squared_length = clusters.dnorms[k];
    const Wide joined = SquaredLengthJoined(row, clusters.centers[k], squared_length);
    const Wide gain = std::sqrt(joined) - std::sqrt(squared_length);
    if (k == 0 || gain > best_gain) {
      best = k;
      best_gain = gain;
      best_squared_length = joined;
    }
  }
  clusters.dnorms[best] = static_cast<float>(best_squared_length);
  AddRow(row, clusters.centers[best]);
  return best;
}

}  // namespace

void InitialClustering(const PreparedMatrix& mat, int nparts, std::span<int> part) {
  Array<int> perm = AllocInts(mat.nrows, "InitialClustering: perm");
  GrowingClusters clusters{AllocFloats(nparts, "InitialClustering: dnorms"),
                           AllocFloatMatrix(nparts, mat.ncols, 0, "InitialClustering: centers[i]")};

  RandomPermute(perm, Start::kIdentity);
  for (int pass = 1; pass < kShufflingPasses; ++pass) RandomPermute(perm, Start::kAsGiven);

  for (int j = 0; j < mat.nrows; ++j) {
    const RowView row = Row(mat, perm[j]);
    if (j < nparts) Seed(row, j, clusters);
    part[static_cast<std::size_t>(perm[j])] = j < nparts ? j : Join(row, nparts, clusters);
  }
}

}  // namespace molva
