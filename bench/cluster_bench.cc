// SPDX-License-Identifier: MIT
//
// Whole clusterings from the raw matrix, in entries per second.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <vector>

#include "bench/corpus.h"
#include "lib/molva.h"

namespace {

void CheckClusters(benchmark::State& state, const std::vector<int>& part, int nparts) {
  if (*std::max_element(part.begin(), part.end()) != nparts - 1) {
    state.SkipWithError("a cluster is missing");
  }
}

void Bisection(benchmark::State& state) {
  const auto nparts = static_cast<int>(state.range(1));
  const bench::Corpus c = bench::MakeCorpus({.nrows = static_cast<int>(state.range(0))});
  std::vector<int> part(static_cast<std::size_t>(c.nrows));
  for (auto _ : state) {
    MOLVA_VP_ClusterRB(c.nrows, c.ncols, c.rowptr.data(), c.rowind.data(), c.rowval.data(), 1, 2, 1,
                       2, 1.0F, 10, 10, 1, 0, 0, nparts, part.data());
  }
  CheckClusters(state, part, nparts);
  state.SetItemsProcessed(state.iterations() * c.entries());
}
BENCHMARK(Bisection)
    ->ArgsProduct({{2000, 10000}, {5, 20}})
    ->ArgNames({"rows", "clusters"})
    ->Unit(benchmark::kMillisecond);

void Direct(benchmark::State& state) {
  const auto nparts = static_cast<int>(state.range(1));
  const bench::Corpus c = bench::MakeCorpus({.nrows = static_cast<int>(state.range(0))});
  std::vector<int> part(static_cast<std::size_t>(c.nrows));
  for (auto _ : state) {
    MOLVA_VP_ClusterDirect(c.nrows, c.ncols, c.rowptr.data(), c.rowind.data(), c.rowval.data(), 1,
                           2, 1, 2, 1.0F, 10, 10, 1, 0, nparts, part.data());
  }
  CheckClusters(state, part, nparts);
  state.SetItemsProcessed(state.iterations() * c.entries());
}
BENCHMARK(Direct)
    ->ArgsProduct({{2000, 10000}, {5, 20}})
    ->ArgNames({"rows", "clusters"})
    ->Unit(benchmark::kMillisecond);

}  // namespace
