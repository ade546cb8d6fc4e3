// SPDX-License-Identifier: MIT
#include "lib/measure/solution_quality.h"

#include <type_traits>

#include "lib/criteria/table.h"
#include "lib/matrix/composites.h"
#include "lib/support/vectors.h"

namespace molva {

float GetCriterionFunctionValue(const Control& control, const PreparedMatrix& mat, int nparts,
                                Span<const int> part) {
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
