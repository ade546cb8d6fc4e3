// SPDX-License-Identifier: MIT
//
// The top of a tree: as much of it as a picture has room for.
#pragma once

#include <array>
#include <functional>
#include <vector>

namespace mardle::exporting {

// The nodes that are shown with their children, when no more than `leaves` ends of branches have
// room: of the branches that could be opened the one that weighs most is, time and again, the
// higher number of equals first. `children` of a leaf are -1.
std::vector<int> OpenNodes(int root, std::size_t leaves,
                           const std::function<std::array<int, 2>(int)>& children,
                           const std::function<int(int)>& weight);

}  // namespace mardle::exporting
