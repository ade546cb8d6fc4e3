// SPDX-License-Identifier: MIT
//
// Size and similarities of the nodes of a tree over clusters; the worker under
// MOLVA_V_GetTreeStats.
#pragma once

#include "lib/matrix/prepared_matrix.h"
#include "lib/support/span.h"

namespace molva {

// Each output has 2 * nparts elements, as molva.h describes them.
void GetTreeStats(const PreparedMatrix& mat, int nparts, Span<const int> part,
                  Span<const int> ptree, Span<int> pwgts, Span<float> isims, Span<float> xsims);

}  // namespace molva
