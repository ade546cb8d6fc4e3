// SPDX-License-Identifier: MIT
#include "tools/sweep/recommendation.h"

#include <algorithm>
#include <array>

#include "lib/molva.h"
#include "tools/sweep/written_value.h"

namespace mardle::tools {
namespace {

constexpr std::array<const char*, 9> kNames = {"I1", "I2", "E1", "G1", "G1'",
                                               "H1", "H2", "G3", "H3"};

std::string WordsOfKnee(const std::optional<Knee>& knee, int crfun) {
  const std::string name = ShownName(crfun);
  if (!knee) return name + " has no clear knee: what a further cluster adds changes smoothly.";
  const double sign = LargerIsBetter(crfun) ? 1 : -1;
  return name + " has a knee at " + std::to_string(knee->nclusters) + ": a further cluster adds " +
         WrittenValue("%.3g", sign * knee->before) + " before it and " +
         WrittenValue("%.3g", sign * knee->behind) + " behind it.";
}

// "2, 4 and 5".
std::string Listed(const std::vector<int>& numbers) {
  std::string text;
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    if (i > 0) text += i + 1 < numbers.size() ? ", " : " and ";
    text += std::to_string(numbers[i]);
  }
  return text;
}

std::string WordsOfSeeds(const std::vector<SweepRow>& rows) {
  const std::string threshold = " (stability " + WrittenValue("%g", kStable) + ")";
  std::vector<int> stable;
  for (const SweepRow& row : rows) {
    if (row.stability >= kStable) stable.push_back(row.nclusters);
  }
  if (stable.empty()) {
    return "No number has clusters that come back with other seeds" + threshold +
           ": they may be made by the method, not found in the data.";
  }
  if (stable.size() == rows.size()) {
    return "Every number has clusters that come back, so the seeds tell none from the others.";
  }
  return "Clusters that come back with other seeds" + threshold + ": " + Listed(stable) + ".";
}

}  // namespace

bool LargerIsBetter(int crfun) {
  constexpr std::array<int, 5> kLarger = {MOLVA_CRFUN_I1, MOLVA_CRFUN_I2, MOLVA_CRFUN_H1,
                                          MOLVA_CRFUN_H2, MOLVA_CRFUN_G3};
  return std::find(kLarger.begin(), kLarger.end(), crfun) != kLarger.end();
}

const char* ShownName(int crfun) { return kNames.at(static_cast<std::size_t>(crfun) - 1); }

Recommendation Recommend(const std::vector<SweepRow>& rows, const std::optional<Knee>& knee,
                         int crfun) {
  Recommendation found{std::nullopt, {WordsOfKnee(knee, crfun), WordsOfSeeds(rows)}};
  if (!knee) return found;
  const auto row = std::find_if(rows.begin(), rows.end(), [&knee](const SweepRow& each) {
    return each.nclusters == knee->nclusters;
  });
  if (row->stability >= kStable) {
    found.nclusters = knee->nclusters;
  } else {
    found.reasons.push_back("At the knee the seeds agree by " +
                            WrittenValue("%.2f", row->stability) + " only, which is too little.");
  }
  return found;
}

std::string RecommendationText(const Recommendation& recommendation) {
  std::string text = "No recommendation.\n";
  if (recommendation.nclusters) {
    text = "Recommended: " + std::to_string(*recommendation.nclusters) + " clusters.\n";
  }
  for (const std::string& reason : recommendation.reasons) text += reason + "\n";
  return text;
}

}  // namespace mardle::tools
