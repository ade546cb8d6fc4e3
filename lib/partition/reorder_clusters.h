// SPDX-License-Identifier: MIT
#pragma once

#include "lib/matrix/prepared_matrix.h"
#include "lib/support/span.h"

namespace molva {

// Renumbers the clusters in place so that the tightest, best-separated one comes first: by falling
// D_k.D_k / n_k^2 - (D_k.G - D_k.D_k) / ((N - n_k) n_k), average internal minus average external
// similarity. A single cluster gives a key that is not a number and keeps its place.
void ReorderClusters(const PreparedMatrix& mat, int nparts, Span<int> part);

}  // namespace molva
