// SPDX-License-Identifier: MIT
//
// Tables of numbers.
#pragma once

#include <string>
#include <vector>

#include "tools/import/dense_rows.h"
#include "tools/import/matrix_writer.h"
#include "tools/import/progress.h"
#include "tools/import/table_columns.h"

namespace mardle::tools {

// The headings become column labels. Cells that are empty or say NA, N/A, NaN, null, none or ?, in
// any case, are missing values. What looks like headings or a numbering that was taken for values
// goes into the notes.
MatrixSummary ImportTable(InputLines& input, const TableOptions& options,
                          const Preparation& preparation, const MatrixOutput& output,
                          Progress& progress, std::vector<std::string>& notes);

}  // namespace mardle::tools
