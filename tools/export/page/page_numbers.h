// SPDX-License-Identifier: MIT
//
// Everything a page shows, measured by the library with the parameters of the run or counted.
#pragma once

#include <string>
#include <vector>

#include "lib/support/alloc.h"
#include "programs/io/matrix.h"
#include "programs/run_params.h"
#include "tools/export/clustering.h"
#include "tools/export/measures/cluster_rows.h"
#include "tools/export/measures/cluster_sums.h"
#include "tools/export/measures/cluster_words.h"
#include "tools/export/measures/column_levels.h"
#include "tools/export/wording.h"

namespace mardle::exporting {

// What a page is about. All of it outlives the page's making.
struct PageRun {
  const std::string& matrix_name;
  const std::string& clustering_name;
  const std::string& tree_name;  // empty: the tree over the clusters is computed
  const RunParams& params;       // models, criteria, number of features
  const Matrix& mat;
  const Wording wording;
};

// Lists of columns, nfeatures a node, best first; -1 in slots without a column.
struct FeatureLists {
  molva::Array<int> ids;
  molva::Array<float> weights;
};

// A list per node holds as many slots as the run has features.
struct ClusterTree {
  molva::Array<int> ptree;     // 2 nclusters parents
  molva::Array<int> children;  // left and right child of each node, -1 where absent
  int root = -1;
  molva::Array<int> pwgts;  // of each node: the rows below it
  molva::Array<float> isims, xsims;
  FeatureLists descriptive;
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
  bool has_classes = false;    // two classes or more; the rest of this block needs them
  molva::Rows<int> classdist;  // rows of each class in each cluster
  molva::Array<int> ocldist;   // clustered rows of each class
  molva::Array<float> entropies, purities;
  float entropy = 0;
  float purity = 0;
  bool has_fscores = false;  // the complete tree was given too
  molva::Array<float> fscores;
  float fscore = 0;
  ClusterTree tree;
};

// Fails when no row has a cluster and when the tree file holds neither the tree over the clusters
// nor the complete one.
PageNumbers Measure(const PageRun& run, const Clustering& clustering);

}  // namespace mardle::exporting
