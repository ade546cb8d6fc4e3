// SPDX-License-Identifier: MIT
//
// Matrix Market files: coordinate or array; real, integer or pattern; general, symmetric or
// skew-symmetric.
#pragma once

#include "tools/import/given_labels.h"
#include "tools/import/matrix_writer.h"
#include "tools/import/progress.h"
#include "tools/text/input_lines.h"

namespace mardle::tools {

// Entries given several times add up, and zeros are no entries. An array becomes a dense matrix
// unless `sparse` asks otherwise. Throws FileError on whatever the format does not allow.
MatrixSummary ImportMatrixMarket(InputLines& input, const MatrixOutput& output, bool sparse,
                                 const GivenLabels& labels, Progress& progress);

}  // namespace mardle::tools
