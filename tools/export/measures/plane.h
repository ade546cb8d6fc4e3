// SPDX-License-Identifier: MIT
//
// Clusters as points of a plane whose distances follow their similarities.
#pragma once

#include <vector>

#include "tools/export/measures/cluster_sums.h"

namespace mardle::exporting {

struct Point {
  double x = 0;
  double y = 0;
};

// A point for every cluster, around 0. The distance between two unit sums is that between their
// ends; classical scaling finds the plane in which these distances show best, and small moves then
// bring the points nearer to the distances themselves. The same sums give the same points. Made for
// up to a few hundred clusters, as every pair is looked at.
std::vector<Point> PlaceInPlane(const ClusterSums& sums, const std::vector<int>& clusters);

}  // namespace mardle::exporting
