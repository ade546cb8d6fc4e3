// SPDX-License-Identifier: MIT
//
// Reading a sparse matrix file, in bytes per second.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "bench/corpus.h"
#include "programs/io/read_matrix.h"

namespace {

void ReadSparse(benchmark::State& state) {
  const bench::Corpus corpus = bench::MakeCorpus({.nrows = static_cast<int>(state.range(0))});
  const std::string text = bench::MatrixText(corpus);
  const std::filesystem::path path =
      std::filesystem::temp_directory_path() / "mardle_read_matrix_bench.mat";
  std::ofstream(path) << text;
  for (auto _ : state) {
    mardle::RunParams params;
    params.filename = molva::mystrdup(path.c_str());
    mardle::Matrix mat;
    mardle::ReadMatrix(params, mat);
    if (mardle::NonZeroCount(mat) != corpus.entries()) state.SkipWithError("entries were lost");
  }
  std::filesystem::remove(path);
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}
BENCHMARK(ReadSparse)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

}  // namespace
