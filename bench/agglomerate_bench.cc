// SPDX-License-Identifier: MIT
//
// Trees over rows: the row-pair similarities, the merging of a ready matrix, and the complete tree
// of one cluster, per row.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <vector>

#include "bench/corpus.h"
#include "lib/agglomerate.h"
#include "lib/molva.h"
#include "lib/prepare.h"
#include "lib/similarities.h"

namespace {

bench::Corpus Rows(const benchmark::State& state) {
  return bench::MakeCorpus({.nrows = static_cast<int>(state.range(0))});
}

void RowSimilarities(benchmark::State& state) {
  const bench::Corpus corpus = Rows(state);
  const molva::PreparedCopy copy =
      molva::MakePreparedCopy({.colmodel = molva::kColumnIdf}, corpus.raw(), "Bench");
  const auto n = static_cast<std::size_t>(copy.mat->nrows);
  std::vector<float> smat(n * n);
  for (auto _ : state) {
    molva::ComputeRowSimilarities({}, *copy.mat, smat.data(), n);
    if (smat[1] != smat[n]) state.SkipWithError("not symmetric");
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(n * n));
}
BENCHMARK(RowSimilarities)->Arg(500)->Arg(2000)->Unit(benchmark::kMillisecond);

void Merge(benchmark::State& state) {
  const bench::Corpus corpus = Rows(state);
  const molva::PreparedCopy copy =
      molva::MakePreparedCopy({.colmodel = molva::kColumnIdf}, corpus.raw(), "Bench");
  const int n = copy.mat->nrows;
  const auto items = static_cast<std::size_t>(n);
  std::vector<float> products(items * items);
  molva::ComputeRowSimilarities({}, *copy.mat, products.data(), items);
  const std::vector<int> weights(items, 1);
  std::vector<int> part(items), ptree(2 * items);
  std::vector<float> tsims(2 * items), gains(2 * items), smat(products.size());
  for (auto _ : state) {
    state.PauseTiming();
    std::copy(products.begin(), products.end(), smat.begin());
    state.ResumeTiming();
    MOLVA_SA_Cluster(n, weights.data(), smat.data(), static_cast<int>(state.range(1)), 2, 0, 1,
                     part.data(), ptree.data(), tsims.data(), gains.data());
    if (ptree[2 * items - 3] != 2 * n - 2) state.SkipWithError("the tree has no root");
  }
  state.SetItemsProcessed(state.iterations() * n);
}
BENCHMARK(Merge)
    ->ArgsProduct({{500, 2000}, {1, 2, 3, 4, 5}})
    ->Args({200, 7})
    ->ArgNames({"rows", "criterion"})
    ->Unit(benchmark::kMillisecond);

}  // namespace
