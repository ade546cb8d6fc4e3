// SPDX-License-Identifier: MIT
#include "lib/rough/move_screen.h"

#include <algorithm>
#include <numeric>

#include "lib/support/span.h"

namespace molva {

MoveScreen::MoveScreen(const Lanes& lanes, int nparts, bool uses_whole, BlockName name)
    : lanes_(lanes),
      nparts_(nparts),
      uses_whole_(uses_whole),
      kernel_(CurrentKernel()),
      products_(AllocFloatsSet(static_cast<std::int64_t>(lanes.stride()), 0, name)),
      gains_(AllocDoublesSet(static_cast<std::int64_t>(lanes.stride()), 0, name)),
      coming_(lanes.stride(), name),
      bounds_(nparts, name) {
  bounds_.Fill({});
}

void MoveScreen::SetBounds(int k, const ClusterBounds& bounds) {
  bounds_[k] = bounds;
  coming_.Set(k, bounds.gains.coming, bounds.error, bounds.least_coming);
}

bool MoveScreen::HasHopeAmongMany(const RowView& entries, RowRecord& row) {
  const RowFactors factors = FactorsOf(row);
  lanes_.DotRow(entries, products_.data());
  const double going = bounds_[row.place].Going(factors, products_[row.place]);
  kernel_.gain(uses_whole_ ? coming_.Lanes() : coming_.LanesWithoutWhole(), products_.data(),
               factors, gains_.data());
  gains_[row.place] = -kForEver;
  return Conclude(MostOf(gains_), going, row);
}

// Not a number where one of them is not. Several maxima side by side, since one alone would wait
// for each comparison.
double MoveScreen::MostOf(Span<const double> gains) {
  constexpr std::size_t kChains = 8;
  double most[kChains];
  double doubt[kChains] = {};  // not a number from the first such gain on
  std::fill_n(most, kChains, -kForEver);
  std::size_t first = 0;
  for (; first + kChains <= gains.size(); first += kChains) {
    for (std::size_t c = 0; c < kChains; ++c) {
      const double gain = gains[first + c];
      most[c] = gain > most[c] ? gain : most[c];
      doubt[c] += gain == gain ? 0.0 : gain;
    }
  }
  for (; first < gains.size(); ++first) {
    most[0] = std::max(most[0], gains[first]);
    doubt[0] += gains[first] == gains[first] ? 0.0 : gains[first];
  }
  return *std::max_element(most, most + kChains) + std::accumulate(doubt, doubt + kChains, 0.0);
}

}  // namespace molva
