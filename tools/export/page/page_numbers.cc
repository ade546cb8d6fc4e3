// SPDX-License-Identifier: MIT
#include "tools/export/page/page_numbers.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "programs/external_quality.h"
#include "programs/io/engine_calls.h"
#include "tools/export/cluster_tops.h"
#include "tools/text/file_error.h"

namespace mardle::exporting {
namespace {

using molva::AllocFloatsSet;
using molva::AllocIntsSet;

// The z-score of a row that preparation drops.
constexpr float kUnmeasured = std::numeric_limits<float>::quiet_NaN();

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
constexpr std::size_t kClustersOnMap = 200;
constexpr int kManyClusters = 500;

void MeasureWords(const PageRun& run, const int* part, PageNumbers& numbers) {
  const EngineInput in = RunInput(run.params, run.mat, {numbers.nclusters, part});
  const ClusterSums sums(in, numbers.rows);
  numbers.words = FindClusterWords(in, run.params.nfeatures, sums);
  numbers.nearest = NearestClusters(sums, kNearest);
  const bool has_empty = std::count(numbers.pwgts.begin(), numbers.pwgts.end(), 0) > 0;
  if (numbers.nclusters > kManyClusters && !has_empty) {
    numbers.products = {{numbers.pwgts.begin(), numbers.pwgts.end()}, ProductsOfSums(sums)};
  }
  numbers.map.clusters = LargestClusters(numbers, kClustersOnMap);
  numbers.map.points = PlaceInPlane(sums, numbers.map.clusters);
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

void MeasureFScores(const PageRun& run, const Tree& complete, PageNumbers& numbers) {
  if (!numbers.has_classes) return;
  const Matrix& mat = run.mat;
  numbers.has_fscores = true;
  numbers.fscores = AllocFloatsSet(mat.nclasses, 0, "Measure: fscores");
  ComputeFScores(mat.nclasses, mat.nrows, mat.classes, numbers.ocldist, ParentsOf(complete),
                 numbers.fscores);
  numbers.fscore = WeightedAverage(numbers.ocldist, numbers.fscores, numbers.rows.Total());
}

// The parents of the tree over the clusters, from the file or built; a complete tree is kept for
// its own pictures and gives F-scores.
molva::Array<int> TakeTreeFile(const PageRun& run, const Clustering& clustering,
                               PageNumbers& numbers) {
  if (run.tree_name.empty())
    return BuildParents(run, clustering.part.data(), numbers.nclusters, numbers.products);
  Tree tree = ReadTree(run.tree_name);
  if (tree.nleaves == numbers.nclusters) return ParentsOf(tree);
  if (tree.nleaves != run.mat.nrows) {
    throw tools::FileError({run.tree_name, static_cast<std::int64_t>(tree.parent.size())},
                           "the file ends here, a tree of " + std::to_string(tree.nleaves) +
                               " leaves; there are " + std::to_string(numbers.nclusters) +
                               " clusters and " + std::to_string(run.mat.nrows) + " rows");
  }
  numbers.tops = ClusterTops(tree, clustering, run.tree_name);
  MeasureFScores(run, tree, numbers);
  numbers.complete = std::move(tree);
  return BuildParents(run, clustering.part.data(), numbers.nclusters, numbers.products);
}

}  // namespace

PageNumbers::PageNumbers(const Clustering& clustering)
    : nclusters(clustering.nclusters), rows(clustering.part, nclusters) {}

std::vector<int> LargestClusters(const PageNumbers& numbers, std::size_t count) {
  std::vector<int> clusters;
  for (int k = 0; k < numbers.nclusters; ++k) {
    if (numbers.rows.Size(k) > 0) clusters.push_back(k);
  }
  std::stable_sort(clusters.begin(), clusters.end(),
                   [&](int a, int b) { return numbers.rows.Size(a) > numbers.rows.Size(b); });
  clusters.resize(std::min(clusters.size(), count));
  std::sort(clusters.begin(), clusters.end());
  return clusters;
}

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
  numbers.tree = MeasureTree(run, part.data(), numbers.nclusters,
                             TakeTreeFile(run, clustering, numbers), numbers.products);
  return numbers;
}

}  // namespace mardle::exporting
