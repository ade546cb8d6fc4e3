// SPDX-License-Identifier: MIT
//
// The run parameters, filled once from the command line and read by every step, and the timers.
#pragma once

#include <array>

#include "lib/molva.h"
#include "lib/support/strings.h"

namespace mardle {

struct RunParams {
  int simfun = MOLVA_SIM_COSINE;  // similarity: 1 cosine, 2 correlation coefficient
  int crfun = MOLVA_CRFUN_I2;     // criterion 1..9
  int rowmodel = MOLVA_ROW_NONE;  // row scaling 1..4
  int colmodel = MOLVA_COL_IDF;   // column scaling 1..2
  float prune = 1.0F;             // column-pruning fraction
  int ntrials = 10;               // clusterings made, the best kept
  int niter = 10;                 // refinement passes at most
  int seed = 1;
  int dbglvl = 0;       // 1 clustering progress, 2 refinement progress, 4 merges
  bool refine = false;  // refine the finished bisections as a whole
  bool nooutput = false;
  bool direct = false;
  bool rb = false;
  int nclusters = -1;  // 0 stands for as many as there are classes
  int nfeatures = 5;   // features shown per cluster
  bool showfeatures = false;
  bool showtree = false;
  int treecrfun = 0;  // criterion of the tree; 0 becomes crfun
  bool labeltree = false;
  bool writetree = false;
  bool zscores = false;
  bool fulltree = false;
  bool denseinput = false;
  bool clustercolumns = false;
  bool zeroblack = false;
  bool noreorder = false;
  molva::String filename;    // also the stem of every default file name
  molva::String clabelfile;  // this and the following are null when absent
  molva::String rlabelfile;
  molva::String rclassfile;
  molva::String outputfile;
  molva::String treefile;
  molva::String plotmatrixfile;
  molva::String plotclustersfile;
  std::array<char, 256> plotformat = {'p', 's'};
};

// Settles what follows from other settings, whoever made them.
void DeriveSettings(RunParams& params);

// What a run has spent so far, in processor seconds.
struct RunTimers {
  float IOTmr = 0;
  float ClusterTmr = 0;
  float ReportTmr = 0;
};

}  // namespace mardle
