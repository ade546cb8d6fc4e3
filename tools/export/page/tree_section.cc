// SPDX-License-Identifier: MIT
//
// The tree over the clusters as a picture, and as nested lists whose branches fold, with all
// numbers.
#include <algorithm>
#include <array>

#include "lib/support/span.h"
#include "programs/code_names.h"
#include "tools/export/escape.h"
#include "tools/export/page/class_strip.h"
#include "tools/export/page/dendrogram.h"
#include "tools/export/page/page_parts.h"
#include "tools/export/page/tree_top.h"

namespace mardle::exporting {
namespace {

std::string Measures(const PageRun& run, const MeasuredTree& tree, int x) {
  const bool is_root = x == tree.root;
  return CountedRows(run, tree.pwgts[x]) + " · ISim " +
         Decimals(static_cast<double>(tree.isims[x]), 3) +
         (is_root ? "" : " · XSim " + Decimals(static_cast<double>(tree.xsims[x]), 3));
}

// The columns of a node in one line.
std::string Words(const PageRun& run, const MeasuredTree& tree, int x) {
  std::string words;
  for (const Feature& feature : FeaturesOf(run, tree, x)) {
    if (!words.empty()) words += ", ";
    words += Html(feature.name) + " " + PercentText(feature.share);
  }
  return words;
}

void WriteText(const PageRun& run, const MeasuredTree& tree, int x, std::ostream& out) {
  out << " <span class=\"dim\">" << Measures(run, tree, x) << "</span> <span class=\"words\">"
      << Words(run, tree, x) << "</span>";
}

void WriteLeaf(const PageRun& run, const PageNumbers& numbers, const std::vector<int>& colours,
               int k, std::ostream& out) {
  out << "<li class=\"leaf\"><a href=\"#cluster-" << k << "\">Cluster " << k << "</a>";
  WriteText(run, numbers.tree, k, out);
  if (numbers.has_classes) WriteClassStrip(run, numbers, colours, k, 1, out);
  out << "</li>\n";
}

// Browsers nest some five hundred elements at most, and a branch is three: below this depth
// branches are lines of the deepest list.
constexpr int kDeepestBranch = 100;

void OpenNode(const PageRun& run, const MeasuredTree& tree, int x, int depth, std::ostream& out) {
  const bool nests = depth < kDeepestBranch;
  out << (nests ? "<li><details open><summary>" : "<li>") << "<b>Node " << x << "</b>";
  WriteText(run, tree, x, out);
  out << (nests ? "</summary>\n<ul>\n" : "</li>\n");
}

void CloseNode(int depth, std::ostream& out) {
  if (depth < kDeepestBranch) out << "</ul></details></li>\n";
}

// Climbs by the parents, so a tree of any depth needs no stack.
void WriteNodes(const PageRun& run, const PageNumbers& numbers, std::ostream& out) {
  const MeasuredTree& tree = numbers.tree;
  const std::vector<int> colours = ClassColours(numbers);
  int x = tree.root;
  int depth = 0;
  for (;;) {
    for (; !tree.IsLeaf(x); x = tree.left(x)) OpenNode(run, tree, x, depth++, out);
    WriteLeaf(run, numbers, colours, x, out);
    while (x != tree.root && tree.right(tree.ptree[x]) == x) {
      x = tree.ptree[x];
      CloseNode(--depth, out);
    }
    if (x == tree.root) return;
    x = tree.right(tree.ptree[x]);
  }
}

constexpr std::size_t kEnds = 100;

// The words of a branch that is not opened, with what it holds.
std::string BranchText(const PageRun& run, const MeasuredTree& tree, int x, int clusters) {
  return Counted(clusters, "cluster", "clusters") + ", " + CountedRows(run, tree.pwgts[x]) + ": " +
         NodeWords(run, tree, x);
}

// The clusters below each node.
std::vector<int> ClusterCounts(const MeasuredTree& tree) {
  std::vector<int> counts(tree.ptree.size(), 0);
  const molva::Span<int> of(counts);
  for (int x = 0; x <= tree.root; ++x) {
    if (tree.IsLeaf(x)) of[x] = 1;
    if (tree.ptree[x] > x) of[tree.ptree[x]] += of[x];
  }
  return counts;
}

Dendrogram DendrogramOf(const PageRun& run, const PageNumbers& numbers) {
  const MeasuredTree& tree = numbers.tree;
  const std::vector<int> counts = ClusterCounts(tree);
  const auto children = [&](int x) { return std::array{tree.left(x), tree.right(x)}; };
  const std::vector<int> open =
      OpenNodes(tree.root, kEnds, children, [&](int x) { return tree.pwgts[x]; });
  Dendrogram dendrogram;
  dendrogram.id = "tree-picture";
  dendrogram.title = "Tree over the clusters";
  dendrogram.description =
      "From the whole at the left to the clusters at the right. Every node stands at the average "
      "similarity of the two branches that it joins, with its number of " +
      run.wording.rows + " and its first " + run.wording.columns +
      ". The list below tells the same in words.";
  dendrogram.root = tree.root;
  dendrogram.nodes.resize(static_cast<std::size_t>(tree.root) + 1);
  for (int x = 0; x <= tree.root; ++x) {
    DendrogramNode& node = dendrogram.nodes[static_cast<std::size_t>(x)];
    if (std::binary_search(open.begin(), open.end(), x)) {
      node.children = children(x);
      node.similarity = static_cast<double>(tree.xsims[tree.left(x)]);
      node.text = Grouped(tree.pwgts[x]) + " · " + NodeWords(run, tree, x);
    } else if (tree.IsLeaf(x)) {
      node.text = TitleText(run, numbers, x) + " · " + Grouped(tree.pwgts[x]);
      node.link = "#cluster-" + std::to_string(x);
    } else {
      node.text = BranchText(run, tree, x, counts[static_cast<std::size_t>(x)]);
    }
  }
  return dendrogram;
}

}  // namespace

void WriteTreeSection(const PageRun& run, const PageNumbers& numbers, std::ostream& out) {
  out << "<section id=\"tree\" aria-labelledby=\"tree-heading\">\n"
         "<h2 id=\"tree-heading\">Tree over the clusters</h2>\n"
         "<p class=\"dim\">Joined under criterion "
      << Html(CriterionName(run.params.treecrfun))
      << ". Nodes stand at the average similarity of the two branches that they join, on an axis that "
         "goes with the square root; with each stand its "
      << run.wording.rows << " and the " << run.wording.columns << " that describe it.</p>\n";
  WriteDendrogram(DendrogramOf(run, numbers), out);
  out << "<details><summary>The same as a list</summary>\n"
         "<p class=\"dim\">ISim is the average similarity of the "
      << run.wording.rows << " below a node, XSim that to the " << run.wording.rows
      << " of its sibling; then come the " << run.wording.columns
      << " that describe it.</p>\n"
         "<p class=\"tools\" hidden><button type=\"button\" id=\"fold\">Fold all</button> "
         "<button type=\"button\" id=\"unfold\">Unfold all</button></p>\n"
         "<ul class=\"tree\">\n";
  WriteNodes(run, numbers, out);
  out << "</ul>\n</details>\n</section>\n";
}

}  // namespace mardle::exporting
