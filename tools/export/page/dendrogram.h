// SPDX-License-Identifier: MIT
//
// A tree drawn from left to right, every node at the similarity of what it joins. Inner nodes have
// lines of their own between those of their children, so no text meets another.
#pragma once

#include <array>
#include <ostream>
#include <string>
#include <vector>

namespace mardle::exporting {

struct DendrogramNode {
  std::array<int, 2> children = {-1, -1};  // upper and lower; -1 for an end
  double similarity = 0;                   // of the two children to each other
  std::string text;                        // HTML
  std::string link;                        // of an end: where it leads, or empty
};

struct Dendrogram {
  std::string id;     // of its title and description on the page
  std::string title;  // HTML, as the description
  std::string description;
  std::vector<DendrogramNode> nodes;
  int root = 0;
};

void WriteDendrogram(const Dendrogram& dendrogram, std::ostream& out);

}  // namespace mardle::exporting
