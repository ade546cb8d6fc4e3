// SPDX-License-Identifier: MIT
//
// What a page is about.
#pragma once

#include <string>

#include "programs/io/matrix.h"
#include "programs/run_params.h"
#include "tools/export/run_record.h"
#include "tools/export/wording.h"

namespace mardle::exporting {

// All of it but the wording outlives the page's making.
struct PageRun {
  const std::string& matrix_name;
  const std::string& clustering_name;
  const std::string& tree_name;  // empty: the tree over the clusters is computed
  const RunParams& params;       // models, criteria, number of features
  const Matrix& mat;
  Wording wording;
  const RunRecord* record;  // null without one
};

}  // namespace mardle::exporting
