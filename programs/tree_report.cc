// SPDX-License-Identifier: MIT
#include "programs/tree_report.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <string>

#include "lib/molva.h"
#include "lib/support/alloc.h"
#include "lib/support/printed.h"
#include "lib/support/tree_arrays.h"
#include "programs/code_names.h"
#include "programs/external_quality.h"
#include "programs/io/write_results.h"
#include "programs/tree_canvas.h"

namespace mardle {
namespace {

using molva::AllocFloats;
using molva::AllocInts;

constexpr char kSeparator[] =
    "--------------------------------------------------------------------------------\n";

// The children of every node in the order in which they are drawn.
molva::Array<int> OrderedChildren(const RunParams& params, const EngineInput& input,
                                  const molva::Array<int>& ptree) {
  molva::Array<int> ftree =
      molva::MakeChildTable({ptree.get(), ptree.size()}, "ShowHACTree: ftree");
  if (!params.noreorder) ReorderClusterTree(input, ptree, ftree);
  return ftree;
}

// Counts follow the cluster's number directly, so they line up as long as all cluster numbers have
// the same printed width.
void PrintClassView(const Matrix& mat, const Clusters& clusters,
                    const molva::ChildTable& children) {
  const TreeDrawing drawing = DrawTree(clusters.count, children, false);
  const std::string rule(
      static_cast<std::size_t>(drawing.width + 5 * std::int64_t{mat.nclasses} + 5), '-');
  const bool has_classes = mat.nclasses > 1;
  molva::Rows<int> classdist;
  molva::Array<int> cluster_of_line;
  std::printf("%s", drawing.canvas[0].data());
  if (has_classes) {
    classdist = molva::AllocIntMatrix(clusters.count, mat.nclasses, 0, "ShowHACTree: classdist");
    CountClasses(mat.classes, clusters.part, classdist, {});
    cluster_of_line = molva::AllocIntsSet(drawing.lines, -1, "ShowHACTree: ynode");
    for (int k = 0; k < clusters.count; ++k) {
      if (drawing.ynode[k] >= 0) cluster_of_line[drawing.ynode[k]] = k;
    }
    std::printf("   ");
    for (int c = 0; c < mat.nclasses; ++c) std::printf("%4.4s ", mat.classnames[c]);
  }
  std::printf("\n%s\n", rule.c_str());
  for (int y = 1; y < drawing.lines; ++y) {
    std::printf("%s", drawing.canvas[y].data());
    if (has_classes && cluster_of_line[y] >= 0) {
      std::printf("   ");
      for (const int count : classdist[cluster_of_line[y]]) std::printf("%4d ", count);
    }
    std::printf("\n");
  }
  std::printf("%s\n", rule.c_str());
}

// What the label view prints of the nodes. The discriminating columns are measured with the rest
// and not printed.
struct NodeNumbers {
  NodeNumbers(std::int64_t nodes, int nfeatures)
      : pwgts(AllocInts(nodes, "ShowHACTree: pwgts")),
        cintsim(AllocFloats(nodes, "ShowHACTree: cintsim")),
        cextsim(AllocFloats(nodes, "ShowHACTree: cextsim")),
        internalids(AllocInts(nodes * nfeatures, "ShowHACTree: internalids")),
        externalids(AllocInts(nodes * nfeatures, "ShowHACTree: externalids")),
        internalwgts(AllocFloats(nodes * nfeatures, "ShowHACTree: internalwgts")),
        externalwgts(AllocFloats(nodes * nfeatures, "ShowHACTree: externalwgts")) {}

  molva::Array<int> pwgts;
  molva::Array<float> cintsim, cextsim;
  molva::Array<int> internalids, externalids;
  molva::Array<float> internalwgts, externalwgts;
};

NodeNumbers NumbersOfNodes(const EngineInput& input, const molva::Array<int>& ptree,
                           int nfeatures) {
  NodeNumbers n(input.clusters.nodes(), std::max(nfeatures, 0));
  MeasureNodes(input, ptree, {n.pwgts, n.cintsim, n.cextsim});
  DescribeNodes(input, ptree, nfeatures,
                {n.internalids, n.internalwgts, n.externalids, n.externalwgts});
  return n;
}

// An empty last slot leaves the bracket open and prints a newline of its own, on purpose.
void PrintNodeFeatures(const Matrix& mat, int nfeatures, const int* ids, const float* weights) {
  for (int slot = 0; slot < nfeatures; ++slot) {
    if (ids[slot] == -1) continue;
    std::printf("%s %4.1f%%%s", mat.clabels[ids[slot]], 100.0 * molva::Printed(weights[slot]),
                slot < nfeatures - 1 ? ", " : "]");
  }
  if (nfeatures < 1 || ids[nfeatures - 1] == -1) std::printf("\n");
}

void PrintLabelView(const Matrix& mat, const EngineInput& input, int nfeatures,
                    const molva::Array<int>& ptree, const molva::ChildTable& children) {
  const NodeNumbers n = NumbersOfNodes(input, ptree, nfeatures);
  const TreeDrawing drawing = DrawTree(input.clusters.count, children, true);
  molva::Array<int> node_of_line = molva::AllocIntsSet(drawing.lines, -1, "ShowHACTree: ynode");
  for (int x = 0; x < 2 * input.clusters.count - 1; ++x) {
    if (drawing.ynode[x] >= 0) node_of_line[drawing.ynode[x]] = x;
  }
  std::printf("%s     Size   ISim   XSim\n", drawing.canvas[0].data());
  for (int y = 1; y < drawing.lines; ++y) {
    const int x = node_of_line[y];
    const std::int64_t begin = std::int64_t{x} * std::max(nfeatures, 0);
    std::printf("%s   [%5d, %.3f, %.3f] [", drawing.canvas[y].data(), n.pwgts[x],
                molva::Printed(n.cintsim[x]), molva::Printed(n.cextsim[x]));
    PrintNodeFeatures(mat, nfeatures, n.internalids.get() + begin, n.internalwgts.get() + begin);
    std::printf("\n");
  }
}

void PrintTree(const RunParams& params, const Matrix& mat, const EngineInput& input,
               const molva::Array<int>& ptree) {
  molva::Array<int> ftree = OrderedChildren(params, input, ptree);
  const molva::ChildTable children(ftree);
  std::printf("\n%sHierarchical Tree that optimizes the %s criterion function...\n%s", kSeparator,
              CriterionName(params.treecrfun), kSeparator);
  if (params.labeltree) {
    PrintLabelView(mat, input, params.nfeatures, ptree, children);
  } else {
    PrintClassView(mat, input.clusters, children);
  }
  std::printf("%s", kSeparator);
}

}  // namespace

void ShowHACTree(const RunParams& params, const Matrix& mat, const Clusters& clusters,
                 const TreeOutput& output) {
  const EngineInput input = RunInput(params, mat, clusters);
  molva::Array<int> ptree = AllocInts(clusters.nodes(), "ShowHACTree: ptree");
  molva::Array<float> tsims = AllocFloats(clusters.nodes(), "ShowHACTree: tsims");
  BuildTree(input, MOLVA_TREE_CLUSTERS, params.treecrfun, ptree, tsims);
  if (output.written) {
    WriteTree(params.filename, params.treefile, clusters.count, ptree.get(), tsims.get());
  }
  if (output.printed) PrintTree(params, mat, input, ptree);
}

}  // namespace mardle
