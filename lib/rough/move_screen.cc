// SPDX-License-Identifier: MIT
#include "lib/rough/move_screen.h"

#include <algorithm>

namespace molva {
namespace {

double ComingGain(const ClusterBounds& c, const RowFactors& row, float product) {
  const double x = 2 * static_cast<double>(product) + row.square + row.entries * c.error;
  return row.whole >= c.least_coming ? c.gains.coming.At(x, row.whole) : kForEver;
}

double GoingGain(const ClusterBounds& c, const RowFactors& row, float product) {
  const double x = row.square - 2 * static_cast<double>(product) + row.entries * c.error;
  return row.whole <= c.most_going ? c.gains.going.At(x, row.whole) : kForEver;
}

}  // namespace

MoveScreen::MoveScreen(const Lanes& lanes, int nparts, BlockName name)
    : lanes_(lanes),
      nparts_(nparts),
      kernel_(CurrentKernel()),
      products_(AllocFloatsSet(static_cast<std::int64_t>(lanes.stride()), 0, name)),
      gains_(AllocDoublesSet(static_cast<std::int64_t>(lanes.stride()), 0, name)),
      coming_(lanes.stride(), name),
      bounds_(nparts, name) {
  bounds_.Fill({});
}

void MoveScreen::SetBounds(int k, const ClusterBounds& bounds) {
  bounds_[k] = bounds;
  coming_.Set(static_cast<std::size_t>(k), bounds.gains.coming, bounds.error, bounds.least_coming);
}

bool MoveScreen::HasHope(const RowView& entries, RowRecord& row) {
  const RowFactors factors = FactorsOf(row);
  lanes_.DotRow(entries, products_.data());
  const double going = GoingGain(bounds_[row.place], factors, products_[row.place]);
  if (nparts_ == 2) {
    const int other = 1 - row.place;
    gains_[other] = ComingGain(bounds_[other], factors, products_[other]);
    return Conclude(gains_[other], going, row);
  }
  kernel_.gain(coming_.Lanes(), products_.data(), factors, gains_.data());
  gains_[row.place] = -kForEver;
  return Conclude(MostOf(gains_), going, row);
}

// Not a number where one of them is not.
double MoveScreen::MostOf(std::span<const double> gains) {
  double most = -kForEver;
  bool comparable = true;
  for (const double gain : gains) {
    most = std::max(most, gain);
    comparable = comparable && gain == gain;
  }
  return comparable ? most : std::numeric_limits<double>::quiet_NaN();
}

bool MoveScreen::Conclude(double coming, double going, RowRecord& row) {
  threshold_ = -slack_ - going;
  const double lacking = -slack_ - (coming + going);
  // So much that what adding to the clock rounds does not count.
  row.settled_until = lacking > 0 ? clock_ + lacking * (1 - kSlack) - clock_ * kSlack : kNever;
  return !(lacking > 0);
}

}  // namespace molva
