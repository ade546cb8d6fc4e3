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
std::span<T> Set(std::span<T> x, T value) {
  std::fill(x.begin(), x.end(), value);
  return x;
}

// The first position that no other one beats. Strict comparisons: a not-a-number never wins.
template <typename T, typename Beats>
int ArgBest(std::span<const T> x, Beats beats) {
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
int IntegerSum(std::span<const T> x) {
  int sum = 0;
  for (const T element : x) sum += element;
  return sum;
}

}  // namespace

std::span<int> SetInts(std::span<int> x, int value) { return Set(x, value); }
std::span<float> SetFloats(std::span<float> x, float value) { return Set(x, value); }
std::span<double> SetDoubles(std::span<double> x, double value) { return Set(x, value); }

int ArgMaxInt(std::span<const int> x) { return ArgBest(x, std::greater<>()); }
int ArgMinInt(std::span<const int> x) { return ArgBest(x, std::less<>()); }
int ArgMaxFloat(std::span<const float> x) { return ArgBest(x, std::greater<>()); }
int ArgMinFloat(std::span<const float> x) { return ArgBest(x, std::less<>()); }
int ArgMaxDouble(std::span<const double> x) { return ArgBest(x, std::greater<>()); }
int ArgMinDouble(std::span<const double> x) { return ArgBest(x, std::less<>()); }

int SumInts(std::span<const int> x) { return IntegerSum(x); }
int SumBytes(std::span<const signed char> x) { return IntegerSum(x); }

float SumFloats(int n, const float* x, std::ptrdiff_t stride) {
  return static_cast<float>(StridedSum(n, x, stride));
}

double SumDoubles(int n, const double* x, std::ptrdiff_t stride) {
  return static_cast<double>(StridedSum(n, x, stride));
}

void ScaleFloats(float a, std::span<float> x) {
  for (float& element : x) element *= a;
}

float NormFloats(std::span<const float> x) {
  Wide sum = 0;
  for (const Wide element : x) sum += element * element;
  return static_cast<float>(std::sqrt(sum));
}

float DotFloats(std::span<const float> x, std::span<const float> y) {
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
