// SPDX-License-Identifier: MIT
#include "tools/export/measures/typical_rows.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace mardle::exporting {

std::vector<int> TypicalRows(const ClusterRows& rows, std::span<const float> izscores, int k,
                             std::size_t count) {
  const auto score = [izscores](int i) {
    const float z = izscores[static_cast<std::size_t>(i)];
    return std::isfinite(z) ? z : -std::numeric_limits<float>::infinity();
  };
  std::vector<int> typical(rows[k].begin(), rows[k].end());
  const auto end = typical.begin() + static_cast<std::ptrdiff_t>(std::min(count, typical.size()));
  std::partial_sort(typical.begin(), end, typical.end(), [&](int a, int b) {
    return score(a) != score(b) ? score(a) > score(b) : a < b;
  });
  typical.erase(end, typical.end());
  return typical;
}

}  // namespace mardle::exporting
