// SPDX-License-Identifier: MIT
//
// An axis for similarities. Places go with the square root, which spreads the small similarities of
// sparse rows, so that one cluster of equal rows does not crush all others into a corner.
#pragma once

#include <vector>

namespace mardle::exporting {

class SimilarityAxis {
 public:
  // Takes in a value; what is no number takes no place. The axis begins at 0 or below.
  void Include(double value);
  // The place of a value, from 0 to 1; values beyond the ends stand at them.
  double At(double value) const;
  // Round values on the axis, increasing, that stand no closer together than `closest`.
  std::vector<double> Ticks(double closest) const;

 private:
  double low_ = 0;
  double high_ = 0;
};

}  // namespace mardle::exporting
