// SPDX-License-Identifier: MIT
#include "lib/initial_clustering.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "lib/lanes.h"
#include "lib/support/random.h"
#include "lib/support/wide.h"
#include "lib/value_bound.h"

namespace molva {
namespace {

constexpr int kShufflingPasses = 5;

struct GrowingClusters {
  Array<float> dnorms;             // the squared length of each composite
  Lanes centers;                   // the composites
  std::vector<ValueBound> bounds;  // of the values of each composite
};

// The entries are written, not added: a column stored twice in a seed keeps its last value here,
// while the squared length counts both.
void Seed(const RowView& row, int k, GrowingClusters& clusters) {
  clusters.centers.Set(row, k);
  Wide squares = 0;
  for (const Wide v : row.values) squares += v * v;
  clusters.dnorms[k] = static_cast<float>(squares);
  clusters.bounds[static_cast<std::size_t>(k)].Add(SizeOf(row).largest);
}

// The squared length of the composite if the row joined, from all entries against the composite as
// it stands, added to the old squared length one by one.
Wide SquaredLengthJoined(const RowView& row, const LaneView& composite, Wide squared_length) {
  for (std::size_t p = 0; p < row.size(); ++p) {
    const Wide c = composite[static_cast<std::size_t>(row.columns[p])];
    const Wide grown = c + row.values[p];
    squared_length += grown * grown - c * c;
  }
  return squared_length;
}

// The cluster that grows most, by the full arithmetic. A gain that is not a number never replaces
// the choice.
int FullChoice(const RowView& row, int nparts, const GrowingClusters& clusters) {
  int best = 0;
  Wide best_gain = 0;
  for (int k = 0; k < nparts; ++k) {
    const Wide squared_length = clusters.dnorms[k];
    const Wide joined = SquaredLengthJoined(row, clusters.centers[k], squared_length);
    const Wide gain = std::sqrt(joined) - std::sqrt(squared_length);
    if (k == 0 || gain > best_gain) {
      best = k;
      best_gain = gain;
    }
  }
  return best;
}

// Between which numbers the squared length of a composite lies if the row joined, and its growth in
// length, from rough dot products. The bound is that of refinement; the full arithmetic rounds
// squares of c + v here, n of them by 2^-64 of at most (max|c| + max|v|)^2, twice.
struct Growth {
  double least_square, most_square;
  double least, most;
};

Growth RoughGrowth(const RowSize& row, std::size_t entries, double product, double squared_length,
                   const ValueBound& bound) {
  const double n = static_cast<double>(entries + 8);
  const double largest = bound.Value() + row.largest;
  const double error =
      n * 0x1p-52 * (std::fabs(squared_length) + row.square + 2 * row.absolute * bound.Value()) +
      n * 0x1p-62 * largest * largest;
  const double joined = squared_length + 2 * product + row.square;
  const double length = std::sqrt(squared_length);
  const double slack = kSlack * (length + std::sqrt(joined + error));
  return {joined - error, joined + error, std::sqrt(joined - error) - length - slack,
          std::sqrt(joined + error) - length + slack};
}

// The cluster that grows most and how much, if rough arithmetic can tell; otherwise cluster -1.
struct Choice {
  int cluster;
  Growth growth;
};

Choice RoughChoice(const RowView& row, const RowSize& size, int nparts,
                   const GrowingClusters& clusters, std::vector<double>& products) {
  clusters.centers.DotRow(row, products.data());
  const auto growth = [&](int k) {
    const auto lane = static_cast<std::size_t>(k);
    return RoughGrowth(size, row.size(), products[lane], static_cast<double>(clusters.dnorms[k]),
                       clusters.bounds[lane]);
  };
  // Wild numbers, not-a-number among them, are left to the full arithmetic.
  const auto comparable = [](const Growth& g) { return g.least > -0x1p500 && g.most < 0x1p500; };
  Choice best{0, growth(0)};
  double rival = -0x1p500;  // the most that any other cluster can grow
  bool all_comparable = comparable(best.growth);
  for (int k = 1; k < nparts; ++k) {
    const Growth g = growth(k);
    all_comparable = all_comparable && comparable(g);
    const bool better = g.least > best.growth.least;
    rival = std::max(rival, better ? best.growth.most : g.most);
    if (better) best = {k, g};
  }
  if (!all_comparable || best.growth.least <= rival) best.cluster = -1;
  return best;
}

// The squared length of the composite with the row, single precision: the rough one where all that
// it can be rounds to one number.
float StoredSquaredLength(const RowView& row, const GrowingClusters& clusters, int cluster,
                          const Choice& rough) {
  const auto least = static_cast<float>(rough.growth.least_square);
  const auto most = static_cast<float>(rough.growth.most_square);
  if (rough.cluster == cluster && least == most) return least;
  return static_cast<float>(
      SquaredLengthJoined(row, clusters.centers[cluster], clusters.dnorms[cluster]));
}

// Puts the row into the cluster that grows most and returns it.
int Join(const RowView& row, int nparts, GrowingClusters& clusters, std::vector<double>& products) {
  const RowSize size = SizeOf(row);
  const Choice rough = RoughChoice(row, size, nparts, clusters, products);
  const int cluster = rough.cluster >= 0 ? rough.cluster : FullChoice(row, nparts, clusters);
  clusters.dnorms[cluster] = StoredSquaredLength(row, clusters, cluster, rough);
  clusters.centers.Add(row, cluster);
  clusters.bounds[static_cast<std::size_t>(cluster)].Add(size.largest);
  return cluster;
}

}  // namespace

void InitialClustering(const PreparedMatrix& mat, int nparts, std::span<int> part) {
  Array<int> perm = AllocInts(mat.nrows, "InitialClustering: perm");
  GrowingClusters clusters{AllocFloats(nparts, "InitialClustering: dnorms"),
                           Lanes(nparts, mat.ncols, "InitialClustering: centers[i]"),
                           std::vector<ValueBound>(static_cast<std::size_t>(nparts))};
  std::vector<double> products(clusters.centers.stride());

  RandomPermute(perm, Start::kIdentity);
  for (int pass = 1; pass < kShufflingPasses; ++pass) RandomPermute(perm, Start::kAsGiven);

  for (int j = 0; j < mat.nrows; ++j) {
    const RowView row = Row(mat, perm[j]);
    if (j < nparts) Seed(row, j, clusters);
    part[static_cast<std::size_t>(perm[j])] =
        j < nparts ? j : Join(row, nparts, clusters, products);
  }
}

}  // namespace molva
