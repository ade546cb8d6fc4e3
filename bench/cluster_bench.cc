// SPDX-License-Identifier: MIT
//
// Whole clusterings from the raw matrix, in entries per second.
#include <benchmark/benchmark.h>

#include <functional>
#include <vector>

#include "bench/corpus.h"
#include "bench/paired.h"
#include "bench/plain_forms.h"
#include "lib/molva.h"

namespace {

constexpr bench::Trials kTrials;

void Bisection(benchmark::State& state) {
  const bench::Corpus c = bench::MakeCorpus({.nrows = static_cast<int>(state.range(0))});
  const auto nparts = static_cast<int>(state.range(1));
  const auto now = [&] {
    std::vector<int> part(static_cast<std::size_t>(c.nrows));
    MOLVA_VP_ClusterRB(c.nrows, c.ncols, c.rowptr.data(), c.rowind.data(), c.rowval.data(), 1, 2, 1,
                       2, 1.0F, kTrials.ntrials, kTrials.niter, kTrials.seed, 0, 0, nparts,
                       part.data());
    return part;
  };
  bench::RunPaired(
      state, c.entries(), now, [&] { return bench::PlainBisection(c, kTrials, nparts); },
      std::equal_to<>());
}

void Direct(benchmark::State& state) {
  const bench::Corpus c = bench::MakeCorpus({.nrows = static_cast<int>(state.range(0))});
  const auto nparts = static_cast<int>(state.range(1));
  const auto now = [&] {
    std::vector<int> part(static_cast<std::size_t>(c.nrows));
    MOLVA_VP_ClusterDirect(c.nrows, c.ncols, c.rowptr.data(), c.rowind.data(), c.rowval.data(), 1,
                           2, 1, 2, 1.0F, kTrials.ntrials, kTrials.niter, kTrials.seed, 0, nparts,
                           part.data());
    return part;
  };
  bench::RunPaired(
      state, c.entries(), now, [&] { return bench::PlainDirect(c, kTrials, nparts); },
      std::equal_to<>());
}

// The plain form of the last case takes a quarter of a minute, so iterations are few and fixed.
void Cases(benchmark::internal::Benchmark* clustering) {
  clustering->Args({2000, 20})
      ->Args({10000, 20})
      ->Args({2000, 100})
      ->ArgNames({"rows", "clusters"});
  clustering->Iterations(3)->Unit(benchmark::kMillisecond)->UseManualTime();
}
BENCHMARK(Bisection)->Apply(Cases);
BENCHMARK(Direct)->Apply(Cases);

}  // namespace
