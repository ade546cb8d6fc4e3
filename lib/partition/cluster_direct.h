// SPDX-License-Identifier: MIT
//
// Direct k-way clustering, the worker under MOLVA_VP_ClusterDirect.
#pragma once

#include "lib/matrix/control.h"
#include "lib/matrix/prepared_matrix.h"
#include "lib/support/span.h"

namespace molva {

// Seeds the random numbers, and writes a clustering of the rows into nparts clusters, its clusters
// in order.
void ClusterDirect(const Control& control, const PreparedMatrix& mat, int nparts, Span<int> part);

// Writes the best k-way clustering of control.ntrials trials.
void PartitionMatKWay(const Control& control, const PreparedMatrix& mat, int nparts,
                      Span<int> part);

}  // namespace molva
