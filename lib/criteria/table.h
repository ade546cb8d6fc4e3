// SPDX-License-Identifier: MIT
//
// The table of criteria: one row for each of the nine, read by refinement, by the value of a
// finished clustering and by the merging engines. A tenth criterion would be one more row.
#pragma once

#include <cstddef>
#include <tuple>

#include "lib/criteria/merge_gains.h"
#include "lib/criteria/objectives.h"
#include "lib/criteria/values.h"
#include "lib/support/fatal.h"

namespace molva {

// One row.
//
//   Objective  what refinement optimises
//   Value      the criterion of a finished clustering, whose sums have roundings of their own
//   Merge      what a merge gains: a sum of its own, a ratio of two, or NoMerging
template <typename ObjectiveType, typename ValueType, typename MergeType>
struct Criterion {
  using Objective = ObjectiveType;
  using Value = ValueType;
  using Merge = MergeType;
  RoutineNames names;
};

// In the order of their codes, from 1 on. Codes 8 and 9 cross: reports print G3 and H3 for what is
// refined by the routines named H3 and G3.
inline constexpr std::tuple kCriteria{
    Criterion<SingleSum<I1Term, Larger>, RoundedSum<I1Term>, Maximised<I1Term>>{
        {"RefineClusteringKWayI1", "PartitionRefineKWayI1"}},
    Criterion<SingleSum<I2Term, Larger>, RoundedSum<I2Term>, Maximised<I2Term>>{
        {"RefineClusteringKWayI2", "PartitionRefineKWayI2"}},
    Criterion<SingleSum<E1Term, Smaller>, RoundedSum<E1Term>, Minimised<E1Term>>{
        {"RefineClusteringKWayE1", "PartitionRefineKWayE1"}},
    Criterion<SingleSum<G1Term, Smaller>, RoundedSum<G1Term>, Minimised<G1Term>>{
        {"RefineClusteringKWayG1", "PartitionRefineKWayG1"}},
    Criterion<SingleSum<G1PrimeTerm, Smaller>, RoundedSum<G1PrimeTerm>, Minimised<G1PrimeTerm>>{
        {"RefineClusteringKWayG1Prime", "PartitionRefineKWayG1Prime"}},
    Criterion<TwoSums<I1Term, E1Term, Ratio>, RatioOf<WideSum<I1Term>, WideSum<E1Term>>,
              RatioMerging<I1Term, E1Term>>{{"RefineClusteringKWayH1", "PartitionRefineKWayH1"}},
    Criterion<TwoSums<I2Term, E1Term, Ratio>, RatioOf<RoundedSum<I2Term>, WideSum<E1Term>>,
              RatioMerging<I2Term, E1Term>>{{"RefineClusteringKWayH2", "PartitionRefineKWayH2"}},
    Criterion<TwoSums<I1Term, I2Term, FourthRootProduct>,
              ProductWithFourthRoot<RoundedSum<I2Term>, WideSum<I1Term>>, NoMerging>{
        {"RefineClusteringKWayH3", "PartitionRefineKWayH3"}},
    Criterion<SingleSum<SizedG1Term, Smaller>, RoundedSum<SizedG1Term>, NoMerging>{
        {"RefineClusteringKWayG3", "PartitionRefineKWayG3"}},
};

[[noreturn]] inline void RefuseCriterion(int code) {
  FatalError("Unknown clustering criterion function (CRFun) of %d\n", code);
}

// Calls visit(row) with the row of a code and returns what that returns. Ends the run on a code
// that has none.
template <std::size_t kRow = 0, typename Visit>
auto WithCriterion(int code, const Visit& visit) {
  constexpr const auto& kCriterion = std::get<kRow>(kCriteria);
  if constexpr (kRow + 1 < std::tuple_size_v<decltype(kCriteria)>) {
    if (code != static_cast<int>(kRow) + 1) return WithCriterion<kRow + 1>(code, visit);
  } else if (code != static_cast<int>(kRow) + 1) {
    RefuseCriterion(code);
  }
  return visit(kCriterion);
}

}  // namespace molva
