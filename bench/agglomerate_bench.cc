// SPDX-License-Identifier: MIT
//
// Trees over rows: the row-pair similarities and the merging of a ready matrix, plain and as it is.
#include <benchmark/benchmark.h>

#include <vector>

#include "bench/corpus.h"
#include "lib/matrix/prepare.h"
#include "lib/matrix/similarities.h"
#include "lib/molva.h"
#include "lib/tree/agglomerate.h"
#include "tests/testing/plain_merging.h"

namespace {

bench::Corpus Rows(const benchmark::State& state) {
  return bench::MakeCorpus({.nrows = static_cast<int>(state.range(0))});
}

void RowSimilarities(benchmark::State& state) {
  const bench::Corpus corpus = Rows(state);
  const molva::PreparedCopy copy =
      molva::MakePreparedCopy({.colmodel = MOLVA_COL_IDF}, corpus.raw(), "Bench");
  const auto n = static_cast<std::size_t>(copy.mat->nrows);
  std::vector<float> smat(n * n);
  for (auto _ : state) {
    molva::ComputeRowSimilarities({}, *copy.mat, smat.data(), n);
    if (smat[1] != smat[n]) state.SkipWithError("not symmetric");
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(n * n));
}
BENCHMARK(RowSimilarities)->Arg(500)->Arg(2000)->Unit(benchmark::kMillisecond);

// The row products of a corpus, all weights 1.
struct Products {
  explicit Products(const benchmark::State& state) {
    const bench::Corpus corpus = Rows(state);
    const molva::PreparedCopy copy =
        molva::MakePreparedCopy({.colmodel = MOLVA_COL_IDF}, corpus.raw(), "Bench");
    n = static_cast<std::size_t>(copy.mat->nrows);
    smat.resize(n * n);
    molva::ComputeRowSimilarities({}, *copy.mat, smat.data(), n);
    pwgts.assign(n, 1);
  }
  std::size_t n;
  std::vector<float> smat;
  std::vector<int> pwgts;
};

testing_support::PlainTree Merged(int crfun, const Products& products, std::vector<float>& smat) {
  std::vector<int> part(products.n);
  testing_support::PlainTree tree{std::vector<int>(2 * products.n),
                                  std::vector<float>(2 * products.n),
                                  std::vector<float>(2 * products.n)};
  MOLVA_SA_Cluster(static_cast<int>(products.n), products.pwgts.data(), smat.data(), crfun, 2, 0, 1,
                   part.data(), tree.ptree.data(), tree.tsims.data(), tree.gains.data());
  return tree;
}

void Merge(benchmark::State& state) {
  const Products products(state);
  const int crfun = static_cast<int>(state.range(1));
  const auto plain = testing_support::PlainMerging(crfun, products.pwgts, products.smat);
  for (auto _ : state) {
    state.PauseTiming();
    std::vector<float> smat = products.smat;
    state.ResumeTiming();
    const auto tree = Merged(crfun, products, smat);
    if (tree.ptree != plain.ptree) state.SkipWithError("not the plain tree");
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

void PlainMerge(benchmark::State& state) {
  const Products products(state);
  for (auto _ : state) {
    benchmark::DoNotOptimize(testing_support::PlainMerging(static_cast<int>(state.range(1)),
                                                           products.pwgts, products.smat));
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

// The queue engine decides some runs of 2,000 rows; those of criterion 1 here.
void Cases(benchmark::internal::Benchmark* bench) {
  bench->ArgsProduct({{500, 2000}, {1, 2, 3, 4, 5}})
      ->Args({200, 7})
      ->ArgNames({"rows", "criterion"})
      ->Unit(benchmark::kMillisecond);
}
BENCHMARK(PlainMerge)->Apply(Cases);
BENCHMARK(Merge)->Apply(Cases);

}  // namespace
