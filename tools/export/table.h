// SPDX-License-Identifier: MIT
//
// A clustering as a table: one record per row of the matrix with its number, counted from 0, its
// label, its class where there are classes, its cluster, and its z-scores where the file has them.
#pragma once

#include <ostream>

#include "tools/export/clustering.h"
#include "tools/export/rows.h"

namespace mardle::exporting {

// Tab-separated, with a line of column names.
void WriteTsv(const NamedRows& rows, const Clustering& clustering, std::ostream& out);

// One object with nrows, nclusters and the list of rows, one a line. A z-score that is no finite
// number is null.
void WriteJson(const NamedRows& rows, const Clustering& clustering, std::ostream& out);

}  // namespace mardle::exporting
