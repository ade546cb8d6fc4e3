// SPDX-License-Identifier: MIT
#include "lib/rough/growth_screen.h"

#include <algorithm>
#include <cmath>

#include "lib/rough/cluster_bounds.h"
#include "lib/rough/two_lanes.h"

namespace molva {
namespace {

constexpr int kNowhere = -1;  // a row that is not yet in a cluster

}  // namespace

GrowthScreen::GrowthScreen(const Lanes& lanes, int nparts, const RowExtremes& rows, BlockName name)
    : lanes_(lanes),
      nparts_(nparts),
      rows_(rows),
      kernel_(CurrentKernel()),
      clusters_(nparts, name),
      products_(AllocFloatsSet(static_cast<std::int64_t>(lanes.stride()), 0, name)),
      most_(AllocDoublesSet(static_cast<std::int64_t>(lanes.stride()), 0, name)),
      bounds_(lanes.stride(), false, name) {
  clusters_.Fill({});
}

void GrowthScreen::Start(int k, float squared_length) {
  clusters_[k].squared_length = static_cast<double>(squared_length);
  clusters_[k].length.Start(clusters_[k].squared_length);
  SetBound(k);
}

void GrowthScreen::Change(int k, const RowRecord& row, float squared_length) {
  clusters_[k].squared_length = static_cast<double>(squared_length);
  clusters_[k].length.Change(row, clusters_[k].squared_length);
  SetBound(k);
}

void GrowthScreen::SetBound(int k) {
  Cluster& c = clusters_[k];
  c.root = std::sqrt(c.squared_length);
  if (nparts_ == 2) return;
  const BoundedCluster bounded{{1, c.squared_length, 0}, c.length.Length(), rows_};
  c.error = kForEver;
  GainBound bound;
  if (bounded.IsTame()) {
    c.error = bounded.ErrorPerEntry();
    const double by_length = 0.5 / c.root;
    bound = {kSlack * (c.root + by_length * bounded.MostChange()), 0, by_length, 0};
  }
  bounds_.Set(k, bound, c.error, kNoLeast);
}

// The row's sum of squares is kept in single precision, rounded up.
Interval GrowthScreen::Growth(int k, const RowFactors& row) const {
  const Cluster& c = clusters_[k];
  const double x = 2 * static_cast<double>(products_[k]) + row.square;
  const double square = c.squared_length + x;
  const double error = row.entries * c.error + kKeptSquare * row.square +
                       kSlack * (c.squared_length + std::fabs(x)) + kVanishing;
  return GrowthTo(c, square, error);
}

// A square known up to e <= square has a root known up to e / sqrt(square).
Interval GrowthScreen::GrowthTo(const Cluster& cluster, double square, double error) const {
  if (!(error <= square)) return {-kForEver, kForEver};
  const double root = std::sqrt(square);
  return Interval::Around(root - cluster.root, error / root + kSlack * (root + cluster.root));
}

int GrowthScreen::Choose(const RowView& entries, const RowRecord& row) {
  if (nparts_ == 2) return ChooseOfTwo(entries, row);
  const RowFactors factors = FactorsOf(row);
  lanes_.DotRow(entries, products_.data());
  const double most =
      kernel_.meet(bounds_.Lanes(), products_.data(), factors, kNowhere, most_.data());
  if (!(most < kForEver)) return -1;
  int best = static_cast<int>(std::find(most_.begin(), most_.end(), most) - most_.begin());
  // The first composite stands even where its growth is not a number.
  if (Growth(0, factors).most == kForEver) return -1;
  Interval growth = Growth(best, factors);
  double rival = -kForEver;  // the most that any other can grow
  for (int k = 0; k < nparts_; ++k) {
    if (most_[k] < growth.least || k == best) continue;
    Interval other = Growth(k, factors);
    if (other.least > growth.least) {
      std::swap(other, growth);
      best = k;
    }
    rival = std::max(rival, other.most);
  }
  return growth.least > rival ? best : -1;
}

int GrowthScreen::ChooseOfTwo(const RowView& entries, const RowRecord& row) {
  const TwoExactProducts products = DotTwoInDouble(entries.columns.data(), entries.values.data(),
                                                   entries.size(), lanes_.Values());
  Interval growth[2];
  for (const int k : {0, 1}) {
    const Cluster& cluster = clusters_[k];
    const double square = cluster.squared_length + (2 * products.of[k] + products.square);
    const double error = SquareError(cluster, row);
    two_squares_[k] = Interval::Around(square, error);
    growth[k] = GrowthTo(cluster, square, error);
  }
  if (growth[0].most == kForEver || growth[1].most == kForEver) return -1;
  if (growth[0].least > growth[1].most) return 0;
  return growth[1].least > growth[0].most ? 1 : -1;
}

// Of a squared length with the row, formed in double.
double GrowthScreen::SquareError(const Cluster& cluster, const RowRecord& row) const {
  const double most = cluster.length.Length() + static_cast<double>(row.length);
  return kDoubleSquare * FactorsOf(row).entries * most * most + kVanishing;
}

GrowthScreen::MaybeSquare GrowthScreen::Rounded(const Interval& square) const {
  const auto least = static_cast<float>(square.least);
  return {least == static_cast<float>(square.most), least};
}

GrowthScreen::MaybeSquare GrowthScreen::SquaredLengthWith(const RowView& entries,
                                                          const RowRecord& row, int k) const {
  if (nparts_ == 2) return Rounded(two_squares_[k]);
  const LaneView composite = lanes_[k];
  double change = 0;
  for (std::size_t p = 0; p < entries.size(); ++p) {
    const auto v = static_cast<double>(entries.values[p]);
    const auto c = static_cast<double>(composite[entries.columns[p]]);
    change += v * (2 * c + v);
  }
  const Cluster& cluster = clusters_[k];
  return Rounded(Interval::Around(cluster.squared_length + change, SquareError(cluster, row)));
}

}  // namespace molva
