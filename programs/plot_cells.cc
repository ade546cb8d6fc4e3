// SPDX-License-Identifier: MIT
#include "programs/plot_cells.h"

#include <algorithm>
#include <cmath>

#include "lib/support/wide.h"

namespace mardle {
namespace {

using molva::Wide;

constexpr int kFull = 65535;
constexpr double kSmallest = 0.00001;

// The share of the extreme, 0 to 1; an infinite value is the extreme itself.
Wide ShareOf(float value, float extreme) {
  const Wide share = static_cast<Wide>(value) / extreme;
  return molva::IsNan(share) ? 1 : std::clamp<Wide>(share, 0, 1);
}

int Intensity(Wide share) { return static_cast<int>(kFull * share); }

}  // namespace

void ValueRange::Include(std::span<const float> values) {
  for (const float v : values) {
    if (v > maxpos) maxpos = v;
    if (v < minneg) minneg = v;
  }
}

std::optional<Color> CellColor(float value, const ValueRange& range, bool zeroblack) {
  if (std::isnan(value)) return std::nullopt;
  if (!zeroblack && std::fabs(static_cast<double>(value)) <= kSmallest) return std::nullopt;
  if (value == 0) return Color{0, 0, 0};
  const Wide share = ShareOf(value, value > 0 ? range.maxpos : range.minneg);
  if (zeroblack) {
    const int bright = Intensity(share);
    return value > 0 ? Color{bright, 0, 0} : Color{0, bright, 0};
  }
  const int pale = Intensity(1 - share);
  return value > 0 ? Color{kFull, pale, pale} : Color{pale, kFull, pale};
}

}  // namespace mardle
