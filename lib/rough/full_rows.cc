// SPDX-License-Identifier: MIT
#include "lib/rough/full_rows.h"

#include <algorithm>
#include <array>
#include <utility>

#if defined(__x86_64__)
#include <immintrin.h>
#elif defined(__aarch64__)
#include <arm_neon.h>
#endif

namespace molva {
namespace {

// The rows and some of the lanes, from `first` on.
struct Block {
  const float* const* rows;
  std::size_t ncols;
  const float* lanes;
  std::size_t stride;
  std::size_t first;
  float* const* products;

  const float* Column(std::size_t j) const { return lanes + j * stride + first; }
};
using BlockFunction = void (*)(const Block& block);

// Lanes by the largest blocks that there are: of 8, 16, ... 8 kMost lanes.
template <std::size_t kMost>
void DotBlocks(Block block, const std::array<BlockFunction, kMost>& blocks) {
  while (block.first < block.stride) {
    const std::size_t eights = std::min(kMost, (block.stride - block.first) / 8);
    blocks[eights - 1](block);
    block.first += eights * 8;
  }
}

void DotEight(const Block& block) {
  float sums[kFullRows][8] = {};
  for (std::size_t j = 0; j < block.ncols; ++j) {
    const float* column = block.Column(j);
    for (std::size_t r = 0; r < kFullRows; ++r) {
      for (std::size_t l = 0; l < 8; ++l) sums[r][l] += block.rows[r][j] * column[l];
    }
  }
  for (std::size_t r = 0; r < kFullRows; ++r) {
    std::copy_n(sums[r], 8, block.products[r] + block.first);
  }
}

#if defined(__x86_64__)

template <std::size_t kEights>
[[gnu::target("avx2,fma")]] void DotAvx2(const Block& block) {
  __m256 sums[kFullRows][kEights];
  for (auto& row : sums) {
    for (auto& sum : row) sum = _mm256_setzero_ps();
  }
  for (std::size_t j = 0; j < block.ncols; ++j) {
    const float* column = block.Column(j);
#pragma GCC unroll 16
    for (std::size_t i = 0; i < kEights; ++i) {
      const __m256 c = _mm256_loadu_ps(column + 8 * i);
#pragma GCC unroll 16
      for (std::size_t r = 0; r < kFullRows; ++r) {
        sums[r][i] = _mm256_fmadd_ps(_mm256_set1_ps(block.rows[r][j]), c, sums[r][i]);
      }
    }
  }
  for (std::size_t r = 0; r < kFullRows; ++r) {
    for (std::size_t i = 0; i < kEights; ++i) {
      _mm256_storeu_ps(block.products[r] + block.first + 8 * i, sums[r][i]);
    }
  }
}

template <std::size_t kEights>
[[gnu::target("avx512f,fma")]] void DotAvx512(const Block& block) {
  constexpr std::size_t kPairs = kEights / 2;
  constexpr bool kOdd = kEights % 2 != 0;
  __m512 sums[kFullRows][kPairs + 1];
  __m256 last[kFullRows];
  for (auto& row : sums) {
    for (auto& sum : row) sum = _mm512_setzero_ps();
  }
  for (auto& sum : last) sum = _mm256_setzero_ps();
  for (std::size_t j = 0; j < block.ncols; ++j) {
    const float* column = block.Column(j);
    __m512 v[kFullRows];
#pragma GCC unroll 16
    for (std::size_t r = 0; r < kFullRows; ++r) v[r] = _mm512_set1_ps(block.rows[r][j]);
#pragma GCC unroll 16
    for (std::size_t i = 0; i < kPairs; ++i) {
      const __m512 c = _mm512_loadu_ps(column + 16 * i);
#pragma GCC unroll 16
      for (std::size_t r = 0; r < kFullRows; ++r) {
        sums[r][i] = _mm512_fmadd_ps(v[r], c, sums[r][i]);
      }
    }
    if constexpr (kOdd) {
      const __m256 c = _mm256_loadu_ps(column + 16 * kPairs);
#pragma GCC unroll 16
      for (std::size_t r = 0; r < kFullRows; ++r) {
        last[r] = _mm256_fmadd_ps(_mm256_set1_ps(block.rows[r][j]), c, last[r]);
      }
    }
  }
  for (std::size_t r = 0; r < kFullRows; ++r) {
    float* products = block.products[r] + block.first;
    for (std::size_t i = 0; i < kPairs; ++i) _mm512_storeu_ps(products + 16 * i, sums[r][i]);
    if constexpr (kOdd) _mm256_storeu_ps(products + 16 * kPairs, last[r]);
  }
}

template <std::size_t... n>
constexpr auto BlocksAvx2(std::index_sequence<n...>) {
  return std::array<BlockFunction, sizeof...(n)>{DotAvx2<n + 1>...};
}

template <std::size_t... n>
constexpr auto BlocksAvx512(std::index_sequence<n...>) {
  return std::array<BlockFunction, sizeof...(n)>{DotAvx512<n + 1>...};
}

#elif defined(__aarch64__)

template <std::size_t kEights>
void DotNeon(const Block& block) {
  float32x4_t sums[kFullRows][2 * kEights];
  for (auto& row : sums) {
    for (auto& sum : row) sum = vdupq_n_f32(0);
  }
  for (std::size_t j = 0; j < block.ncols; ++j) {
    const float* column = block.Column(j);
#pragma GCC unroll 32
    for (std::size_t i = 0; i < 2 * kEights; ++i) {
      const float32x4_t c = vld1q_f32(column + 4 * i);
#pragma GCC unroll 16
      for (std::size_t r = 0; r < kFullRows; ++r) {
        sums[r][i] = vfmaq_n_f32(sums[r][i], c, block.rows[r][j]);
      }
    }
  }
  for (std::size_t r = 0; r < kFullRows; ++r) {
    for (std::size_t i = 0; i < 2 * kEights; ++i) {
      vst1q_f32(block.products[r] + block.first + 4 * i, sums[r][i]);
    }
  }
}

template <std::size_t... n>
constexpr auto BlocksNeon(std::index_sequence<n...>) {
  return std::array<BlockFunction, sizeof...(n)>{DotNeon<n + 1>...};
}

#endif

}  // namespace

void DotFullRowsPortable(const float* const* rows, std::size_t ncols, const float* lanes,
                         std::size_t stride, float* const* products) {
  constexpr std::array<BlockFunction, 1> kBlocks = {DotEight};
  DotBlocks({rows, ncols, lanes, stride, 0, products}, kBlocks);
}

#if defined(__x86_64__)

// 12 of 16 registers for sums.
void DotFullRowsAvx2(const float* const* rows, std::size_t ncols, const float* lanes,
                     std::size_t stride, float* const* products) {
  constexpr auto kBlocks = BlocksAvx2(std::make_index_sequence<3>());
  DotBlocks({rows, ncols, lanes, stride, 0, products}, kBlocks);
}

// 24 of 32.
void DotFullRowsAvx512(const float* const* rows, std::size_t ncols, const float* lanes,
                       std::size_t stride, float* const* products) {
  constexpr auto kBlocks = BlocksAvx512(std::make_index_sequence<12>());
  DotBlocks({rows, ncols, lanes, stride, 0, products}, kBlocks);
}

#elif defined(__aarch64__)

// 24 of 32.
void DotFullRowsNeon(const float* const* rows, std::size_t ncols, const float* lanes,
                     std::size_t stride, float* const* products) {
  constexpr auto kBlocks = BlocksNeon(std::make_index_sequence<3>());
  DotBlocks({rows, ncols, lanes, stride, 0, products}, kBlocks);
}

#endif

}  // namespace molva
