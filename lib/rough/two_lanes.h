// SPDX-License-Identifier: MIT
//
// The products of a row with two composites that stand side by side: the loop that bisections spend
// most of their time in, so it is put into its callers. Every processor has what it needs.
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

}  // namespace molva
