// SPDX-License-Identifier: MIT
//
// Column labels, row labels and row classes.
#pragma once

#include "programs/io/matrix.h"
#include "programs/run_params.h"

namespace mardle {

// Reads the three optional files named in params, or else "%s.clabel", "%s.rlabel" and "%s.rclass"
// beside the matrix, one entry a line. A missing file gives generated labels (col00001, row00001)
// or one class for all rows; a missing file that was named is reported on standard output. A file
// that ends before every column or row has its line ends the run.
void ReadLabelsAndClasses(const RunParams& params, Matrix& mat);

// Numbers the distinct class labels in the order of their first appearance and fills classes,
// nclasses and classnames; without class labels all rows form the class "no-class".
void SetUpClasses(Matrix& mat);

// The same numbering for any n labels; stores the number of distinct ones. Null and 0 for n <= 0.
molva::Array<int> Labels2Classes(int n, const char* const* labels, int& nclasses_out);

}  // namespace mardle
