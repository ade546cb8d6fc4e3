// SPDX-License-Identifier: MIT
//
// Preparation of a sparse matrix, in entries per second.
#include <benchmark/benchmark.h>

#include "bench/corpus.h"
#include "lib/prepare.h"

namespace {

void Prepare(benchmark::State& state) {
  const bench::Corpus corpus = bench::MakeCorpus({.nrows = static_cast<int>(state.range(0))});
  const molva::Control control{.colmodel = molva::kColumnIdf};
  for (auto _ : state) {
    const molva::PreparedCopy copy = molva::MakePreparedCopy(control, corpus.raw(), "Bench");
    if (copy.mat->nrows != corpus.nrows) state.SkipWithError("rows were lost");
  }
  state.SetItemsProcessed(state.iterations() * corpus.entries());
}
BENCHMARK(Prepare)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

}  // namespace
