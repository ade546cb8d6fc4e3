// SPDX-License-Identifier: MIT
#include "lib/partition/initial_clustering.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "lib/rough/lanes.h"
#include "lib/rough/rough_looks.h"
#include "lib/rough/row_sizes.h"
#include "lib/rough/value_bound.h"
#include "lib/support/progress.h"
#include "lib/support/random.h"
#include "lib/support/wide.h"

namespace molva {
namespace {

constexpr int kShufflingPasses = 5;

// What the rough look needs to know of a composite.
struct Growing {
  double squared_length = 0;
  double length = 0;
  ValueBound bound;
};

struct GrowingClusters {
  Array<float> dnorms;  // the squared length of each composite
  Lanes centers;        // the composites
  Array<Growing> growing;
  Array<double> products;  // of the row at hand with every composite
};

// A row has come into the composite of cluster k.
void Grow(int k, float squared_length, const RowSize& row, GrowingClusters& clusters) {
  clusters.dnorms[k] = squared_length;
  Growing& growing = clusters.growing[k];
  growing.squared_length = static_cast<double>(squared_length);
  growing.length = std::sqrt(growing.squared_length);
  growing.bound.Join(row.largest, row.additions);
}

// The entries are written, not added: a column stored twice in a seed keeps its last value here,
// while the squared length counts both.
void Seed(const RowView& row, const RowSize& size, int k, GrowingClusters& clusters) {
  clusters.centers.Set(row, k);
  Wide squares = 0;
  for (const Wide v : row.values) squares += v * v;
  Grow(k, static_cast<float>(squares), size, clusters);
}

GrowingClusters EmptyClusters(int nparts, int ncols) {
  Array<float> dnorms = AllocFloats(nparts, "InitialClustering: dnorms");
  Lanes centers(nparts, ncols, "InitialClustering: centers[i]");
  Array<Growing> growing(nparts, "InitialClustering: dnorms");
  growing.Fill({});
  Array<double> products =
      AllocDoubles(static_cast<std::int64_t>(centers.stride()), "InitialClustering: dnorms");
  return {std::move(dnorms), std::move(centers), std::move(growing), std::move(products)};
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

// The squared length of a composite if the row joined, and its growth in length, from a rough dot
// product, each with how far it can be from what the full arithmetic finds. The bound is that of
// refinement; the full arithmetic rounds squares of c + v here, n of them by 2^-64 of at most
// (max|c| + max|v|)^2, twice. A square j known up to e <= j has a root known up to e / sqrt(j).
struct Growth {
  Interval square;
  Interval length;

  // Wild numbers, not-a-number among them, are left to the full arithmetic.
  bool IsComparable() const {
    return square.least >= 0 && length.least > -0x1p500 && length.most < 0x1p500;
  }
};

Growth RoughGrowth(const RowSize& row, double entries, double product, const Growing& cluster) {
  const double bound = cluster.bound.Value();
  const double largest = bound + row.largest;
  const double error =
      entries * 0x1p-52 *
          (std::fabs(cluster.squared_length) + row.square + 2 * row.absolute * bound) +
      entries * 0x1p-62 * largest * largest;
  const double square = cluster.squared_length + 2 * product + row.square;
  const double root = std::sqrt(square);
  return {Interval::Around(square, error),
          Interval::Around(root - cluster.length, error / root + kSlack * (cluster.length + root))};
}

// The cluster that grows most and how much, if rough arithmetic can tell; otherwise cluster -1.
struct Choice {
  int cluster;
  Growth growth;
};

Choice RoughChoice(const RowView& row, const RowSize& size, int nparts, GrowingClusters& clusters) {
  clusters.centers.DotRow(row, clusters.products.data());
  const auto entries = static_cast<double>(row.size() + 8);
  const auto growth = [&](int k) {
    return RoughGrowth(size, entries, clusters.products[k], clusters.growing[k]);
  };
  Choice best{0, growth(0)};
  double rival = -0x1p500;  // the most that any other cluster can grow
  bool all_comparable = best.growth.IsComparable();
  for (int k = 1; k < nparts; ++k) {
    const Growth g = growth(k);
    all_comparable = all_comparable && g.IsComparable();
    const bool better = g.length.least > best.growth.length.least;
    rival = std::max(rival, better ? best.growth.length.most : g.length.most);
    if (better) best = {k, g};
  }
  if (!all_comparable || best.growth.length.least <= rival) best.cluster = -1;
  return best;
}

// The squared length of the composite with the row, single precision: the rough one where all that
// it can be rounds to one number.
float StoredSquaredLength(const RowView& row, const GrowingClusters& clusters, int cluster,
                          const Choice& rough) {
  const auto least = static_cast<float>(rough.growth.square.least);
  const auto most = static_cast<float>(rough.growth.square.most);
  if (rough.cluster == cluster && least == most) return least;
  return static_cast<float>(
      SquaredLengthJoined(row, clusters.centers[cluster], clusters.dnorms[cluster]));
}

// Puts the row into the cluster that grows most and returns it.
int Join(const RowView& row, const RowSize& size, int nparts, GrowingClusters& clusters) {
  const Choice rough =
      RoughLooksAreUsed() ? RoughChoice(row, size, nparts, clusters) : Choice{-1, {}};
  const int cluster = rough.cluster >= 0 ? rough.cluster : FullChoice(row, nparts, clusters);
  const float squared_length = StoredSquaredLength(row, clusters, cluster, rough);
  clusters.centers.Add(row, cluster);
  Grow(cluster, squared_length, size, clusters);
  return cluster;
}

}  // namespace

void InitialClustering(const PreparedMatrix& mat, int nparts, std::span<int> part) {
  Array<int> perm = AllocInts(mat.nrows, "InitialClustering: perm");
  GrowingClusters clusters = EmptyClusters(nparts, mat.ncols);

  RandomPermute(perm, Start::kIdentity);
  for (int pass = 1; pass < kShufflingPasses; ++pass) RandomPermute(perm, Start::kAsGiven);

  for (int j = 0; j < mat.nrows; ++j) {
    const RowView row = Row(mat, perm[j]);
    const RowSize size = SizeOfRow(mat, perm[j]);
    AskForRows(mat, perm, j);
    if (j % kPollInterval == 0) Poll();
    int& place = part[static_cast<std::size_t>(perm[j])];
    if (j < nparts) {
      Seed(row, size, j, clusters);
      place = j;
    } else {
      place = Join(row, size, nparts, clusters);
    }
  }
}

}  // namespace molva
