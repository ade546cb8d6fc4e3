// SPDX-License-Identifier: MIT
//
// Lines "LABEL COLUMN:VALUE ... # comment", as programs for support vector machines read them.
#pragma once

#include <string_view>

#include "tools/import/given_labels.h"
#include "tools/import/matrix_writer.h"
#include "tools/import/progress.h"
#include "tools/text/input_lines.h"

namespace mardle::tools {

// Whether the line has a label and at least one pair.
bool LooksLikeSvmlight(std::string_view line);

// Labels become classes; those that are equal as numbers (1, +1, 1.0) are one class. Columns are
// counted from 1, or from 0 with `zero_based`. Comments, blank lines and "qid:N" are left out.
// Columns may be fewer than there are labels for them.
MatrixSummary ImportSvmlight(InputLines& input, const MatrixOutput& output, bool zero_based,
                             const GivenLabels& labels, Progress& progress);

}  // namespace mardle::tools
