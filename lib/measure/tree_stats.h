// SPDX-License-Identifier: MIT
//
// Size and similarities of the nodes of a tree over clusters; the worker under
// MOLVA_V_GetTreeStats.
#pragma once

#include <span>

#include "lib/matrix/prepared_matrix.h"

namespace molva {

// Each output has 2 * nparts elements, as molva.h describes them.
void GetTreeStats(const PreparedMatrix& mat, int nparts, std::span<const int> part,
                  std::span<const int> ptree, std::span<int> pwgts, std::span<float> isims,
                  std::span<float> xsims);

}  // namespace molva
