// SPDX-License-Identifier: MIT
//
// Preparation of a sparse matrix, in entries per second.
#include <benchmark/benchmark.h>

#include <algorithm>

#include "bench/corpus.h"
#include "bench/paired.h"
#include "bench/plain_forms.h"
#include "lib/matrix/prepare.h"

namespace {

bool SameRows(const molva::PreparedCopy& copy, const bench::PreparedRows& plain) {
  if (static_cast<std::size_t>(copy.mat->nrows) != plain.columns.size()) return false;
  const auto same_column = [&copy](int column, int plain_column) {
    return copy.cperm[column] == plain_column;
  };
  for (int i = 0; i < copy.mat->nrows; ++i) {
    const molva::RowView row = molva::Row(*copy.mat, i);
    const auto& columns = plain.columns[static_cast<std::size_t>(i)];
    const auto& values = plain.values[static_cast<std::size_t>(i)];
    if (!std::ranges::equal(row.columns, columns, same_column)) return false;
    if (!std::ranges::equal(row.values, values)) return false;
  }
  return true;
}

void Prepare(benchmark::State& state) {
  const bench::Corpus corpus = bench::MakeCorpus({.nrows = static_cast<int>(state.range(0))});
  const molva::Control control{.colmodel = MOLVA_COL_IDF};
  bench::RunPaired(
      state, corpus.entries(),
      [&] { return molva::MakePreparedCopy(control, corpus.raw(), "Bench"); },
      [&] { return bench::PlainPreparation(corpus); }, SameRows);
}
BENCHMARK(Prepare)
    ->Arg(1000)
    ->Arg(10000)
    ->Arg(100000)
    ->ArgName("rows")
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime();

}  // namespace
