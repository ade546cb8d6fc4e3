// SPDX-License-Identifier: MIT
//
// Everything a page shows, measured by the library with the parameters of the run or counted.
#pragma once

#include <optional>
#include <vector>

#include "lib/support/alloc.h"
#include "tools/export/clustering.h"
#include "tools/export/measures/cluster_rows.h"
#include "tools/export/measures/cluster_sums.h"
#include "tools/export/measures/cluster_words.h"
#include "tools/export/measures/column_levels.h"
#include "tools/export/measures/plane.h"
#include "tools/export/page/measured_tree.h"
#include "tools/export/page/page_run.h"
#include "tools/export/tree.h"

namespace mardle::exporting {

// Where clusters stand on the map.
struct ClusterPlaces {
  std::vector<int> clusters;
  std::vector<Point> points;
};

struct PageNumbers {
  explicit PageNumbers(const Clustering& clustering);

  int nclusters;
  ClusterRows rows;
  ColumnLevels levels;
  float crvalue = 0;
  molva::Array<int> pwgts;
  molva::Array<float> cintsim, cintsdev, izscores, cextsim, cextsdev, ezscores;
  std::vector<ClusterWords> words;              // of each cluster
  std::vector<std::vector<Neighbour>> nearest;  // clusters to each, the most similar first
  ClusterPlaces map;
  ClusterProducts products;    // of many clusters; else empty
  bool has_classes = false;    // two classes or more; the rest of this block needs them
  molva::Rows<int> classdist;  // rows of each class in each cluster
  molva::Array<int> ocldist;   // clustered rows of each class
  molva::Array<float> entropies, purities;
  float entropy = 0;
  float purity = 0;
  bool has_fscores = false;  // there are classes and a complete tree
  molva::Array<float> fscores;
  float fscore = 0;
  MeasuredTree tree;             // over the clusters
  std::optional<Tree> complete;  // over the rows, where it was given
  std::vector<int> tops;         // its node of each cluster, -1 for empty ones
};

// Up to `count` clusters with rows, the largest, in the order of their numbers.
std::vector<int> LargestClusters(const PageNumbers& numbers, std::size_t count);

// Fails when no row has a cluster and when the tree file holds neither the tree over the clusters
// nor the complete one.
PageNumbers Measure(const PageRun& run, const Clustering& clustering);

}  // namespace mardle::exporting
