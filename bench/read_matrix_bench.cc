// SPDX-License-Identifier: MIT
//
// Reading matrix files of several spellings, in bytes per second, each also by the plain reader,
// which leaves everything to the C library.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#include "bench/corpus.h"
#include "lib/support/files.h"
#include "programs/io/read_matrix.h"
#include "tests/testing/plain_reader.h"

namespace {

// Pairs of a column and a count, such as "17 1 230 2".
std::string CountsText() { return bench::MatrixText(bench::MakeCorpus({})); }

std::string Spelled(const char* format, double value) {
  std::array<char, 64> text;
  std::snprintf(text.data(), text.size(), format, value);
  return text.data();
}

// Pairs of a column and a value between 0 and 1, 80 a row.
std::string WeightsText(const char* format) {
  constexpr int kRows = 5000;
  constexpr int kEntries = 80;
  std::mt19937 random(1);
  std::uniform_real_distribution<double> weight(0, 1);
  std::string text = std::to_string(kRows) + " 30000 " + std::to_string(kRows * kEntries);
  for (int i = 0; i < kRows; ++i) {
    text += '\n';
    for (int e = 0; e < kEntries; ++e) {
      text += std::to_string(e * 375 + static_cast<int>(random() % 375) + 1) + " " +
              Spelled(format, weight(random)) + " ";
    }
  }
  return text;
}

// All cells of 2,000 rows, of both signs.
std::string DenseText(const char* format) {
  constexpr int kRows = 2000;
  constexpr int kColumns = 300;
  std::mt19937 random(1);
  std::normal_distribution<double> cell;
  std::string text = std::to_string(kRows) + " " + std::to_string(kColumns);
  for (int i = 0; i < kRows; ++i) {
    text += '\n';
    for (int j = 0; j < kColumns; ++j) text += Spelled(format, cell(random)) + " ";
  }
  return text;
}

mardle::Matrix Read(const std::string& path, bool dense) {
  const molva::File file = molva::OpenFile(path.c_str(), "r");
  mardle::LineReader reader(file.get());
  const mardle::MatrixHeader header = mardle::ReadHeader(reader);
  mardle::Matrix mat;
  mat.nrows = header.nrows;
  mat.ncols = header.ncols;
  if (dense) {
    mardle::ReadDenseRows(reader, header, mat);
  } else {
    mardle::ReadSparseRows(reader, header, mat);
  }
  return mat;
}

mardle::Matrix ReadPlainly(const std::string& path, bool dense) {
  const molva::File file = molva::OpenFile(path.c_str(), "r");
  mardle::Matrix mat;
  testing_support::PlainReadMatrix(file.get(), dense, mat);
  return mat;
}

void Time(benchmark::State& state, mardle::Matrix (*read)(const std::string&, bool),
          const std::string& text, bool dense) {
  const std::string path = std::filesystem::temp_directory_path() / "mardle_read_matrix_bench.mat";
  std::ofstream(path) << text;
  for (auto _ : state) benchmark::DoNotOptimize(read(path, dense));
  const mardle::Matrix mat = read(path, dense);
  const mardle::Matrix expected = ReadPlainly(path, dense);
  if (!std::ranges::equal(mat.rowind, expected.rowind) ||
      !std::ranges::equal(mat.rowval, expected.rowval)) {
    state.SkipWithError("the matrices differ");
  }
  std::filesystem::remove(path);
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

void RegisterPair(const std::string& name, const std::string& text, bool dense) {
  for (const bool plain : {true, false}) {
    benchmark::RegisterBenchmark(
        (name + (plain ? "/plain" : "/now")).c_str(),
        [=](benchmark::State& state) { Time(state, plain ? ReadPlainly : Read, text, dense); })
        ->Unit(benchmark::kMillisecond);
  }
}

}  // namespace

int main(int argc, char** argv) {
  RegisterPair("counts", CountsText(), false);
  RegisterPair("weights_of_6_decimals", WeightsText("%.6f"), false);
  RegisterPair("weights_of_17_digits", WeightsText("%.17g"), false);
  RegisterPair("dense_of_6_digits", DenseText("%g"), true);
  RegisterPair("dense_of_19_digits", DenseText("%.18e"), true);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
}
