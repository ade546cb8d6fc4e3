// SPDX-License-Identifier: MIT
//
// The result files.
#pragma once

#include <string>

#include "programs/io/engine_calls.h"
#include "programs/io/matrix.h"
#include "programs/run_params.h"

namespace mardle {

// The names of the result files: the one given, or else one that begins with the matrix file's and
// carries the number of clusters, or of leaves.
std::string ClusteringName(const RunParams& params, int nclusters);
std::string ClusteringName(const RunParams& params);  // for the number on the command line
std::string TreeName(const molva::String& filename, const molva::String& treefile, int n);

// Writes one line per row: its cluster, and with params.zscores its internal and external z-score.
// The name is params.outputfile, or else "FILENAME.clustering.NCLUSTERS". Ends the run with
// "Problems in opening the clustering file: %s" when the file cannot be opened.
void WriteClustering(const RunParams& params, const Matrix& mat, const Clusters& clusters);

// Writes the 2n - 1 nodes of a tree of n leaves, one line each: parent and similarity. The name is
// treefile, or else "FILENAME.tree.N": the complete tree's carries the number of rows, the tree
// over the clusters the number of clusters. Ends the run with "Problems in creating the tree file:
// %s" when the file cannot be created.
void WriteTree(const molva::String& filename, const molva::String& treefile, int n,
               const int* ptree, const float* tsims);

}  // namespace mardle
