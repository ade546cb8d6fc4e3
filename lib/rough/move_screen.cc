// SPDX-License-Identifier: MIT
#include "lib/rough/move_screen.h"

#include <algorithm>

namespace molva {
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

bool MoveScreen::HasHopeAmongMany(const RowView& entries, RowRecord& row) {
  const RowFactors factors = FactorsOf(row);
  lanes_.DotRow(entries, products_.data());
  const double going = bounds_[row.place].Going(factors, products_[row.place]);
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

}  // namespace molva
