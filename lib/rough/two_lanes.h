// SPDX-License-Identifier: MIT
//
// The products of a row with two composites that stand side by side: the loops that bisections
// spend most of their time in, so they are put into their callers. Every processor has what they
// need.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace molva {

// A number of each of the two.
using Pair [[gnu::vector_size(2 * sizeof(double))]] = double;

// The entries of one row, and how many may be read from its first on: others' may follow.
struct ShortWalk {
  const int* columns;
  const float* values;
  std::size_t size;
  std::size_t room;
};

// `lanes` holds two numbers a column; sums in single precision, in any order. Entries are taken
// four at a time, and what the last four hold of other rows counts as 0: a loop over the rest would
// end after another entry with every row, which no processor foresees.
inline Pair DotTwo(const ShortWalk& row, const float* lanes) {
  std::size_t p = 0;
#if defined(__SSE2__)
  constexpr std::size_t kFour = 4;
  static constexpr std::uint32_t kMasks[2 * kFour] = {~0U, ~0U, ~0U, ~0U};
  if ((row.size + kFour - 1) / kFour * kFour <= row.room) {
    const auto pair = [&](std::size_t entry) {
      const float* column = lanes + 2 * static_cast<std::size_t>(row.columns[entry]);
      return _mm_loadl_pi(_mm_setzero_ps(), reinterpret_cast<const __m64*>(column));
    };
    __m128 even = _mm_setzero_ps();
    __m128 odd = _mm_setzero_ps();
    for (; p < row.size; p += kFour) {
      const std::size_t count = std::min(row.size - p, kFour);
      const __m128i mask =
          _mm_loadu_si128(reinterpret_cast<const __m128i*>(kMasks + kFour - count));
      const __m128 v = _mm_and_ps(_mm_loadu_ps(row.values + p), _mm_castsi128_ps(mask));
      const __m128 first = _mm_movelh_ps(pair(p), pair(p + 1));
      const __m128 second = _mm_movelh_ps(pair(p + 2), pair(p + 3));
      even = _mm_add_ps(even, _mm_mul_ps(_mm_unpacklo_ps(v, v), first));
      odd = _mm_add_ps(odd, _mm_mul_ps(_mm_unpackhi_ps(v, v), second));
    }
    const __m128 sums = _mm_add_ps(even, odd);
    return _mm_cvtps_pd(_mm_add_ps(sums, _mm_movehl_ps(sums, sums)));
  }
#endif
  Pair products{};
  for (; p < row.size; ++p) {
    const float* column = lanes + 2 * static_cast<std::size_t>(row.columns[p]);
    const auto v = static_cast<double>(row.values[p]);
    products += v * Pair{static_cast<double>(column[0]), static_cast<double>(column[1])};
  }
  return products;
}

// The same for a row that stores every column, in order: none is looked up.
inline Pair DotTwoFull(const float* values, std::size_t size, const float* lanes) {
  Pair products{};
  std::size_t p = 0;
#if defined(__SSE2__)
  __m128 sums[4] = {_mm_setzero_ps(), _mm_setzero_ps(), _mm_setzero_ps(), _mm_setzero_ps()};
  const auto add = [&](std::size_t entry, __m128 v, __m128& sum) {
    sum = _mm_add_ps(sum, _mm_mul_ps(v, _mm_loadu_ps(lanes + 2 * entry)));
  };
  for (; p + 8 <= size; p += 8) {
    const __m128 four = _mm_loadu_ps(values + p);
    const __m128 more = _mm_loadu_ps(values + p + 4);
    add(p, _mm_unpacklo_ps(four, four), sums[0]);
    add(p + 2, _mm_unpackhi_ps(four, four), sums[1]);
    add(p + 4, _mm_unpacklo_ps(more, more), sums[2]);
    add(p + 6, _mm_unpackhi_ps(more, more), sums[3]);
  }
  const __m128 sum = _mm_add_ps(_mm_add_ps(sums[0], sums[1]), _mm_add_ps(sums[2], sums[3]));
  products = _mm_cvtps_pd(_mm_add_ps(sum, _mm_movehl_ps(sum, sum)));
#endif
  for (; p < size; ++p) {
    const auto v = static_cast<double>(values[p]);
    products += v * Pair{static_cast<double>(lanes[2 * p]), static_cast<double>(lanes[2 * p + 1])};
  }
  return products;
}

// The same in double precision, where each product is exact, and the sum of v^2 with them.
struct TwoExactProducts {
  double of[2];
  double square;
};

inline TwoExactProducts DotTwoInDouble(const int* columns, const float* values, std::size_t size,
                                       const float* lanes) {
  TwoExactProducts products{};
  std::size_t p = 0;
#if defined(__SSE2__)
  __m128d sums[2] = {_mm_setzero_pd(), _mm_setzero_pd()};
  __m128d squares = _mm_setzero_pd();
  const auto add = [&](std::size_t entry, __m128d v, __m128d& sum) {
    const float* column = lanes + 2 * static_cast<std::size_t>(columns[entry]);
    const __m128 pair = _mm_loadl_pi(_mm_setzero_ps(), reinterpret_cast<const __m64*>(column));
    sum = _mm_add_pd(sum, _mm_mul_pd(v, _mm_cvtps_pd(pair)));
  };
  for (; p + 2 <= size; p += 2) {
    const __m128d v =
        _mm_set_pd(static_cast<double>(values[p + 1]), static_cast<double>(values[p]));
    squares = _mm_add_pd(squares, _mm_mul_pd(v, v));
    add(p, _mm_unpacklo_pd(v, v), sums[0]);
    add(p + 1, _mm_unpackhi_pd(v, v), sums[1]);
  }
  if (p < size) {
    const __m128d v = _mm_set_sd(static_cast<double>(values[p]));
    squares = _mm_add_sd(squares, _mm_mul_sd(v, v));
    add(p, _mm_unpacklo_pd(v, v), sums[0]);
  }
  _mm_storeu_pd(products.of, _mm_add_pd(sums[0], sums[1]));
  products.square = _mm_cvtsd_f64(_mm_add_sd(squares, _mm_unpackhi_pd(squares, squares)));
#else
  for (; p < size; ++p) {
    const auto v = static_cast<double>(values[p]);
    const float* column = lanes + 2 * static_cast<std::size_t>(columns[p]);
    products.of[0] += v * static_cast<double>(column[0]);
    products.of[1] += v * static_cast<double>(column[1]);
    products.square += v * v;
  }
#endif
  return products;
}

}  // namespace molva
