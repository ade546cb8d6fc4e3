// SPDX-License-Identifier: MIT
//
// One refinement pass after seeding, in entries per second, for every criterion.
#include <benchmark/benchmark.h>

#include <functional>
#include <span>
#include <utility>
#include <vector>

#include "bench/corpus.h"
#include "bench/paired.h"
#include "lib/matrix/prepare.h"
#include "lib/partition/initial_clustering.h"
#include "lib/partition/refine.h"
#include "lib/support/random.h"
#include "tests/testing/oracles.h"

namespace {

void RefineOnePass(benchmark::State& state) {
  const molva::Control control{
      .crfun = static_cast<int>(state.range(0)), .colmodel = MOLVA_COL_IDF, .niter = 1};
  const auto nparts = static_cast<int>(state.range(1));
  const bench::Corpus corpus = bench::MakeCorpus({.nrows = 5000});
  const molva::PreparedCopy copy = molva::MakePreparedCopy(control, corpus.raw(), "Bench");
  std::vector<int> start(static_cast<std::size_t>(copy.mat->nrows));
  molva::SeedGenerator(1);
  molva::InitialClustering(*copy.mat, nparts, start);
  // The clustering and its quality.
  const auto refined_by = [&](auto refinement) {
    return [&, refinement] {
      std::vector<int> part = start;
      testing_support::SeedBoth(2);
      const float quality = refinement(part);
      return std::pair(std::move(part), quality);
    };
  };
  bench::RunPaired(state, molva::EntryCount(*copy.mat), refined_by([&](std::span<int> part) {
                     return molva::RefineClusteringKWay(control, *copy.mat, nparts, part);
                   }),
                   refined_by([&](std::span<int> part) {
                     return testing_support::PlainRefinement(control.crfun, *copy.mat, nparts,
                                                             control.niter, part);
                   }),
                   std::equal_to<>());
}
BENCHMARK(RefineOnePass)
    ->ArgsProduct({{1, 2, 3, 4, 5, 6, 7, 8, 9}, {2, 20, 100}})
    ->ArgNames({"criterion", "clusters"})
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime();

}  // namespace
