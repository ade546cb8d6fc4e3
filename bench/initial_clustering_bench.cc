// SPDX-License-Identifier: MIT
//
// Seeding, in entries per second, for two and more clusters.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <vector>

#include "bench/corpus.h"
#include "lib/initial_clustering.h"
#include "lib/prepare.h"
#include "lib/support/random.h"

namespace {

void Seed(benchmark::State& state) {
  const auto nparts = static_cast<int>(state.range(0));
  const bench::Corpus corpus = bench::MakeCorpus({.nrows = 5000});
  const molva::PreparedCopy copy =
      molva::MakePreparedCopy({.colmodel = molva::kColumnIdf}, corpus.raw(), "Bench");
  std::vector<int> part(static_cast<std::size_t>(copy.mat->nrows));
  for (auto _ : state) {
    molva::SeedGenerator(1);
    molva::InitialClustering(*copy.mat, nparts, part);
  }
  if (*std::max_element(part.begin(), part.end()) != nparts - 1) {
    state.SkipWithError("a cluster is missing");
  }
  state.SetItemsProcessed(state.iterations() * molva::EntryCount(*copy.mat));
}
BENCHMARK(Seed)->Arg(2)->Arg(20)->Arg(100)->Unit(benchmark::kMillisecond);

}  // namespace
