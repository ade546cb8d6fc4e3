// SPDX-License-Identifier: MIT
//
// The run parameters: filled once from the command line and read by every step.
#pragma once

#include <array>

#include "lib/support/strings.h"

namespace mardle {

struct RunParams {
  int simfun = 1;      // similarity: 1 cosine, 2 correlation coefficient
  int crfun = 2;       // criterion 1..9
  int rowmodel = 1;    // row scaling 1..4
  int colmodel = 2;    // column scaling 1..2
  float prune = 1.0F;  // column-pruning fraction
  int ntrials = 10;    // clusterings made, the best kept
  int niter = 10;      // refinement passes at most
  int seed = 1;
  int dbglvl = 0;  // 1 clustering progress, 2 refinement progress, 4 merges
  int refine = 0;  // refine the finished bisections as a whole
  int nooutput = 0;
  int direct = 0;
  int rb = 0;
  int nclusters = -1;
  int nfeatures = 5;  // features shown per cluster
  int showfeatures = 0;
  int showtree = 0;
  int treecrfun = 0;  // criterion of the tree; 0 becomes crfun
  int labeltree = 0;
  int writetree = 0;
  int zscores = 0;
  int fulltree = 0;
  int denseinput = 0;
  int clustercolumns = 0;
  int zeroblack = 0;
  int noreorder = 0;
  molva::String filename;    // also the stem of every default file name
  molva::String clabelfile;  // this and the following are null when absent
  molva::String rlabelfile;
  molva::String rclassfile;
  molva::String outputfile;
  molva::String treefile;
  molva::String plotmatrixfile;
  molva::String plotclustersfile;
  std::array<char, 256> plotformat = {'p', 's'};
  float IOTmr = 0;  // processor seconds
  float ClusterTmr = 0;
  float ReportTmr = 0;
};

// Settles what follows from other settings, whoever made them.
void DeriveSettings(RunParams& params);

}  // namespace mardle
