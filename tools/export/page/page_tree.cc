// SPDX-License-Identifier: MIT
//
// The tree over the clusters as nested lists whose branches fold.
#include "lib/support/tree_arrays.h"
#include "programs/code_names.h"
#include "tools/export/escape.h"
#include "tools/export/page/class_strip.h"
#include "tools/export/page/page_parts.h"

namespace mardle::exporting {
namespace {

std::string Measures(const PageRun& run, const ClusterTree& tree, int x) {
  const bool is_root = x == tree.root;
  return CountedRows(run, tree.pwgts[x]) + " · ISim " +
         Decimals(static_cast<double>(tree.isims[x]), 3) +
         (is_root ? "" : " · XSim " + Decimals(static_cast<double>(tree.xsims[x]), 3));
}

// The columns of a node in one line.
std::string Words(const PageRun& run, int x, const FeatureLists& lists) {
  std::string words;
  for (const Feature& feature : FeaturesOf(run, lists, x)) {
    if (!words.empty()) words += ", ";
    words += Html(feature.name) + " " + PercentText(feature.share);
  }
  return words;
}

void WriteText(const PageRun& run, const ClusterTree& tree, int x, std::ostream& out) {
  out << " <span class=\"dim\">" << Measures(run, tree, x) << "</span> <span class=\"words\">"
      << Words(run, x, tree.descriptive) << "</span>";
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

void OpenNode(const PageRun& run, const ClusterTree& tree, int x, int depth, std::ostream& out) {
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
  const ClusterTree& tree = numbers.tree;
  const std::vector<int> colours = ClassColours(numbers);
  const auto left = [&](int x) { return tree.children[2 * std::size_t(x)]; };
  const auto right = [&](int x) { return tree.children[2 * std::size_t(x) + 1]; };
  int x = tree.root;
  int depth = 0;
  for (;;) {
    for (; left(x) >= 0; x = left(x)) OpenNode(run, tree, x, depth++, out);
    WriteLeaf(run, numbers, colours, x, out);
    while (x != tree.root && right(tree.ptree[x]) == x) {
      x = tree.ptree[x];
      CloseNode(--depth, out);
    }
    if (x == tree.root) return;
    x = right(tree.ptree[x]);
  }
}

}  // namespace

void WriteTreeSection(const PageRun& run, const PageNumbers& numbers, std::ostream& out) {
  out << "<section id=\"tree\" aria-labelledby=\"tree-heading\">\n"
         "<h2 id=\"tree-heading\">Tree over the clusters</h2>\n"
         "<p class=\"dim\">Joined under criterion "
      << Html(CriterionName(run.params.treecrfun))
      << ". ISim is the average similarity of the rows below a node, XSim that to the rows of its "
         "sibling; then come the columns that describe it.</p>\n"
         "<p class=\"tools\" hidden><button type=\"button\" id=\"fold\">Fold all</button> "
         "<button type=\"button\" id=\"unfold\">Unfold all</button></p>\n"
         "<ul class=\"tree\">\n";
  WriteNodes(run, numbers, out);
  out << "</ul>\n</section>\n";
}

}  // namespace mardle::exporting
