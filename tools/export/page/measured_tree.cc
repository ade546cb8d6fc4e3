// SPDX-License-Identifier: MIT
#include "tools/export/page/measured_tree.h"

#include <cmath>
#include <utility>

#include "lib/support/tree_arrays.h"
#include "lib/support/vectors.h"
#include "programs/io/engine_calls.h"

namespace mardle::exporting {
namespace {

using molva::AllocFloatsSet;
using molva::AllocIntsSet;

// What the library is to do with a table that it is handed.
constexpr int kCopied = 1;

FeatureLists EmptyLists(std::int64_t lists, int nfeatures) {
  const std::int64_t slots = lists * nfeatures;
  return {AllocIntsSet(slots, -1, "MeasureTree: ids"),
          AllocFloatsSet(slots, 0, "MeasureTree: weights")};
}

void OrderChildren(const PageRun& run, const EngineInput& in, const ClusterProducts& products,
                   MeasuredTree& tree) {
  tree.children =
      molva::MakeChildTable({tree.ptree.get(), tree.ptree.size()}, "MeasureTree: children");
  tree.root = molva::FindRoot(molva::ChildTable(tree.children));
  if (run.params.noreorder) return;
  if (products.table.empty()) {
    ReorderClusterTree(in, tree.ptree, tree.children);
  } else {
    std::vector<float> table = products.table;
    MOLVA_S_TreeReorder(tree.nleaves, products.sizes.data(), table.data(), kCopied, 0,
                        tree.ptree.get(), tree.children.get());
  }
}

}  // namespace

molva::Array<int> BuildParents(const PageRun& run, const int* part, int nclusters,
                               const ClusterProducts& products) {
  const std::int64_t nodes = 2 * std::int64_t{nclusters};
  molva::Array<int> ptree = AllocIntsSet(nodes, -1, "BuildParents: ptree");
  molva::Array<float> tsims = AllocFloatsSet(nodes, 0, "BuildParents: tsims");
  if (products.table.empty()) {
    BuildTree(RunInput(run.params, run.mat, {nclusters, part}), MOLVA_TREE_CLUSTERS,
              run.params.treecrfun, ptree, tsims);
    return ptree;
  }
  std::vector<float> table = products.table;
  molva::Array<int> whole = AllocIntsSet(nclusters, 0, "BuildParents: whole");
  molva::Array<float> gains = AllocFloatsSet(nodes, 0, "BuildParents: gains");
  MOLVA_SA_Cluster(nclusters, products.sizes.data(), table.data(), run.params.treecrfun, kCopied, 0,
                   1, whole.get(), ptree.get(), tsims.get(), gains.get());
  return ptree;
}

MeasuredTree MeasureTree(const PageRun& run, const int* part, int nleaves, molva::Array<int> ptree,
                         const ClusterProducts& products) {
  const EngineInput in = RunInput(run.params, run.mat, {nleaves, part});
  const std::int64_t nodes = in.clusters.nodes();
  MeasuredTree tree;
  tree.nleaves = nleaves;
  tree.ptree = std::move(ptree);
  OrderChildren(run, in, products, tree);
  tree.pwgts = AllocIntsSet(nodes, 0, "MeasureTree: pwgts");
  tree.isims = AllocFloatsSet(nodes, 0, "MeasureTree: isims");
  tree.xsims = AllocFloatsSet(nodes, 0, "MeasureTree: xsims");
  MeasureNodes(in, tree.ptree, {tree.pwgts, tree.isims, tree.xsims});
  // Where only one leaf has rows nothing is joined.
  if (tree.root < nleaves) tree.root = molva::ArgMaxInt(tree.pwgts);
  tree.descriptive = EmptyLists(nodes, run.params.nfeatures);
  FeatureLists discriminating = EmptyLists(nodes, run.params.nfeatures);
  DescribeNodes(
      in, tree.ptree, run.params.nfeatures,
      {tree.descriptive.ids, tree.descriptive.weights, discriminating.ids, discriminating.weights});
  return tree;
}

std::vector<Feature> FeaturesOf(const PageRun& run, const MeasuredTree& tree, int x) {
  const FeatureLists& lists = tree.descriptive;
  std::vector<Feature> features;
  const std::int64_t begin = std::int64_t{x} * run.params.nfeatures;
  for (std::int64_t slot = begin; slot < begin + run.params.nfeatures; ++slot) {
    if (lists.ids[slot] < 0 || !std::isfinite(lists.weights[slot])) continue;
    features.push_back(
        {run.mat.clabels[lists.ids[slot]], static_cast<double>(lists.weights[slot])});
  }
  return features;
}

}  // namespace mardle::exporting
