// SPDX-License-Identifier: MIT
//
// The nine instances of the refinement frame and the table that picks one by its code.
#include "lib/partition/refine.h"

#include <array>

#include "lib/partition/refine_frame.h"
#include "lib/support/fatal.h"

namespace molva {
namespace {

using RefineFunction = float (*)(const Control&, const PreparedMatrix&, int, std::span<int>);

// Indexed by code - 1.
constexpr std::array<RefineFunction, 9> kRoutines = {
    RefineClusteringKWayI1, RefineClusteringKWayI2,      RefineClusteringKWayE1,
    RefineClusteringKWayG1, RefineClusteringKWayG1Prime, RefineClusteringKWayH1,
    RefineClusteringKWayH2, RefineClusteringKWayH3,      RefineClusteringKWayG3};

}  // namespace

float RefineClusteringKWay(const Control& control, const PreparedMatrix& mat, int nparts,
                           std::span<int> part) {
  if (control.crfun < 1 || control.crfun > static_cast<int>(kRoutines.size())) {
    FatalError("Unknown clustering criterion function (CRFun) of %d\n", control.crfun);
  }
  return kRoutines[static_cast<std::size_t>(control.crfun - 1)](control, mat, nparts, part);
}

float RefineClusteringKWayI1(const Control& control, const PreparedMatrix& mat, int nparts,
                             std::span<int> part) {
  return RefineKWay(kCriterionI1, control, mat, nparts, part);
}

float RefineClusteringKWayI2(const Control& control, const PreparedMatrix& mat, int nparts,
                             std::span<int> part) {
  return RefineKWay(kCriterionI2, control, mat, nparts, part);
}

float RefineClusteringKWayE1(const Control& control, const PreparedMatrix& mat, int nparts,
                             std::span<int> part) {
  return RefineKWay(kCriterionE1, control, mat, nparts, part);
}

float RefineClusteringKWayG1(const Control& control, const PreparedMatrix& mat, int nparts,
                             std::span<int> part) {
  return RefineKWay(kCriterionG1, control, mat, nparts, part);
}

float RefineClusteringKWayG1Prime(const Control& control, const PreparedMatrix& mat, int nparts,
                                  std::span<int> part) {
  return RefineKWay(kCriterionG1Prime, control, mat, nparts, part);
}

float RefineClusteringKWayH1(const Control& control, const PreparedMatrix& mat, int nparts,
                             std::span<int> part) {
  return RefineKWay(kCriterionH1, control, mat, nparts, part);
}

float RefineClusteringKWayH2(const Control& control, const PreparedMatrix& mat, int nparts,
                             std::span<int> part) {
  return RefineKWay(kCriterionH2, control, mat, nparts, part);
}

float RefineClusteringKWayG3(const Control& control, const PreparedMatrix& mat, int nparts,
                             std::span<int> part) {
  return RefineKWay(kCriterionCode9, control, mat, nparts, part);
}

float RefineClusteringKWayH3(const Control& control, const PreparedMatrix& mat, int nparts,
                             std::span<int> part) {
  return RefineKWay(kCriterionCode8, control, mat, nparts, part);
}

}  // namespace molva
