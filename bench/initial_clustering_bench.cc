// SPDX-License-Identifier: MIT
//
// Seeding, in entries per second, for two and more clusters.
#include <benchmark/benchmark.h>

#include <functional>
#include <vector>

#include "bench/corpus.h"
#include "bench/paired.h"
#include "lib/matrix/prepare.h"
#include "lib/partition/initial_clustering.h"
#include "lib/support/random.h"
#include "tests/testing/oracles.h"

namespace {

void Seed(benchmark::State& state) {
  const auto nparts = static_cast<int>(state.range(0));
  const bench::Corpus corpus = bench::MakeCorpus({.nrows = 5000});
  const molva::PreparedCopy copy =
      molva::MakePreparedCopy({.colmodel = MOLVA_COL_IDF}, corpus.raw(), "Bench");
  const auto seeded_by = [&](auto seeding) {
    return [&, seeding] {
      std::vector<int> part(static_cast<std::size_t>(copy.mat->nrows));
      testing_support::SeedBoth(1);
      seeding(*copy.mat, nparts, part);
      return part;
    };
  };
  bench::RunPaired(state, molva::EntryCount(*copy.mat),
                   seeded_by([](const molva::PreparedMatrix& mat, int n, std::span<int> part) {
                     molva::InitialClustering(mat, n, part);
                   }),
                   seeded_by(testing_support::PlainSeeding), std::equal_to<>());
}
BENCHMARK(Seed)
    ->Arg(2)
    ->Arg(20)
    ->Arg(100)
    ->ArgName("clusters")
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime();

}  // namespace
