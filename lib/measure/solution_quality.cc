// SPDX-License-Identifier: MIT
#include "lib/measure/solution_quality.h"

#include <array>
#include <cmath>

#include "lib/criteria/terms.h"
#include "lib/matrix/composites.h"
#include "lib/matrix/prepare.h"
#include "lib/molva.h"
#include "lib/support/fatal.h"
#include "lib/support/vectors.h"
#include "lib/support/wide.h"

namespace molva {
namespace {

struct Measures {
  std::span<const int> pwgts;
  std::span<const float> dnorms;
  std::span<const float> csim;
  std::size_t size() const { return pwgts.size(); }
  ClusterMeasure operator[](std::size_t k) const { return {pwgts[k], dnorms[k], csim[k]}; }
};

template <typename Term>
Wide WideSum(const Measures& clusters) {
  Wide sum = 0;
  for (std::size_t k = 0; k < clusters.size(); ++k) sum += Term::Of(clusters[k]);
  return sum;
}

// Brought to single precision after every term: all single sums, and the sum of lengths wherever
// it occurs.
template <typename Term>
float RoundedSum(const Measures& clusters) {
  float sum = 0;
  for (std::size_t k = 0; k < clusters.size(); ++k) {
    sum = static_cast<float>(sum + Term::Of(clusters[k]));
  }
  return sum;
}

float ValueH1(const Measures& clusters) {
  return static_cast<float>(WideSum<I1Term>(clusters) / WideSum<E1Term>(clusters));
}

float ValueH2(const Measures& clusters) {
  return static_cast<float>(RoundedSum<I2Term>(clusters) / WideSum<E1Term>(clusters));
}

// The fourth root is taken as two successive square roots here.
float ValueG3(const Measures& clusters) {
  const Wide fourth_root = std::sqrt(std::sqrt(WideSum<I1Term>(clusters)));
  return static_cast<float>(RoundedSum<I2Term>(clusters) * fourth_root);
}

// Indexed by code - 1; refinement optimises the same formulas under the same codes.
constexpr std::array<float (*)(const Measures&), 9> kValues = {RoundedSum<I1Term>,
                                                               RoundedSum<I2Term>,
                                                               RoundedSum<E1Term>,
                                                               RoundedSum<G1Term>,
                                                               RoundedSum<G1PrimeTerm>,
                                                               ValueH1,
                                                               ValueH2,
                                                               ValueG3,
                                                               RoundedSum<SizedG1Term>};

}  // namespace

float GetCriterionFunctionValue(const Control& control, const PreparedMatrix& mat, int nparts,
                                std::span<const int> part) {
  Array<int> pwgts = AllocIntsSet(nparts, 0, "GetCriterionFunctionValue: pwgts");
  Array<float> dnorms = AllocFloats(nparts, "GetCriterionFunctionValue: dnorms");
  Array<float> csim = AllocFloats(nparts, "GetCriterionFunctionValue: csim");
  Rows<float> centers =
      AllocFloatMatrix(nparts, mat.ncols, 0, "GetCriterionFunctionValue: centers");
  Array<float> gcenter = AllocFloatsSet(mat.ncols, 0, "GetCriterionFunctionValue: gcenter");

  AccumulateComposites(mat, part, pwgts, centers, gcenter);
  for (int k = 0; k < nparts; ++k) {
    dnorms[k] = DotFloats(centers[k], centers[k]);
    csim[k] = DotFloats(centers[k], gcenter);
  }
  if (control.crfun < 1 || control.crfun > static_cast<int>(kValues.size())) {
    FatalError("Unknown clustering criterion function (CRFun) of %d\n", control.crfun);
  }
  return kValues[static_cast<std::size_t>(control.crfun - 1)]({pwgts, dnorms, csim});
}

}  // namespace molva

float MOLVA_V_GetSolutionQuality(int nrows, int ncols, const int* rowptr, const int* rowind,
                                 const float* rowval, int simfun, int crfun, int rowmodel,
                                 int colmodel, float colprune, int nparts, const int* part) {
  using namespace molva;
  const Control control{.simfun = simfun,
                        .crfun = crfun,
                        .rowmodel = rowmodel,
                        .colmodel = colmodel,
                        .prune = colprune};
  PreparedCopy copy = MakePreparedCopy(control, {nrows, ncols, rowptr, rowind, rowval},
                                       "MOLVA_V_GetSolutionQuality");
  MapPartIn(copy, part);
  return GetCriterionFunctionValue(control, *copy.mat, nparts, copy.part());
}
