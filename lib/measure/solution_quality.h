// SPDX-License-Identifier: MIT
//
// The value of a criterion for a finished clustering; the worker under MOLVA_V_GetSolutionQuality.
#pragma once

#include "lib/matrix/control.h"
#include "lib/matrix/prepared_matrix.h"
#include "lib/support/span.h"

namespace molva {

// The value of control.crfun, as molva.h gives the formulas. Any code but 1 to 9 is fatal:
// "Unknown clustering criterion function (CRFun) of %d\n".
float GetCriterionFunctionValue(const Control& control, const PreparedMatrix& mat, int nparts,
                                Span<const int> part);

}  // namespace molva
