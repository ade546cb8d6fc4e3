// SPDX-License-Identifier: MIT
#include "lib/rough/dot_kernels.h"

#include <algorithm>
#include <array>
#include <utility>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace molva {
namespace {

// A row and the lanes that it meets.
struct Walk {
  const RowView& row;
  const float* lanes;
  std::size_t stride;

  double Value(std::size_t p) const { return static_cast<double>(row.values[p]); }
  const float* Column(std::size_t p) const {
    return lanes + static_cast<std::size_t>(row.columns[p]) * stride;
  }
};

// All of one to four lanes. The entries go to four partial sums in turn, so that no addition waits
// for the one before.
template <std::size_t kLanes>
void DotFew(const Walk& walk, double* products) {
  constexpr std::size_t kChains = 4;
  double sums[kChains][kLanes] = {};
  const std::size_t size = walk.row.size();
  const std::size_t whole = size - size % kChains;
  const auto add = [&walk](std::size_t p, double(&sum)[kLanes]) {
    const double v = walk.Value(p);
    const float* column = walk.lanes + static_cast<std::size_t>(walk.row.columns[p]) * kLanes;
    for (std::size_t l = 0; l < kLanes; ++l) sum[l] += v * static_cast<double>(column[l]);
  };
  for (std::size_t p = 0; p < whole; p += kChains) {
    for (std::size_t c = 0; c < kChains; ++c) add(p + c, sums[c]);
  }
  for (std::size_t p = whole; p < size; ++p) add(p, sums[0]);
  for (std::size_t l = 0; l < kLanes; ++l) {
    products[l] = (sums[0][l] + sums[1][l]) + (sums[2][l] + sums[3][l]);
  }
}

// Eight lanes, with what every processor has.
void DotEight(const Walk& walk, double* products) {
  double sums[8] = {};
  for (std::size_t p = 0; p < walk.row.size(); ++p) {
    const double v = walk.Value(p);
    const float* column = walk.Column(p);
    for (std::size_t l = 0; l < 8; ++l) sums[l] += v * static_cast<double>(column[l]);
  }
  std::copy_n(sums, 8, products);
}

// The kernel for any stride, from functions that take `kMost` times `kWidth` lanes or fewer at
// once.
using BlockFunction = void (*)(const Walk& walk, double* products);
template <std::size_t kWidth, std::size_t kMost>
void DotBlocks(const Walk& walk, const std::array<BlockFunction, kMost>& blocks, double* products) {
  switch (walk.stride) {
    case 1:
      return DotFew<1>(walk, products);
    case 2:
      return DotFew<2>(walk, products);
    case 4:
      return DotFew<4>(walk, products);
    default:
      break;
  }
  for (std::size_t lane = 0; lane < walk.stride;) {
    const std::size_t vectors = std::min(kMost, (walk.stride - lane) / kWidth);
    blocks[vectors - 1]({walk.row, walk.lanes + lane, walk.stride}, products + lane);
    lane += vectors * kWidth;
  }
}

void DotPortable(const RowView& row, const float* lanes, std::size_t stride, double* products) {
  constexpr std::array<BlockFunction, 1> kBlocks = {DotEight};
  DotBlocks<8>({row, lanes, stride}, kBlocks, products);
}

#if defined(__x86_64__)

// Columns lie far apart: those of the entries to come are asked for early.
constexpr std::size_t kAhead = 8;
constexpr std::size_t kCacheLine = 64;

[[gnu::always_inline]] inline void AskFor(const Walk& walk, std::size_t p, std::size_t nbytes) {
  if (p >= walk.row.size()) return;
  const char* column = reinterpret_cast<const char*>(walk.Column(p));
  for (std::size_t b = 0; b < nbytes; b += kCacheLine) __builtin_prefetch(column + b);
}

// kVectors times 8 lanes: all sums stay in registers, so each column is read in one go.
template <std::size_t kVectors>
[[gnu::target("avx512f")]] void DotBlockAvx512(const Walk& walk, double* products) {
  __m512d sums[kVectors];
  for (auto& sum : sums) sum = _mm512_setzero_pd();
  for (std::size_t p = 0; p < walk.row.size(); ++p) {
    AskFor(walk, p + kAhead, kVectors * sizeof(__m256));
    const __m512d v = _mm512_set1_pd(walk.Value(p));
    const float* column = walk.Column(p);
#pragma GCC unroll 16
    for (std::size_t i = 0; i < kVectors; ++i) {
      // All eight: the form without a mask makes g++ 12 warn of what it leaves undefined inside.
      const __m512d c = _mm512_maskz_cvtps_pd(0xFF, _mm256_loadu_ps(column + 8 * i));
      sums[i] = _mm512_add_pd(sums[i], _mm512_mul_pd(v, c));
    }
  }
  for (std::size_t i = 0; i < kVectors; ++i) _mm512_storeu_pd(products + 8 * i, sums[i]);
}

// kVectors times 4 lanes.
template <std::size_t kVectors>
[[gnu::target("avx2")]] void DotBlockAvx2(const Walk& walk, double* products) {
  __m256d sums[kVectors];
  for (auto& sum : sums) sum = _mm256_setzero_pd();
  for (std::size_t p = 0; p < walk.row.size(); ++p) {
    AskFor(walk, p + kAhead, kVectors * sizeof(__m128));
    const __m256d v = _mm256_set1_pd(walk.Value(p));
    const float* column = walk.Column(p);
#pragma GCC unroll 16
    for (std::size_t i = 0; i < kVectors; ++i) {
      const __m256d c = _mm256_cvtps_pd(_mm_loadu_ps(column + 4 * i));
      sums[i] = _mm256_add_pd(sums[i], _mm256_mul_pd(v, c));
    }
  }
  for (std::size_t i = 0; i < kVectors; ++i) _mm256_storeu_pd(products + 4 * i, sums[i]);
}

template <std::size_t... n>
constexpr auto BlocksAvx512(std::index_sequence<n...>) {
  return std::array<BlockFunction, sizeof...(n)>{DotBlockAvx512<n + 1>...};
}

void DotAvx512(const RowView& row, const float* lanes, std::size_t stride, double* products) {
  constexpr auto kBlocks = BlocksAvx512(std::make_index_sequence<16>());
  DotBlocks<8>({row, lanes, stride}, kBlocks, products);
}

template <std::size_t... n>
constexpr auto BlocksAvx2(std::index_sequence<n...>) {
  return std::array<BlockFunction, sizeof...(n)>{DotBlockAvx2<n + 1>...};
}

void DotAvx2(const RowView& row, const float* lanes, std::size_t stride, double* products) {
  constexpr auto kBlocks = BlocksAvx2(std::make_index_sequence<12>());
  DotBlocks<4>({row, lanes, stride}, kBlocks, products);
}

#endif

struct KernelList {
  std::array<DotKernel, 3> kernels{};
  std::size_t count = 0;

  KernelList() {
#if defined(__x86_64__)
    if (__builtin_cpu_supports("avx512f")) kernels[count++] = {"avx512f", DotAvx512};
    if (__builtin_cpu_supports("avx2")) kernels[count++] = {"avx2", DotAvx2};
#endif
    kernels[count++] = {"default", DotPortable};
  }
};

DotFunction& Current() {
  static DotFunction current = AvailableDotKernels().front().dot;
  return current;
}

}  // namespace

std::span<const DotKernel> AvailableDotKernels() {
  static const KernelList list;
  return {list.kernels.data(), list.count};
}

DotFunction CurrentDotKernel() { return Current(); }

void SetDotKernel(DotFunction dot) { Current() = dot; }

}  // namespace molva
