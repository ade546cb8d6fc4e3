// SPDX-License-Identifier: MIT
#include "tools/export/page/tree_top.h"

#include <algorithm>
#include <queue>
#include <utility>

namespace mardle::exporting {

std::vector<int> OpenNodes(int root, std::size_t leaves,
                           const std::function<std::array<int, 2>(int)>& children,
                           const std::function<int(int)>& weight) {
  std::priority_queue<std::pair<int, int>> closed;  // weight and node
  const auto close = [&](int x) {
    if (children(x)[0] >= 0) closed.emplace(weight(x), x);
  };
  close(root);
  std::vector<int> open;
  while (!closed.empty() && open.size() + 1 < leaves) {
    const int x = closed.top().second;
    closed.pop();
    open.push_back(x);
    for (const int child : children(x)) close(child);
  }
  std::sort(open.begin(), open.end());
  return open;
}

}  // namespace mardle::exporting
