// SPDX-License-Identifier: MIT
//
// How tightly the rows of each cluster belong together and how similar they are to the others; the
// worker under MOLVA_V_GetClusterStats.
#pragma once

#include "lib/matrix/prepared_matrix.h"
#include "lib/support/span.h"

namespace molva {

// Measures on the prepared matrix, as molva.h describes them. The z-score spans may be empty.
// Values of rows whose cluster lies outside 0 to pwgts.size()-1 are left as they are.
struct ClusterStats {
  Span<int> pwgts;
  Span<float> isim, isdev;
  Span<float> izscores;
  Span<float> esim, esdev;
  Span<float> ezscores;
};

void GetClusterStats(const PreparedMatrix& mat, Span<const int> part, const ClusterStats& stats);

}  // namespace molva
