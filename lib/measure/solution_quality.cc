// SPDX-License-Identifier: MIT
#include "lib/measure/solution_quality.h"

#include <type_traits>

#include "lib/criteria/table.h"
#include "lib/matrix/composites.h"
#include "lib/matrix/prepare.h"
#include "lib/molva.h"
#include "lib/support/vectors.h"

namespace molva {
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
  return WithCriterion(control.crfun, [&](const auto& criterion) {
    using Value = typename std::decay_t<decltype(criterion)>::Value;
    return static_cast<float>(Value::Of({pwgts, dnorms, csim}));
  });
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
