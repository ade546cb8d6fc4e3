// SPDX-License-Identifier: MIT
#include "tools/export/page/similarity_axis.h"

#include <algorithm>
#include <cmath>

namespace mardle::exporting {
namespace {

// With the sign of the value, since correlations may be negative.
double SignedRoot(double value) { return std::copysign(std::sqrt(std::fabs(value)), value); }

constexpr double kRoundValues[] = {0,   1,     0.5,   0.1,   0.2,  0.05,   0.01,   0.02, 0.3,
                                   0.7, 0.005, 0.002, 0.001, 0.03, 0.0005, 0.0002, 0.4,  0.0001};

}  // namespace

void SimilarityAxis::Include(double value) {
  if (!std::isfinite(value)) return;
  low_ = std::min(low_, value);
  high_ = std::max(high_, value);
}

double SimilarityAxis::At(double value) const {
  if (!(high_ > low_) || !std::isfinite(value)) return 0;
  const double begin = SignedRoot(low_);
  return std::clamp((SignedRoot(value) - begin) / (SignedRoot(high_) - begin), 0.0, 1.0);
}

// The roundest come first and keep the others away.
std::vector<double> SimilarityAxis::Ticks(double closest) const {
  std::vector<double> ticks;
  for (const double value : kRoundValues) {
    for (const double signed_value : {value, -value}) {
      const bool is_on_axis = signed_value >= low_ && signed_value <= high_;
      const bool is_apart = std::all_of(ticks.begin(), ticks.end(), [&](double tick) {
        return std::fabs(At(tick) - At(signed_value)) >= closest;
      });
      if (is_on_axis && is_apart) ticks.push_back(signed_value);
    }
  }
  std::sort(ticks.begin(), ticks.end());
  return ticks;
}

}  // namespace mardle::exporting
