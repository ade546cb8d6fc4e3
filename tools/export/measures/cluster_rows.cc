// SPDX-License-Identifier: MIT
#include "tools/export/measures/cluster_rows.h"

namespace mardle::exporting {

ClusterRows::ClusterRows(std::span<const int> part, int nclusters)
    : begins_(static_cast<std::size_t>(nclusters) + 1, 0) {
  for (const int k : part) {
    if (k >= 0) ++begins_[static_cast<std::size_t>(k) + 1];
  }
  for (std::size_t k = 1; k < begins_.size(); ++k) begins_[k] += begins_[k - 1];
  rows_.resize(begins_.back());
  std::vector<std::size_t> next = begins_;
  for (std::size_t i = 0; i < part.size(); ++i) {
    if (part[i] >= 0) rows_[next[static_cast<std::size_t>(part[i])]++] = static_cast<int>(i);
  }
}

}  // namespace mardle::exporting
