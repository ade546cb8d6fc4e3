// SPDX-License-Identifier: MIT
#include "tools/export/shades.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>

namespace mardle::exporting {
namespace {

constexpr double kShareBounds[] = {0.01, 0.05, 0.1, 0.2, 0.4, 0.7};
constexpr double kStandingBounds[] = {0.25, 0.75, 1.5};

constexpr KeyEntry kShareKey[] = {{0, "fewer than 1\u00a0%"}, {1, "1\u00a0%"},  {2, "5\u00a0%"},
                                  {3, "10\u00a0%"},           {4, "20\u00a0%"}, {5, "40\u00a0%"},
                                  {6, "70\u00a0% and more"}};
constexpr KeyEntry kStandingKey[] = {
    {-6, "1.5 below and less"}, {-4, "0.75 below"}, {-2, "0.25 below"},       {0, "near it"},
    {2, "0.25 above"},          {4, "0.75 above"},  {6, "1.5 above and more"}};

template <std::size_t n>
int BoundsBelow(const double (&bounds)[n], double value) {
  return static_cast<int>(std::upper_bound(std::begin(bounds), std::end(bounds), value) -
                          std::begin(bounds));
}

}  // namespace

int ShadeOfShare(double share) { return BoundsBelow(kShareBounds, share); }

int ShadeOfStanding(double standing) {
  if (std::isnan(standing)) return 0;
  const int shade = 2 * BoundsBelow(kStandingBounds, std::fabs(standing));
  return standing < 0 ? -shade : shade;
}

std::string ShadeName(int shade) {
  return (shade < 0 ? "g" : "h") + std::to_string(std::abs(shade));
}

std::span<const KeyEntry> KeyOfShades(bool are_shares) {
  return are_shares ? std::span<const KeyEntry>(kShareKey)
                    : std::span<const KeyEntry>(kStandingKey);
}

std::string KeyTitle(bool are_shares, const Wording& wording) {
  return are_shares ? "Share of the " + wording.rows + " with the " + wording.column + ":"
                    : "Average, in deviations from that of all " + wording.rows + ":";
}

}  // namespace mardle::exporting
