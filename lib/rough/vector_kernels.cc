// SPDX-License-Identifier: MIT
#include "lib/rough/vector_kernels.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <limits>
#include <utility>

#include "lib/support/span.h"

#if defined(__x86_64__)
#include <immintrin.h>
#elif defined(__aarch64__)
#include <arm_neon.h>
#endif

namespace molva {
namespace {

// A row and the lanes that it meets.
struct Walk {
  const RowView& row;
  const float* lanes;
  std::size_t stride;

  float Value(std::size_t p) const { return row.values[p]; }
  const float* Column(std::size_t p) const {
    return lanes + static_cast<std::size_t>(row.columns[p]) * stride;
  }
};

// All of one to four lanes. The entries go to four partial sums in turn, so that no addition waits
// for the one before.
template <std::size_t kLanes>
void DotFew(const Walk& walk, float* products) {
  constexpr std::size_t kChains = 4;
  float sums[kChains][kLanes] = {};
  const std::size_t size = walk.row.size();
  const std::size_t whole = size - size % kChains;
  const auto add = [&walk](std::size_t p, float(&sum)[kLanes]) {
    const float v = walk.Value(p);
    const float* column = walk.lanes + static_cast<std::size_t>(walk.row.columns[p]) * kLanes;
    for (std::size_t l = 0; l < kLanes; ++l) sum[l] += v * column[l];
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
void DotEight(const Walk& walk, float* products) {
  float sums[8] = {};
  for (std::size_t p = 0; p < walk.row.size(); ++p) {
    const float v = walk.Value(p);
    const float* column = walk.Column(p);
    for (std::size_t l = 0; l < 8; ++l) sums[l] += v * column[l];
  }
  std::copy_n(sums, 8, products);
}

// The kernel for any stride, from functions that take 8, 16, ... 8 kMost lanes at once.
using BlockFunction = void (*)(const Walk& walk, float* products);
template <std::size_t kMost>
void DotBlocks(const Walk& walk, const std::array<BlockFunction, kMost>& blocks, float* products) {
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
    const std::size_t eights = std::min(kMost, (walk.stride - lane) / 8);
    blocks[eights - 1]({walk.row, walk.lanes + lane, walk.stride}, products + lane);
    lane += eights * 8;
  }
}

void DotPortable(const RowView& row, const float* lanes, std::size_t stride, float* products) {
  constexpr std::array<BlockFunction, 1> kBlocks = {DotEight};
  DotBlocks({row, lanes, stride}, kBlocks, products);
}

// Vectors of kWidth numbers, which the compiler forms with the unit that the caller is made for.
template <std::size_t kWidth>
struct Vectors {
  using Floats [[gnu::vector_size(kWidth * sizeof(float))]] = float;
  using Doubles [[gnu::vector_size(kWidth * sizeof(double))]] = double;
  using Integers [[gnu::vector_size(kWidth * sizeof(double))]] = std::int64_t;

  template <typename Vector, typename Number>
  [[gnu::always_inline]] static void Load(const Number* numbers, Vector& vector) {
    static_assert(sizeof(Vector) == kWidth * sizeof(Number));
    std::memcpy(&vector, numbers, sizeof(Vector));
  }
};

// kWidth lanes at a time; a count that these do not divide takes fewer.
template <std::size_t kWidth, bool kUsesWhole>
[[gnu::always_inline]] inline double MeetBy(const BoundLanes& b, const float* products,
                                            const RowFactors& row, int home, double* gains) {
  if constexpr (kWidth > 1) {
    if (b.count % kWidth != 0) {
      return MeetBy<kWidth / 2, kUsesWhole>(b, products, row, home, gains);
    }
  }
  using V = Vectors<kWidth>;
  constexpr double kInfinite = std::numeric_limits<double>::infinity();
  typename V::Integers lane;
  for (std::size_t l = 0; l < kWidth; ++l) lane[l] = static_cast<std::int64_t>(l);
  typename V::Doubles most = typename V::Doubles{} - kInfinite;
  typename V::Integers doubt{};  // where a gain was not a number
  for (std::size_t k = 0; k < b.count; k += kWidth, lane += kWidth) {
    typename V::Floats product;
    typename V::Doubles base, by_length, error;
    V::Load(products + k, product);
    V::Load(b.base + k, base);
    V::Load(b.by_length + k, by_length);
    V::Load(b.error + k, error);
    const auto x = 2 * __builtin_convertvector(product, typename V::Doubles) + row.square +
                   row.entries * error;
    typename V::Doubles gain;
    if constexpr (kUsesWhole) {
      typename V::Doubles by_whole, by_both, least_whole;
      V::Load(b.by_whole + k, by_whole);
      V::Load(b.by_both + k, by_both);
      V::Load(b.least_whole + k, least_whole);
      gain = base + by_whole * row.whole + (by_length + by_both * row.whole) * x;
      gain = row.whole >= least_whole ? gain : typename V::Doubles{} + kInfinite;
    } else {
      gain = base + by_length * x;
    }
    gain = lane == home ? typename V::Doubles{} - kInfinite : gain;
    std::memcpy(gains + k, &gain, sizeof(gain));
    most = gain > most ? gain : most;
    doubt |= gain != gain;
  }
  double result = most[0];
  bool is_doubtful = doubt[0] != 0;
  for (std::size_t l = 1; l < kWidth; ++l) {
    result = std::max(result, most[l]);
    is_doubtful = is_doubtful || doubt[l] != 0;
  }
  return is_doubtful ? std::numeric_limits<double>::quiet_NaN() : result;
}

template <std::size_t kWidth>
[[gnu::always_inline]] inline double Meet(const BoundLanes& bounds, const float* products,
                                          const RowFactors& row, int home, double* gains) {
  return bounds.by_whole == nullptr ? MeetBy<kWidth, false>(bounds, products, row, home, gains)
                                    : MeetBy<kWidth, true>(bounds, products, row, home, gains);
}

double MeetPortable(const BoundLanes& bounds, const float* products, const RowFactors& row,
                    int home, double* gains) {
  return Meet<2>(bounds, products, row, home, gains);
}

#if defined(__x86_64__) || defined(__aarch64__)

// Columns lie far apart: those of the entries to come are fetched early.
constexpr std::size_t kAhead = 8;
constexpr std::size_t kCacheLine = 64;

[[gnu::always_inline]] inline void PrefetchColumn(const Walk& walk, std::size_t p,
                                                  std::size_t nbytes) {
  if (p >= walk.row.size()) return;
  const char* column = reinterpret_cast<const char*>(walk.Column(p));
  for (std::size_t b = 0; b < nbytes; b += kCacheLine) __builtin_prefetch(column + b);
}

#endif

#if defined(__x86_64__)

// kEights times 8 lanes: all sums stay in registers, so each column is read in one go.
template <std::size_t kEights>
[[gnu::target("avx512f,fma")]] void DotBlockAvx512(const Walk& walk, float* products) {
  constexpr std::size_t kPairs = kEights / 2;
  constexpr bool kOdd = kEights % 2 != 0;
  __m512 sums[kPairs + 1];
  for (auto& sum : sums) sum = _mm512_setzero_ps();
  __m256 last = _mm256_setzero_ps();
  for (std::size_t p = 0; p < walk.row.size(); ++p) {
    PrefetchColumn(walk, p + kAhead, kEights * sizeof(__m256));
    const __m512 v = _mm512_set1_ps(walk.Value(p));
    const float* column = walk.Column(p);
#pragma GCC unroll 16
    for (std::size_t i = 0; i < kPairs; ++i) {
      sums[i] = _mm512_fmadd_ps(v, _mm512_loadu_ps(column + 16 * i), sums[i]);
    }
    if constexpr (kOdd) {
      const __m256 narrow = _mm256_set1_ps(walk.Value(p));
      last = _mm256_fmadd_ps(narrow, _mm256_loadu_ps(column + 16 * kPairs), last);
    }
  }
  for (std::size_t i = 0; i < kPairs; ++i) _mm512_storeu_ps(products + 16 * i, sums[i]);
  if constexpr (kOdd) _mm256_storeu_ps(products + 16 * kPairs, last);
}

template <std::size_t kEights>
[[gnu::target("avx2,fma")]] void DotBlockAvx2(const Walk& walk, float* products) {
  __m256 sums[kEights];
  for (auto& sum : sums) sum = _mm256_setzero_ps();
  for (std::size_t p = 0; p < walk.row.size(); ++p) {
    PrefetchColumn(walk, p + kAhead, kEights * sizeof(__m256));
    const __m256 v = _mm256_set1_ps(walk.Value(p));
    const float* column = walk.Column(p);
#pragma GCC unroll 16
    for (std::size_t i = 0; i < kEights; ++i) {
      sums[i] = _mm256_fmadd_ps(v, _mm256_loadu_ps(column + 8 * i), sums[i]);
    }
  }
  for (std::size_t i = 0; i < kEights; ++i) _mm256_storeu_ps(products + 8 * i, sums[i]);
}

template <std::size_t... n>
constexpr auto BlocksAvx512(std::index_sequence<n...>) {
  return std::array<BlockFunction, sizeof...(n)>{DotBlockAvx512<n + 1>...};
}

void DotAvx512(const RowView& row, const float* lanes, std::size_t stride, float* products) {
  constexpr auto kBlocks = BlocksAvx512(std::make_index_sequence<32>());
  DotBlocks({row, lanes, stride}, kBlocks, products);
}

[[gnu::target("avx512f")]] double MeetAvx512(const BoundLanes& bounds, const float* products,
                                             const RowFactors& row, int home, double* gains) {
  return Meet<8>(bounds, products, row, home, gains);
}

template <std::size_t... n>
constexpr auto BlocksAvx2(std::index_sequence<n...>) {
  return std::array<BlockFunction, sizeof...(n)>{DotBlockAvx2<n + 1>...};
}

void DotAvx2(const RowView& row, const float* lanes, std::size_t stride, float* products) {
  constexpr auto kBlocks = BlocksAvx2(std::make_index_sequence<12>());
  DotBlocks({row, lanes, stride}, kBlocks, products);
}

[[gnu::target("avx2")]] double MeetAvx2(const BoundLanes& bounds, const float* products,
                                        const RowFactors& row, int home, double* gains) {
  return Meet<4>(bounds, products, row, home, gains);
}

#elif defined(__aarch64__)

template <std::size_t kEights>
void DotBlockNeon(const Walk& walk, float* products) {
  float32x4_t sums[2 * kEights];
  for (auto& sum : sums) sum = vdupq_n_f32(0);
  for (std::size_t p = 0; p < walk.row.size(); ++p) {
    PrefetchColumn(walk, p + kAhead, sizeof(sums));
    const float32x4_t v = vdupq_n_f32(walk.Value(p));
    const float* column = walk.Column(p);
#pragma GCC unroll 32
    for (std::size_t i = 0; i < 2 * kEights; ++i) {
      sums[i] = vfmaq_f32(sums[i], v, vld1q_f32(column + 4 * i));
    }
  }
  for (std::size_t i = 0; i < 2 * kEights; ++i) vst1q_f32(products + 4 * i, sums[i]);
}

template <std::size_t... n>
constexpr auto BlocksNeon(std::index_sequence<n...>) {
  return std::array<BlockFunction, sizeof...(n)>{DotBlockNeon<n + 1>...};
}

// 24 of 32 registers for sums.
void DotNeon(const RowView& row, const float* lanes, std::size_t stride, float* products) {
  constexpr auto kBlocks = BlocksNeon(std::make_index_sequence<12>());
  DotBlocks({row, lanes, stride}, kBlocks, products);
}

#endif

struct KernelList {
  std::array<VectorKernel, 3> kernels{};
  std::size_t count = 0;

  KernelList() {
#if defined(__x86_64__)
    // Every processor with one of these units fuses multiplications and additions, but a system may
    // hide it.
    if (__builtin_cpu_supports("fma")) {
      if (__builtin_cpu_supports("avx512f")) {
        kernels[count++] = {"avx512f", DotAvx512, MeetAvx512, DotFullRowsAvx512};
      }
      if (__builtin_cpu_supports("avx2")) {
        kernels[count++] = {"avx2", DotAvx2, MeetAvx2, DotFullRowsAvx2};
      }
    }
#elif defined(__aarch64__)
    // Every processor of this kind has the unit, for which the compiler makes the plain loops, too.
    kernels[count++] = {"neon", DotNeon, MeetPortable, DotFullRowsNeon};
#endif
    kernels[count++] = {"default", DotPortable, MeetPortable, DotFullRowsPortable};
  }
};

VectorKernel& Current() {
  static VectorKernel current = AvailableKernels().front();
  return current;
}

}  // namespace

Span<const VectorKernel> AvailableKernels() {
  static const KernelList list;
  return {list.kernels.data(), list.count};
}

const VectorKernel& CurrentKernel() { return Current(); }

void SetKernel(const VectorKernel& kernel) { Current() = kernel; }

}  // namespace molva
