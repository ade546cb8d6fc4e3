// SPDX-License-Identifier: MIT
//
// What the library does, written out literally, for the benchmarks to compare with. Refinement and
// seeding themselves are in tests/testing/oracles.h.
#pragma once

#include <vector>

#include "bench/corpus.h"

namespace bench {

// A prepared matrix in plain vectors; columns are the caller's.
struct PreparedRows {
  std::vector<std::vector<int>> columns;
  std::vector<std::vector<float>> values;
  bool operator==(const PreparedRows&) const = default;
};

// Preparation under IDF and the cosine, without a row model, pruning at 1.
PreparedRows PlainPreparation(const Corpus& corpus);

// The clusterings of the two entry points under I2, IDF and the cosine: the best of ntrials, each
// seeded and refined for at most niter passes by the plain forms.
struct Trials {
  int ntrials = 10;
  int niter = 10;
  int seed = 1;
};
std::vector<int> PlainBisection(const Corpus& corpus, const Trials& trials, int nparts);
std::vector<int> PlainDirect(const Corpus& corpus, const Trials& trials, int nparts);

}  // namespace bench
