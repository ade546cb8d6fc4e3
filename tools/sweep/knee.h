// SPDX-License-Identifier: MIT
//
// Where a curve over numbers of clusters bends: clusters up to there add much, those behind little.
#pragma once

#include <optional>
#include <span>

namespace mardle::tools {

struct CurvePoint {
  int nclusters = 0;
  double goodness = 0;  // larger is better
};

struct Knee {
  int nclusters = 0;
  double before = 0;  // what one more cluster adds before it,
  double behind = 0;  // and behind it
};

// What rows without groups would do: they spread evenly in so many dimensions, and under halving
// are cut by splitting the largest part in two.
struct SmoothCurve {
  double dimension = 1;
  bool halving = false;
};

// The knee of a curve whose numbers rise, or none. The candidate is the point highest above the
// chord from the first point to the last. It is a knee when it lies a tenth of the curve's range
// above it, and when the curve is steeper before it than behind it by 1.3 times what it would be
// for rows without groups: cut into equal parts they give -k^(-2/d), or under halving a curve that
// bends at powers of two. Two steps before and two behind are looked at, and the weaker contrast
// counts, so that one odd value makes no knee.
std::optional<Knee> FindKnee(std::span<const CurvePoint> curve, const SmoothCurve& smooth);

}  // namespace mardle::tools
