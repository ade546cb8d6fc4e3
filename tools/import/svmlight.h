// SPDX-License-Identifier: MIT
//
// Lines "LABEL COLUMN:VALUE ... # comment", as programs for support vector machines read them.
#pragma once

#include <string_view>

#include "tools/import/matrix_writer.h"
#include "tools/import/progress.h"
#include "tools/text/input_lines.h"

namespace mardle::tools {

// Whether the line has a label and at least one pair.
bool LooksLikeSvmlight(std::string_view line);

// Labels become classes; those that are equal as numbers (1, +1, 1.0) are one class. Columns are
// counted from 1, or from 0 with `zero_based`. Comments, blank lines and "qid:N" are left out.
MatrixSummary ImportSvmlight(InputLines& input, const MatrixOutput& output, bool zero_based,
                             Progress& progress);

}  // namespace mardle::tools
