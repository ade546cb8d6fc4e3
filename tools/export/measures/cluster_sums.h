// SPDX-License-Identifier: MIT
//
// The sums of the prepared rows of each cluster as vectors of unit length, with which clusters are
// compared with each other and with all the rest.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "programs/io/engine_calls.h"
#include "tools/export/measures/cluster_rows.h"

namespace mardle::exporting {

struct SumEntry {
  int column;  // of the matrix as it was read
  double value;
};

class ClusterSums {
 public:
  // Prepares the matrix as the input says; its clusters are those of `rows`.
  ClusterSums(const EngineInput& in, const ClusterRows& rows);

  int nclusters() const { return static_cast<int>(begins_.size()) - 1; }
  int ncols() const { return static_cast<int>(total_.size()); }
  // The unit vector of cluster k, by increasing column; all zero when its rows are.
  std::span<const SumEntry> operator[](int k) const {
    const auto at = static_cast<std::size_t>(k);
    return {entries_.data() + begins_[at], begins_[at + 1] - begins_[at]};
  }
  // The length of the sum before it was brought to unit length.
  double Length(int k) const { return lengths_[static_cast<std::size_t>(k)]; }
  // Whether column j weighs less in the unit vector of cluster k than in that of all other rows.
  bool IsWeaker(int k, int j) const;

 private:
  double ValueOf(int k, int j) const;

  std::vector<std::size_t> begins_ = {0};
  std::vector<SumEntry> entries_;
  std::vector<double> lengths_;       // of each sum before it was brought to unit length
  std::vector<double> rest_lengths_;  // of the sum of all other rows
  std::vector<double> total_;         // the sum of the rows of all clusters
};

// A cluster and how similar it is: the cosine of the angle between the two sums.
struct Neighbour {
  int cluster;
  double similarity;
};
// The `count` most similar clusters of each, most similar first, the lower number first of equals.
// Clusters with which one shares no column are none.
std::vector<std::vector<Neighbour>> NearestClusters(const ClusterSums& sums, std::size_t count);

// The products of the sums as they are, of every cluster with every cluster, row by row. Only
// columns that two clusters share are multiplied, so thousands of clusters are no matter.
std::vector<float> ProductsOfSums(const ClusterSums& sums);

}  // namespace mardle::exporting
