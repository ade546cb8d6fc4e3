// SPDX-License-Identifier: MIT
//
// Small vector routines. Sums and products are accumulated wide, from the first element on, and
// brought to the element type once, in the result.
#pragma once

#include <cstddef>
#include <span>

namespace molva {

// Set every element to the value; return the array.
std::span<int> SetInts(std::span<int> x, int value);
std::span<float> SetFloats(std::span<float> x, float value);
std::span<double> SetDoubles(std::span<double> x, double value);

// Index of the largest (smallest) element; the first one on ties, 0 for an empty array.
int ArgMaxInt(std::span<const int> x);
int ArgMinInt(std::span<const int> x);
int ArgMaxFloat(std::span<const float> x);
int ArgMinFloat(std::span<const float> x);
int ArgMaxDouble(std::span<const double> x);
int ArgMinDouble(std::span<const double> x);

int SumInts(std::span<const int> x);
int SumBytes(std::span<const signed char> x);

// The sum of n elements taken at positions 0, stride, 2 stride, ...
float SumFloats(int n, const float* x, std::ptrdiff_t stride);
double SumDoubles(int n, const double* x, std::ptrdiff_t stride);

// x = a x
void ScaleFloats(float a, std::span<float> x);

// The Euclidean length; 0 for an empty array.
float NormFloats(std::span<const float> x);

// The dot product; the arrays have one length.
float DotFloats(std::span<const float> x, std::span<const float> y);

// y[i incy] += a x[i incx] for i < n
void AxpyFloats(int n, float a, const float* x, std::ptrdiff_t incx, float* y, std::ptrdiff_t incy);

}  // namespace molva
