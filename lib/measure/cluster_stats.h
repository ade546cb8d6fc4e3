// SPDX-License-Identifier: MIT
//
// How tightly the rows of each cluster belong together and how similar they are to the others; the
// worker under MOLVA_V_GetClusterStats.
#pragma once

#include <span>

#include "lib/matrix/prepared_matrix.h"

namespace molva {

// Measures on the prepared matrix, as molva.h describes them. The z-score spans may be empty.
// Values of rows whose cluster lies outside 0 to pwgts.size()-1 are left as they are.
struct ClusterStats {
  std::span<int> pwgts;
  std::span<float> isim, isdev;
  std::span<float> izscores;
  std::span<float> esim, esdev;
  std::span<float> ezscores;
};

void GetClusterStats(const PreparedMatrix& mat, std::span<const int> part,
                     const ClusterStats& stats);

}  // namespace molva
