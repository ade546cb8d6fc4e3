// SPDX-License-Identifier: MIT
#include "lib/rough/move_screen.h"

#include "lib/support/span.h"

namespace molva {

MoveScreen::MoveScreen(const Lanes& lanes, int nparts, bool uses_whole, bool are_full,
                       BlockName name)
    : lanes_(lanes),
      nparts_(nparts),
      uses_whole_(uses_whole),
      are_full_(are_full),
      kernel_(CurrentKernel()),
      products_(AllocFloatsSet(static_cast<std::int64_t>(lanes.stride() * kFullRows), 0, name)),
      gains_(AllocDoublesSet(static_cast<std::int64_t>(lanes.stride()), 0, name)),
      coming_(lanes.stride(), uses_whole, name),
      bounds_(nparts, name) {
  bounds_.Fill({});
}

void MoveScreen::SetBounds(int k, const ClusterBounds& bounds) {
  bounds_[k] = bounds;
  if (nparts_ == 2) two_bounds_.Set(k, bounds);
  coming_.Set(k, bounds.gains.coming, bounds.error, bounds.least_coming);
}

bool MoveScreen::HasHopeAmongMany(const RowView& entries, RowRecord& row) {
  lanes_.DotRow(entries, products_.data());
  return Meet(products_.data(), row);
}

void MoveScreen::LookAhead(const RowRecords& rows, RowRecord* const* records) {
  const float* values[kFullRows];
  float* products[kFullRows];
  for (std::size_t r = 0; r < kFullRows; ++r) {
    values[r] = rows.Entries(*records[r]).values.data();
    products[r] = products_.data() + r * lanes_.stride();
  }
  kernel_.dot_full_rows(values, static_cast<std::size_t>(rows.matrix().ncols), lanes_.Values(),
                        lanes_.stride(), products);
  for (std::size_t r = 0; r < kFullRows; ++r) Meet(products[r], *records[r]);
}

// The products meet the bounds.
bool MoveScreen::Meet(const float* products, RowRecord& row) {
  const RowFactors factors = FactorsOf(row);
  const double going = bounds_[row.place].Going(factors, products[row.place]);
  const double coming = kernel_.meet(coming_.Lanes(), products, factors, row.place, gains_.data());
  threshold_ = -slack_ - going;
  return Conclude(coming + going, row);
}

}  // namespace molva
