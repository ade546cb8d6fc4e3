// SPDX-License-Identifier: MIT
//
// Tables of numbers.
#pragma once

#include "tools/matrix_writer.h"
#include "tools/progress.h"
#include "tools/table_columns.h"

namespace mardle::tools {

// The headings become column labels. The matrix is dense unless `sparse` asks otherwise.
MatrixSummary ImportTable(InputLines& input, const TableOptions& options,
                          const MatrixOutput& output, bool sparse, Progress& progress);

}  // namespace mardle::tools
