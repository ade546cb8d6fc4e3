// SPDX-License-Identifier: MIT
//
// The products of a row with two composites that stand side by side: the loops that bisections
// spend most of their time in, so they are put into their callers. Every processor has what they
// need.
#pragma once

#include <cstddef>
#include <cstdint>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace molva {

struct TwoProducts {
  float of[2];
};

// `lanes` holds two numbers a column; sums in single precision, in any order.
inline TwoProducts DotTwo(const int* columns, const float* values, std::size_t size,
                          const float* lanes) {
  TwoProducts products{};
  std::size_t p = 0;
#if defined(__SSE2__)
  const auto pair = [&](std::size_t entry) {
    const float* column = lanes + 2 * static_cast<std::size_t>(columns[entry]);
    return _mm_loadl_pi(_mm_setzero_ps(), reinterpret_cast<const __m64*>(column));
  };
  __m128 even = _mm_setzero_ps();
  __m128 odd = _mm_setzero_ps();
  for (; p + 4 <= size; p += 4) {
    const __m128 v = _mm_loadu_ps(values + p);
    even = _mm_add_ps(even, _mm_mul_ps(_mm_unpacklo_ps(v, v), _mm_movelh_ps(pair(p), pair(p + 1))));
    odd =
        _mm_add_ps(odd, _mm_mul_ps(_mm_unpackhi_ps(v, v), _mm_movelh_ps(pair(p + 2), pair(p + 3))));
  }
  for (; p < size; ++p) {
    even = _mm_add_ps(even, _mm_mul_ps(_mm_set1_ps(values[p]), pair(p)));
  }
  const __m128 sums = _mm_add_ps(even, odd);
  _mm_storel_pi(reinterpret_cast<__m64*>(products.of), _mm_add_ps(sums, _mm_movehl_ps(sums, sums)));
#else
  for (; p < size; ++p) {
    const float* column = lanes + 2 * static_cast<std::size_t>(columns[p]);
    products.of[0] += values[p] * column[0];
    products.of[1] += values[p] * column[1];
  }
#endif
  return products;
}

// The same for a row that stores every column, in order: none is looked up.
inline TwoProducts DotTwoFull(const float* values, std::size_t size, const float* lanes) {
  TwoProducts products{};
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
  _mm_storel_pi(reinterpret_cast<__m64*>(products.of), _mm_add_ps(sum, _mm_movehl_ps(sum, sum)));
#endif
  for (; p < size; ++p) {
    products.of[0] += values[p] * lanes[2 * p];
    products.of[1] += values[p] * lanes[2 * p + 1];
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
