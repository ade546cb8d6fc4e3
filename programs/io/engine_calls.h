// SPDX-License-Identifier: MIT
//
// What a run asks of the library. The matrix, its preparation and the clusters are packed once, and
// every question takes them as one record.
#pragma once

#include <cstdint>

#include "lib/molva.h"
#include "lib/support/alloc.h"
#include "programs/io/matrix.h"
#include "programs/run_params.h"

namespace mardle {

// A clustering of rows.
struct Clusters {
  int count = 0;
  const int* part = nullptr;  // the cluster of each row, -1 for none

  // Elements of the arrays of a tree over them.
  std::int64_t nodes() const { return 2 * std::int64_t{count}; }
};

// A matrix with what the library has to know to prepare it; as it stands, rows are taken as they
// are. Borrowed from whoever asks.
struct EngineInput {
  int nrows = 0;
  int ncols = 0;
  const int* rowptr = nullptr;  // null when dense
  const int* rowind = nullptr;
  const float* rowval = nullptr;
  int simfun = MOLVA_SIM_COSINE;
  int rowmodel = MOLVA_ROW_NONE;
  int colmodel = MOLVA_COL_NONE;
  float prune = 1.0F;
  int dbglvl = 0;
  Clusters clusters = {};
};

// The matrix of a run under its options.
EngineInput RunInput(const RunParams& params, const Matrix& mat, const Clusters& clusters);

// Clusters the rows as the options say: by repeated bisection, even when both methods are asked
// for, or else directly. Writes in.nrows elements.
void FindClusters(const RunParams& params, const EngineInput& in, molva::Array<int>& part);

// The value of a criterion for the clusters.
float CriterionValue(const EngineInput& in, int crfun);

// Sizes, similarities and their deviations by cluster, z-scores by row.
struct ClusterArrays {
  molva::Array<int>& pwgts;
  molva::Array<float>&cintsim, &cintsdev, &izscores;
  molva::Array<float>&cextsim, &cextsdev, &ezscores;
};
void MeasureClusters(const EngineInput& in, const ClusterArrays& written);

// Lists of nfeatures columns with their weights.
struct FeatureArrays {
  molva::Array<int>& internalids;
  molva::Array<float>& internalwgts;
  molva::Array<int>& externalids;
  molva::Array<float>& externalwgts;
};
void DescribeClusters(const EngineInput& in, int nfeatures, const FeatureArrays& written);

// A tree over the clusters or over the rows.
void BuildTree(const EngineInput& in, MOLVA_TreeType treetype, int crfun, molva::Array<int>& ptree,
               molva::Array<float>& tsims);

// A tree over the rows by merging alone, cut into nparts clusters.
struct MergedRows {
  molva::Array<int>& part;
  molva::Array<int>& ptree;
  molva::Array<float>& tsims;
};
void MergeRows(const EngineInput& in, int crfun, int nparts, const MergedRows& written);

// The nodes of a tree over the clusters.
struct NodeArrays {
  molva::Array<int>& pwgts;
  molva::Array<float>&isims, &xsims;
};
void MeasureNodes(const EngineInput& in, const molva::Array<int>& ptree, const NodeArrays& written);
void DescribeNodes(const EngineInput& in, const molva::Array<int>& ptree, int nfeatures,
                   const FeatureArrays& written);

// Put the children of every node in the order in which they are drawn.
void ReorderClusterTree(const EngineInput& in, const molva::Array<int>& ptree,
                        molva::Array<int>& ftree);
void ReorderRowTree(const EngineInput& in, const molva::Array<int>& ptree,
                    molva::Array<int>& ftree);

}  // namespace mardle
