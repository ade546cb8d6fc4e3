// SPDX-License-Identifier: MIT
//
// What mardle does with a matrix, step by step in this process: reads it, clusters its rows, builds
// the trees and writes the files.
#pragma once

#include <string>
#include <vector>

#include "tools/cluster/stage_line.h"

namespace mardle::tools {

struct EngineRequest {
  std::string matrix;
  std::vector<std::string> options;  // as mardle takes them
  int nclusters = 0;
  std::string clustering;    // the files to be written
  std::string tree;          // over the rows
  std::string cluster_tree;  // over the clusters
};

struct EngineResult {
  int seed = 0;
  int threads = 0;         // asked for
  std::vector<int> sizes;  // of the clusters
  int rows_without = 0;    // rows in none
  bool has_tree = false;
  bool has_cluster_tree = false;
  std::vector<std::string> notes;  // what was left out, and why
};

// Throws std::runtime_error with the messages of mardle.
EngineResult RunEngine(const EngineRequest& request, StageLine& line);

}  // namespace mardle::tools
