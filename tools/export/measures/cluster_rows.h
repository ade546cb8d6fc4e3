// SPDX-License-Identifier: MIT
//
// The rows of each cluster, in the order of the matrix.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace mardle::exporting {

class ClusterRows {
 public:
  // `part` is the cluster of each row, 0 to nclusters - 1 or -1 for none.
  ClusterRows(std::span<const int> part, int nclusters);

  int nclusters() const { return static_cast<int>(begins_.size()) - 1; }
  std::span<const int> operator[](int k) const {
    const auto at = static_cast<std::size_t>(k);
    return {rows_.data() + begins_[at], begins_[at + 1] - begins_[at]};
  }
  int Size(int k) const { return static_cast<int>((*this)[k].size()); }
  // Rows with a cluster.
  int Total() const { return static_cast<int>(rows_.size()); }

 private:
  std::vector<std::size_t> begins_;
  std::vector<int> rows_;
};

}  // namespace mardle::exporting
