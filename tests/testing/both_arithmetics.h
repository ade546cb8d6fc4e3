// SPDX-License-Identifier: MIT
//
// Runs drawn at random, each clustered twice: with the rough looks that pass over what cannot
// matter, and by the full arithmetic alone. The two must agree to the last bit.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tests/testing/matrices.h"

namespace testing_support {

// A number from 0 to n - 1, from wherever the run is drawn.
using Below = std::function<int(int n)>;

// One call of the program's sequence: cluster, measure, and build a tree where there is one.
struct ClusteringRun {
  SparseMatrix matrix;
  int simfun = 1, crfun = 2, rowmodel = 1, colmodel = 1;
  float prune = 1;
  int ntrials = 10, niter = 10, seed = 1;
  bool direct = false, refine = false;
  int treetype = 0;  // 0 for none
  int nclusters = 2;

  // The options as the program takes them.
  std::string Options() const;
};

// Small tables of few columns: counts, signed numbers, votes, answers, documents, values of very
// different sizes, columns that repeat in a row.
ClusteringRun DrawRun(const Below& below);
ClusteringRun DrawRun(std::uint32_t seed);

// All bits that the run hands out, messages included. `rough_looks` says which arithmetic decides.
std::string Outcome(const ClusteringRun& run, bool rough_looks);

inline bool ArithmeticsAgree(const ClusteringRun& run) {
  return Outcome(run, true) == Outcome(run, false);
}

}  // namespace testing_support
