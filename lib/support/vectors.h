// SPDX-License-Identifier: MIT
//
// Small vector routines. Sums and products are accumulated wide, from the first element on, and
// brought to the element type once, in the result.
#pragma once

#include <cstddef>

#include "lib/support/narrowing.h"
#include "lib/support/span.h"

namespace molva {

// Set every element to the value; return the array.
Span<int> SetInts(Span<int> x, int value);
Span<float> SetFloats(Span<float> x, float value);
Span<double> SetDoubles(Span<double> x, double value);

// Index of the largest (smallest) element; the first one on ties, 0 for an empty array.
int ArgMaxInt(Span<const int> x);
int ArgMinInt(Span<const int> x);
int ArgMaxFloat(Span<const float> x);
int ArgMinFloat(Span<const float> x);
int ArgMaxDouble(Span<const double> x);
int ArgMinDouble(Span<const double> x);

int SumInts(Span<const int> x);
int SumBytes(Span<const signed char> x);

// The sum of n elements taken at positions 0, stride, 2 stride, ...
float SumFloats(int n, const float* x, std::ptrdiff_t stride);
double SumDoubles(int n, const double* x, std::ptrdiff_t stride);

// In double, for what single precision can be told of wide sums.
RoughSum RoughDot(Span<const float> x, Span<const float> y);
inline RoughSum RoughSquares(Span<const float> x) { return RoughDot(x, x); }

// x = a x
void ScaleFloats(float a, Span<float> x);

// The Euclidean length; 0 for an empty array.
float NormFloats(Span<const float> x);

// The dot product; the arrays have one length.
float DotFloats(Span<const float> x, Span<const float> y);

// y[i incy] += a x[i incx] for i < n
void AxpyFloats(int n, float a, const float* x, std::ptrdiff_t incx, float* y, std::ptrdiff_t incy);

}  // namespace molva
