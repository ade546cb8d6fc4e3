// SPDX-License-Identifier: MIT
#include "tools/sweep/knee.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace mardle::tools {
namespace {

constexpr std::size_t kFewestPoints = 3;
constexpr double kHeight = 0.1;  // over the chord, in ranges of the curve
constexpr double kBend = 1.3;    // times that of rows without groups
constexpr std::size_t kSteps = 2;

// The point highest above the chord, when it is high enough and no end.
std::optional<std::size_t> Candidate(std::span<const CurvePoint> curve) {
  const auto less = [](const CurvePoint& a, const CurvePoint& b) {
    return a.goodness < b.goodness;
  };
  const auto [least, most] = std::minmax_element(curve.begin(), curve.end(), less);
  const double range = most->goodness - least->goodness;
  if (!(range > 0) || !std::isfinite(range)) return std::nullopt;
  const CurvePoint& first = curve.front();
  const CurvePoint& last = curve.back();
  std::size_t at = 0;
  double height = 0;
  for (std::size_t i = 1; i < curve.size(); ++i) {
    const double chord = first.goodness + (last.goodness - first.goodness) *
                                              (curve[i].nclusters - first.nclusters) /
                                              (last.nclusters - first.nclusters);
    const double here = (curve[i].goodness - chord) / range;
    if (here <= height) continue;
    height = here;
    at = i;
  }
  if (height < kHeight) return std::nullopt;
  return at;
}

// What one more cluster adds between each point and the next.
std::vector<double> StepsOf(std::span<const CurvePoint> curve) {
  std::vector<double> steps;
  for (std::size_t i = 1; i < curve.size(); ++i) {
    steps.push_back((curve[i].goodness - curve[i - 1].goodness) /
                    (curve[i].nclusters - curve[i - 1].nclusters));
  }
  return steps;
}

// How many times the curve rises faster before a point, or falls faster behind it.
double Bend(double before, double behind) {
  if (before <= behind) return 1;
  if (behind > 0) return before / behind;
  return before < 0 ? behind / before : std::numeric_limits<double>::infinity();
}

bool IsPowerOfTwo(int number) { return (number & (number - 1)) == 0; }

// The bend of -k^(-2/d) at the middle one of three numbers.
double SmoothBend(std::span<const CurvePoint> three, const SmoothCurve& smooth) {
  const double power = -2 / smooth.dimension;
  const auto value = [power](const CurvePoint& point) { return -std::pow(point.nclusters, power); };
  const double before =
      (value(three[1]) - value(three[0])) / (three[1].nclusters - three[0].nclusters);
  const double behind =
      (value(three[2]) - value(three[1])) / (three[2].nclusters - three[1].nclusters);
  const double bend = before / behind;
  if (!smooth.halving || !IsPowerOfTwo(three[1].nclusters)) return bend;
  // A part that is halved adds so many times what its halves add.
  return std::max(bend, std::pow(2, 1 - power));
}

}  // namespace

std::optional<Knee> FindKnee(std::span<const CurvePoint> curve, const SmoothCurve& smooth) {
  const bool is_finite = std::all_of(curve.begin(), curve.end(), [](const CurvePoint& point) {
    return std::isfinite(point.goodness);
  });
  if (curve.size() < kFewestPoints || !is_finite) return std::nullopt;
  const std::optional<std::size_t> at = Candidate(curve);
  if (!at) return std::nullopt;
  const std::vector<double> steps = StepsOf(curve);
  const auto middle = steps.begin() + static_cast<std::ptrdiff_t>(*at);
  const auto begin = middle - static_cast<std::ptrdiff_t>(std::min(*at, kSteps));
  const auto end = middle + static_cast<std::ptrdiff_t>(std::min(steps.size() - *at, kSteps));
  const double before = *std::min_element(begin, middle);
  const double behind = *std::max_element(middle, end);
  if (Bend(before, behind) < kBend * SmoothBend(curve.subspan(*at - 1, kFewestPoints), smooth)) {
    return std::nullopt;
  }
  return Knee{curve[*at].nclusters, before, behind};
}

}  // namespace mardle::tools
