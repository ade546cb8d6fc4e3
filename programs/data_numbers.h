// SPDX-License-Identifier: MIT
//
// Whether all that the clustering works on is a number.
#pragma once

#include "programs/io/matrix.h"
#include "programs/run_params.h"

namespace mardle {

// True when a value of the matrix is no number, or becomes none under the row model, in a row and a
// column that preparation keeps.
bool DataBringNotANumber(const RunParams& params, const Matrix& mat);

}  // namespace mardle
