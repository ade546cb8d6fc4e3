// SPDX-License-Identifier: MIT
//
// One refinement pass after seeding, in entries per second, for every criterion.
#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

#include "bench/corpus.h"
#include "lib/initial_clustering.h"
#include "lib/prepare.h"
#include "lib/refine.h"
#include "lib/solution_quality.h"
#include "lib/support/random.h"

namespace {

// The value that the refinement returns, from the finished clustering.
float Quality(const molva::Control& control, const molva::PreparedMatrix& mat, int nparts,
              std::span<const int> part) {
  const float value = molva::GetCriterionFunctionValue(control, mat, nparts, part);
  const auto nrows = static_cast<float>(mat.nrows);
  const int code = control.crfun;
  if (code == 6 || code == 7) return value;
  return code <= 2 || code == 8 ? value / nrows : nrows / value;
}

void RefineOnePass(benchmark::State& state) {
  const molva::Control control{
      .crfun = static_cast<int>(state.range(0)), .colmodel = molva::kColumnIdf, .niter = 1};
  const auto nparts = static_cast<int>(state.range(1));
  const bench::Corpus corpus = bench::MakeCorpus({.nrows = 5000});
  const molva::PreparedCopy copy = molva::MakePreparedCopy(control, corpus.raw(), "Bench");
  std::vector<int> start(static_cast<std::size_t>(copy.mat->nrows));
  molva::SeedGenerator(1);
  molva::InitialClustering(*copy.mat, nparts, start);
  for (auto _ : state) {
    std::vector<int> part = start;
    const float quality = molva::RefineClusteringKWay(control, *copy.mat, nparts, part);
    state.PauseTiming();
    const float recomputed = Quality(control, *copy.mat, nparts, part);
    if (std::fabs(quality - recomputed) > 1e-3F * recomputed) state.SkipWithError("wrong value");
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * molva::EntryCount(*copy.mat));
}
BENCHMARK(RefineOnePass)
    ->ArgsProduct({{1, 2, 3, 4, 5, 6, 7, 8, 9}, {2, 20}})
    ->Args({2, 100})
    ->ArgNames({"criterion", "clusters"})
    ->Unit(benchmark::kMillisecond);

}  // namespace
