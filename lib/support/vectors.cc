// SPDX-License-Identifier: MIT
//
// One template per operation; the named routines fix the element type.
#include "lib/support/vectors.h"

#include <algorithm>
#include <cmath>
#include <functional>

#include "lib/support/wide.h"

namespace molva {
namespace {

template <typename T>
Span<T> Set(Span<T> x, T value) {
  std::fill(x.begin(), x.end(), value);
  return x;
}

// The first position that no other one beats. Strict comparisons: a not-a-number never wins.
template <typename T, typename Beats>
int ArgBest(Span<const T> x, Beats beats) {
  std::size_t best = 0;
  for (std::size_t i = 1; i < x.size(); ++i) {
    if (beats(x[i], x[best])) best = i;
  }
  return static_cast<int>(best);
}

template <typename T>
Wide StridedSum(int n, const T* x, std::ptrdiff_t stride) {
  Wide sum = 0;
  for (int i = 0; i < n; ++i) sum += x[i * stride];
  return sum;
}

template <typename T>
int IntegerSum(Span<const T> x) {
  int sum = 0;
  for (const T element : x) sum += element;
  return sum;
}

}  // namespace

Span<int> SetInts(Span<int> x, int value) { return Set(x, value); }
Span<float> SetFloats(Span<float> x, float value) { return Set(x, value); }
Span<double> SetDoubles(Span<double> x, double value) { return Set(x, value); }

int ArgMaxInt(Span<const int> x) { return ArgBest(x, std::greater<>()); }
int ArgMinInt(Span<const int> x) { return ArgBest(x, std::less<>()); }
int ArgMaxFloat(Span<const float> x) { return ArgBest(x, std::greater<>()); }
int ArgMinFloat(Span<const float> x) { return ArgBest(x, std::less<>()); }
int ArgMaxDouble(Span<const double> x) { return ArgBest(x, std::greater<>()); }
int ArgMinDouble(Span<const double> x) { return ArgBest(x, std::less<>()); }

int SumInts(Span<const int> x) { return IntegerSum(x); }
int SumBytes(Span<const signed char> x) { return IntegerSum(x); }

// Several sums side by side, since one alone would wait for each addition.
RoughSum RoughDot(Span<const float> x, Span<const float> y) {
  constexpr std::size_t kChains = 4;
  RoughSum chains[kChains];
  const std::size_t whole = x.size() - x.size() % kChains;
  const auto add = [&](std::size_t i, RoughSum& sum) {
    sum.Add(static_cast<double>(x[i]) * static_cast<double>(y[i]));
  };
  for (std::size_t i = 0; i < whole; i += kChains) {
    for (std::size_t c = 0; c < kChains; ++c) add(i + c, chains[c]);
  }
  for (std::size_t i = whole; i < x.size(); ++i) add(i, chains[0]);
  return {
      (chains[0].sum + chains[1].sum) + (chains[2].sum + chains[3].sum),
      (chains[0].magnitudes + chains[1].magnitudes) + (chains[2].magnitudes + chains[3].magnitudes),
      static_cast<double>(x.size())};
}

float SumFloats(int n, const float* x, std::ptrdiff_t stride) {
  RoughSum rough{0, 0, static_cast<double>(n)};
  for (int i = 0; i < n; ++i) rough.Add(static_cast<double>(x[i * stride]));
  const Narrowed narrowed = NarrowedSum(rough);
  if (narrowed.is_certain) return narrowed.value;
  return static_cast<float>(StridedSum(n, x, stride));
}

double SumDoubles(int n, const double* x, std::ptrdiff_t stride) {
  return static_cast<double>(StridedSum(n, x, stride));
}

void ScaleFloats(float a, Span<float> x) {
  for (float& element : x) element *= a;
}

float NormFloats(Span<const float> x) {
  const Narrowed rough = NarrowedRoot(RoughSquares(x));
  if (rough.is_certain) return rough.value;
  Wide sum = 0;
  for (const Wide element : x) sum += element * element;
  return static_cast<float>(Sqrt(sum));
}

float DotFloats(Span<const float> x, Span<const float> y) {
  const Narrowed rough = NarrowedSum(RoughDot(x, y));
  if (rough.is_certain) return rough.value;
  Wide sum = 0;
  for (std::size_t i = 0; i < x.size(); ++i) sum += static_cast<Wide>(x[i]) * y[i];
  return static_cast<float>(sum);
}

void AxpyFloats(int n, float a, const float* x, std::ptrdiff_t incx, float* y,
                std::ptrdiff_t incy) {
  for (int i = 0; i < n; ++i) {
    y[i * incy] = static_cast<float>(y[i * incy] + static_cast<Wide>(a) * x[i * incx]);
  }
}

}  // namespace molva
