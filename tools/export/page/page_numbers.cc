// SPDX-License-Identifier: MIT
#include "tools/export/page/page_numbers.h"

#include <algorithm>
#include <limits>

#include "lib/support/tree_arrays.h"
#include "lib/support/vectors.h"
#include "programs/external_quality.h"
#include "programs/io/engine_calls.h"
#include "tools/export/tree.h"
#include "tools/text/file_error.h"

namespace mardle::exporting {
namespace {

using molva::AllocFloatsSet;
using molva::AllocIntsSet;

// The z-score of a row that preparation drops.
constexpr float kUnmeasured = std::numeric_limits<float>::quiet_NaN();

FeatureLists EmptyLists(std::int64_t lists, int nfeatures) {
  const std::int64_t slots = lists * nfeatures;
  return {AllocIntsSet(slots, -1, "Measure: ids"), AllocFloatsSet(slots, 0, "Measure: weights")};
}

void MeasurePage(const PageRun& run, const int* part, PageNumbers& numbers) {
  const RunParams& params = run.params;
  const Matrix& mat = run.mat;
  const int n = numbers.nclusters;
  numbers.pwgts = AllocIntsSet(n, 0, "Measure: pwgts");
  numbers.cintsim = AllocFloatsSet(n, 0, "Measure: cintsim");
  numbers.cintsdev = AllocFloatsSet(n, 0, "Measure: cintsdev");
  numbers.izscores = AllocFloatsSet(mat.nrows, kUnmeasured, "Measure: izscores");
  numbers.cextsim = AllocFloatsSet(n, 0, "Measure: cextsim");
  numbers.cextsdev = AllocFloatsSet(n, 0, "Measure: cextsdev");
  numbers.ezscores = AllocFloatsSet(mat.nrows, kUnmeasured, "Measure: ezscores");
  const EngineInput in = RunInput(params, mat, {n, part});
  MeasureClusters(in, {numbers.pwgts, numbers.cintsim, numbers.cintsdev, numbers.izscores,
                       numbers.cextsim, numbers.cextsdev, numbers.ezscores});
  numbers.crvalue = CriterionValue(in, params.crfun);
}

constexpr std::size_t kNearest = 3;

void MeasureWords(const PageRun& run, const int* part, PageNumbers& numbers) {
  const EngineInput in = RunInput(run.params, run.mat, {numbers.nclusters, part});
  const ClusterSums sums(in, numbers.rows);
  numbers.words = FindClusterWords(in, run.params.nfeatures, sums);
  numbers.nearest = NearestClusters(sums, kNearest);
  numbers.levels = ColumnLevels(run.mat, numbers.rows);
}

void MeasureClasses(const PageRun& run, const std::vector<int>& part, PageNumbers& numbers) {
  const int nclasses = run.mat.nclasses;
  numbers.has_classes = true;
  numbers.classdist = molva::AllocIntMatrix(numbers.nclusters, nclasses, 0, "Measure: classdist");
  numbers.ocldist = AllocIntsSet(nclasses, 0, "Measure: ocldist");
  CountClasses(run.mat.classes, part.data(), numbers.classdist, numbers.ocldist);
  numbers.entropies = AllocFloatsSet(numbers.nclusters, 0, "Measure: entropies");
  numbers.purities = AllocFloatsSet(numbers.nclusters, 0, "Measure: purities");
  for (int k = 0; k < numbers.nclusters; ++k) {
    numbers.entropies[k] = ComputeEntropy(nclasses, numbers.rows.Total(), numbers.ocldist,
                                          numbers.pwgts[k], numbers.classdist[k]);
    numbers.purities[k] = ComputePurity(nclasses, numbers.rows.Total(), numbers.ocldist,
                                        numbers.pwgts[k], numbers.classdist[k]);
  }
  numbers.entropy = WeightedAverage(numbers.pwgts, numbers.entropies, numbers.rows.Total());
  numbers.purity = WeightedAverage(numbers.pwgts, numbers.purities, numbers.rows.Total());
}

// The parents of a file's tree over n leaves, as the library wants them: 2n.
molva::Array<int> ParentsOf(const Tree& tree) {
  molva::Array<int> ptree =
      AllocIntsSet(2 * static_cast<std::int64_t>(tree.nleaves), -1, "Measure: ptree");
  std::copy(tree.parent.begin(), tree.parent.end(), ptree.begin());
  return ptree;
}

molva::Array<int> BuildParents(const PageRun& run, const int* part, int nclusters) {
  const RunParams& params = run.params;
  const Matrix& mat = run.mat;
  const std::int64_t nodes = 2 * std::int64_t{nclusters};
  molva::Array<int> ptree = AllocIntsSet(nodes, -1, "Measure: ptree");
  molva::Array<float> tsims = AllocFloatsSet(nodes, 0, "Measure: tsims");
  BuildTree(RunInput(params, mat, {nclusters, part}), MOLVA_TREE_CLUSTERS, params.treecrfun, ptree,
            tsims);
  return ptree;
}

void OrderChildren(const PageRun& run, const int* part, int nclusters, ClusterTree& tree) {
  const RunParams& params = run.params;
  const Matrix& mat = run.mat;
  tree.children = molva::MakeChildTable({tree.ptree.get(), tree.ptree.size()}, "Measure: children");
  tree.root = molva::FindRoot(molva::ChildTable(tree.children));
  if (params.noreorder != 0) return;
  ReorderClusterTree(RunInput(params, mat, {nclusters, part}), tree.ptree, tree.children);
}

void MeasureTree(const PageRun& run, const int* part, int nclusters, ClusterTree& tree) {
  const RunParams& params = run.params;
  const Matrix& mat = run.mat;
  const std::int64_t nodes = 2 * std::int64_t{nclusters};
  OrderChildren(run, part, nclusters, tree);
  tree.pwgts = AllocIntsSet(nodes, 0, "Measure: node pwgts");
  tree.isims = AllocFloatsSet(nodes, 0, "Measure: isims");
  tree.xsims = AllocFloatsSet(nodes, 0, "Measure: xsims");
  const EngineInput in = RunInput(params, mat, {nclusters, part});
  MeasureNodes(in, tree.ptree, {tree.pwgts, tree.isims, tree.xsims});
  // Where only one cluster has rows nothing is joined.
  if (tree.root < nclusters) tree.root = molva::ArgMaxInt(tree.pwgts);
  tree.descriptive = EmptyLists(nodes, params.nfeatures);
  FeatureLists discriminating = EmptyLists(nodes, params.nfeatures);
  DescribeNodes(
      in, tree.ptree, params.nfeatures,
      {tree.descriptive.ids, tree.descriptive.weights, discriminating.ids, discriminating.weights});
}

void MeasureFScores(const PageRun& run, const Tree& complete, PageNumbers& numbers) {
  if (!numbers.has_classes) return;
  const Matrix& mat = run.mat;
  numbers.has_fscores = true;
  numbers.fscores = AllocFloatsSet(mat.nclasses, 0, "Measure: fscores");
  ComputeFScores(mat.nclasses, mat.nrows, mat.classes, numbers.ocldist, ParentsOf(complete),
                 numbers.fscores);
  numbers.fscore = WeightedAverage(numbers.ocldist, numbers.fscores, numbers.rows.Total());
}

// A tree over the clusters takes the place of the computed one; a complete tree gives F-scores.
void TakeTreeFile(const PageRun& run, PageNumbers& numbers) {
  if (run.tree_name.empty()) return;
  const Tree tree = ReadTree(run.tree_name);
  if (tree.nleaves == numbers.nclusters) {
    numbers.tree.ptree = ParentsOf(tree);
  } else if (tree.nleaves == run.mat.nrows) {
    MeasureFScores(run, tree, numbers);
  } else {
    throw tools::FileError({run.tree_name, static_cast<std::int64_t>(tree.parent.size())},
                           "the file ends here, a tree of " + std::to_string(tree.nleaves) +
                               " leaves; there are " + std::to_string(numbers.nclusters) +
                               " clusters and " + std::to_string(run.mat.nrows) + " rows");
  }
}

}  // namespace

PageNumbers::PageNumbers(const Clustering& clustering)
    : nclusters(clustering.nclusters), rows(clustering.part, nclusters) {}

PageNumbers Measure(const PageRun& run, const Clustering& clustering) {
  if (clustering.nclusters == 0) {
    throw tools::FileError({run.clustering_name, 0},
                           "no row has a cluster, there is nothing to show");
  }
  const std::vector<int>& part = clustering.part;
  PageNumbers numbers(clustering);
  MeasurePage(run, part.data(), numbers);
  MeasureWords(run, part.data(), numbers);
  if (run.mat.nclasses > 1) MeasureClasses(run, part, numbers);
  TakeTreeFile(run, numbers);
  if (!numbers.tree.ptree) numbers.tree.ptree = BuildParents(run, part.data(), numbers.nclusters);
  MeasureTree(run, part.data(), numbers.nclusters, numbers.tree);
  return numbers;
}

}  // namespace mardle::exporting
