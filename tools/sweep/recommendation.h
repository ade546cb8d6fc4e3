// SPDX-License-Identifier: MIT
//
// How many clusters to take, and why; or that nothing speaks for one number.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tools/sweep/knee.h"
#include "tools/sweep/sweep_table.h"

namespace mardle::tools {

struct Recommendation {
  std::optional<int> nclusters;
  std::vector<std::string> reasons;
};

// Whether the values of a criterion are better when larger, and its name.
bool LargerIsBetter(int crfun);
const char* ShownName(int crfun);

// Seeds agree from this mean of their adjusted Rand indices on.
inline constexpr double kStable = 0.9;

// The number that has the knee, when its clusters come back with other seeds.
Recommendation Recommend(const std::vector<SweepRow>& rows, const std::optional<Knee>& knee,
                         int crfun);

// "Recommended: 4 clusters." and the reasons, a line each.
std::string RecommendationText(const Recommendation& recommendation);

}  // namespace mardle::tools
