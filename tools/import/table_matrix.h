// SPDX-License-Identifier: MIT
//
// Tables of numbers.
#pragma once

#include "tools/import/matrix_writer.h"
#include "tools/import/progress.h"
#include "tools/import/table_columns.h"

namespace mardle::tools {

// The headings become column labels. The matrix is dense unless `sparse` asks otherwise.
MatrixSummary ImportTable(InputLines& input, const TableOptions& options,
                          const MatrixOutput& output, bool sparse, Progress& progress);

}  // namespace mardle::tools
