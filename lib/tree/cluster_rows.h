// SPDX-License-Identifier: MIT
//
// Agglomerative clustering of the rows themselves; the worker under MOLVA_VA_Cluster.
#pragma once

#include "lib/matrix/control.h"
#include "lib/matrix/prepare.h"
#include "lib/support/span.h"

namespace molva {

// Builds one tree over all rows, 2 elements per row of the caller, and cuts it into nparts clusters
// of the prepared rows, which go to the copy's part. The copy gives up its matrix.
void ClusterRows(const Control& control, PreparedCopy& copy, int nparts, Span<int> ptree,
                 Span<float> tsims);

}  // namespace molva
