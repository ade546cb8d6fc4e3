// SPDX-License-Identifier: MIT
//
// The complete tree, a picture for every cluster. Small branches of large clusters stand as one end
// with their number of rows and their words.
#include <utility>

#include "tools/export/escape.h"
#include "tools/export/page/crown.h"
#include "tools/export/page/dendrogram.h"
#include "tools/export/page/page_parts.h"

namespace mardle::exporting {
namespace {

constexpr std::size_t kEnds = 60;

Dendrogram DendrogramOf(const PageRun& run, const PageNumbers& numbers, const Crown& crown,
                        const MeasuredTree& tree, int k) {
  Dendrogram dendrogram;
  dendrogram.id = "rows-of-" + std::to_string(k);
  dendrogram.title = "Tree over the " + run.wording.rows + " of cluster " + std::to_string(k);
  dendrogram.description = Capital(run.wording.rows) +
                           " and branches of them from top to bottom; " +
                           CountedRows(run, numbers.pwgts[k]) + " in all.";
  dendrogram.root = tree.root;
  for (int x = 0; x < 2 * tree.nleaves - 1; ++x) {
    DendrogramNode& node = dendrogram.nodes.emplace_back();
    if (x >= tree.nleaves) {
      node.children = {tree.left(x), tree.right(x)};
      node.similarity = static_cast<double>(tree.xsims[node.children[0]]);
      node.text = NodeWords(run, tree, x);
    } else if (tree.pwgts[x] == 1) {
      node.text = Beginning(run.mat.rlabels[crown.first_rows[static_cast<std::size_t>(x)]], 60);
    } else {
      node.text = CountedRows(run, tree.pwgts[x]) + ": " + NodeWords(run, tree, x);
    }
  }
  return dendrogram;
}

void WriteClusterTree(const PageRun& run, const PageNumbers& numbers, const Tree& complete,
                      const std::vector<int>& counts, int k, int top, std::ostream& out) {
  Crown crown = CrownOf(complete, counts, top, kEnds);
  if (crown.ends() < 2) return;
  const MeasuredTree tree =
      MeasureTree(run, crown.part.data(), crown.ends(), std::move(crown.ptree));
  out << "<details id=\"tree-of-" << k << "\"><summary>" << TitleText(run, numbers, k)
      << " <span class=\"dim\">" << CountedRows(run, numbers.pwgts[k]) << "</span></summary>\n";
  WriteDendrogram(DendrogramOf(run, numbers, crown, tree, k), out);
  out << "</details>\n";
}

}  // namespace

void WriteRowTrees(const PageRun& run, const PageNumbers& numbers, std::ostream& out) {
  if (!numbers.complete) return;
  const std::vector<int> counts = LeafCounts(*numbers.complete);
  out << "<section id=\"row-trees\" aria-labelledby=\"row-trees-heading\">\n"
         "<h2 id=\"row-trees-heading\">Tree over the "
      << run.wording.rows
      << "</h2>\n<p class=\"dim\">The complete tree below each cluster. Branches of a large "
         "cluster stand as one line with their number of "
      << run.wording.rows << ".</p>\n";
  for (int k = 0; k < numbers.nclusters; ++k) {
    const int top = numbers.tops[static_cast<std::size_t>(k)];
    if (top >= 0) WriteClusterTree(run, numbers, *numbers.complete, counts, k, top, out);
  }
  out << "</section>\n";
}

}  // namespace mardle::exporting
