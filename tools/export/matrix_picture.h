// SPDX-License-Identifier: MIT
//
// A matrix of any size as one picture, an SVG file of its own: words along the left, rows from left
// to right in the order of their clusters and classes, as many to a dot as there have to be. Above
// stand the clusters, below them a strip of the classes, at the foot the keys.
#pragma once

#include <ostream>

#include "tools/export/measures/described_clusters.h"
#include "tools/export/wording.h"

namespace mardle::exporting {

void WriteMatrixPicture(const Matrix& mat, const DescribedClusters& clusters,
                        const Wording& wording, std::ostream& out);

}  // namespace mardle::exporting
