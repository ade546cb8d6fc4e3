// SPDX-License-Identifier: MIT
//
// The program, its arithmetic chosen by hand:
//   mardle_variant LOOKS KERNEL RECORD ARGUMENTS...
// LOOKS is "rough", as the program decides, or "plain", by the full arithmetic alone. KERNEL is the
// vector unit that the rough products are formed with, "avx512f", "avx2" or "default"; status 3
// where this processor has none of the name. RECORD is a file to which a line is added at the end:
// the kernel, how many rows went through it, and how many of them met eight lanes or more. Fewer
// lanes take the same code under every kernel.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "lib/rough/rough_looks.h"
#include "lib/rough/vector_kernels.h"
#include "programs/run.h"

namespace {

molva::VectorKernel chosen{};
unsigned long rows = 0;
unsigned long wide_rows = 0;
std::string record;

void Count(unsigned long n, std::size_t stride) {
  constexpr std::size_t kWide = 8;
  rows += n;
  if (stride >= kWide) wide_rows += n;
}

void CountAndDot(const molva::RowView& row, const float* lanes, std::size_t stride,
                 float* products) {
  Count(1, stride);
  chosen.dot(row, lanes, stride, products);
}

void CountAndDotFullRows(const float* const* full_rows, std::size_t ncols, const float* lanes,
                         std::size_t stride, float* const* products) {
  Count(molva::kFullRows, stride);
  chosen.dot_full_rows(full_rows, ncols, lanes, stride, products);
}

bool Choose(const char* target) {
  for (const molva::VectorKernel& kernel : molva::AvailableKernels()) {
    if (std::strcmp(kernel.target, target) == 0) chosen = kernel;
  }
  return chosen.dot != nullptr;
}

void WriteRecord() {
  std::FILE* file = std::fopen(record.c_str(), "a");
  if (file == nullptr) return;
  std::fprintf(file, "%s %lu rows, %lu wide\n", chosen.target, rows, wide_rows);
  std::fclose(file);
}

}  // namespace

int main(int argc, char** argv) {
  constexpr int kOwn = 3;
  if (argc <= kOwn || !Choose(argv[2])) return 3;
  molva::UseRoughLooks(std::strcmp(argv[1], "plain") != 0);
  molva::SetKernel({chosen.target, CountAndDot, chosen.meet, CountAndDotFullRows});
  record = argv[3];
  std::atexit(WriteRecord);
  argv[kOwn] = argv[0];
  return mardle::Run(argc - kOwn, argv + kOwn);
}
