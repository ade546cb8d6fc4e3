// SPDX-License-Identifier: MIT
//
// A clustering file, read back.
#pragma once

#include <string>
#include <vector>

namespace mardle::exporting {

struct Clustering {
  std::vector<int> part;           // cluster of each row, -1 for none
  std::vector<double> internal_z;  // z-scores of each row; empty when the file has none
  std::vector<double> external_z;
  int nclusters = 0;  // one more than the largest cluster

  bool has_zscores() const { return !internal_z.empty(); }
};

// Reads the clustering of a matrix of nrows rows. Fails when a line is not a cluster or a cluster
// and two z-scores, when lines differ in that, and when there are not nrows of them.
Clustering ReadClustering(const std::string& path, int nrows);

}  // namespace mardle::exporting
